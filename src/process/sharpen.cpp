#include <algorithm>
#include <vector>

#include "core/numerics.h"
#include "measure/image_values.h"
#include "process/filter_result.h"
#include "tqimage/filters.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;
constexpr std::int32_t kTooSmall = -4;

/// trunc(pel * weight) in single precision for every grey level: an image has more pels than levels, or is
/// small enough not to matter.
std::vector<std::int32_t> Products(float weight) {
    std::vector<std::int32_t> products(kLargestPel + 1);
    for (std::int32_t level = 0; level <= kLargestPel; ++level) {
        const float product = static_cast<float>(level) * weight;
        products[static_cast<std::size_t>(level)] = TruncToInt32(product);
    }
    return products;
}

/// The eight outer cells of the kernel hold -1/9. Every product is truncated before the sum, so this is not
/// the ninth of a sum.
class Sharpener {
  public:
    explicit Sharpener(float strength)
        : outer_(Products(-1.0f / 9.0f)), centre_(Products((9.0f * strength - 1.0f) / 9.0f)) {}

    std::int64_t operator()(const ConstImageView& view, std::int32_t col, std::int32_t row) const {
        std::int64_t sum = 0;
        for (std::int32_t y = row - 1; y <= row + 1; ++y) {
            const Pel* pels = view.Row(y) + col;
            sum += std::int64_t{outer_[pels[-1]]} + outer_[pels[1]];
            sum += y == row ? centre_[pels[0]] : outer_[pels[0]];
        }
        return sum;
    }

  private:
    std::vector<std::int32_t> outer_;
    std::vector<std::int32_t> centre_;
};

OwnedImage Sharpen(const ConstImageView& view, float strength, const Rect& rect) {
    OwnedImage result = CopyImage(view);
    const ImageView out = result.View();
    const Sharpener sharpen(strength);
    const Rect inner{std::max(rect.left, 1), std::max(rect.top, 1), std::min(rect.right, view.cols - 2),
                     std::min(rect.bottom, view.rows - 2)};
    for (std::int32_t row = inner.top; row <= inner.bottom; ++row) {
        // What a result below 1 becomes has always been decided by the source pel of the same running index,
        // and results lie packed, two fewer a row: the deciding pel drifts away from the place of the
        // result, row by row. Hosts compare images with earlier ones, so it stays.
        const Pel* const deciding = view.pels + std::ptrdiff_t{row - 1} * (view.cols - 2);
        for (std::int32_t col = inner.left; col <= inner.right; ++col) {
            const std::int64_t value = sharpen(view, col, row);
            const std::int32_t floor = deciding[col - 1] != 0 ? 1 : 0;
            out.At(col, row) =
                static_cast<Pel>(value < 1 ? floor : std::min<std::int64_t>(value, kLargestPel));
        }
    }
    RefreshImageValues(out);
    return result;
}

std::int32_t ReplaceBySharpened(TqImage** image, float strength, const Rect& asked) {
    const ConstImageView view = LocateHostImage(image);
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
