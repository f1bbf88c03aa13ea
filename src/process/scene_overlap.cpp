#include "process/scene_overlap.h"

#include <cstddef>
#include <utility>

#include "core/numerics.h"

namespace tq {

SceneAxis ColumnsOf(const ConstImageView& view) noexcept {
    return {view.cols, view.header->PelsPerMeterX, view.header->CenterCol};
}

SceneAxis RowsOf(const ConstImageView& view) noexcept {
    return {view.rows, view.header->PelsPerMeterY, view.header->CenterRow};
}

// The position grows or falls with the pel all along, so that the pels inside are one stretch. Positions that
// are no numbers, from a scale of 0, lie inside nothing.
AxisMap::AxisMap(const SceneAxis& from, std::int32_t first, std::int32_t count, const SceneAxis& to,
                 double offset)
    : source(static_cast<std::size_t>(count), -1) {
    const double scale = to.pelsPerMeter / from.pelsPerMeter;
    const double shift = offset * to.pelsPerMeter;
    for (std::int32_t i = 0; i < count; ++i) {
        const double position = (first + i - from.center) * scale + shift + to.center + 0.5;
        const bool inside = position >= 0.0 && position < to.pels;
        if (!inside) {
            if (end > 0) break;
            continue;
        }
        if (end == 0) begin = i;
        end = i + 1;
        const auto at = static_cast<std::size_t>(i);
        source[at] = TruncToInt32(position);
        if (i > begin && source[at] != source[at - 1] + 1) isRun = false;
    }
}

SceneOverlap::SceneOverlap(const ConstImageView& other, AxisMap cols, AxisMap rows)
    : other_(other), cols_(std::move(cols)), rows_(std::move(rows)), gathered_(cols_.source.size()) {}

const Pel* SceneOverlap::RowOfOther(std::int32_t row) {
    const std::int32_t otherRow = rows_.source[static_cast<std::size_t>(row)];
    if (otherRow < 0 || cols_.begin == cols_.end) return nullptr;
    const Pel* pels = other_.Row(otherRow);
    const std::int32_t* columns = cols_.source.data() + cols_.begin;
    if (cols_.isRun) return pels + *columns;
    for (std::int32_t i = 0; i < cols_.end - cols_.begin; ++i)
        gathered_[static_cast<std::size_t>(i)] = pels[columns[i]];
    return gathered_.data();
}

}  // namespace tq
