#include <algorithm>
#include <limits>

#include "colours.h"
#include "tqimage/colour_transforms.h"

namespace tqtest {
namespace {

struct Outcome {
    std::array<Image, 3> out;
    Triple scales{-1, -1, -1};  ///< of a grey level
};

/// X, Y and Z: by the form that returns the scales, or by the one that stores them.
Outcome ToXyz(const ChannelSet& set, const Matrix& m, bool stored) {
    Outcome it;
    TqImage **const x = it.out[0].Address(), **const y = it.out[1].Address(), **const z = it.out[2].Address();
    const auto call = [&](auto... k) {
        if (stored) return tqTransformRGBToXYZ2(x, y, z, set[0], set[1], set[2], k...);
        return tqTransformRGBToXYZ(x, y, z, &it.scales[0], &it.scales[1], &it.scales[2], set[0], set[1],
                                   set[2], k...);
    };
    EXPECT_EQ(WithMatrix(call, m), 0);
    for (std::size_t k = 0; k < 3 && stored; ++k)
        it.scales[k] = it.out[k].Header().LuxPerGrey;
    return it;
}

std::array<Image, 3> ToRgb(const ChannelSet& set, const Triple& scales, const std::array<double, 9>& m) {
    std::array<Image, 3> out;
    const auto call = [&](auto... k) {
        return tqTransformXYZToRGB3(out[0].Address(), out[1].Address(), out[2].Address(), set[0], set[1],
                                    set[2], scales[0], scales[1], scales[2], k...);
    };
    EXPECT_EQ(WithMatrix(call, m), 0);
    return out;
}

/// Two pels, and a scale of its own for each image.
ChannelSet TwoPels(const std::array<std::vector<int>, 3>& pels, const std::array<float, 3>& luxPerGrey) {
    ChannelSet set;
    for (std::size_t k = 0; k < 3; ++k) {
        set.images[k] = MakeImage(2, 1, pels[k]);
        set.images[k].Header().LuxPerGrey = luxPerGrey[k];
        set.images[k].Header().Spare = 70 + static_cast<std::uint32_t>(k);
    }
    return set;
}

/// The pels of the three images, and headers as those of the channels but for LuxPerGrey.
void ExpectImages(const std::array<Image, 3>& out, const ChannelSet& set,
                  const std::array<std::vector<std::uint16_t>, 3>& pels,
                  const std::array<double, 3>& luxPerGrey) {
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_EQ(out[k].Values(), pels[k]) << k;
        TqImageHeader expected = set.images[k].Header();
        expected.LuxPerGrey = static_cast<float>(luxPerGrey[k]);
        EXPECT_TRUE(SameHeader(expected, out[k].Header())) << k;
    }
}

TEST(RgbToXyz, EachImageFillsItsRangeAndTheScalesTellTheValues) {
    const ChannelSet set = TwoPels({{{100, 10}, {50, 0}, {20, 40}}}, {1, 2, 4});
    const Matrix m{1, 2, 0, 0, 1, -1, 0.5f, 0, 1};
    // Times 2, the scale of green: X 400 and 20, Y 60 and -80, Z 140 and 90.
    const Outcome returned = ToXyz(set, m, false);
    EXPECT_EQ(returned.scales, (Triple{400 / 64000.0, 60 / 64000.0, 140 / 64000.0}));
    ExpectImages(returned.out, set, {{{64000, 3200}, {64000, 0}, {64000, 41143}}}, {1, 2, 4});
    // Each with its own scale (100, 100, 80) and (10, 0, 160): X 300 and 10, Y 20 and -160, Z 130 and 165.
    const Outcome stored = ToXyz(set, m, true);
    ExpectImages(stored.out, set, {{{65000, 2167}, {65000, 0}, {51212, 65000}}},
                 {300 / 65000.0, 20 / 65000.0, 165 / 65000.0});
}

TEST(RgbToXyz, UniformAndDarkChannelsAndWhatIsNoNumber) {
    const Outcome it = ToXyz(UniformChannels(5, 4, {100, 0, 50}), kIdentity, false);
    EXPECT_EQ(it.scales, (Triple{100 / 64000.0, 0.0, 50 / 64000.0}));
    EXPECT_EQ(it.out[0](4, 3), 64000);
    EXPECT_EQ(it.out[1](4, 3), 0);
    // The primaries of sRGB and its white have the chromaticities that its standard names.
    const struct {
        std::array<int, 3> pels;
        double x, y;
    } published[] = {{{50000, 0, 0}, 0.64, 0.33},
                     {{0, 50000, 0}, 0.30, 0.60},
                     {{0, 0, 50000}, 0.15, 0.06},
                     {{50000, 50000, 50000}, 0.3127, 0.3290}};
    for (const auto& colour : published) {
        const Outcome xyz = ToXyz(UniformChannels(2, 2, colour.pels), kSrgb, true);
        const double x = xyz.out[0](0, 0) * xyz.scales[0], y = xyz.out[1](0, 0) * xyz.scales[1],
                     sum = x + y + xyz.out[2](0, 0) * xyz.scales[2];
        EXPECT_NEAR(x / sum, colour.x, 2e-4);
        EXPECT_NEAR(y / sum, colour.y, 2e-4);
    }
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN(),
                    kInfinity = std::numeric_limits<float>::infinity();
    for (const bool stored : {false, true}) {
        const Outcome none = ToXyz(NoiseChannels(19, 5, 2), {kNan, 0, 0, 0, kInfinity, 0, 0, 0, 1}, stored);
        EXPECT_TRUE(SamePels(Image(19, 5), none.out[0]));
        EXPECT_TRUE(SamePels(Image(19, 5), none.out[1]));
    }
}

TEST(XyzToRgb, OneFactorForAllChannels) {
    const std::array<double, 9> m{1, 1, 0, 0, -1, 0, 0, 0, 1};
    // (5, 20, 0) and (30000, 0, 10), divided by the scale of the second image; no scale is a scale of 1.
    const ChannelSet two = TwoPels({{{10, 60000}, {20, 0}, {0, 5}}}, {8, 2, 4});
    ExpectImages(ToRgb(two, {0.5, 1, 2}, m), two, {{{13, 15000}, {0, 0}, {0, 5}}}, {8, 2, 4});
    const ChannelSet none = TwoPels({{{10, 60000}, {20, 0}, {0, 5}}}, {8, 0, 4});
    ExpectImages(ToRgb(none, {0.5, 1, 2}, m), none, {{{25, 30000}, {0, 0}, {0, 10}}}, {8, 0, 4});
    // Ten times as much no longer fits.
    const double f = 300000 / 65000.0;
    ExpectImages(ToRgb(none, {5, 10, 20}, m), none, {{{54, 65000}, {0, 0}, {0, 22}}}, {8 * f, 0, 4 * f});
    // Between the largest pel and the level where scaling begins there is the clamp.
    const auto edge =
        ToRgb(UniformChannels(2, 1, {1, 1, 1}), {65535.75, 65535.4, 1}, {1, 0, 0, 0, 1, 0, 0, 0, 1});
    EXPECT_EQ(edge[0](0, 0), 65535);
    EXPECT_EQ(edge[1](0, 0), 65535);
    EXPECT_EQ(edge[2](1, 0), 1);
    EXPECT_EQ(edge[0].Header().LuxPerGrey, 1.0f);
}

// There and back: what is lost is half a grey level of 64000 on each way.
TEST(XyzToRgb, UndoesTheTransform) {
    ChannelSet set = NoiseChannels(40, 30, 3);
    for (Image& image : set.images)
        image.Header().LuxPerGrey = 1;
    Outcome xyz = ToXyz(set, kSrgb, false);
    const auto back = ToRgb({std::move(xyz.out)}, xyz.scales,
                            {3.2406255, -1.5372080, -0.4986286, -0.9689307, 1.8757561, 0.0415175, 0.0557101,
                             -0.2040211, 1.0569959});
    const double unit = back[0].Header().LuxPerGrey;
    for (std::size_t c = 0; c < 3; ++c) {
        for (std::size_t i = 0; i < set.images[c].Count(); ++i)
            ASSERT_NEAR(back[c].Pels()[i] * unit, set.images[c].Pels()[i], 4.0);
    }
}

TEST(Tristimulus, OutputsMayHoldInputsAndAreAllNeeded) {
    ChannelSet set = NoiseChannels(17, 9, 4);
    auto& in = set.images;
    const Outcome expected = ToXyz(set, kMixed, true);
    Image x, y;
    EXPECT_EQ(tqTransformRGBToXYZ2(x.Address(), y.Address(), nullptr, in[0], in[1], in[2], 1, 0, 0, 0, 1, 0,
                                   0, 0, 1),
              -2);
    // Each output replaces an input, and not the one in its position.
    const auto call = [&](auto... k) {
        return tqTransformRGBToXYZ2(in[1].Address(), in[2].Address(), in[0].Address(), in[0], in[1], in[2],
                                    k...);
    };
    ASSERT_EQ(WithMatrix(call, kMixed), 0);
    for (std::size_t k = 0; k < 3; ++k)
        EXPECT_TRUE(SamePels(expected.out[k], in[(k + 1) % 3]));
}

}  // namespace
}  // namespace tqtest
