#pragma once

#include <cstddef>
#include <cstdint>

namespace tq::kernels {

/// Magnitudes of Sobel's gradient for columns 1 .. cols - 2 of a row: out[i] is the truncated single
/// precision root, capped at 65535. Returns the largest before the cap, 0 when there is none.
std::int32_t SobelRow(const std::uint16_t* above, const std::uint16_t* row, const std::uint16_t* below,
                      std::size_t cols, std::uint16_t* out);

}  // namespace tq::kernels
