#include <algorithm>
#include <cstdint>

#include "core/numerics.h"
#include "core/replaced_image.h"
#include "geometry/axis_places.h"
#include "geometry/sized_image.h"
#include "tqimage/resampling.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kFactorTooLarge = -3;
constexpr std::int32_t kNoMemory = -4;

/// First pel on first pel, last on last.
AxisPlaces StretchedAxis(std::int32_t count, std::int32_t pels) {
    const double step = count == 1 ? 0.0 : static_cast<double>(pels - 1) / (count - 1);
    return MakeAxisPlaces(count, pels, [=](std::int32_t i) { return i * step; });
}

void StretchPels(const ConstImageView& source, const ImageView& out) {
    ResampleImage(source, StretchedAxis(out.cols, source.cols), StretchedAxis(out.rows, source.rows),
                  PelRounding::kNearest, out);
}

float Rounded(double value) noexcept {
    return static_cast<float>(value);
}

/// How many old pels go into a new one; this replaces the binning factor, as if the sensor had been read out
/// at the new size.
std::int16_t WholePelsPerPel(std::int32_t oldPels, std::int32_t newPels) noexcept {
    return static_cast<std::int16_t>(std::max(1, oldPels / newPels));
}

OwnedImage ResizeToWidth(const ConstImageView& source, std::int32_t newCols) {
    const TqImageHeader& old = *source.header;
    // A width below 1 has no height; MakeSized refuses it together with sizes too large.
    const double exactRows = static_cast<double>(source.rows) * newCols / source.cols;
    const std::int32_t newRows = std::max(TruncToInt32(exactRows + 0.5), 1);
    OwnedImage result = MakeSized(source, newCols, newRows, NewPels::kUnwritten);

    TqImageHeader& header = result.Header();
    const double width = newCols;
    header.CenterCol = Rounded((width - 1.0) * old.CenterCol / (source.cols - 1));
    // The exact height, not the rounded one: hosts carry positions from size to size with this factor.
    header.CenterRow = Rounded((exactRows - 1.0) * old.CenterRow / (source.rows - 1));
    header.PelsPerMeterX = Rounded(width * old.PelsPerMeterX / source.cols);
    const std::int32_t wholeRows = source.rows * newCols / source.cols;
    header.PelsPerMeterY = Rounded(static_cast<double>(wholeRows) * old.PelsPerMeterY / source.rows);
    header.BinCols = WholePelsPerPel(source.cols, newCols);
    header.BinRows = WholePelsPerPel(source.rows, newRows);
    StretchPels(source, result.View());
    return result;
}

/// One axis of an expansion, from the image's binning factor to a finer one.
struct Expansion {
    std::int32_t from;
    std::int32_t to;

    std::int64_t Pels(std::int32_t pels) const noexcept {
        return static_cast<std::int64_t>(pels) * from / to;
    }
    float Scaled(float value) const noexcept { return Rounded(static_cast<double>(from) * value / to); }
};

OwnedImage Expand(const ConstImageView& source, const Expansion& cols, const Expansion& rows) {
    OwnedImage result =
        MakeSized(source, cols.Pels(source.cols), rows.Pels(source.rows), NewPels::kUnwritten);
    TqImageHeader& header = result.Header();
    header.CenterCol = cols.Scaled(header.CenterCol);
    header.CenterRow = rows.Scaled(header.CenterRow);
    header.PelsPerMeterX = cols.Scaled(header.PelsPerMeterX);
    header.PelsPerMeterY = rows.Scaled(header.PelsPerMeterY);
    // The total grows with the number of pels while the grey level stays that of the binned image.
    header.TotalPelValue *= (cols.from / cols.to) * (rows.from / rows.to);
    header.BinCols = static_cast<std::int16_t>(cols.to);
    header.BinRows = static_cast<std::int16_t>(rows.to);
    StretchPels(source, result.View());
    return result;
}

}  // namespace

std::int32_t TQ_CALL tqSizeImage(TqImage** image, std::int32_t newCols) {
    return ReplaceImage(image, kInvalidImage, kNoMemory,
                        [&](const ConstImageView& source) { return ResizeToWidth(source, newCols); });
}

std::int32_t TQ_CALL tqUnBinImage(TqImage** image, std::int32_t binCols, std::int32_t binRows) {
    const ConstImageView binned = LocateHeld(image);
    if (!binned) return kInvalidImage;
    const Expansion cols{binned.header->BinCols, std::max(binCols, 1)};
    const Expansion rows{binned.header->BinRows, std::max(binRows, 1)};
    // Also an image whose own factor is below 1: no factor is finer than that.
    if (cols.to > cols.from || rows.to > rows.from) return kFactorTooLarge;
    return ReplaceImage(image, kNoMemory, [&] { return Expand(binned, cols, rows); });
}
