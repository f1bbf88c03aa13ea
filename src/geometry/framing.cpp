#include "tqimage/framing.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "core/rectangle.h"
#include "core/replaced_image.h"
#include "geometry/sized_image.h"

using namespace tq;

namespace {

constexpr std::int32_t kRefused = -1;

/// Two indices of an axis in either order, each moved into lowest .. highest.
struct Extent {
    std::int32_t first;
    std::int32_t last;
};

Extent ClampedExtent(std::int64_t a, std::int64_t b, std::int32_t lowest, std::int32_t highest) noexcept {
    const auto clamped = [=](std::int64_t at) {
        return static_cast<std::int32_t>(std::clamp<std::int64_t>(at, lowest, highest));
    };
    return {clamped(std::min(a, b)), clamped(std::max(a, b))};
}

/// The pels of a rectangle inside the image; the header's centre moves with them.
OwnedImage Crop(const ConstImageView& source, const Rect& kept) {
    OwnedImage result = MakeSized(source, kept.Width(), kept.Height(), NewPels::kUnwritten);
    TqImageHeader& header = result.Header();
    header.CenterCol = static_cast<float>(static_cast<double>(header.CenterCol) - kept.left);
    header.CenterRow = static_cast<float>(static_cast<double>(header.CenterRow) - kept.top);
    const ImageView out = result.View();
    for (std::int32_t row = 0; row < out.rows; ++row)
        std::copy_n(source.Row(kept.top + row) + kept.left, out.cols, out.Row(row));
    return result;
}

/// In two steps, as hosts with 1-based corners repeat it: a centre of less than 2^-29 pels becomes 0.
float OneBasedCentre(float centre, std::int32_t first) noexcept {
    return static_cast<float>((static_cast<double>(centre) - (first + 1)) + 1.0);
}

/// Corners in 0-based pels, in 64 bits so that 1-based ones may have any value.
std::int32_t CropInPlace(TqImage** image, std::int64_t col1, std::int64_t row1, std::int64_t col2,
                         std::int64_t row2) {
    return ReplaceImage(image, kRefused, kRefused, [&](const ConstImageView& source) {
        Extent cols = ClampedExtent(col1, col2, 0, source.cols - 1);
        Extent rows = ClampedExtent(row1, row2, 0, source.rows - 1);
        // A rectangle without extent is a click, not a frame: hosts get the first 2 x 2 pels and see by the
        // size that nothing was cut.
        if (cols.first == cols.last || rows.first == rows.last) {
            cols = {0, std::min(1, source.cols - 1)};
            rows = {0, std::min(1, source.rows - 1)};
        }
        OwnedImage result = Crop(source, {cols.first, rows.first, cols.last, rows.last});
        result.Header().CenterCol = OneBasedCentre(source.header->CenterCol, cols.first);
        result.Header().CenterRow = OneBasedCentre(source.header->CenterRow, rows.first);
        return result;
    });
}

/// The frame of the functions with an output of their own. When there is no memory the block that the output
/// held is gone all the same, unless it is the input itself.
template <class Make>
std::int32_t MakeFrom(TqImage** out, const TqImage* in, Make&& make) {
    const ConstImageView source = LocateImage(in);
    if (out == nullptr || !source) return kRefused;
    const std::int32_t status = Guarded(kRefused, [&] {
        CommitImage(out, make(source));
        return 0;
    });
    if (status != 0 && *out != in) FreeHostBlock(out);
    return status;
}

/// One axis of an image set into a frame: the frame's pels and the run of source pels in it.
struct FramedAxis {
    std::int64_t pels;
    std::int64_t first;   ///< of the frame's pels that show the source
    std::int64_t count;   ///< 0 or less when nothing shows
    std::int64_t source;  ///< source pel at `first`
    float centre;

    /// The centre's pel comes to lie on `at`. Of the source it shows what the whole pels before and after
    /// the centre cover, so with a broken centre the last pel is left out.
    FramedAxis(std::int32_t at, std::int32_t after, float oldCentre, std::int32_t sourcePels) noexcept
        : pels(static_cast<std::int64_t>(at) + 1 + after) {
        const std::int64_t before = TruncToInt32(oldCentre);
        const std::int64_t rest = TruncToInt32(static_cast<double>(sourcePels) - oldCentre);
        first = std::max<std::int64_t>(at - before, 0);
        source = first - at + before;
        count = std::min({at + rest, pels, first + sourcePels - source}) - first;
        centre = static_cast<float>(std::fmod(static_cast<double>(oldCentre), 1.0) + at);
    }
};

OwnedImage SetIntoFrame(const ConstImageView& source, const FramedAxis& cols, const FramedAxis& rows) {
    OwnedImage result = MakeSized(source, cols.pels, rows.pels, NewPels::kZero);
    result.Header().CenterCol = cols.centre;
    result.Header().CenterRow = rows.centre;
    const ImageView out = result.View();
    if (cols.count <= 0) return result;
    for (std::int64_t i = 0; i < rows.count; ++i) {
        const Pel* pels = source.Row(static_cast<std::int32_t>(rows.source + i)) + cols.source;
        std::copy_n(pels, cols.count, out.Row(static_cast<std::int32_t>(rows.first + i)) + cols.first);
    }
    return result;
}

}  // namespace

std::int32_t TQ_CALL tqFrameUpImg(TqImage** image, std::int32_t col1, std::int32_t row1, std::int32_t col2,
                                  std::int32_t row2) {
    const auto zeroBased = [](std::int32_t at) { return static_cast<std::int64_t>(at) - 1; };
    return CropInPlace(image, zeroBased(col1), zeroBased(row1), zeroBased(col2), zeroBased(row2));
}

std::int32_t TQ_CALL tqFrameUpImg0(TqImage** image, std::int32_t col1, std::int32_t row1, std::int32_t col2,
                                   std::int32_t row2) {
    return CropInPlace(image, col1, row1, col2, row2);
}

std::int32_t TQ_CALL tqFrameUpImg2(TqImage** out, const TqImage* in, std::int32_t col1, std::int32_t row1,
                                   std::int32_t col2, std::int32_t row2) {
    return MakeFrom(out, in, [&](const ConstImageView& source) {
        const Extent cols = ClampedExtent(col1, col2, 0, source.cols - 1);
        const Extent rows = ClampedExtent(row1, row2, 0, source.rows - 1);
        return Crop(source, {cols.first, rows.first, cols.last, rows.last});
    });
}

std::int32_t TQ_CALL tqFrameOutImg0(TqImage** out, const TqImage* in, std::int32_t col, std::int32_t row,
                                    std::int32_t colsAfter, std::int32_t rowsAfter) {
    return MakeFrom(out, in, [&](const ConstImageView& source) {
        const TqImageHeader& header = *source.header;
        return SetIntoFrame(source, FramedAxis(col, colsAfter, header.CenterCol, source.cols),
                            FramedAxis(row, rowsAfter, header.CenterRow, source.rows));
    });
}
