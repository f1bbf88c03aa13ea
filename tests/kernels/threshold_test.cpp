#include "kernels/threshold.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "kernels/outliers.h"
#include "simd_targets.h"

namespace {

using tq::kernels::Band;

TEST(Bands, EveryTargetAndLengthGivesTheSameAndStaysInside) {
    constexpr Band kBands[] = {{0, 65535}, {1, 0},         {0, 0},     {65535, 65535},
                               {1, 65534}, {32767, 32768}, {32768, 2}, {2, 32767}};
    const tqtest::Pels pels = tqtest::HostilePels(130, 3);
    for (const Band& band : kBands) {
        const auto inside = [&](std::size_t i) { return pels[i] >= band.low && pels[i] <= band.high; };
        const auto exchanged = [&](std::size_t i) { return !inside(i) && pels[i] != 0; };
        tqtest::ExpectRuns<std::uint16_t>(
            pels.size(),
            [&](auto* out, std::size_t count) { tq::kernels::KeepBand(pels.data(), band, out, count); },
            [&](std::size_t i) { return inside(i) ? pels[i] : 0; });
        tqtest::ExpectRuns<std::uint16_t>(
            pels.size(),
            [&](auto* out, std::size_t count) { tq::kernels::MarkBand(pels.data(), band, 777, out, count); },
            [&](std::size_t i) { return inside(i) ? 777 : 0; });
        tqtest::ExpectRuns<std::uint16_t>(
            pels.size(),
            [&](auto* out, std::size_t count) {
                std::uint64_t hits = 0;
                for (std::size_t i = 0; i < count; ++i)
                    hits += exchanged(i) ? 1 : 0;
                ASSERT_EQ(tq::kernels::ReplaceOutside(pels.data(), band, 777, out, count), hits);
            },
            [&](std::size_t i) { return exchanged(i) ? 777 : pels[i]; });
    }
}

/// Means and factors for which a product and the division that it stands for round apart, limits that a pel
/// meets exactly, and factors that are no numbers.
TEST(Outliers, EveryTargetDecidesAsTheDivisionDoes) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr std::size_t kCount = 331;
    const std::vector<std::uint16_t> noise = tqtest::HostilePels(kCount, 4);
    tqtest::ForEachTarget([&] {
        for (const double tolerance :
             {0.0, 0.1, 1.0 / 3.0, 1.0, 1.5, -0.2, 1e-16, 1e300, kInfinity, -kInfinity, kNan}) {
            for (const double area : {1.0, 3.0, 9.0, 225.0, 49.0}) {
                std::vector<std::uint16_t> pels(kCount), out(kCount + 1, 7);
                std::vector<double> sums(kCount), counts(kCount);
                for (std::size_t i = 0; i < kCount; ++i) {
                    pels[i] = noise[i];
                    counts[i] = area - static_cast<double>(i % 5 == 0 ? 1 : 0);
                    // Around the sum at which the pel is just as bright as the limit, and anywhere.
                    const double limit =
                        pels[i] * counts[i] / (i % 2 == 0 ? 1.0 + tolerance : 1.0 - tolerance);
                    const bool near = i % 3 != 0 && limit >= 0.0 && limit < 1e12;
                    sums[i] = near ? std::floor(limit) + static_cast<double>(i % 3 - 1)
                                   : noise[kCount - 1 - i] * counts[i];
                }
                const tq::kernels::OutlierTest test{1.0 + tolerance, 1.0 - tolerance, area == 9.0 ? 1.0 : 0.0,
                                                    area == 49.0 ? area : 0.0};
                const auto found = tq::kernels::KeepOutliers(pels.data(), sums.data(), counts.data(), kCount,
                                                             test, out.data());
                std::uint64_t bright = 0, dark = 0;
                for (std::size_t i = 0; i < kCount; ++i) {
                    const double mean = sums[i] / counts[i];
                    const bool tested = pels[i] >= test.leastPel && counts[i] >= test.leastCount;
                    const bool isBright = tested && pels[i] > test.brightFactor * mean;
                    const bool isDark = tested && !isBright && pels[i] < test.darkFactor * mean;
                    bright += isBright ? 1 : 0;
                    dark += isDark ? 1 : 0;
                    ASSERT_EQ(out[i], isBright || isDark ? pels[i] : 0)
                        << pels[i] << " against " << sums[i] << " / " << counts[i] << ", " << tolerance;
                }
                ASSERT_EQ(found.bright, bright);
                ASSERT_EQ(found.dark, dark);
                ASSERT_EQ(out[kCount], 7);
            }
        }
    });
}

}  // namespace
