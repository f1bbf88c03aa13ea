#pragma once

#include <cstddef>
#include <cstdint>

/// Medians of 3 x 3 and 5 x 5 windows by exchanges of whole vectors. What the windows of neighbouring pels
/// have in common, their columns in order, is found once.
namespace tq::kernels {

/// out[i] = median of the three rows' pels i .. i + 2, for i below cols - 2.
void Median3Row(const std::uint16_t* const rows[3], std::size_t cols, std::uint16_t* out);

/// out[i] = median of the five rows' pels i .. i + 4, for i below cols - 4.
void Median5Row(const std::uint16_t* const rows[5], std::size_t cols, std::uint16_t* out);

}  // namespace tq::kernels
