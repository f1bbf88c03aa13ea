#include "kernels/colour_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "kernels/pel_arithmetic.h"
#include "simd_targets.h"

namespace {

namespace kernels = tq::kernels;
using Bytes = std::vector<std::uint8_t>;
using Pels = std::vector<std::uint16_t>;

constexpr std::uint8_t kGuard = 0xA5;

/// Three rows of bytes with a guard behind each.
struct ByteRows {
    explicit ByteRows(std::size_t count) : rows{Bytes(count + 1, kGuard), rows[0], rows[0]} {}
    std::array<std::uint8_t*, 3> Data() { return {rows[0].data(), rows[1].data(), rows[2].data()}; }
    std::array<Bytes, 3> rows;
};

TEST(LookUp, BytesOfEveryLengthFromTheOnlyEntriesThereAre) {
    Bytes table(40'000);
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<std::uint8_t>(i * 31 >> 3);
    Pels pels = tqtest::HostilePels(40, 7);
    for (auto& pel : pels)
        pel = std::min<std::uint16_t>(pel, 39'999);
    tqtest::ExpectRuns<std::uint8_t>(
        pels.size(),
        [&](auto* out, std::size_t count) { kernels::LookUp(pels.data(), table.data(), out, count); },
        [&](std::size_t i) { return table[pels[i]]; });
}

TEST(InterleaveBytes, KeepsTheOrderAndStaysInside) {
    Bytes channels[3];
    for (std::size_t i = 0; i < 3 * 140; ++i)
        channels[i % 3].push_back(static_cast<std::uint8_t>(i * 7));
    const std::uint8_t* const data[] = {channels[0].data(), channels[1].data(), channels[2].data()};
    tqtest::ForEachTarget([&] {
        for (std::size_t count = 0; count <= 140; ++count) {
            tqtest::ExpectRun<std::uint8_t>(
                3 * count, [&](auto* out) { kernels::InterleaveBytes(data, out, count); },
                [](std::size_t i) { return i * 7; });
        }
    });
}

TEST(NormalizeToBytes, IsTheFormulaPixelByPixel) {
    tqtest::ForEachTarget([] {
        for (const std::size_t count : {0u, 1u, 3u, 7u, 8u, 1001u}) {
            const Pels a = tqtest::HostilePels(count, 1);
            const Pels b = tqtest::HostilePels(count, 2);
            const Pels c = tqtest::HostilePels(count, 3);
            for (const auto& gains : {std::array{1.0, 1.0, 1.0}, std::array{-2.0, 0.1, 1e300},
                                      std::array{-1.0, -1.0, 0.0}, std::array{1e-320, 1e-321, 0.0}}) {
                ByteRows out(count);
                kernels::NormalizeToBytes({a.data(), b.data(), c.data(), count}, gains.data(),
                                          out.Data().data());
                for (std::size_t i = 0; i < count; ++i) {
                    const double light[] = {a[i] * gains[0], b[i] * gains[1], c[i] * gains[2]};
                    const double largest = *std::max_element(light, light + 3);
                    for (std::size_t k = 0; k < 3; ++k) {
                        const double scaled = largest > 0.0 ? light[k] * 255.0 / largest : 0.0;
                        ASSERT_EQ(out.rows[k][i], static_cast<int>(std::clamp(scaled, 0.0, 255.0)))
                            << "channel " << k << " at " << i;
                    }
                }
                for (const Bytes& row : out.rows)
                    ASSERT_EQ(row[count], kGuard);
            }
        }
    });
}

TEST(EncodeTogether, WhatIsNotDoubtfulIsExactAndLittleIsDoubtful) {
    constexpr double kScale = 60'000.0, kExponent = 0.4, kGamma = -0.7;
    constexpr double kGains[] = {0.5, 2.0, 1.0};
    constexpr std::size_t kCount = 20'003;
    std::vector<float> tones(65536), factors(65536), toneFactors(65536);
    for (std::size_t pel = 1; pel < tones.size(); ++pel) {
        const double light = static_cast<double>(pel) / kScale;
        tones[pel] = static_cast<float>(std::pow(light, kExponent));
        factors[pel] = static_cast<float>(std::pow(light, kGamma));
        toneFactors[pel] = static_cast<float>(std::pow(light, kGamma * kExponent));
    }
    kernels::TogetherTables tables{
        tones.data(), factors.data(), toneFactors.data(), {}, {}, {}, {}, 0.01f, 2000.0f, 260.0f, 10.0f};
    for (std::size_t k = 0; k < 3; ++k) {
        tables.scales[k] = static_cast<float>(kGains[k] / kScale);
        tables.toneGains[k] = static_cast<float>(std::pow(kGains[k], kExponent));
        tables.factorGains[k] = static_cast<float>(std::pow(kGains[k], kGamma));
        tables.toneFactorGains[k] = static_cast<float>(std::pow(kGains[k], kGamma * kExponent));
    }
    const Pels pels[] = {tqtest::HostilePels(kCount, 4), tqtest::HostilePels(kCount, 5),
                         tqtest::HostilePels(kCount, 6)};
    const auto exact = [&](std::size_t i, std::size_t k) {
        double largest = 0.0;
        for (std::size_t j = 0; j < 3; ++j)
            largest = std::max(largest, pels[j][i] * kGains[j] / kScale);
        if (largest == 0.0) return 0;
        const double light = pels[k][i] * kGains[k] / kScale * std::pow(largest, kGamma);
        const double scaled = light > 0.01 ? 260.0 * std::pow(light, kExponent) - 10.0 : 2000.0 * light;
        return static_cast<int>(std::clamp(scaled, 0.0, 255.0));
    };
    tqtest::ForEachTarget([&] {
        ByteRows out(kCount);
        Bytes doubtful(kCount + 1, kGuard);
        kernels::EncodeTogether({pels[0].data(), pels[1].data(), pels[2].data(), kCount}, tables,
                                out.Data().data(), doubtful.data());
        std::size_t doubts = 0;
        for (std::size_t i = 0; i < kCount; ++i) {
            doubts += doubtful[i];
            for (std::size_t k = 0; k < 3 && doubtful[i] == 0; ++k)
                ASSERT_EQ(out.rows[k][i], exact(i, k)) << "channel " << k << " at " << i;
        }
        EXPECT_LT(doubts, kCount / 100);
        EXPECT_EQ(doubtful[kCount], kGuard);
        for (const Bytes& row : out.rows)
            EXPECT_EQ(row[kCount], kGuard);
    });
}

}  // namespace
