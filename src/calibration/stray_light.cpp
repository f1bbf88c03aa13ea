#include <cstdint>

#include "calibration/sensor_frame.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/saturated_pel.h"
#include "tqimage/stray_light.h"

namespace tq {
namespace {

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
    return SaturatedPel(static_cast<double>(value));
}

OwnedImage RemoveStrayLight(const ConstImageView& image, const SensorFrame& frame) {
    const double level = MeanLevel(image, frame);
    const float luxPerGrey = frame.correction.header->LuxPerGrey;
    return CorrectRows(image, frame, [&](std::int32_t row, const Pel* pels, Pel* out) {
        const CorrectionRow correction = frame.Row(row);
        for (std::int32_t col = 0; col < frame.cols.covered; ++col)
            out[col] = WithoutStrayLight(pels[col], correction[col], luxPerGrey, level);
    });
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqApplyStrayLightCorrection(TqImage** image, const TqImage* correction) {
    return CorrectThroughSensor(image, correction, RemoveStrayLight);
}
