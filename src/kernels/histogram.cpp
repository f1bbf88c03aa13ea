#include "kernels/histogram.h"

#include <bit>
#include <cstring>

#include "core/numerics.h"

namespace tq::kernels {
namespace {

// A counter that is needed again at once waits for itself. Dark images have few levels and suffer most; there
// neighbouring pels count in different tables. With more levels several tables would fall out of the caches,
// but equal neighbours then mean a saturated or uniform area, and four of them are counted together.
constexpr std::size_t kTables = 4;
constexpr std::size_t kMostLevelsForTables = 2048;

/// Distance of two tables. Processors confuse addresses that agree in their last 12 bits, so tables must not
/// lie multiples of 4096 bytes apart: 64 bytes more.
constexpr std::size_t Stride(std::size_t levels) noexcept {
    return (levels + 1023) / 1024 * 1024 + 16;
}

/// The smallest mask that lets all levels pass, below every stride. It costs nothing where it takes the place
/// of the 16 bits of a pel, and holds a pel that grew since the largest was looked for.
constexpr std::size_t Mask(std::size_t levels) noexcept {
    return levels <= kMostLevelsForTables ? std::bit_ceil(levels) - 1 : 0xFFFF;
}

/// Four pels; their order within the word does not matter.
std::uint64_t LoadWord(const std::uint16_t* pels) noexcept {
    std::uint64_t word;
    std::memcpy(&word, pels, sizeof word);
    return word;
}

constexpr std::size_t Pel(std::uint64_t word, unsigned part, std::size_t mask = 0xFFFF) noexcept {
    return static_cast<std::size_t>(word >> (16 * part)) & mask;
}

std::size_t CountInTables(const std::uint16_t* pels, std::size_t count, std::size_t levels,
                          std::uint32_t* tables) noexcept {
    const std::size_t stride = Stride(levels), mask = Mask(levels);
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const std::uint64_t word = LoadWord(pels + i);
        for (unsigned part = 0; part < kTables; ++part)
            ++tables[part * stride + Pel(word, part, mask)];
    }
    for (std::size_t part = 1; part < kTables; ++part) {
        for (std::size_t level = 0; level < levels; ++level)
            tables[level] += tables[part * stride + level];
    }
    return i;
}

std::size_t CountRuns(const std::uint16_t* pels, std::size_t count, std::uint32_t* table) noexcept {
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const std::uint64_t word = LoadWord(pels + i);
        if (word == (word << 16 | word >> 48)) {
            table[Pel(word, 0)] += 4;
            continue;
        }
        for (unsigned part = 0; part < 4; ++part)
            ++table[Pel(word, part)];
    }
    return i;
}

}  // namespace

std::size_t HistogramEntries(std::size_t levels) noexcept {
    return levels <= kMostLevelsForTables ? kTables * Stride(levels) : kGreyLevels;
}

void CountLevels(const std::uint16_t* pels, std::size_t count, std::size_t levels,
                 std::span<std::uint32_t> table) {
    std::size_t i = levels <= kMostLevelsForTables ? CountInTables(pels, count, levels, table.data())
                                                   : CountRuns(pels, count, table.data());
    for (; i < count; ++i)
        ++table[pels[i] & Mask(levels)];
}

}  // namespace tq::kernels
