#include "kernels/local_contrast.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/population_deviation.h"
#include "kernels/window_sums.h"
#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;

constexpr double kNothing = std::numeric_limits<double>::quiet_NaN();

/// Values with everything that a mean can be, nothing included.
std::vector<double> Means(std::size_t count, std::uint32_t seed) {
    const auto pels = tqtest::HostilePels(2 * count, seed);
    std::vector<double> means(count);
    for (std::size_t i = 0; i < count; ++i)
        means[i] = pels[count + i] % 5 == 0 ? kNothing : pels[i] / 9.0;
    return means;
}

TEST(LocalContrast, WindowsAgainstTheirSurroundings) {
    constexpr std::size_t kCount = 41;
    const auto pels = tqtest::HostilePels(4 * kCount, 11);
    std::vector<double> innerSums(kCount), innerCounts(kCount), outerSums(kCount), outerCounts(kCount);
    std::vector<double> innerCols(kCount), outerCols(kCount);
    for (std::size_t i = 0; i < kCount; ++i) {
        innerCols[i] = 2.0 + static_cast<double>(i % 2);
        outerCols[i] = 4.0 + static_cast<double>(i % 3);
        innerCounts[i] = pels[i] % 7;
        // None around, half of what there is, one less than half, and many.
        const double area = outerCols[i] * 5.0 - innerCols[i] * 3.0;
        const double around[] = {0.0, area / 2.0, std::floor((area - 1.0) / 2.0), area};
        outerCounts[i] = innerCounts[i] + around[i % 4];
        innerSums[i] = innerCounts[i] * pels[kCount + i];
        outerSums[i] = innerSums[i] + pels[2 * kCount + i];
    }
    tqtest::ExpectRuns<double>(
        kCount,
        [&](double* out, std::size_t count) {
            kernels::SurroundDifferences({innerSums.data(), innerCounts.data(), outerSums.data(),
                                          outerCounts.data(), innerCols.data(), outerCols.data(), 3.0, 5.0},
                                         count, out);
        },
        [&](std::size_t i) {
            const double around = outerCounts[i] - innerCounts[i];
            const double area = outerCols[i] * 5.0 - innerCols[i] * 3.0;
            const double difference = innerSums[i] / innerCounts[i] - (outerSums[i] - innerSums[i]) / around;
            return around > 0.0 && 2.0 * around >= area ? difference : kNothing;
        });
}

TEST(LocalContrast, TheLargerDifferenceStaysAndTheFirstOfEqualOnes) {
    const std::size_t count = 67;
    const auto here = Means(count, 1), ahead = Means(count, 2), behind = Means(count, 3);
    auto before = Means(count, 4);
    for (std::size_t i = 0; i < count; i += 3)
        before[i] = -(here[i] - 0.5 * (ahead[i] + behind[i]));
    tqtest::ForEachTarget([&] {
        tqtest::ExpectRun<double>(
            count,
            [&](double* out) {
                std::copy(before.begin(), before.end(), out);
                kernels::KeepLargerDifferences(here.data(), ahead.data(), behind.data(), count, out);
            },
            [&](std::size_t i) {
                const double found = here[i] - 0.5 * (ahead[i] + behind[i]);
                const bool larger = std::isnan(before[i]) || std::abs(found) > std::abs(before[i]);
                return !std::isnan(found) && larger ? found : before[i];
            });
    });
}

