#include "kernels/span_statistics.h"

#include <algorithm>
#include <numeric>

#include "simd_targets.h"

namespace {

using tq::kernels::CountAtLeast;
using tq::kernels::FindMinMax;
using tq::kernels::FindSmallestNonZero;
using tq::kernels::FindSumAndMax;
using tq::kernels::FindTotals;
using tq::kernels::SumAtLeast;
using tq::kernels::SumPels;

TEST(SpanStatistics, EveryTargetLengthAndAlignmentAgreesWithThePlainLoop) {
    const auto pels = tqtest::HostilePels(420, 1);
    tqtest::ForEachTarget([&] {
        for (std::size_t count = 0; count <= 400; count += count < 70 ? 1 : 11) {
            const std::uint16_t* run = pels.data() + count % 17;
            std::uint64_t sum = 0, squares = 0, nonZero = 0, above = 0, sumAbove = 0;
            std::uint16_t low = 65535, high = 0, lowestLit = 0;
            constexpr std::uint16_t kThreshold = 32768;
            for (std::size_t i = 0; i < count; ++i) {
                const std::uint64_t v = run[i];
                sum += v;
                squares += v * v;
                nonZero += v != 0 ? 1 : 0;
                if (v >= kThreshold) ++above, sumAbove += v;
                if (v != 0 && (lowestLit == 0 || v < lowestLit)) lowestLit = run[i];
                low = std::min(low, run[i]);
                high = std::max(high, run[i]);
            }
            ASSERT_EQ(SumPels(run, count), sum) << count;
            const auto totals = FindTotals(run, count);
            ASSERT_EQ(totals.sum, sum) << count;
            ASSERT_EQ(totals.squares, squares) << count;
            ASSERT_EQ(totals.nonZero, nonZero) << count;
            ASSERT_EQ(totals.extremes.min, low) << count;
            ASSERT_EQ(totals.extremes.max, high) << count;
            ASSERT_EQ(SumAtLeast(run, count, kThreshold).sum, sumAbove) << count;
            ASSERT_EQ(SumAtLeast(run, count, kThreshold).count, above) << count;
            ASSERT_EQ(FindSumAndMax(run, count).sum, sum) << count;
            ASSERT_EQ(FindSumAndMax(run, count).max, high) << count;
            ASSERT_EQ(CountAtLeast(run, count, kThreshold), above) << count;
            ASSERT_EQ(CountAtLeast(run, count, 0), count);
            ASSERT_EQ(FindSmallestNonZero(run, count), lowestLit) << count;
            ASSERT_EQ(FindMinMax(run, count).min, low) << count;
            ASSERT_EQ(FindMinMax(run, count).max, high) << count;
        }
    });
}

// Long enough for every narrow accumulator to be full several times over: 16-bit counts and 32-bit sums of
// the largest pel, at any vector length.
TEST(SpanStatistics, LongRunsOfTheLargestPelDoNotOverflow) {
    const std::uint64_t count = 8000 * 1000 + 3;
    const std::vector<std::uint16_t> pels(static_cast<std::size_t>(count), 65535);
    tqtest::ForEachTarget([&] {
        EXPECT_EQ(SumPels(pels.data(), pels.size()), count * 65535);
        EXPECT_EQ(FindSumAndMax(pels.data(), pels.size()).sum, count * 65535);
        EXPECT_EQ(FindTotals(pels.data(), pels.size()).sum, count * 65535);
        EXPECT_EQ(FindTotals(pels.data(), pels.size()).squares, count * 65535 * 65535);
        EXPECT_EQ(FindTotals(pels.data(), pels.size()).nonZero, count);
        EXPECT_EQ(CountAtLeast(pels.data(), pels.size(), 65535), count);
        EXPECT_EQ(FindSmallestNonZero(pels.data(), pels.size()), 65535);
        const auto all = SumAtLeast(pels.data(), pels.size(), 65535);
        EXPECT_EQ(all.sum, count * 65535);
        EXPECT_EQ(all.count, count);
    });
}

}  // namespace
