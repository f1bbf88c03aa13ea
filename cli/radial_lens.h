#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace cli {

/// A lens that moves every point along its radius. With (x, y) the offset of a corrected pel from the centre
/// in units of the half diagonal, sqrt(cols^2 + rows^2) / 2, and q = x^2 + y^2, the pel is found in the
/// captured image at
///     centre + half diagonal * (x, y) * (1 + k1 q + k2 q^2 + k3 q^3).
/// All of it in pels of the full, unbinned sensor.
class RadialLens {
  public:
    RadialLens(std::array<double, 3> coefficients, std::array<double, 2> center, std::int32_t cols,
               std::int32_t rows);

    /// Where the captured image shows the corrected position.
    std::array<double, 2> Captured(double col, double row) const;
    /// The corrected position that is captured here; the inverse of Captured.
    std::array<double, 2> Corrected(double col, double row) const;

    /// True when no two pels of the corrected image are captured at one place.
    bool IsMonotone() const { return IsMonotone(0.0); }
    /// True when moreover every pel of the captured image has a place in the scene.
    bool IsInvertible() const { return IsMonotone(farthest_); }

  private:
    bool IsMonotone(double leastCaptured) const;
    double Factor(double q) const { return 1.0 + q * (k_[0] + q * (k_[1] + q * k_[2])); }
    double Slope(double q) const { return 1.0 + q * (3.0 * k_[0] + q * (5.0 * k_[1] + q * 7.0 * k_[2])); }

    std::array<double, 3> k_;
    std::array<double, 2> center_;
    double halfDiagonal_;
    double farthest_;  ///< largest radius of a pel, in half diagonals
};

/// k1,k2[,k3]; anything else is a usage error.
std::array<double, 3> ParseRadialCoefficients(const std::string& text);

}  // namespace cli
