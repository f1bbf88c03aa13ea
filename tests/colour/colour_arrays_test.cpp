#include <algorithm>
#include <limits>

#include "automation_host.h"
#include "colours.h"
#include "tqimage/colour_averages.h"
#include "tqimage/pel_block.h"

namespace tqtest {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

std::array<double, 7> FiguresOf(const Triple& xyz) {
    const double sum = xyz[0] + xyz[1] + xyz[2], d = xyz[0] + 15 * xyz[1] + 3 * xyz[2];
    const auto over = [](double a, double b) { return b == 0 ? 0 : a / b; };
    const auto [x, y, z] = xyz;
    return {x, y, z, over(x, sum), over(y, sum), over(4 * x, d), over(9 * y, d)};
}

using Limits = std::array<float, 6>;

std::int32_t Histograms(SAFEARRAY** out, const ChannelSet& set, std::int32_t space, std::int32_t threshold,
                        std::array<std::int32_t, 4> at, std::int32_t bins, const float* limits,
                        const Matrix& m) {
    return WithMatrix(
        [&](auto... k) {
            return tqGetColorHistograms(out, set[0], set[1], set[2], space, threshold, at[0], at[1], at[2],
                                        at[3], bins, limits, k...);
        },
        m);
}

TEST(ColourHistograms, CountWhatLiesWithinTheLimits) {
    const ChannelSet set = NoiseChannels(31, 23, 5);
    // Which of the seven figures a space has; the channels themselves stand for -1.
    const struct {
        std::array<int, 3> figures;
        Limits limits;
    } spaces[] = {{{-1, -1, -1}, {0, 65536, 0, 65536, 100, 40000}},
                  {{0, 1, 2}, {-20000, 60000, 0, 3e38f, 5, 6}},
                  {{3, 4, 1}, {0, 1, 0.2f, 0.5f, 0, 65536}},
                  {{5, 6, 1}, {-0.1f, 0.7f, 0, 0.6f, 0, 65536}}};
    for (int space = 0; space < 4; ++space) {
        for (const Matrix& m : {kIdentity, kSrgb, kMixed}) {
            for (const int bins : {1, 7, 65536}) {
                const auto& [figures, limits] = spaces[space];
                HostArray array;
                ASSERT_EQ(
                    Histograms(array.Address(), set, space, 3000, {2, -5, 25, 20}, bins, limits.data(), m),
                    0);
                std::vector<std::int32_t> expected(3 * static_cast<std::size_t>(bins));
                for (std::int32_t row = 0; row <= 20; ++row) {
                    for (std::int32_t col = 2; col <= 25; ++col) {
                        if (set.images[1](col, row) <= 3000) continue;
                        const Triple pels = set.At(static_cast<std::size_t>(row * 31 + col));
                        const auto all = FiguresOf(Multiply(m, pels));
                        for (std::size_t k = 0; k < 3; ++k) {
                            const double low = limits[2 * k], high = limits[2 * k + 1];
                            const int figure = figures[k];
                            const double v = figure < 0 ? pels[k] : all[static_cast<std::size_t>(figure)];
                            const double bin = (v - low) * bins / (high - low);
                            if (v >= low && bin < bins)
                                ++expected[k * static_cast<std::size_t>(bins) +
                                           static_cast<std::size_t>(bin)];
                        }
                    }
                }
                ASSERT_EQ(array->cDims, 2);
                for (LONG k = 0; k < 3; ++k)
                    for (LONG bin = 0; bin < bins; bin += 1 + bins / 999)
                        ASSERT_EQ(array.At<std::int32_t>({bin, k}),
                                  expected[static_cast<std::size_t>(k * bins + bin)]);
            }
        }
    }
}

TEST(ColourHistograms, Codes) {
    const Limits good{0, 1, 0, 1, 0, 1};
    HostArray array;
    const ChannelSet set = NoiseChannels(5, 5, 1);
    const auto call = [&](SAFEARRAY** out, int space, int bins, const float* limits) {
        return Histograms(out, set, space, 0, {0, 0, 0, 0}, bins, limits, kIdentity);
    };
    EXPECT_EQ(call(nullptr, 0, 1, good.data()), -2);
    EXPECT_EQ(call(array.Address(), 0, 1, nullptr), -7);
    for (const auto& [space, bins] : {std::pair{-1, 4}, {4, 4}, {0, 0}, {0, -3}, {0, 65537}, {0, INT32_MAX}})
        EXPECT_EQ(call(array.Address(), space, bins, good.data()), -7);
    for (const float bad : {1.0f, kNan, 2.0f, -std::numeric_limits<float>::infinity()}) {
        for (std::size_t k = 0; k < 6; k += 2) {
            Limits limits = good;
            limits[k] = bad;
            EXPECT_EQ(call(array.Address(), 0, 4, limits.data()), -7);
        }
    }
    ASSERT_EQ(call(array.Address(), 0, 4, good.data()), 0);
    ASSERT_EQ(SafeArrayLock(array.Get()), S_OK);
    EXPECT_EQ(call(array.Address(), 0, 4, good.data()), -8);
}

std::int32_t Arrays(SAFEARRAY** results, SAFEARRAY** regions, const ChannelSet& set, int useLux,
                    const Matrix& m) {
    return WithMatrix(
        [&](auto... k) {
            return tqGetColorArraysDefined(results, regions, set[0], set[1], set[2], useLux, k...);
        },
        m);
}

TEST(ColourArrays, EachRecordIsABlockOrAnEllipse) {
    const ChannelSet set = NoiseChannels(31, 23, 15);
    HostArray regions = MakeRecords({{0, 5, 6, 3, 4},
                                     {1, 15, 11, 9, 7},
                                     {-7, 30, 22, 5, 5},
                                     {0, -100, INT32_MAX, 2, 2},
                                     {1, INT32_MIN, 3, INT32_MAX, 0},
                                     {0, 3, 3, INT32_MIN, INT32_MAX}});
    for (const int useLux : {0, 2}) {
        for (const Matrix& m : {kIdentity, kMixed, Matrix{}}) {
            HostArray results(VT_I2, {{2}});
            ASSERT_EQ(Arrays(results.Address(), regions.Address(), set, useLux, m), 0);
            ASSERT_EQ(results->cDims, 2);
            EXPECT_EQ(regions.Locks() + results.Locks(), 0u);
            for (LONG i = 0; i < 6; ++i) {
                const auto field = [&](LONG k) { return regions.At<std::int32_t>({i, k}); };
                const auto mean = field(0) == 0 ? tqGetPelBlockAvg : tqGetPelBlockAvgEllipse;
                Triple value;
                for (std::size_t k = 0; k < 3; ++k)
                    value[k] = mean(set[k], field(1), field(2), field(3), field(4)) *
                               (useLux ? double(set.images[k].Header().LuxPerGrey) : 1);
                const auto expected = FiguresOf(Multiply(m, value));
                for (std::size_t k = 0; k < 7; ++k)
                    ASSERT_EQ(results.At<double>({i, static_cast<LONG>(k)}), expected[k]) << i << ", " << k;
            }
        }
    }
    HostArray none(VT_I4, {{0}, {5}}), results;
    ASSERT_EQ(Arrays(results.Address(), none.Address(), set, 0, kSrgb), 0);
    EXPECT_EQ(results->rgsabound[1].cElements, 0u);
}

TEST(ColourArrays, Codes) {
    HostArray good = MakeRecords({{0, 5, 6, 3, 4}}), results;
    const ChannelSet set = NoiseChannels(5, 5, 1);
    const auto call = [&](HostArray& list) {
        return Arrays(results.Address(), list.Address(), set, 0, kIdentity);
    };
    HostArray null, flat(VT_I4, {{5}}), floats(VT_R4, {{1}, {5}}), four = MakeRecords({{0, 1, 2, 3}}),
                                                                   late(VT_I4, {{1}, {5, 1}});
    EXPECT_EQ(call(null), 1);
    EXPECT_EQ(Arrays(results.Address(), nullptr, set, 0, kIdentity), 1);
    EXPECT_EQ(call(flat), 1);
    EXPECT_EQ(call(floats), 2);
    EXPECT_EQ(call(four), 3);
    EXPECT_EQ(call(late), 4);
    EXPECT_EQ(late.Locks(), 0u);
    EXPECT_EQ(Arrays(nullptr, good.Address(), set, 0, kIdentity), -2);
    ASSERT_EQ(call(good), 0);
    ASSERT_EQ(SafeArrayLock(results.Get()), S_OK);
    EXPECT_EQ(call(good), -7);
}

}  // namespace
}  // namespace tqtest
