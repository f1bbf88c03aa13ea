#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/numerics.h"
#include "tqimage/base.h"

/// What every histogram equalisation shares: the number of grey levels, and the bin of a pel.
namespace tq {

/// Levels that a result has: those asked for, at most the values of a pel, or when none are asked for those
/// up to the MaxPelValue that the header says, at most 16384, the range of a 14-bit camera.
inline std::int32_t EqualisedLevels(std::int32_t asked, const TqImageHeader& header) noexcept {
    constexpr std::int32_t kMost = kLargestPel + 1;
    constexpr std::int64_t kMostFromHeader = 16384;
    if (asked >= 1) return std::min(asked, kMost);
    const std::int64_t stated = std::int64_t{TruncToInt32(static_cast<double>(header.MaxPelValue))} + 1;
    return static_cast<std::int32_t>(std::clamp(stated, std::int64_t{1}, kMostFromHeader));
}

/// Bins of equal width, 0..levels - 1, of which the last belongs to the largest pel. One entry a grey level
/// up to that pel, which is not 0.
inline std::vector<Pel> BinOfEachGrey(std::int32_t levels, Pel largest) {
    std::vector<Pel> bins(std::size_t{largest} + 1);
    for (std::size_t grey = 0; grey < bins.size(); ++grey) {
        const double scaled = static_cast<double>(grey) * (levels - 1) / largest;
        bins[grey] = static_cast<Pel>(TruncToInt32(scaled + 0.5));
    }
    return bins;
}

}  // namespace tq
