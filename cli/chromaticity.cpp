#include "chromaticity.h"

#include <cmath>

namespace cli {
namespace {

/// The colour of the black body of a temperature in the u'v' diagram: the rational approximation of Krystek
/// (1985), to a few units of the fifth digit.
Chromaticity BlackBody(double kelvin) {
    const double u = (0.860117757 + 1.54118254e-4 * kelvin + 1.28641212e-7 * kelvin * kelvin) /
                     (1.0 + 8.42420235e-4 * kelvin + 7.08145163e-7 * kelvin * kelvin);
    const double v = (0.317398726 + 4.22806245e-5 * kelvin + 4.20481691e-8 * kelvin * kelvin) /
                     (1.0 - 2.89741816e-5 * kelvin + 1.61456053e-7 * kelvin * kelvin);
    return {u, 1.5 * v};  // v is that of 1960
}

}  // namespace

std::optional<Chromaticity> ToXy(const Tristimulus& colour) {
    const double sum = colour[0] + colour[1] + colour[2];
    if (!(sum > 0.0)) return std::nullopt;
    return Chromaticity{colour[0] / sum, colour[1] / sum};
}

std::optional<Chromaticity> ToUv(const Tristimulus& colour) {
    const double sum = colour[0] + 15.0 * colour[1] + 3.0 * colour[2];
    if (!(sum > 0.0)) return std::nullopt;
    return Chromaticity{4.0 * colour[0] / sum, 9.0 * colour[1] / sum};
}

double Distance(const Chromaticity& a, const Chromaticity& b) {
    return std::hypot(a[0] - b[0], a[1] - b[1]);
}

std::optional<double> ColourTemperature(const Tristimulus& colour) {
    const auto xy = ToXy(colour);
    const auto uv = ToUv(colour);
    if (!xy || !uv) return std::nullopt;
    const double n = ((*xy)[0] - 0.3320) / ((*xy)[1] - 0.1858);
    const double kelvin = ((-449.0 * n + 3525.0) * n - 6823.3) * n + 5520.33;
    if (!(kelvin >= 2000.0 && kelvin <= 12500.0)) return std::nullopt;
    // The CIE gives no temperature to what is further from the black body.
    constexpr double kFarthest = 0.05;
    if (Distance(*uv, BlackBody(kelvin)) > kFarthest) return std::nullopt;
    return kelvin;
}

}  // namespace cli
