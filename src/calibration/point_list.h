#pragma once

#include <cstdint>
#include <vector>

#include "calibration/surface_points.h"
#include "platform/automation.h"

namespace tq {

inline constexpr std::int32_t kListNotTwoDimensional = 1;
inline constexpr std::int32_t kListOfAnotherType = 2;
inline constexpr std::int32_t kListNotThreeFields = 3;
inline constexpr std::int32_t kListElementUnreadable = 4;

/// 0, or why the array is no list of points.
std::int32_t CheckPointList(const SAFEARRAY* list) noexcept;

/// Reads every point of a checked list; 0 or kListElementUnreadable.
std::int32_t ReadPointList(SAFEARRAY* list, std::vector<CalibrationPoint>& points);

}  // namespace tq
