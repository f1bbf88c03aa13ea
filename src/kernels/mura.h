#pragma once

#include <cstddef>
#include <cstdint>

/// Statistics of pels that carry a signed signal around a zero level.
namespace tq::kernels {

struct SquaresAndCount {
    std::uint64_t squares = 0;
    std::uint64_t count = 0;
};

/// Sum of (v - zero)^2 over the pels v that are at least `threshold` and differ from `zero`, and their count.
SquaresAndCount SumSquaredDeviations(const std::uint16_t* pels, std::size_t count, std::uint16_t zero,
                                     std::uint16_t threshold);

}  // namespace tq::kernels
