#include <algorithm>
#include <limits>
#include <string>

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

/// X = 100, Y = 200 and Z = 50 of the colour (25, 400, 10).
constexpr Matrix kScale{4, 0, 0, 0, 0.5f, 0, 0, 0, 5};

std::int32_t Histograms(SAFEARRAY** out, const ChannelSet& set, std::int32_t space, std::int32_t threshold,
                        std::int32_t bottom, std::int32_t bins, const float* limits) {
    const auto call = [&](auto... k) {
        return tqGetColorHistograms(out, set[0], set[1], set[2], space, threshold, 0, -5, 0, bottom, bins,
                                    limits, k...);
    };
    return WithMatrix(call, kScale);
}

TEST(ColourHistograms, CountWhatLiesWithinTheLimits) {
    // Five pels of the colour, one of them in the last row, and a black one.
    ChannelSet set = UniformChannels(5, 2, {25, 400, 10});
    for (Image& image : set.images)
        std::fill_n(image.Pels() + 4, 5, std::uint16_t{0});
    const struct {
        std::int32_t space, threshold, bottom;
        Limits limits;
        std::array<std::string, 3> counts;  ///< a digit a bin
    } cases[] = {
        {0, -1, 0, {0, 100, 0, 1000, 0, 50}, {"5050000000", "5000500000", "5050000000"}},
        {0, 399, 0, {0, 100, 0, 1000, 0, 50}, {"0050000000", "0000500000", "0050000000"}},
        {0, 400, 0, {0, 100, 0, 1000, 0, 50}, {"0000000000", "0000000000", "0000000000"}},
        // The lower limit is part of the range, the upper one is not.
        {0, 0, 0, {25, 35, 0, 400, -10, 10}, {"5000000000", "0000000000", "0000000000"}},
        {1, 0, 0, {0, 1000, 0, 1000, 0, 1000}, {"0500000000", "0050000000", "5000000000"}},
        {1, 0, 0, {-100, 3e38f, 200, 201, 0, 100}, {"5000000000", "5000000000", "0000050000"}},
        // x, y = 0.2857, 0.5714 and u', v' = 0.1231, 0.5538; both 0 for black.
        {2, -1, 0, {0, 1, 0, 1, 0, 1000}, {"5050000000", "5000050000", "5050000000"}},
        {3, -1, 0, {0, 1, 0, 1, 0, 1000}, {"5500000000", "5000050000", "5050000000"}},
        {3, 0, 1, {0, 1, 0, 1, 0, 1000}, {"0500000000", "0000050000", "0050000000"}},
    };
    for (const auto& it : cases) {
        HostArray array;
        ASSERT_EQ(Histograms(array.Address(), set, it.space, it.threshold, it.bottom, 10, it.limits.data()),
                  0);
        ASSERT_EQ(array->cDims, 2);
        for (LONG k = 0; k < 3; ++k) {
            std::string counts;
            for (LONG bin = 0; bin < 10; ++bin)
                counts += std::to_string(array.At<std::int32_t>({bin, k}));
            EXPECT_EQ(counts, it.counts[static_cast<std::size_t>(k)])
                << "case " << &it - cases << ", figure " << k;
        }
    }
}

TEST(ColourHistograms, Codes) {
    const Limits good{0, 1, 0, 1, 0, 1};
    HostArray array;
    const ChannelSet set = NoiseChannels(5, 5, 1);
    const auto call = [&](SAFEARRAY** out, int space, int bins, const float* limits) {
        return Histograms(out, set, space, 0, 0, bins, limits);
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
    const auto call = [&](auto... k) {
        return tqGetColorArraysDefined(results, regions, set[0], set[1], set[2], useLux, k...);
    };
    return WithMatrix(call, m);
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
    HostArray null, flat(VT_I4, {{5}}), floats(VT_R4, {{1}, {5}}), late(VT_I4, {{1}, {5, 1}});
    HostArray four = MakeRecords({{0, 1, 2, 3}});
    EXPECT_EQ(Arrays(results.Address(), nullptr, set, 0, kIdentity), 1);
    for (const auto& [list, status] : {std::pair{&null, 1}, {&flat, 1}, {&floats, 2}, {&four, 3}, {&late, 4}})
        EXPECT_EQ(call(*list), status);
    EXPECT_EQ(late.Locks(), 0u);
    EXPECT_EQ(Arrays(nullptr, good.Address(), set, 0, kIdentity), -2);
    ASSERT_EQ(call(good), 0);
    ASSERT_EQ(SafeArrayLock(results.Get()), S_OK);
    EXPECT_EQ(call(good), -7);
}

}  // namespace
}  // namespace tqtest
