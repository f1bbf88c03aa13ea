#include <algorithm>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "core/sensor_offset.h"
#include "kernels/grey_arithmetic.h"
#include "kernels/pel_arithmetic.h"
#include "process/pel_runs.h"
#include "tqimage/point_operations.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kInvalidOperand = -3;
constexpr std::int32_t kNoMemory = -5;
constexpr std::int32_t kBadColumnOffset = -7;
constexpr std::int32_t kBadRowOffset = -8;

/// Where the first image lies inside the second, which carries the place in its own centre fields.
struct Offset {
    std::int32_t col;
    std::int32_t row;
};

Offset StatedOffset(const ConstImageView& carrier) noexcept {
    return {TruncToInt32(carrier.header->CenterCol), TruncToInt32(carrier.header->CenterRow)};
}

/// Leaves a usable offset or returns the status of the axis that has none.
std::int32_t AcceptOffset(Offset& offset) noexcept {
    const auto col = AcceptedOffset(offset.col);
    if (!col) return kBadColumnOffset;
    const auto row = AcceptedOffset(offset.row);
    if (!row) return kBadRowOffset;
    offset = {*col, *row};
    return 0;
}

bool Covers(const ConstImageView& outer, const ConstImageView& inner, Offset offset) noexcept {
    return outer.cols >= static_cast<std::int64_t>(inner.cols) + offset.col &&
           outer.rows >= static_cast<std::int64_t>(inner.rows) + offset.row;
}

OwnedImage Subtract(const ConstImageView& a, const ConstImageView& b, Offset offset) {
    OwnedImage result(a, NewPels::kUnwritten);
    const ImageView out = result.View();
    for (std::int32_t row = 0; row < a.rows; ++row) {
        kernels::SubtractSaturated(a.Row(row), b.Row(row + offset.row) + offset.col, out.Row(row),
                                   static_cast<std::size_t>(a.cols));
    }
    return result;
}

OwnedImage Multiply(const ConstImageView& a, const ConstImageView& b, Offset offset, std::int32_t divisor) {
    OwnedImage result(a, NewPels::kUnwritten);
    const ImageView out = result.View();
    const std::int32_t shared = std::clamp(b.cols - offset.col, 0, a.cols);
    for (std::int32_t row = 0; row < a.rows; ++row) {
        const Pel* source = a.Row(row);
        // Outside b there is nothing to multiply by: the pels are kept.
        const std::int32_t multiplied = b.Contains(0, std::int64_t{row} + offset.row) ? shared : 0;
        if (multiplied > 0) {
            kernels::MultiplyGreys(source, b.Row(row + offset.row) + offset.col, static_cast<float>(divisor),
                                   out.Row(row), static_cast<std::size_t>(multiplied));
        }
        std::copy(source + multiplied, source + a.cols, out.Row(row) + multiplied);
    }
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqSubtractImage(TqImage** a, const TqImage* b) {
    const ConstImageView minuend = LocateHeld(a);
    if (!minuend) return kInvalidImage;
    const ConstImageView subtrahend = LocateImage(b);
    if (!subtrahend) return kInvalidOperand;

    Offset offset = StatedOffset(subtrahend);
    // Before the sign: hosts tell a dark image that is too small from a misplaced one by this order.
    if (!Covers(subtrahend, minuend, offset)) return kBadRowOffset;
    if (const std::int32_t status = AcceptOffset(offset); status != 0) return status;
    // An offset of -1 has let one column or row too few pass above.
    if (!Covers(subtrahend, minuend, offset)) return kBadRowOffset;

    return ReplaceImage(a, kNoMemory, [&] { return Subtract(minuend, subtrahend, offset); });
}

std::int32_t TQ_CALL tqMultiplyImages(TqImage** a, const TqImage* b, std::int32_t divisor) {
    const ConstImageView multiplicand = LocateHeld(a);
    if (!multiplicand) return kInvalidImage;
    const ConstImageView multiplier = LocateImage(b);
    if (!multiplier) return kInvalidOperand;
    Offset offset = StatedOffset(multiplier);
    if (const std::int32_t status = AcceptOffset(offset); status != 0) return status;
    return ReplaceImage(a, kNoMemory, [&] { return Multiply(multiplicand, multiplier, offset, divisor); });
}
