#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tq::kernels {

/// Tables that count side by side, so that equal pels in a row, as on flat areas, do not wait for each other.
/// With many levels more than two tables would leave the second-level cache.
constexpr std::size_t HistogramTables(std::size_t levels) noexcept {
    return levels <= 8192 ? 4 : 2;
}

/// tables[v] = number of pels of level v. `tables` has HistogramTables(levels) times `levels` entries, all 0;
/// those behind the first table are working space. Every pel is below `levels`.
void CountLevels(const std::uint16_t* pels, std::size_t count, std::size_t levels,
                 std::span<std::uint32_t> tables);

}  // namespace tq::kernels
