#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tq::kernels {

/// Counters that CountLevels needs for levels 0 .. levels - 1: those of all levels that a pel can have, or
/// four tables of fewer when those fit into the first-level cache.
std::size_t HistogramEntries(std::size_t levels) noexcept;

/// table[v] = number of pels of level v, for v < levels. `table` has HistogramEntries(levels) entries, all 0;
/// those behind the levels are working space. Larger pels, as of an image that another thread writes, count
/// somewhere in the table.
void CountLevels(const std::uint16_t* pels, std::size_t count, std::size_t levels,
                 std::span<std::uint32_t> table);

}  // namespace tq::kernels
