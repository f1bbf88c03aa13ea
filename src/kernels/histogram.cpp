#include "kernels/histogram.h"

#include <cstring>

namespace tq::kernels {
namespace {

/// Four pels of a 64-bit word, wherever they stand in it: their order does not matter.
template <std::size_t kTables>
void Count(const std::uint16_t* pels, std::size_t count, std::size_t levels, std::uint32_t* tables) {
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        std::uint64_t word;
        std::memcpy(&word, pels + i, sizeof word);
        for (std::size_t part = 0; part < 4; ++part)
            ++tables[(part % kTables) * levels + (word >> (16 * part) & 0xFFFF)];
    }
    for (; i < count; ++i)
        ++tables[pels[i]];
    for (std::size_t table = 1; table < kTables; ++table) {
        for (std::size_t level = 0; level < levels; ++level)
            tables[level] += tables[table * levels + level];
    }
}

}  // namespace

void CountLevels(const std::uint16_t* pels, std::size_t count, std::size_t levels,
                 std::span<std::uint32_t> tables) {
    if (HistogramTables(levels) == 4) {
        Count<4>(pels, count, levels, tables.data());
    } else {
        Count<2>(pels, count, levels, tables.data());
    }
}

}  // namespace tq::kernels
