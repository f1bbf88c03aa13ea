#include <cstdint>

#include "core/replaced_image.h"
#include "geometry/axis_places.h"
#include "tqimage/resampling.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNoMemory = -3;

/// Zoom and shift sample only between the first and the last pel, and nothing where the place is not a
/// number.
double PlaceWithin(double place, std::int32_t pels) noexcept {
    return place >= 0.0 && place <= pels - 1 ? place : kNoPlace;
}

/// The places of a zoom about the centre. Single precision throughout: results on record were made so.
AxisPlaces ZoomedAxis(std::int32_t pels, float centre, double scale) {
    const auto step = static_cast<float>(1.0 / scale);
    return MakeAxisPlaces(pels, pels, [=](std::int32_t i) {
        const float place = (static_cast<float>(i) - centre) * step + centre;
        return PlaceWithin(place, pels);
    });
}

AxisPlaces ShiftedAxis(std::int32_t pels, double shift) {
    return MakeAxisPlaces(pels, pels, [=](std::int32_t i) { return PlaceWithin(i - shift, pels); });
}

/// The header stays as it is, resolutions and centre included: hosts that zoom or shift a picture keep the
/// target co-ordinates of the one it was made from.
OwnedImage ResampleInFrame(const ConstImageView& source, const AxisPlaces& cols, const AxisPlaces& rows) {
    OwnedImage result(source, NewPels::kUnwritten);
    ResampleImage(source, cols, rows, PelRounding::kTruncate, result.View());
    return result;
}

}  // namespace

std::int32_t TQ_CALL tqScaleImage(TqImage** image, double scaleCols, double scaleRows) {
    return ReplaceImage(image, kInvalidImage, kNoMemory, [&](const ConstImageView& source) {
        const TqImageHeader& header = *source.header;
        return ResampleInFrame(source, ZoomedAxis(source.cols, header.CenterCol, scaleCols),
                               ZoomedAxis(source.rows, header.CenterRow, scaleRows));
    });
}

std::int32_t TQ_CALL tqShiftImage(TqImage** image, double shiftCols, double shiftRows) {
    return ReplaceImage(image, kInvalidImage, kNoMemory, [&](const ConstImageView& source) {
        return ResampleInFrame(source, ShiftedAxis(source.cols, shiftCols),
                               ShiftedAxis(source.rows, shiftRows));
    });
}
