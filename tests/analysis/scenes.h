#pragma once

#include <cmath>
#include <cstdint>
#include <random>

#include "images.h"

/// Scenes of known truth.
namespace tqtest {

inline constexpr double kPi = 3.141592653589793;

inline std::uint16_t ToPel(double grey) {
    return static_cast<std::uint16_t>(std::floor(grey + 0.5));
}

struct EdgeScene {
    double sigma = 1.0;    ///< Gaussian blur, pels
    double degrees = 5.0;  ///< from the columns, positive: moves right going down
    double dark = 5000.0;
    double bright = 45000.0;
    double noise = 0.0;  ///< uniform, standard deviation as a share of the step
    std::int32_t cols = 100;
    std::int32_t rows = 100;
    bool transposed = false;
};

/// Integral of the Gaussian distribution function with the deviation sigma, from -infinity to x.
inline double RampIntegral(double x, double sigma) {
    const double t = x / sigma;
    return sigma * (t * 0.5 * std::erfc(-t / std::sqrt(2.0)) + std::exp(-0.5 * t * t) / std::sqrt(2.0 * kPi));
}

/// A straight edge, blurred, and averaged over the square aperture of each pel: exactly along the columns,
/// with 16 samples along the rows.
inline Image MakeEdge(const EdgeScene& scene) {
    const double angle = scene.degrees * kPi / 180.0;
    const double cosine = std::cos(angle), sine = std::sin(angle);
    std::mt19937 engine(7);
    return MakeImage(scene.cols, scene.rows, [&](std::int32_t col, std::int32_t row) {
        const double across =
            (scene.transposed ? row : col) - 0.5 * ((scene.transposed ? scene.rows : scene.cols) - 1) + 0.2;
        const double along =
            (scene.transposed ? col : row) - 0.5 * ((scene.transposed ? scene.cols : scene.rows) - 1);
        double share = 0.0;
        for (int i = 0; i < 16; ++i) {
            const double y = along + (i + 0.5) / 16.0 - 0.5;
            const double center = across * cosine - y * sine;
            share += (RampIntegral(center + 0.5 * cosine, scene.sigma) -
                      RampIntegral(center - 0.5 * cosine, scene.sigma)) /
                     cosine / 16.0;
        }
        const double uniform = (static_cast<double>(engine()) / 4294967296.0 - 0.5) * std::sqrt(12.0);
        return ToPel(scene.dark + (scene.bright - scene.dark) * (share + scene.noise * uniform));
    });
}

/// What that scene's modulation is along the normal of the edge.
inline double EdgeModulation(const EdgeScene& scene, double frequency) {
    const double angle = scene.degrees * kPi / 180.0;
    const auto sinc = [](double x) { return x == 0.0 ? 1.0 : std::sin(x) / x; };
    const double gauss = std::exp(-2.0 * std::pow(kPi * scene.sigma * frequency, 2));
    return gauss * sinc(kPi * frequency * std::cos(angle)) * sinc(kPi * frequency * std::sin(angle));
}

}  // namespace tqtest
