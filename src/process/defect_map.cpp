#include <algorithm>
#include <cstdint>

#include "core/image_view.h"
#include "kernels/span_statistics.h"
#include "process/healthy_window.h"
#include "tqimage/defects.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kInvalidMap = -3;
constexpr std::int32_t kSizesDiffer = -4;
constexpr std::int32_t kBadNeighbourhood = -5;

bool HasMarks(const ConstImageView& map, std::int32_t row) {
    return kernels::CountAtLeast(map.Row(row), static_cast<std::size_t>(map.cols), 1) != 0;
}

void Fix(const ImageView& image, const ConstImageView& map, std::int32_t width, std::int32_t height) {
    // Marked pels never serve as neighbours, so no repair takes part in another one.
    const auto healthy = [marks = map.pels](Pel pel, std::size_t at) { return pel != 0 && marks[at] == 0; };
    const auto isHealthy = [&](std::int32_t col, std::int32_t row) {
        return healthy(image.At(col, row), static_cast<std::size_t>(&image.At(col, row) - image.pels));
    };
    HealthyWindow window(image, width, height, kernels::CountAtLeast(map.pels, map.Count(), 1), healthy);
    for (std::int32_t row = 0; row < image.rows; ++row) {
        if (!HasMarks(map, row)) continue;
        window.MoveTo(row);
        const Reach rows = window.Rows(row);
        for (std::int32_t col = 0; col < image.cols; ++col) {
            if (map.At(col, row) == 0) continue;
            auto around = window.At(col);
            // A defect spills into the pels it touches: the core of 3 x 3 is left out, as far as the window
            // holds it.
            const Reach cols = window.Cols(col);
            for (std::int32_t y = std::max(row - 1, rows.first); y <= std::min(row + 1, rows.last); ++y) {
                for (std::int32_t x = std::max(col - 1, cols.first); x <= std::min(col + 1, cols.last); ++x) {
                    if (!isHealthy(x, y)) continue;
                    around.sum -= image.At(x, y);
                    --around.count;
                }
            }
            if (around.count != 0) image.At(col, row) = static_cast<Pel>(around.sum / around.count);
        }
    }
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqFixDefects(TqImage* image, const TqImage* map, std::int32_t width,
                                  std::int32_t height) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const ConstImageView marks = LocateImage(map);
    if (!marks) return kInvalidMap;
    if (!SameSize(view, marks)) return kSizesDiffer;
    if (width < 0 || width > view.cols || height < 0 || height > view.rows) return kBadNeighbourhood;
    Fix(view, marks, width, height);
    return 0;
}
