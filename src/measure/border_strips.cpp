#include "measure/border_strips.h"

namespace tq {

namespace {

/// A side of a strip where it is cut to the image; 64-bit, as gaps and depths may be any number.
std::int32_t Cut(std::int64_t position, std::int32_t first, std::int32_t last) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(position, first, last));
}

}  // namespace

BorderStrips::BorderStrips(const ConstImageView& view, const Rect& area, std::int32_t gap, std::int32_t depth,
                           std::int32_t ceiling)
    : view_(view), ceiling_(ceiling > 0 ? ceiling : kLargestPel) {
    const std::int64_t closest = std::int64_t{std::max(gap, 0)} + 1;
    const std::int64_t farthest = closest + std::max(depth, 1) - 1;
    cornerReach_ = closest + farthest;
    // The near side of a strip that lies outside is cut to one place past the border, the far side to the
    // border: such a strip is empty.
    const std::int32_t lastCol = view.cols - 1, lastRow = view.rows - 1;
    strips_ = {
        {{Cut(area.left - farthest, 0, lastCol), area.top, Cut(area.left - closest, -1, lastCol),
          area.bottom},
         {area.left, Cut(area.top - farthest, 0, lastRow), area.right, Cut(area.top - closest, -1, lastRow)},
         {Cut(area.right + closest, 0, view.cols), area.top, Cut(area.right + farthest, 0, lastCol),
          area.bottom},
         {area.left, Cut(area.bottom + closest, 0, view.rows), area.right,
          Cut(area.bottom + farthest, 0, lastRow)}}};
}

BorderLight MeasureBorderLight(const BorderStrips& strips) {
    BorderLight light;
    std::int64_t total = 0, cols = 0, rows = 0;
    for (const Side side : kSides) {
        std::int64_t sum = 0, count = 0;
        strips.VisitPels(side, [&](std::int32_t col, std::int32_t row, Pel pel) {
            sum += pel;
            cols += col;
            rows += row;
            ++count;
            const bool earlier = row != light.maxRow ? row < light.maxRow : col < light.maxCol;
            if (pel < light.maximum || (pel == light.maximum && !earlier)) return;
            light.maximum = pel;
            light.maxCol = col;
            light.maxRow = row;
        });
        if (count == 0) continue;
        light.sideMeans[static_cast<std::size_t>(side)] =
            static_cast<double>(sum) / static_cast<double>(count);
        total += sum;
        light.count += count;
    }
    if (light.count == 0) return light;
    light.mean = static_cast<double>(total) / static_cast<double>(light.count);
    light.middleCol = static_cast<std::int32_t>(cols / light.count);
    light.middleRow = static_cast<std::int32_t>(rows / light.count);
    return light;
}

}  // namespace tq