TEST(LocalContrast, DeviationsAreThoseOfExactSums) {
    constexpr std::size_t kCols = 90;
    constexpr std::size_t kRows = 5;
    tqtest::ForEachTarget([&] {
        for (const std::size_t width : {std::size_t{1}, std::size_t{7}, kCols}) {
            std::vector<std::uint64_t> columns(kCols);
            std::vector<std::uint64_t> prefix(kCols + 1);
            std::vector<std::vector<std::uint16_t>> rows;
            for (std::uint32_t row = 0; row < kRows; ++row) {
                rows.push_back(tqtest::HostilePels(kCols, row));
                kernels::AddSquares(columns.data(), rows.back().data(), kCols);
            }
            const auto passing = tqtest::HostilePels(kCols, 77);
            kernels::AddSquares(columns.data(), passing.data(), kCols);
            kernels::SubtractSquares(columns.data(), passing.data(), kCols);
            for (std::size_t i = 0; i < kCols; ++i)
                prefix[i + 1] = prefix[i] + columns[i];
            const std::size_t windows = kCols - width + 1;
            std::vector<double> sums(windows), counts(windows), out(windows);
            std::vector<std::int64_t> squares(windows);
            for (std::size_t i = 0; i < windows; ++i) {
                for (const auto& row : rows) {
                    for (std::size_t at = i; at < i + width; ++at) {
                        sums[i] += row[at];
                        counts[i] += row[at] != 0 ? 1.0 : 0.0;
                        squares[i] += std::int64_t{row[at]} * row[at];
                    }
                }
            }
            kernels::WindowDeviations(sums.data(), counts.data(), prefix.data(), width, windows, out.data());
            for (std::size_t i = 0; i < windows; ++i) {
                if (counts[i] == 0.0) continue;
                ASSERT_EQ(out[i], tq::PopulationDeviation(static_cast<std::int64_t>(counts[i]),
                                                          static_cast<std::int64_t>(sums[i]), squares[i]))
                    << i << ", " << width << " wide";
            }
        }
    });
}

// The largest window whose products still fit: all its pels but one at the top of the range.
TEST(LocalContrast, TheLargestWindowIsExact) {
    const auto count = static_cast<double>(kernels::kLargestSquaredWindow);
    const double sums[] = {65535.0 * (count - 1.0) + 1.0};
    const double counts[] = {count};
    const std::uint64_t square = std::uint64_t{65535} * 65535;
    const std::uint64_t prefix[] = {
        7, 7 + square * static_cast<std::uint64_t>(kernels::kLargestSquaredWindow - 1) + 1};
    tqtest::ForEachTarget([&] {
        double out = 0.0;
        kernels::WindowDeviations(sums, counts, prefix, 1, 1, &out);
        EXPECT_EQ(out,
                  tq::PopulationDeviation(kernels::kLargestSquaredWindow, static_cast<std::int64_t>(sums[0]),
                                          static_cast<std::int64_t>(prefix[1] - prefix[0])));
    });
}

TEST(LocalContrast, ValuesBecomeGreyLevels) {
    const std::size_t most = 70;
    const auto pels = tqtest::HostilePels(most, 5);
    auto values = Means(most, 6);
    // Halves, just below a half, and both ends.
    const double special[] = {0.5, -0.5, 1.5, 2.5, 0.49999999999999994, -0.0, 32000.0, -32000.0};
    for (std::size_t i = 0; i < most; ++i)
        values[i] = i % 2 == 0 ? special[i / 2 % std::size(special)] : values[i] - 3000.0;
    tqtest::ForEachTarget([&] {
        for (std::size_t count = 0; count <= most; ++count) {
            double largest = 3.0;
            for (std::size_t i = 0; i < count; ++i) {
                if (pels[i] != 0 && std::abs(values[i]) > largest) largest = std::abs(values[i]);
            }
            ASSERT_EQ(kernels::LargestMagnitude(pels.data(), values.data(), count, 3.0), largest);
            std::vector<double> magnitudes(count);
            std::transform(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count),
                           magnitudes.begin(), [](double value) { return std::abs(value); });
            const auto told = [&](std::size_t i) { return pels[i] != 0 && !std::isnan(values[i]); };
            tqtest::ExpectRun<std::uint16_t>(
                count,
                [&](auto* out) {
                    kernels::WriteSigned(pels.data(), values.data(), count, {32000.0, 32000.0}, out);
                },
                [&](std::size_t i) { return told(i) ? 32000.0 + std::nearbyint(values[i]) : 0.0; });
            tqtest::ExpectRun<std::uint16_t>(
                count,
                [&](auto* out) {
                    kernels::WriteMagnitudes(pels.data(), magnitudes.data(), count, {65000.0, 32000.0}, out);
                },
                [&](std::size_t i) { return told(i) ? std::floor(magnitudes[i] * 65000.0 / 32000.0) : 0.0; });
        }
    });
}

}  // namespace
