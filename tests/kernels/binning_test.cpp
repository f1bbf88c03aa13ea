#include "kernels/binning.h"

#include <algorithm>

#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;
using Numbers = std::vector<std::uint32_t>;
using Pels = std::vector<std::uint16_t>;

// More rows than are taken at once, lengths that end in every lane, and rows with pels to spare.
TEST(Binning, SumsAndCountsAreTheSameOnEveryTarget) {
    constexpr std::size_t kMost = 40, kStride = 2 * kMost + 3;
    for (const std::size_t rows : {std::size_t{1}, std::size_t{2}, std::size_t{8}, std::size_t{19}}) {
        const Pels pels = tqtest::HostilePels(rows * kStride, 21);
        const kernels::PelRows source{pels.data(), kStride, rows};
        for (const std::size_t width : {std::size_t{1}, std::size_t{2}}) {
            Numbers sums(kMost, 0), counts(kMost, 0);
            for (std::size_t i = 0; i < rows * kMost * width; ++i) {
                const std::uint16_t pel = pels[i / (kMost * width) * kStride + i % (kMost * width)];
                sums[i % (kMost * width) / width] += pel;
                counts[i % (kMost * width) / width] += pel != 0 ? 1 : 0;
            }
            tqtest::ForEachTarget([&] {
                for (std::size_t count = 0; count <= kMost; ++count) {
                    const auto sum = width == 2 ? kernels::SumPairsOfColumns : kernels::SumColumns;
                    const auto sumLit = width == 2 ? kernels::SumLitPairsOfColumns : kernels::SumLitColumns;
                    const auto sumAt = [&](std::size_t i) { return sums[i]; };
                    Numbers other(count + 1);
                    tqtest::ExpectRun<std::uint32_t>(
                        count, [&](auto* out) { sum(source, count, out); }, sumAt);
                    tqtest::ExpectRun<std::uint32_t>(
                        count, [&](auto* out) { sumLit(source, count, out, other.data()); }, sumAt);
                    tqtest::ExpectRun<std::uint32_t>(
                        count, [&](auto* out) { sumLit(source, count, other.data(), out); },
                        [&](std::size_t i) { return counts[i]; });
                    if (rows != 2 || width != 2) continue;
                    tqtest::ExpectRun<std::uint16_t>(
                        count,
                        [&](auto* out) {
                            kernels::MeansOfFour(pels.data(), pels.data() + kStride, count, out);
                        },
                        [&](std::size_t i) { return sums[i] / 4; });
                }
            });
        }
    }
}

// Sums next to the multiples of the divisor, where a mean that is off by one shows, up to what a bin can
// have.
TEST(Binning, MeansTruncateLikeTheDivisionOnEveryTarget) {
    for (const std::int32_t pels : {1, 3, 4, 7, 4096, 32767, 32768, 40000}) {
        Numbers sums, counts;
        for (std::uint32_t i = 0; i < 61; ++i) {
            const std::uint32_t mean = i < 3 ? i : 65535 - i % 4 * (i % 3 == 0 ? 1 : 9973);
            const std::uint64_t sum = std::uint64_t{mean} * static_cast<std::uint32_t>(pels);
            const std::uint64_t largest = std::uint64_t{65535} * static_cast<std::uint32_t>(pels);
            sums.push_back(static_cast<std::uint32_t>(
                std::min(largest, sum + (i % 5 == 0 ? 1U : 0U) - (i % 7 == 0 && mean > 0 ? 1U : 0U))));
            counts.push_back(i % 11 == 0 ? 0U : 1 + i * 7919 % static_cast<std::uint32_t>(pels));
        }
        SCOPED_TRACE(pels);
        tqtest::ExpectRuns<std::uint16_t>(
            sums.size(),
            [&](auto* out, std::size_t count) { kernels::TruncatedMeans(sums.data(), count, pels, out); },
            [&](std::size_t i) { return static_cast<std::int32_t>(sums[i]) / pels; });
        Numbers positive(sums.size());
        for (std::size_t i = 0; i < sums.size(); ++i)
            positive[i] = std::min({sums[i], 0x7FFFFFFFU, counts[i] * 65535U});
        tqtest::ExpectRuns<std::uint16_t>(
            sums.size(),
            [&](auto* out, std::size_t count) {
                kernels::LitMeans(positive.data(), counts.data(), count, out);
            },
            [&](std::size_t i) {
                volatile const float mean =
                    static_cast<float>(positive[i]) / static_cast<float>(std::max(counts[i], 1U));
                return mean;
            });
    }
}

}  // namespace
