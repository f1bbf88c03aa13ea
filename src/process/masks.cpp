#include "tqimage/masks.h"

#include <algorithm>
#include <array>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/rectangle.h"
#include "core/replaced_image.h"
#include "core/window.h"
#include "kernels/pel_arithmetic.h"
#include "kernels/span_statistics.h"
#include "process/pel_runs.h"

namespace tq {
namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kInvalidMask = -3;
constexpr std::int32_t kOtherSize = -4;
constexpr std::int32_t kNoMemory = -5;

struct MaskedImage {
    OwnedImage image;
    kernels::SumAndMax pels;
};

/// The source where the mask keeps it, with the source's header, and the figures of the pels. What the mask
/// does not reach is 0.
MaskedImage Masked(const ConstImageView& source, const ConstImageView& mask, kernels::Keep keep) {
    const bool reached = mask.cols >= source.cols && mask.rows >= source.rows;
    MaskedImage result{{source, reached ? NewPels::kUnwritten : NewPels::kZero}, {}};
    const ImageView out = result.image.View();
    if (SameSize(source, mask)) {
        result.pels = ProduceMeasured(out, [&](std::size_t first, std::size_t count) {
            kernels::KeepMarked(source.pels + first, mask.pels + first, keep, out.pels + first, count);
        });
        return result;
    }
    const auto cols = static_cast<std::size_t>(std::min(source.cols, mask.cols));
    for (std::int32_t row = 0; row < std::min(source.rows, mask.rows); ++row)
        kernels::KeepMarked(source.Row(row), mask.Row(row), keep, out.Row(row), cols);
    result.pels = kernels::FindSumAndMax(out.pels, out.Count());
    return result;
}

/// Clears a block around every marked pel, shifted inward at the border, row by row. For each column it
/// remembers down to which row it is to be cleared, so that a pel is cleared once however many blocks cover
/// it. Blocks begin at or above their mask row: a mask row is always read before the same row of the image is
/// written.
class BlockClearing {
  public:
    BlockClearing(const ImageView& image, const ConstImageView& mask, std::int32_t width, std::int32_t height)
        : image_(image), mask_(mask), width_(width), height_(height) {
        clearedTo_.fill(-1);
    }

    void Run() noexcept {
        std::int32_t next = 0;
        for (std::int32_t row = 0; row < image_.rows; ++row) {
            for (; next < mask_.rows && ShiftedReach(next, height_, image_.rows).first <= row; ++next)
                Enter(next);
            ClearRow(row);
        }
    }

  private:
    void Enter(std::int32_t maskRow) noexcept {
        const auto last = static_cast<std::int16_t>(ShiftedReach(maskRow, height_, image_.rows).last);
        const Pel* mask = mask_.Row(maskRow);
        std::int32_t done = 0;  // blocks of a row begin and end in the order of their pels
        for (std::int32_t col = 0; col < mask_.cols; ++col) {
            if (mask[col] == 0) continue;
            const Reach block = ShiftedReach(col, width_, image_.cols);
            for (done = std::max(done, block.first); done <= block.last; ++done)
                clearedTo_[static_cast<std::size_t>(done)] = last;
        }
    }

    void ClearRow(std::int32_t row) noexcept {
        Pel* pels = image_.Row(row);
        for (std::int32_t col = 0; col < image_.cols; ++col)
            pels[col] = clearedTo_[static_cast<std::size_t>(col)] >= row ? Pel{0} : pels[col];
    }

    ImageView image_;
    ConstImageView mask_;
    std::int32_t width_;
    std::int32_t height_;
    std::array<std::int16_t, kMaxSide> clearedTo_;
};

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqMaskImage(TqImage** image, const TqImage* mask) {
    const ConstImageView source = LocateHeld(image);
    if (!source) return kInvalidImage;
    const ConstImageView marks = LocateImage(mask);
    if (!marks) return kInvalidMask;
    return Guarded(kNoMemory, [&] {
        MaskedImage result = Masked(source, marks, kernels::Keep::kWhereMaskIsSet);
        result.image.Header().TotalPelValue = static_cast<double>(result.pels.sum);
        result.image.Header().MaxPelValue = result.pels.max;
        CommitImage(image, std::move(result.image));
        return kOk;
    });
}

std::int32_t TQ_CALL tqInvMaskImage(TqImage** image, const TqImage* mask) {
    const ConstImageView source = LocateHeld(image);
    if (!source) return kInvalidImage;
    const ConstImageView marks = LocateImage(mask);
    if (!marks) return kInvalidMask;
    return Guarded(kNoMemory, [&] {
        MaskedImage result = Masked(source, marks, kernels::Keep::kWhereMaskIsZero);
        // Not the sum of the pels: as many bytes as the image has pels, from the first byte of the header on.
        // Hosts compare stored totals with this figure.
        const auto* block = reinterpret_cast<const std::uint8_t*>(&result.image.Header());
        result.image.Header().TotalPelValue =
            static_cast<double>(kernels::SumBytes(block, result.image.View().Count()));
        CommitImage(image, std::move(result.image));
        return kOk;
    });
}

std::int32_t TQ_CALL tqInvMaskImageOffset(TqImage* image, const TqImage* mask) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const ConstImageView marks = LocateImage(mask);
    if (!marks) return kInvalidMask;
    const auto shift = [](float of, float from) -> std::int64_t {
        return TruncToInt32(static_cast<double>(of) - static_cast<double>(from));
    };
    const std::int64_t cols = shift(marks.header->CenterCol, view.header->CenterCol);
    const std::int64_t rows = shift(marks.header->CenterRow, view.header->CenterRow);
    const std::int64_t left = std::max<std::int64_t>(0, -cols);
    const std::int64_t right = std::min<std::int64_t>(view.cols, marks.cols - cols);
    const std::int64_t bottom = std::min<std::int64_t>(view.rows, marks.rows - rows);
    if (left >= right) return kOk;
    for (std::int64_t row = std::max<std::int64_t>(0, -rows); row < bottom; ++row) {
        Pel* pels = view.Row(static_cast<std::int32_t>(row)) + left;
        kernels::ClearWhereSet(pels, marks.Row(static_cast<std::int32_t>(row + rows)) + left + cols, pels,
                               static_cast<std::size_t>(right - left));
    }
    return kOk;
}

std::int32_t TQ_CALL tqInvMaskImage2(TqImage* image, const TqImage* mask, std::int32_t blockWidth,
                                     std::int32_t blockHeight) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const ConstImageView marks = LocateImage(mask);
    if (!marks) return kInvalidMask;
    if (!SameSize(view, marks)) return kOtherSize;
    BlockClearing(view, marks, std::clamp(blockWidth, 0, view.cols - 1),
                  std::clamp(blockHeight, 0, view.rows - 1))
        .Run();
    return kOk;
}
