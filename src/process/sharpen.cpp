#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/replaced_image.h"
#include "kernels/sharpen.h"
#include "measure/image_values.h"
#include "measure/region_shapes.h"
#include "process/filter_result.h"
#include "tqimage/filters.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;
constexpr std::int32_t kTooSmall = -4;

/// The 3 x 3 kernel has -1/9 around the centre's weight, and every product is truncated before the sum. In
/// single precision -1/9 is 7.5e-9 off, too little to leave a multiple of nine when the product is rounded to
/// 24 bits, and any other pel is 1/9 away from the next integer: the outer products are quotients of
/// integers.
OwnedImage Sharpen(const ConstImageView& view, float strength, const Rect& rect) {
    const Rect inner{std::max(rect.left, 1), std::max(rect.top, 1), std::min(rect.right, view.cols - 2),
                     std::min(rect.bottom, view.rows - 2)};
    OwnedImage result = CopyAround(view, inner);
    const ImageView out = result.View();
    const float weight = (9.0f * strength - 1.0f) / 9.0f;
    VisitRectangle(inner, [&](std::int32_t row, std::int32_t first, std::int32_t last) {
        // What a result below 1 becomes has always been decided by the source pel of the same running index,
        // and results lie packed, two fewer a row: the deciding pel drifts away from the place of the
        // result, row by row. Hosts compare images with earlier ones, so it stays.
        const Pel* const deciding = view.pels + std::ptrdiff_t{row - 1} * (view.cols - 2) + first - 1;
        kernels::SharpenRow({view.Row(row - 1) + first, view.Row(row) + first, view.Row(row + 1) + first},
                            deciding, weight, static_cast<std::size_t>(last - first + 1),
                            out.Row(row) + first);
    });
    RefreshImageValues(out);
    return result;
}

std::int32_t ReplaceBySharpened(TqImage** image, float strength, const Rect& asked) {
    const ConstImageView view = LocateHeld(image);
    if (!view) return kInvalidImage;
    if (view.cols < 3 || view.rows < 3) return kTooSmall;
    return ReplaceImage(image, kNoMemory, [&] {
        return Sharpen(view, strength < 1.0f ? 1.0f : strength, ClampRegion(asked, view.cols, view.rows));
    });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqSharpenImage(TqImage** image, float strength) {
    return ReplaceBySharpened(image, strength, {0, 0, 0, 0});
}

std::int32_t TQ_CALL tqSharpenImageInRegion(TqImage** image, float strength, std::int32_t left,
                                            std::int32_t top, std::int32_t right, std::int32_t bottom) {
    return ReplaceBySharpened(image, strength, {left, top, right, bottom});
}
