#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "json_file.h"
#include "region_argument.h"
#include "scene.h"
#include "sensor.h"

namespace cli {

/// The true figures of one region, found by integrating the lamp's formula over it, and how far the capture's
/// noise and the extent of the measuring spot may move a measured one.
Json RegionTruth(const Scene& scene, const Sensor& sensor, const Region& region,
                 std::array<std::int32_t, 2> spot);

}  // namespace cli
