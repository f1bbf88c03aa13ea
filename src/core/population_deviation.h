#pragma once

#include <cmath>
#include <cstdint>

namespace tq {

/// sqrt((n * squares - sum^2) / n^2) of n integers from their exact sums, the quotient 0 / 0 for none. Taken
/// about the integer next to the mean, which leaves the numerator as it is and its terms small: nothing
/// cancels, and no rounding makes a variance negative. For whole images of pels all integers stay below 2^62.
inline double PopulationDeviation(std::int64_t n, std::int64_t sum, std::int64_t squares) noexcept {
    const std::int64_t pivot = n > 0 ? (sum + n / 2) / n : 0;
    const auto count = static_cast<double>(n);
    const auto shiftedSum = static_cast<double>(sum - n * pivot);
    const auto shiftedSquares = static_cast<double>(squares - 2 * pivot * sum + n * pivot * pivot);
    return std::sqrt((count * shiftedSquares - shiftedSum * shiftedSum) / (count * count));
}

}  // namespace tq
