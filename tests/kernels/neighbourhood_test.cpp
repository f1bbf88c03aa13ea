#include "kernels/neighbourhood.h"

#include <algorithm>

#include "simd_targets.h"

namespace {

std::uint32_t PlainLargest(const std::vector<std::uint16_t>& above, const std::vector<std::uint16_t>& row,
                           const std::vector<std::uint16_t>& below, std::size_t cols) {
    std::uint32_t largest = 0;
    for (std::size_t i = 0; i + 2 < cols; ++i) {
        std::uint32_t sum = 0;
        for (std::size_t at = i; at < i + 3; ++at)
            sum += std::uint32_t{above[at]} + row[at] + below[at];
        largest = std::max(largest, sum);
    }
    return largest;
}

TEST(Neighbourhood, EveryTargetAndLengthFindsTheLargestSum) {
    tqtest::ForEachTarget([&] {
        for (std::size_t cols = 0; cols <= 2200; cols += cols < 120 ? 1 : 173) {
            const auto above = tqtest::HostilePels(cols, 4), row = tqtest::HostilePels(cols, 5),
                       below = tqtest::HostilePels(cols, 6);
            ASSERT_EQ(tq::kernels::LargestNeighbourhoodSum(above.data(), row.data(), below.data(), cols),
                      PlainLargest(above, row, below, cols))
                << cols;
        }
    });
}

// A single bright neighbourhood at every place, seams between vectors and tiles included, and in a corner
// column of the row, where it counts for one neighbourhood only.
TEST(Neighbourhood, NoPlaceIsMissed) {
    constexpr std::size_t kCols = 1100;
    tqtest::ForEachTarget([&] {
        for (std::size_t at = 0; at < kCols; ++at) {
            std::vector<std::uint16_t> above(kCols, 7), row(kCols, 7), below(kCols, 7);
            above[at] = row[at] = below[at] = 65535;
            if (at > 0 && at + 1 < kCols) below[at - 1] = above[at + 1] = 65535;
            ASSERT_EQ(tq::kernels::LargestNeighbourhoodSum(above.data(), row.data(), below.data(), kCols),
                      PlainLargest(above, row, below, kCols))
                << at;
        }
    });
}

}  // namespace
