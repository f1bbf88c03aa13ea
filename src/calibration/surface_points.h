#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "kernels/radial_sums.h"

namespace tq {

/// A value measured at a place of the sensor, in pels, as hosts hand it over.
struct CalibrationPoint {
    float col;
    float row;
    float value;
};

/// Pels in the co-ordinates of the surfaces, in which the points fill -1..1 along their longer side: sums of
/// powers are then of the order of 1 whatever the sensor's size.
struct SurfaceFrame {
    double centerCol = 0.0;
    double centerRow = 0.0;
    double scale = 1.0;

    double X(double col) const noexcept { return (col - centerCol) * scale; }
    double Y(double row) const noexcept { return (row - centerRow) * scale; }
};

/// The points that a surface is to pass through: no two at the same place, none that is not finite, in the
/// order of rows and then columns.
struct SurfacePoints {
    SurfaceFrame frame;
    /// Every place is a whole number, below 2^24, of these: 1/1024 pel on any sensor. Questions of geometry
    /// then have exact answers, and no two places are so close that they could not be told apart.
    double quantum = 1.0;
    std::vector<double> col;
    std::vector<double> row;
    /// The same in the co-ordinates of the frame.
    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> value;

    std::size_t Count() const noexcept { return col.size(); }
    double LargestValue() const noexcept;
    kernels::Centers Weighted(std::span<const double> weights) const noexcept {
        return {x.data(), y.data(), weights.data(), x.size()};
    }
    kernels::Places Places() const noexcept { return {x.data(), y.data(), x.size()}; }
};

/// Rounds the places; points that then share one count as one with their mean value.
SurfacePoints PrepareSurfacePoints(std::vector<CalibrationPoint> points);

}  // namespace tq
