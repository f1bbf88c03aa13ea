#pragma once

#include <cstddef>
#include <cstdint>

/// Figures of the 3 x 3 neighbourhoods of a row, which its neighbours above and below complete.
namespace tq::kernels {

/// Largest sum of the neighbourhoods around columns 1 .. cols - 2; 0 when there are none. Nine pels stay
/// below 2^20.
std::uint32_t LargestNeighbourhoodSum(const std::uint16_t* above, const std::uint16_t* row,
                                      const std::uint16_t* below, std::size_t cols);

}  // namespace tq::kernels
