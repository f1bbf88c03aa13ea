#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "measure/polygon_scan.h"
#include "tqimage/automation.h"

namespace tq {

/// Codes of the members that measure inside a polygon.
inline constexpr std::int32_t kInvalidPolygonImage = -7;
inline constexpr std::int32_t kUnreadableVertex = -2;

/// The vertices of a host's array {0 column | 1 row, vertex}. Nothing when it has not two dimensions of
/// 4-byte integers or an element cannot be read. All are read once, before any pel: what a host does to its
/// array in the middle of a call cannot tear a measurement.
std::optional<std::vector<Vertex>> ReadVertices(SAFEARRAY** array);

}  // namespace tq
