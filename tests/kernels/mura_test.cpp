#include "kernels/mura.h"

#include "kernels/single_precision_sum.h"
#include "simd_targets.h"

namespace {

using tq::kernels::SinglePrecisionSum;
using tq::kernels::SumSquaredDeviations;

TEST(SumSquaredDeviations, EveryTargetLengthAndThresholdAgreesWithThePlainLoop) {
    auto pels = tqtest::HostilePels(420, 4);
    for (std::size_t i = 0; i < pels.size(); i += 5)
        pels[i] = static_cast<std::uint16_t>(31999 + i % 3);
    tqtest::ForEachTarget([&] {
        for (const std::uint16_t threshold : std::vector<std::uint16_t>{0, 1, 31999, 32000, 32001, 65535}) {
            for (std::size_t count = 0; count <= 400; count += count < 70 ? 1 : 11) {
                const std::uint16_t* run = pels.data() + count % 17;
                std::uint64_t squares = 0, signals = 0;
                for (std::size_t i = 0; i < count; ++i) {
                    if (run[i] < threshold) continue;
                    const std::int64_t signal = std::int64_t{run[i]} - 32000;
                    squares += static_cast<std::uint64_t>(signal * signal);
                    signals += signal != 0;
                }
                const auto found = SumSquaredDeviations(run, count, 32000, threshold);
                ASSERT_EQ(found.squares, squares) << count;
                ASSERT_EQ(found.count, signals) << count;
            }
        }
    });
}

// Every narrow accumulator is full several times over, with and without hits.
TEST(SumSquaredDeviations, LongRunsDoNotOverflow) {
    const std::size_t count = std::size_t{8000} * 1200 + 3;
    const std::vector<std::uint16_t> pels(count, 65535);
    tqtest::ForEachTarget([&] {
        const auto all = SumSquaredDeviations(pels.data(), count, 0, 0);
        EXPECT_EQ(all.squares, std::uint64_t{count} * 65535 * 65535);
        EXPECT_EQ(all.count, count);
        EXPECT_EQ(SumSquaredDeviations(pels.data(), count, 65535, 0).count, 0u);
    });
}

/// Noise, halves of every power of two, runs of ties, greys that leave sums standing still: in lengths that
/// end in every binade up to the one where no pel moves the sum.
TEST(SinglePrecisionSum, EveryTargetAddsInOrder) {
    constexpr std::size_t kPels = 1'500'000;
    std::vector<std::vector<std::uint16_t>> images(7, std::vector<std::uint16_t>(kPels));
    const auto hostile = tqtest::HostilePels(kPels, 5);
    std::mt19937 engine(6);
    for (std::size_t i = 0; i < kPels; ++i) {
        const auto draw = static_cast<std::uint32_t>(engine());
        images[0][i] = hostile[i];
        images[1][i] = static_cast<std::uint16_t>(draw);
        images[2][i] = static_cast<std::uint16_t>(1u << draw % 16);
        images[3][i] = static_cast<std::uint16_t>(draw % 256 * 256);
        images[4][i] = 32768;
        images[5][i] = static_cast<std::uint16_t>(i < kPels / 2 ? 65535 : 3 + draw % 2000);
        images[6][i] = static_cast<std::uint16_t>(draw % 5 + (i % 4096 < 7 ? 60000 : 0));
    }
    for (const auto& pels : images) {
        std::vector<float> expected;
        float sum = 0;
        std::vector<std::size_t> lengths;
        for (std::size_t i = 0; i < kPels; ++i) {
            sum += static_cast<float>(pels[i]);
            if (i > 2000 && i % 100'003 != 0) continue;
            lengths.push_back(i + 1);
            expected.push_back(sum);
        }
        tqtest::ForEachTarget([&] {
            for (std::size_t i = 0; i < lengths.size(); ++i)
                ASSERT_EQ(SinglePrecisionSum(pels.data(), lengths[i]), expected[i]) << lengths[i];
        });
    }
}

// Sums from 2^40 on do not move: 8000 x 8000 pels are enough to get there.
TEST(SinglePrecisionSum, StandsStillWhenNoPelReachesHalfAUnit) {
    const std::vector<std::uint16_t> pels(std::size_t{8000} * 4000, 65535);
    float sum = 0;
    for (const std::uint16_t pel : pels)
        sum += static_cast<float>(pel);
    EXPECT_EQ(sum, 1099511627776.0f);
    tqtest::ForEachTarget([&] { EXPECT_EQ(SinglePrecisionSum(pels.data(), pels.size()), sum); });
}

}  // namespace
