#include "scene.h"

#include <cmath>

namespace cli {
namespace {

double Length(const std::array<double, 3>& v) {
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

}  // namespace

Scene::Scene(const Lamp& lamp, const Target& target) : lamp_(lamp), target_(target) {
    axis_ = {std::tan(lamp.tiltRight), std::tan(lamp.tiltUp), 1.0};
    const double length = Length(axis_);
    for (double& component : axis_)
        component /= length;
}

std::array<double, 3> Scene::Direction(double col, double row) const {
    // Up is against the row index.
    return {(col - target_.center[0]) / target_.pelsPerMeter[0],
            (target_.center[1] - row) / target_.pelsPerMeter[1], target_.distance};
}

double Scene::Intensity(double col, double row) const {
    const auto d = Direction(col, row);
    const double cosine = (d[0] * axis_[0] + d[1] * axis_[1] + d[2] * axis_[2]) / Length(d);
    return cosine > 0.0 ? lamp_.peakCandela * std::pow(cosine, lamp_.exponent) : 0.0;
}

double Scene::Illuminance(double col, double row) const {
    // Inverse square law, and the cosine of the incidence on a target that the axis meets square.
    const double range = Length(Direction(col, row));
    return Intensity(col, row) * (target_.distance / range) / (range * range);
}

double Scene::IntensityOf(double lux, double col, double row) const {
    const double range = Length(Direction(col, row));
    return lux * range * range * (range / target_.distance);
}

}  // namespace cli
