#include "patterns/positions.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "core/numerics.h"

namespace tq {

Positions SteppedPositions(std::int32_t first, std::int32_t step, std::int32_t count, std::int32_t pels) {
    const std::int64_t last = std::max<std::int64_t>(count, 2) - 1;
    // In 64 bits neither end can overflow: it stays below 2^62 + 2^31.
    std::int64_t lowest = first;
    std::int64_t stride = step;
    if (stride == 0) return {lowest};
    if (stride < 0) {
        lowest += last * stride;
        stride = -stride;
    }
    Positions positions;
    const std::int64_t beforeImage = lowest < 0 ? (-1 - lowest) / stride : 0;
    for (std::int64_t i = std::min(beforeImage, last); i <= last; ++i) {
        positions.push_back(lowest + i * stride);
        if (positions.back() >= pels) break;
    }
    return positions;
}

Positions CentredPositions(std::int32_t count, std::int32_t pels) {
    if (count <= 0) return {};
    // Parts of a pel and less: their middles hit every pel, and nothing is won by counting them all.
    Positions positions(static_cast<std::size_t>(std::min(count, pels)));
    if (count >= pels) {
        std::iota(positions.begin(), positions.end(), std::int64_t{0});
        return positions;
    }
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const std::int64_t halves = 2 * static_cast<std::int64_t>(i) + 1;
        positions[i] = NearestQuotient(halves * (pels - 1), 2 * static_cast<std::int64_t>(count));
    }
    return positions;
}

std::int64_t NearestQuotient(std::int64_t numerator, std::int64_t denominator) noexcept {
    const std::int64_t quotient = numerator / denominator;
    const std::int64_t rest = numerator % denominator;
    // Compared with its complement, not doubled: the numerator may be near 2^63.
    const std::int64_t missing = denominator - rest;
    const bool up = rest > missing || (rest == missing && quotient % 2 != 0);
    return quotient + (up ? 1 : 0);
}

double PercentOfAxis(double percent, std::int32_t pels) noexcept {
    return percent / 100.0 * (pels - 1);
}

std::int32_t NearestPel(double position) noexcept {
    return TruncToInt32(std::nearbyint(position));
}

}  // namespace tq
