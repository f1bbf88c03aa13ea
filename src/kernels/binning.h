#pragma once

#include <cstddef>
#include <cstdint>

#include "core/numerics.h"

/// Sums and means of the pels that are binned together.
namespace tq::kernels {

/// Pels of rows that lie `stride` apart.
struct PelRows {
    const Pel* first;
    std::ptrdiff_t stride;
    std::size_t rows;
};

/// sums[i] = the sum over all rows of pel i. At most 65537 rows, so that nothing wraps.
void SumColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums);

/// sums[i] = the sum over all rows of pels 2 i and 2 i + 1. At most 32768 rows.
void SumPairsOfColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums);

/// The same, and counts[i] = how many of those pels are not 0.
void SumLitColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums, std::uint32_t* counts);
void SumLitPairsOfColumns(const PelRows& pels, std::size_t count, std::uint32_t* sums, std::uint32_t* counts);

/// out[i] = the truncated mean of pels 2 i and 2 i + 1 of two rows: the bins of 2 x 2, made as fast as memory
/// gives the pels, without sums in between.
void MeansOfFour(const Pel* upper, const Pel* lower, std::size_t count, Pel* out);

/// Bins of up to so many pels have sums below 2^31.
inline constexpr std::int32_t kPelsBelow31Bits = 32768;

/// out[i] = low 16 bits of sums[i] / pels, truncated, where a sum counts as a signed number.
void TruncatedMeans(const std::uint32_t* sums, std::size_t count, std::int32_t pels, Pel* out);

/// out[i] = sums[i] / counts[i] in single precision, truncated; 0 for a count of 0. For sums below 2^31.
void LitMeans(const std::uint32_t* sums, const std::uint32_t* counts, std::size_t count, Pel* out);

}  // namespace tq::kernels
