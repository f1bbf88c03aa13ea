#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

#include "core/numerics.h"

namespace tq {

/// Where an image lies in a larger one. Nothing below -1; -1 counts as 0: centres of cut images are rounded,
/// and their difference may fall just short of the first pel.
inline std::optional<std::int32_t> AcceptedOffset(std::int32_t offset) noexcept {
    if (offset < -1) return std::nullopt;
    return std::max(offset, 0);
}

/// Where the first pel of an image lies, along one axis and in pels of the image, in something recorded once
/// for the whole sensor: a map, a correction image. Nothing, too, where the centres or a binning factor of 0
/// give no number.
inline std::optional<std::int32_t> SensorOffset(float sensorCenter, float imageCenter,
                                                std::int16_t bin) noexcept {
    return AcceptedOffset(TruncToInt32(static_cast<double>(sensorCenter) / bin - imageCenter));
}

}  // namespace tq
