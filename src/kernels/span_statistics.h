#pragma once

#include <cstddef>
#include <cstdint>

/// Statistics of a run of pels, one call a run. Sums are exact integers, so their order does not matter.
namespace tq::kernels {

struct SumAndCount {
    std::uint64_t sum = 0;
    std::uint64_t count = 0;
};

struct SumAndMax {
    std::uint64_t sum = 0;
    std::uint16_t max = 0;
};

struct MinMax {
    std::uint16_t min = 65535;
    std::uint16_t max = 0;
};

/// Everything that one pass tells.
struct Totals {
    std::uint64_t sum = 0;
    std::uint64_t squares = 0;
    std::uint64_t nonZero = 0;
    MinMax extremes;
};

std::uint64_t SumPels(const std::uint16_t* pels, std::size_t count);

std::uint64_t SumBytes(const std::uint8_t* bytes, std::size_t count);

/// Of at most 2^32 pels: that many squares below 2^32 stay within 64 bits.
Totals FindTotals(const std::uint16_t* pels, std::size_t count);

/// Number of pels that are at least `threshold`.
std::uint64_t CountAtLeast(const std::uint16_t* pels, std::size_t count, std::uint16_t threshold);

/// Sum and count of the pels that are at least `threshold`.
SumAndCount SumAtLeast(const std::uint16_t* pels, std::size_t count, std::uint16_t threshold);

/// The sum of all pels and the largest one, {0, 0} for an empty run.
SumAndMax FindSumAndMax(const std::uint16_t* pels, std::size_t count);

/// {65535, 0} for an empty run.
MinMax FindMinMax(const std::uint16_t* pels, std::size_t count);

/// The smallest pel that is not 0; 0 when there is none.
std::uint16_t FindSmallestNonZero(const std::uint16_t* pels, std::size_t count);

}  // namespace tq::kernels
