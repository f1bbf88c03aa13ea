#include "radial_lens.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "text.h"

namespace cli {

RadialLens::RadialLens(std::array<double, 3> coefficients, std::array<double, 2> center, std::int32_t cols,
                       std::int32_t rows)
    : k_(coefficients), center_(center), halfDiagonal_(0.5 * std::hypot(cols, rows)) {
    const double across = std::max(std::fabs(center[0]), std::fabs(cols - 1 - center[0]));
    const double down = std::max(std::fabs(center[1]), std::fabs(rows - 1 - center[1]));
    farthest_ = std::hypot(across, down) / halfDiagonal_;
}

std::array<double, 2> RadialLens::Captured(double col, double row) const {
    const double x = (col - center_[0]) / halfDiagonal_;
    const double y = (row - center_[1]) / halfDiagonal_;
    const double factor = Factor(x * x + y * y);
    return {center_[0] + halfDiagonal_ * x * factor, center_[1] + halfDiagonal_ * y * factor};
}

std::array<double, 2> RadialLens::Corrected(double col, double row) const {
    const double x = (col - center_[0]) / halfDiagonal_;
    const double y = (row - center_[1]) / halfDiagonal_;
    const double captured = std::hypot(x, y);
    if (captured == 0.0) return {col, row};
    double radius = captured;
    // Newton's method doubles the exact digits with each step once it is near, and lenses start it near: a
    // dozen steps are several more than the 53 bits need.
    for (int step = 0; step < 12; ++step) {
        const double q = radius * radius;
        const double correction = (radius * Factor(q) - captured) / Slope(q);
        radius -= correction;
        if (std::fabs(correction) < 1e-14) break;
    }
    const double scale = radius / captured;
    return {center_[0] + halfDiagonal_ * x * scale, center_[1] + halfDiagonal_ * y * scale};
}

bool RadialLens::IsMonotone(double leastCaptured) const {
    // The slope is a cubic in q, too smooth to turn between a thousand places. A lens that has not captured
    // the border at four times its distance never will.
    constexpr int kPlaces = 1000;
    for (int place = 0; place <= 4 * kPlaces; ++place) {
        const double radius = farthest_ * place / kPlaces;
        if (!(Slope(radius * radius) > 0.0)) return false;
        if (place >= kPlaces && radius * Factor(radius * radius) >= leastCaptured) return true;
    }
    return false;
}

std::array<double, 3> ParseRadialCoefficients(const std::string& text) {
    const auto values = ParseReals(text, 2, 3);
    if (!values) FailUsage("radial coefficients are k1,k2 or k1,k2,k3, not " + text);
    return {(*values)[0], (*values)[1], values->size() == 3 ? (*values)[2] : 0.0};
}

}  // namespace cli
