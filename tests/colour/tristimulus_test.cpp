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

/// Values of one plane, their largest, and the pels for a unit.
struct Plane {
    std::vector<double> values;
    double Largest() const { return std::max(0.0, *std::max_element(values.begin(), values.end())); }
    void ExpectPels(const Image& image, double unit) const {
        for (std::size_t i = 0; i < values.size(); ++i) {
            const bool lit = values[i] >= 0 && unit != 0;
            ASSERT_EQ(image.Pels()[i], lit ? PelOf(values[i] / unit + 0.5) : 0) << i;
        }
    }
};

template <class ValueAt>
std::array<Plane, 3> PlanesOf(const ChannelSet& set, ValueAt&& valueAt) {
    std::array<Plane, 3> planes;
    for (std::size_t i = 0; i < set.images[0].Count(); ++i) {
        const Triple value = valueAt(set.At(i));
        for (std::size_t k = 0; k < 3; ++k)
            planes[k].values.push_back(value[k]);
    }
    return planes;
}

TEST(RgbToXyz, EachImageFillsItsRangeAndTheScalesTellTheValues) {
    for (const auto& [cols, rows] : {std::pair{61, 43}, std::pair{1, 1}, std::pair{3, 2}}) {
        const ChannelSet set = NoiseChannels(cols, rows, 9);
        const auto lux = [&](std::size_t k) { return double(set.images[k].Header().LuxPerGrey); };
        for (const Matrix& m : {kIdentity, kSrgb, kMixed, Matrix{-1, -1, -1, 0, 0, 0, 1e-30f, 0, 0}}) {
            for (const bool stored : {false, true}) {
                const auto planes = PlanesOf(set, [&](const Triple& pels) {
                    if (stored) return Multiply(m, {pels[0] * lux(0), pels[1] * lux(1), pels[2] * lux(2)});
                    const Triple value = Multiply(m, pels);
                    return Triple{value[0] * lux(1), value[1] * lux(1), value[2] * lux(1)};
                });
                const Outcome it = ToXyz(set, m, stored);
                for (std::size_t c = 0; c < 3; ++c) {
                    const double largest = planes[c].Largest();
                    EXPECT_EQ(it.scales[c],
                              stored ? double(static_cast<float>(largest / 65000)) : largest / 64000);
                    TqImageHeader expected = set.images[c].Header();
                    if (stored) expected.LuxPerGrey = static_cast<float>(it.scales[c]);
                    EXPECT_TRUE(SameHeader(it.out[c].Header(), expected));
                    planes[c].ExpectPels(it.out[c], it.scales[c]);
                }
            }
        }
    }
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
    ChannelSet set = NoiseChannels(61, 43, 29);
    const std::array<double, 9> m{3.2406, -1.5372, -0.4986, -0.9689, 1.8758, 0.0415, 0.0557, -0.2040, 1.0570};
    for (const float lux : {0.0f, 0.5f, 2.0f}) {
        set.images[1].Header().LuxPerGrey = lux;
        for (const double scale : {0.001, 0.1, 0.3, 1.0, 1e9}) {
            const double divisor = lux == 0 ? 1.0 : double(lux);
            const auto planes = PlanesOf(set, [&](const Triple& pels) {
                const double x = pels[0] * scale, y = pels[1] * (scale * 2), z = pels[2] * scale;
                Triple value;
                for (std::size_t k = 0; k < 3; ++k)
                    value[k] = (m[3 * k] * x + m[3 * k + 1] * y + m[3 * k + 2] * z) / divisor;
                return value;
            });
            const double largest = std::max({planes[0].Largest(), planes[1].Largest(), planes[2].Largest()});
            const bool scaled = largest >= 65536.0;
            const double unit = scaled ? largest / 65000.0 : 1.0;
            const auto out = ToRgb(set, {scale, scale * 2, scale}, m);
            for (std::size_t c = 0; c < 3; ++c) {
                TqImageHeader expected = set.images[c].Header();
                if (scaled) expected.LuxPerGrey = static_cast<float>(expected.LuxPerGrey * unit);
                EXPECT_TRUE(SameHeader(out[c].Header(), expected));
                planes[c].ExpectPels(out[c], unit);
            }
        }
    }
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
