#include <algorithm>
#include <cstdint>
#include <optional>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "core/sensor_offset.h"
#include "tqimage/stray_light.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kInvalidCorrection = -3;
constexpr std::int32_t kBadColumnOffset = -7;
constexpr std::int32_t kBadRowOffset = -8;
constexpr std::int32_t kNoMemory = -9;

/// A correction pel of a sensor position that the calibration could not measure.
constexpr Pel kNoData = 65535;

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

struct SensorFrame {
    ConstImageView correction;
    SensorAxis cols;
    SensorAxis rows;

    /// For rows below rows.covered, and only where columns are covered at all.
    CorrectionRow Row(std::int32_t row) const noexcept {
        return {correction.Row(static_cast<std::int32_t>(rows.At(row))) + cols.At(0), cols.bin};
    }
};

/// Mean of the image's pels that have correction data; 0 when none has.
double MeanLevel(const ConstImageView& image, const SensorFrame& frame) noexcept {
    std::int64_t sum = 0;
    std::int64_t count = 0;
    for (std::int32_t row = 0; row < frame.rows.covered && frame.cols.covered > 0; ++row) {
        const Pel* pels = image.Row(row);
        const CorrectionRow correction = frame.Row(row);
        for (std::int32_t col = 0; col < frame.cols.covered; ++col) {
            const bool known = correction[col] != kNoData;
            sum += known ? pels[col] : 0;
            count += known;
        }
    }
    return count == 0 ? 0.0 : static_cast<double>(sum) / static_cast<double>(count);
}

/// Each step rounds to float once: cameras were accepted with this arithmetic. The stored pel is a signed
/// number, so values from 32768 on add light; a position without data only passes through the rounding.
Pel WithoutStrayLight(Pel pel, Pel stored, float luxPerGrey, double level) noexcept {
    const auto fraction = stored == kNoData ? std::int16_t{0} : static_cast<std::int16_t>(stored);
    const float scaled = static_cast<float>(fraction) * luxPerGrey;
    const auto stray = static_cast<float>(scaled * level);
    const auto value = static_cast<float>(static_cast<double>(pel) - stray + 0.5);
    // Before the conversion, in which what is beyond 32 bits would come out dark.
    if (value >= static_cast<float>(kLargestPel)) return kLargestPel;
    return ClampToPel(TruncToInt32(value));
}

OwnedImage RemoveStrayLight(const ConstImageView& image, const SensorFrame& frame) {
    OwnedImage result(image, NewPels::kUnwritten);
    const ImageView out = result.View();
    const double level = MeanLevel(image, frame);
    const float luxPerGrey = frame.correction.header->LuxPerGrey;
    for (std::int32_t row = 0; row < image.rows; ++row) {
        const Pel* pels = image.Row(row);
        const std::int32_t covered = row < frame.rows.covered ? frame.cols.covered : 0;
        if (covered > 0) {
            const CorrectionRow correction = frame.Row(row);
            for (std::int32_t col = 0; col < covered; ++col)
                out.At(col, row) = WithoutStrayLight(pels[col], correction[col], luxPerGrey, level);
        }
        std::copy(pels + covered, pels + image.cols, out.Row(row) + covered);
    }
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqApplyStrayLightCorrection(TqImage** image, const TqImage* correction) {
    const ConstImageView source = image == nullptr ? ConstImageView{} : LocateImage(*image);
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
    return Guarded(kNoMemory, [&] {
        CommitImage(image, RemoveStrayLight(source, frame));
        return 0;
    });
}
