#include <algorithm>
#include <vector>

#include "core/numerics.h"
#include "core/replaced_image.h"
#include "measure/image_values.h"
#include "process/filter_result.h"
#include "tqimage/filters.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;
constexpr std::int32_t kTooSmall = -4;

/// The weight of the eight cells around the centre is -1/9 in single precision, and trunc(pel * weight) in
/// single precision is -(pel / 9): the weight is 7.5e-9 off, too little to leave a multiple of nine when the
/// product is rounded to 24 bits, and any other pel is 1/9 away from the next integer.
constexpr std::int32_t kOuterDivisor = 9;

/// Results of the 3 x 3 kernel, -1/9 around the centre's weight, row by row. Every product is truncated
/// before the sum, so this is not the ninth of a sum; but the outer products of a pel are the same wherever
/// it stands in the kernel, and are formed once.
class SharpenedRows {
  public:
    SharpenedRows(const ConstImageView& view, float strength)
        : view_(view),
          weight_((9.0f * strength - 1.0f) / 9.0f),
          columns_(static_cast<std::size_t>(view.cols)) {
        for (auto& line : lines_)
            line.resize(columns_.size());
    }

    /// Moves to a row that has one on either side, from one row to the next.
    void MoveTo(std::int32_t row) {
        for (next_ = std::max(next_, row - 1); next_ <= row + 1; ++next_) {
            std::transform(view_.Row(next_), view_.Row(next_) + view_.cols, Line(next_).begin(),
                           [](Pel pel) { return pel / kOuterDivisor; });
        }
        row_ = row;
        const auto &above = Line(row - 1), &here = Line(row), &below = Line(row + 1);
        for (std::size_t i = 0; i < columns_.size(); ++i)
            columns_[i] = above[i] + here[i] + below[i];
    }

    std::int64_t At(std::int32_t col) const noexcept {
        const auto i = static_cast<std::size_t>(col);
        const Pel pel = view_.At(col, row_);
        const std::int32_t all = columns_[i - 1] + columns_[i] + columns_[i + 1];
        const std::int32_t centre = TruncToInt32(static_cast<float>(pel) * weight_);
        return std::int64_t{centre} - (all - pel / kOuterDivisor);
    }

  private:
    std::vector<std::int32_t>& Line(std::int32_t row) noexcept {
        return lines_[static_cast<std::size_t>(row % 3)];
    }

    ConstImageView view_;
    float weight_;
    std::vector<std::int32_t> lines_[3];  ///< outer products of three rows, without their sign
    std::vector<std::int32_t> columns_;
    std::int32_t next_ = 0;  ///< first row that lines_ has not held yet
    std::int32_t row_ = 0;
};

OwnedImage Sharpen(const ConstImageView& view, float strength, const Rect& rect) {
    const Rect inner{std::max(rect.left, 1), std::max(rect.top, 1), std::min(rect.right, view.cols - 2),
                     std::min(rect.bottom, view.rows - 2)};
    OwnedImage result = CopyAround(view, inner);
    const ImageView out = result.View();
    SharpenedRows sharpened(view, strength);
    for (std::int32_t row = inner.top; row <= inner.bottom; ++row) {
        sharpened.MoveTo(row);
        // What a result below 1 becomes has always been decided by the source pel of the same running index,
        // and results lie packed, two fewer a row: the deciding pel drifts away from the place of the
        // result, row by row. Hosts compare images with earlier ones, so it stays.
        const Pel* const deciding = view.pels + std::ptrdiff_t{row - 1} * (view.cols - 2);
        Pel* const pels = out.Row(row);
        for (std::int32_t col = inner.left; col <= inner.right; ++col) {
            // A result of 1 or more lies above either bound: the lower one is for the others alone.
            const std::int64_t floor = deciding[col - 1] != 0 ? 1 : 0;
            pels[col] =
                static_cast<Pel>(std::min<std::int64_t>(std::max(sharpened.At(col), floor), kLargestPel));
        }
    }
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
