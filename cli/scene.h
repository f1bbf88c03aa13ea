#pragma once

#include <array>
#include <cstdint>

namespace cli {

/// A lamp whose candela distribution is known: peak * cos^exponent of the angle to the lamp's own axis, which
/// is tilted out of the optical axis to the right and upward. Nothing shines backward.
struct Lamp {
    double peakCandela = 1000.0;
    double exponent = 2.0;
    double tiltRight = 0.0;  ///< radians
    double tiltUp = 0.0;     ///< radians
};

/// A flat target square to the optical axis, with the image that an ideal camera has of it.
struct Target {
    std::int32_t cols = 0;
    std::int32_t rows = 0;
    std::array<double, 2> pelsPerMeter{};
    std::array<double, 2> center{};
    double distance = 0.0;  ///< metres, lamp to target along the axis
};

/// The lamp on the target. Positions are pels of the ideal image and may lie between pels.
class Scene {
  public:
    Scene(const Lamp& lamp, const Target& target);

    /// Candela that the lamp sends toward the position.
    double Intensity(double col, double row) const;
    /// Lux on the target there.
    double Illuminance(double col, double row) const;
    /// Candela that this illuminance at the position stands for.
    double IntensityOf(double lux, double col, double row) const;

    double SquareMetresPerPel() const { return 1.0 / (target_.pelsPerMeter[0] * target_.pelsPerMeter[1]); }
    const Target& GetTarget() const { return target_; }

  private:
    std::array<double, 3> Direction(double col, double row) const;

    Lamp lamp_;
    Target target_;
    std::array<double, 3> axis_;  ///< unit vector: right, up, toward the target
};

}  // namespace cli
