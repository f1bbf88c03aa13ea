#pragma once

#include <cstddef>
#include <cstdint>

#include "core/numerics.h"

namespace tq::kernels {

/// The smallest and largest result of a row.
struct ResultRange {
    std::int32_t low;
    std::int32_t high;
};

/// Results of the kernel
///     1 1 1 1 1 / 1 4 4 4 1 / 1 4 12 4 1 / 1 4 4 4 1 / 1 1 1 1 1
/// where all of it lies inside five rows of `cols` pels, 5 or more: cols - 4 of them. `columns` is working
/// memory for 2 * cols numbers.
ResultRange LowPassRow(const Pel* const rows[5], std::size_t cols, std::int32_t* columns,
                       std::int32_t* results);

/// scale * (result - low), truncated and clamped.
void ScaleResults(const std::int32_t* results, std::int32_t low, double scale, Pel* out, std::size_t count);

}  // namespace tq::kernels
