#pragma once

#include <array>
#include <optional>

namespace cli {

/// X, Y and Z.
using Tristimulus = std::array<double, 3>;
/// x and y, or u' and v'.
using Chromaticity = std::array<double, 2>;

/// x and y of CIE 1931; none without light.
std::optional<Chromaticity> ToXy(const Tristimulus& colour);
/// u' and v' of CIE 1976; none without light.
std::optional<Chromaticity> ToUv(const Tristimulus& colour);

/// The distance of two colours in the u'v' diagram.
double Distance(const Chromaticity& a, const Chromaticity& b);

/// The correlated colour temperature in kelvin by McCamy's formula; none outside 2000..12500 K, for which it
/// was made, and none for colours so far from white that they have no temperature.
std::optional<double> ColourTemperature(const Tristimulus& colour);

}  // namespace cli
