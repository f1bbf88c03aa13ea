#include <algorithm>
#include <optional>

#include "colours.h"
#include "tqimage/colour_averages.h"

namespace tqtest {
namespace {

struct Rectangle {
    std::int32_t left, top, right, bottom;
};

using Result = std::array<float, 3>;

/// Of the whole image, or of a rectangle.
Result Average(const ChannelSet& set, std::int32_t threshold, const Matrix& m, bool luminance,
               const std::optional<Rectangle>& in = {}) {
    Result it{};
    const auto call = [&](auto... k) {
        if (!in)
            return tqCalcAverageColorValues(set[0], set[1], set[2], threshold, k..., luminance, &it[0],
                                            &it[1], &it[2]);
        return tqCalcAverageColorValuesInRegion(set[0], set[1], set[2], threshold, k..., luminance, in->left,
                                                in->top, in->right, in->bottom, &it[0], &it[1], &it[2]);
    };
    EXPECT_EQ(WithMatrix(call, m), 0);
    return it;
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
                EXPECT_EQ(Average(set, threshold, m, luminance),
                          Reference(set, threshold + 1.0, m, luminance, {0, 0, 61, 42}))
                    << threshold;
                EXPECT_EQ(Average(set, threshold, m, luminance, Rectangle{3, 4, 50, 30}),
                          Reference(set, threshold, m, luminance, {3, 4, 50, 30}))
                    << threshold;
            }
        }
    }
    EXPECT_EQ(Average(set, 0, kMixed, true, Rectangle{INT32_MIN, -5, 0, 0}),
              Reference(set, 0, kMixed, true, {0, 0, 60, 42}))
        << "without the last column";
}

TEST(AverageColour, TheWholeImageIsOneLevelStricter) {
    const ChannelSet eleven = UniformChannels(4, 3, {5, 11, 7}), twelve = UniformChannels(4, 3, {5, 12, 7});
    const Result none = Average(eleven, 10, kIdentity, false);
    EXPECT_TRUE(std::isnan(none[0]) && std::isnan(none[1]) && std::isnan(none[2]));
    EXPECT_EQ(Average(twelve, 10, kIdentity, false), (Result{5, 12, 7}));
    EXPECT_EQ(Average(eleven, 10, kIdentity, false, Rectangle{0, 0, 0, 0}), (Result{5, 11, 7}));
    EXPECT_TRUE(std::isnan(Average(eleven, 0, kIdentity, false, Rectangle{2, 0, 2, 2})[1]))
        << "left = right visits no column";
    EXPECT_TRUE(std::isnan(Average(twelve, INT32_MAX, kIdentity, false)[1]))
        << "the next level does not wrap";
}

// Half the pels show the white of sRGB: X + Y + Z and so the chromaticity are those of D65.
TEST(AverageColour, WhiteOfSrgbIsD65) {
    ChannelSet set = UniformChannels(10, 10, {40000, 40000, 40000});
    for (Image& image : set.images)
        std::fill_n(image.Pels(), 50, 3);
    const auto [x, y, z] = Average(set, 100, kSrgb, true);
    const Uv white = UvOf({x, y, z});
    EXPECT_NEAR(white.u, 0.1978, 5e-5);
    EXPECT_NEAR(white.v, 0.4683, 5e-5);
    EXPECT_NEAR(y, 40000.0, 1e-2);
}

}  // namespace
}  // namespace tqtest
