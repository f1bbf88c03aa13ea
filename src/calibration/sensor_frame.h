#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "core/sensor_offset.h"
#include "kernels/signed_factors.h"

namespace tq {

/// A correction pel of a sensor position that the calibration could not measure.
inline constexpr Pel kNoData = kernels::kNoFactor;

/// One axis of the image in the correction image: pel i lies at bin * (offset + i), and the first `covered`
/// pels lie inside.
struct SensorAxis {
    std::int64_t offset;
    std::int64_t bin;
    std::int32_t covered;

    SensorAxis(std::int32_t firstPel, std::int16_t binning, std::int32_t imageSize,
               std::int32_t sensorSize) noexcept
        : offset(firstPel), bin(binning), covered(0) {
        // Only position 0 of a negative binning factor lies inside; 0 itself has no offset.
        const std::int64_t last = bin > 0 ? (sensorSize - 1) / bin : 0;
        covered = static_cast<std::int32_t>(
            std::clamp(last - offset + 1, std::int64_t{0}, static_cast<std::int64_t>(imageSize)));
    }
    std::int64_t At(std::int32_t pel) const noexcept { return bin * (offset + pel); }
};

/// The correction pels of one row of the image.
struct CorrectionRow {
    const Pel* first;
    std::int64_t step;

    Pel operator[](std::int32_t pel) const noexcept { return first[pel * step]; }
};

/// Where an image, which may be binned and cut, lies in a correction image of the whole sensor.
struct SensorFrame {
    ConstImageView correction;
    SensorAxis cols;
    SensorAxis rows;

    /// For rows below rows.covered, and only where columns are covered at all.
    CorrectionRow Row(std::int32_t row) const noexcept {
        return {correction.Row(static_cast<std::int32_t>(rows.At(row))) + cols.At(0), cols.bin};
    }
};

/// The image with the pels that lie on the correction image made by correctRow(row, its pels, where they go);
/// the others stay.
template <class CorrectRow>
OwnedImage CorrectRows(const ConstImageView& image, const SensorFrame& frame, CorrectRow&& correctRow) {
    OwnedImage result(image, NewPels::kUnwritten);
    const ImageView out = result.View();
    for (std::int32_t row = 0; row < image.rows; ++row) {
        const Pel* pels = image.Row(row);
        const std::int32_t covered = row < frame.rows.covered ? frame.cols.covered : 0;
        if (covered > 0) correctRow(row, pels, out.Row(row));
        std::copy(pels + covered, pels + image.cols, out.Row(row) + covered);
    }
    return result;
}

/// What every correction by an image of the whole sensor does around its arithmetic: validates and places the
/// two images and replaces the host's block by correct(image, frame) when that is complete.
template <class Correct>
std::int32_t CorrectThroughSensor(TqImage** image, const TqImage* correction, Correct&& correct) noexcept {
    constexpr std::int32_t kInvalidImage = -2;
    constexpr std::int32_t kInvalidCorrection = -3;
    constexpr std::int32_t kBadColumnOffset = -7;
    constexpr std::int32_t kBadRowOffset = -8;
    constexpr std::int32_t kNoMemory = -9;

    const ConstImageView source = LocateHeld(image);
    if (!source) return kInvalidImage;
    const ConstImageView sensor = LocateImage(correction);
    if (!sensor) return kInvalidCorrection;

    const TqImageHeader& header = *source.header;
    const auto col = SensorOffset(sensor.header->CenterCol, header.CenterCol, header.BinCols);
    if (!col) return kBadColumnOffset;
    const auto row = SensorOffset(sensor.header->CenterRow, header.CenterRow, header.BinRows);
    if (!row) return kBadRowOffset;
    const SensorFrame frame{sensor,
                            {*col, header.BinCols, source.cols, sensor.cols},
                            {*row, header.BinRows, source.rows, sensor.rows}};
    return ReplaceImage(image, kNoMemory, [&] { return std::forward<Correct>(correct)(source, frame); });
}

}  // namespace tq
