#include "kernels/defect_tests.h"

#include <algorithm>
#include <limits>

#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;

void ExpectFound(const kernels::DefectCounts& expected, const kernels::DefectCounts& found) {
    EXPECT_EQ(found.bright, expected.bright);
    EXPECT_EQ(found.dark, expected.dark);
}

/// Pels close to each other, with zeros, so that comparisons with means and medians go every way.
std::vector<std::uint16_t> ClosePels(std::size_t count, std::uint32_t seed, bool zeros) {
    std::vector<std::uint16_t> pels = tqtest::HostilePels(count, seed);
    for (std::size_t i = 0; i < count; ++i) {
        if (i % 3 != 0) pels[i] = static_cast<std::uint16_t>(32760 + pels[i] % 16);
        if (!zeros) pels[i] = std::max<std::uint16_t>(pels[i], 1);
    }
    return pels;
}

TEST(DefectTests, MeansGiveTheSameVerdictsOnEveryTarget) {
    const double kNever = std::numeric_limits<double>::quiet_NaN();
    const double kInfinity = std::numeric_limits<double>::infinity();
    for (std::size_t count = 1; count <= 40; ++count) {
        const auto pels = ClosePels(count, static_cast<std::uint32_t>(count), true);
        std::vector<double> sums(count), counts(count);
        for (std::size_t i = 0; i < count; ++i) {
            counts[i] = static_cast<double>((i * 7) % 5);
            // On and next to the pel's own value; beyond 2^24 the sum itself is rounded first.
            sums[i] = counts[i] * pels[i] + (counts[i] > 0 && i % 2 == 0 ? 1 : 0);
            if (i % 11 == 10) sums[i] = 16777217.0 + static_cast<double>(i);
            if (i % 11 == 10) counts[i] = 513;
        }
        for (const kernels::DefectFactors& factors :
             {kernels::DefectFactors{1.0, 1.0}, {kNever, 1.02}, {0.98, kNever}, {kInfinity, -1.0}}) {
            std::vector<std::uint16_t> expected(count);
            kernels::DefectCounts expectedCounts;
            for (std::size_t i = 0; i < count; ++i) {
                const float mean =
                    counts[i] == 0 ? 0.0f : static_cast<float>(sums[i]) / static_cast<float>(counts[i]);
                const bool bright = pels[i] != 0 && pels[i] > factors.bright * mean;
                const bool dark = pels[i] != 0 && !bright && pels[i] < factors.dark * mean;
                expectedCounts += {bright ? 1u : 0u, dark ? 1u : 0u};
                expected[i] = bright || dark ? pels[i] : std::uint16_t{0};
            }
            tqtest::ForEachTarget([&] {
                std::vector<std::uint16_t> out(count, 99);
                ExpectFound(expectedCounts, kernels::FlagByMean(pels.data(), sums.data(), counts.data(),
                                                                count, factors, out.data()));
                EXPECT_EQ(out, expected);
            });
        }
    }
}

TEST(DefectTests, MediansAreFoundByCountingOnEveryTarget) {
    for (const std::size_t side : {1, 2, 3, 5, 16, 255}) {
        for (const std::size_t count : {std::size_t{1}, std::size_t{7}, std::size_t{75}}) {
            const std::size_t stride = count + side - 1;
            for (const bool lit : {false, true}) {
                auto image = ClosePels(stride * side, static_cast<std::uint32_t>(side), !lit);
                // The first windows hold no pel at all.
                if (!lit && side < 4) {
                    for (std::size_t y = 0; y < side; ++y)
                        std::fill_n(image.begin() + static_cast<std::ptrdiff_t>(y * stride), side, 0);
                }
                auto pels = ClosePels(count, 5, true);
                pels[0] = 77;
                const auto bright = ClosePels(count, 6, true);
                auto dark = ClosePels(count, 7, true);
                dark[count / 2] = 65535;
                const kernels::WindowRow windows{image.data(), stride, side, lit};
                for (const bool emptyIsBright : {false, true}) {
                    std::vector<std::uint16_t> expected(count);
                    kernels::DefectCounts expectedCounts;
                    for (std::size_t i = 0; i < count; ++i) {
                        std::vector<std::uint16_t> window;
                        for (std::size_t at = 0; at < side * side; ++at)
                            window.push_back(image[i + at / side * stride + at % side]);
                        std::erase(window, std::uint16_t{0});
                        std::sort(window.begin(), window.end());
                        const bool empty = window.empty();
                        const auto median = empty ? std::uint16_t{0} : window[window.size() / 2];
                        const bool isBright = pels[i] != 0 && (empty ? emptyIsBright : median <= bright[i]);
                        const bool isDark = pels[i] != 0 && !isBright && !empty && median > dark[i];
                        expectedCounts += {isBright ? 1u : 0u, isDark ? 1u : 0u};
                        expected[i] = isBright || isDark ? pels[i] : std::uint16_t{0};
                    }
                    tqtest::ForEachTarget([&] {
                        std::vector<std::uint16_t> out(count, 99);
                        ExpectFound(
                            expectedCounts,
                            kernels::FlagByMedian(pels.data(), windows, count,
                                                  {bright.data(), dark.data(), emptyIsBright}, out.data()));
                        EXPECT_EQ(out, expected);
                    });
                }
            }
        }
    }
}

}  // namespace
