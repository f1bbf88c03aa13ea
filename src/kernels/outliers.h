#pragma once

#include <cstddef>
#include <cstdint>

#include "core/numerics.h"

namespace tq::kernels {

/// What makes a pel stand out from the mean of its surroundings. A factor that is not a number never does.
struct OutlierTest {
    double brightFactor;      ///< bright above brightFactor * mean
    double darkFactor;        ///< else dark below darkFactor * mean
    double leastPel = 0.0;    ///< pels below this one are not tested
    double leastCount = 0.0;  ///< nor are pels whose mean is taken over fewer pels
};

struct OutlierCounts {
    std::uint64_t bright = 0;
    std::uint64_t dark = 0;
};

/// out[i] = pels[i] where that stands out from the mean sums[i] / counts[i], else 0. Sums and counts are
/// integers, a sum at most 2^53 and a count at most 2^26; a pel is tested only where its count is not 0.
OutlierCounts KeepOutliers(const Pel* pels, const double* sums, const double* counts, std::size_t count,
                           const OutlierTest& test, Pel* out);

}  // namespace tq::kernels
