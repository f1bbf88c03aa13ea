#pragma once

#include <cstddef>
#include <cstdint>

/// Relative differences |t - r| / r of two runs of pels in lux, r from the first and t from the second. Found
/// twice, first for the largest and then for the pels, so that no plane of doubles is needed.
namespace tq::kernels {

struct LuxRuns {
    const std::uint16_t* reference;
    const std::uint16_t* test;
    std::size_t count;
    double referenceLux;  ///< lux of one grey level
    double testLux;
};

/// The largest difference of the runs and `largest`. What is not a number is not larger.
double LargestDifference(const LuxRuns& runs, double largest);

/// out[i] = difference / scale + 0.4999, truncated; the low 16 bits where that does not fit.
void ScaledDifferences(const LuxRuns& runs, double scale, std::uint16_t* out);

}  // namespace tq::kernels
