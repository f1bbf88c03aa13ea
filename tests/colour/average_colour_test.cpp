#include <algorithm>

#include "colours.h"
#include "tqimage/colour_averages.h"

namespace tqtest {
namespace {

struct Rectangle {
    std::int32_t left, top, right, bottom;
};

using Result = std::array<float, 3>;

std::int32_t Whole(const ChannelSet& set, std::int32_t threshold, const Matrix& m, bool luminance,
                   Result& it) {
    return WithMatrix(
        [&](auto... k) {
            return tqCalcAverageColorValues(set[0], set[1], set[2], threshold, k..., luminance, &it[0],
                                            &it[1], &it[2]);
        },
        m);
}

std::int32_t InRegion(const ChannelSet& set, std::int32_t threshold, const Matrix& m, bool luminance,
                      const Rectangle& at, Result& it) {
    return WithMatrix(
        [&](auto... k) {
            return tqCalcAverageColorValuesInRegion(set[0], set[1], set[2], threshold, k..., luminance,
                                                    at.left, at.top, at.right, at.bottom, &it[0], &it[1],
                                                    &it[2]);
        },
        m);
}

/// Columns left..right - 1 and rows top..bottom as the pels that count, one after another.
Result Reference(const ChannelSet& set, double bound, const Matrix& m, bool luminance, const Rectangle& at) {
    Triple sums{};
    double count = 0;
    for (std::int32_t row = at.top; row <= at.bottom; ++row) {
        for (std::int32_t col = at.left; col < at.right; ++col) {
            const Triple pels = set.At(static_cast<std::size_t>(row * set.images[0].Cols() + col));
            if (!((luminance ? Multiply(m, pels)[1] : pels[1]) > bound)) continue;
            for (std::size_t k = 0; k < 3; ++k)
                sums[k] += pels[k];
            ++count;
        }
    }
    const Triple xyz = Multiply(m, {sums[0] / count, sums[1] / count, sums[2] / count});
    return {float(xyz[0]), float(xyz[1]), float(xyz[2])};
}

TEST(AverageColour, AgreesWithTheObviousLoop) {
    const ChannelSet set = NoiseChannels(61, 43, 5);
    for (const Matrix& m : {kIdentity, kSrgb, kMixed}) {
        for (const bool luminance : {false, true}) {
            for (const int threshold : {INT32_MIN, -1, 0, 1000, 40000, 60000}) {
                Result it{};
                ASSERT_EQ(Whole(set, threshold, m, luminance, it), 0);
                EXPECT_EQ(it, Reference(set, threshold + 1.0, m, luminance, {0, 0, 61, 42})) << threshold;
                ASSERT_EQ(InRegion(set, threshold, m, luminance, {3, 4, 50, 30}, it), 0);
                EXPECT_EQ(it, Reference(set, threshold, m, luminance, {3, 4, 50, 30})) << threshold;
                ASSERT_EQ(InRegion(set, threshold, m, luminance, {INT32_MIN, -5, 0, 0}, it), 0);
                EXPECT_EQ(it, Reference(set, threshold, m, luminance, {0, 0, 60, 42})) << "the last column";
            }
        }
    }
}

TEST(AverageColour, TheWholeImageIsOneLevelStricter) {
    const ChannelSet eleven = UniformChannels(4, 3, {5, 11, 7}), twelve = UniformChannels(4, 3, {5, 12, 7});
    Result it{};
    ASSERT_EQ(Whole(eleven, 10, kIdentity, false, it), 0);
    EXPECT_TRUE(std::isnan(it[0]) && std::isnan(it[1]) && std::isnan(it[2]));
    ASSERT_EQ(Whole(twelve, 10, kIdentity, false, it), 0);
    EXPECT_EQ(it, (Result{5, 12, 7}));
    ASSERT_EQ(InRegion(eleven, 10, kIdentity, false, {0, 0, 0, 0}, it), 0);
    EXPECT_EQ(it, (Result{5, 11, 7}));
    ASSERT_EQ(InRegion(eleven, 0, kIdentity, false, {2, 0, 2, 2}, it), 0);
    EXPECT_TRUE(std::isnan(it[1])) << "left = right visits no column";
    ASSERT_EQ(Whole(twelve, INT32_MAX, kIdentity, false, it), 0) << "the next level does not wrap";
    EXPECT_TRUE(std::isnan(it[1]));
}

// Half the pels show the white of sRGB: X + Y + Z and so the chromaticity are those of D65.
TEST(AverageColour, WhiteOfSrgbIsD65) {
    ChannelSet set = UniformChannels(10, 10, {40000, 40000, 40000});
    for (Image& image : set.images)
        std::fill_n(image.Pels(), 50, 3);
    Result it{};
    ASSERT_EQ(Whole(set, 100, kSrgb, true, it), 0);
    const double d = it[0] + 15.0 * it[1] + 3.0 * it[2];
    EXPECT_NEAR(4.0 * it[0] / d, 0.1978, 5e-5);
    EXPECT_NEAR(9.0 * it[1] / d, 0.4683, 5e-5);
    EXPECT_NEAR(it[1], 40000.0, 1e-2);
}

}  // namespace
}  // namespace tqtest
