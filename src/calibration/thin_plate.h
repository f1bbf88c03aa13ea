#pragma once

#include <span>
#include <vector>

#include "calibration/surface_points.h"

namespace tq {

/// Weights w, free of any linear trend, with which sum w d^2 ln(d^2) over the points takes the given values
/// at the points but for a linear trend.
std::vector<double> ThinPlateWeights(const SurfacePoints& points, std::span<const double> values);

/// The same by iteration, for more points than a matrix of all their pairs allows.
std::vector<double> ThinPlateWeightsOfMany(const SurfacePoints& points, std::span<const double> values);

/// The matrix of d^2 ln(d^2) of all pairs.
std::vector<double> LogRadialMatrix(const kernels::Places& points);

/// Sums of d^2 ln(d^2) with these weights at the points themselves, with the host's messages dispatched.
std::vector<double> LogRadialSumsAtPoints(const SurfacePoints& points, std::span<const double> weights);

}  // namespace tq
