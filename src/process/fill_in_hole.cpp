#include <algorithm>
#include <cstdint>

#include "core/image_view.h"
#include "core/numerics.h"
#include "core/rectangle.h"
#include "process/pel_runs.h"
#include "tqimage/filters.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;

std::int32_t Near(std::int64_t index) noexcept {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(index, -1, kMaxSide));
}

/// Mean of the columns first..last, two rows up and down. The rectangle is clamped as regions are, so beside
/// a hole that starts in column 0 or 1 it reaches to the last column; hosts have that in their results.
double MeanBeside(const ConstImageView& view, std::int64_t first, std::int64_t last, std::int32_t row) {
    const Rect block = ClampRegion({Near(first), row - 2, Near(last), row + 2}, view.cols, view.rows);
    return static_cast<double>(SumPels(view, block)) / static_cast<double>(block.Area());
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqFillInHole(TqImage* image, std::int32_t left, std::int32_t top, std::int32_t right,
                                  std::int32_t bottom) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const Rect inside = CutToImage({left, top, right, bottom}, view.cols, view.rows);
    const auto steps = static_cast<double>(std::int64_t{right} - left + 2);
    for (std::int32_t row = inside.top; row <= inside.bottom; ++row) {
        const double before = MeanBeside(view, std::int64_t{left} - 5, std::int64_t{left} - 1, row);
        const double behind = MeanBeside(view, std::int64_t{right} + 1, std::int64_t{right} + 5, row);
        for (std::int32_t col = inside.left; col <= inside.right; ++col) {
            const auto step = static_cast<double>(std::int64_t{col} - left + 1);
            view.At(col, row) = WrapToPel(TruncToInt32(step * (behind - before) / steps + before));
        }
    }
    return 0;
}
