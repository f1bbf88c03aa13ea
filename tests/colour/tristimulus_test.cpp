#include <algorithm>
#include <limits>

#include "colours.h"
#include "tqimage/colour_transforms.h"

namespace tqtest {
namespace {

struct Outcome {
    std::array<Image, 3> out;
    Triple scales{-1, -1, -1};
    std::int32_t status = 1;
};

Outcome ToXyz(const ChannelSet& set, const Matrix& m) {
    Outcome it;
    WithMatrix(
        [&](auto... k) {
            it.status = tqTransformRGBToXYZ(it.out[0].Address(), it.out[1].Address(), it.out[2].Address(),
                                            &it.scales[0], &it.scales[1], &it.scales[2], set[0], set[1],
                                            set[2], k...);
        },
        m);
    return it;
}

Outcome ToXyz2(const ChannelSet& set, const Matrix& m) {
    Outcome it;
    WithMatrix(
        [&](auto... k) {
            it.status = tqTransformRGBToXYZ2(it.out[0].Address(), it.out[1].Address(), it.out[2].Address(),
                                             set[0], set[1], set[2], k...);
        },
        m);
    return it;
}

Outcome ToRgb(const ChannelSet& set, const Triple& scales, const std::array<double, 9>& m) {
    Outcome it;
    WithMatrix(
        [&](auto... k) {
            it.status = tqTransformXYZToRGB3(it.out[0].Address(), it.out[1].Address(), it.out[2].Address(),
                                             set[0], set[1], set[2], scales[0], scales[1], scales[2], k...);
        },
        m);
    return it;
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
        for (const Matrix& m : {kIdentity, kSrgb, kMixed, Matrix{-1, -1, -1, 0, 0, 0, 1e-30f, 0, 0}}) {
            const double k = set.images[1].Header().LuxPerGrey;
            const auto planes = PlanesOf(set, [&](const Triple& pels) {
                const Triple value = Multiply(m, pels);
                return Triple{value[0] * k, value[1] * k, value[2] * k};
            });
            const Outcome it = ToXyz(set, m);
            ASSERT_EQ(it.status, 0);
            for (std::size_t c = 0; c < 3; ++c) {
                EXPECT_EQ(it.scales[c], planes[c].Largest() / 64000.0);
                EXPECT_TRUE(SameHeader(it.out[c].Header(), set.images[c].Header()));
                planes[c].ExpectPels(it.out[c], it.scales[c]);
            }
        }
    }
}

TEST(RgbToXyz, TheSecondFormAppliesAndStoresLuxPerGrey) {
    const ChannelSet set = NoiseChannels(61, 43, 19);
    for (const Matrix& m : {kIdentity, kSrgb, kMixed, Matrix{-1, -1, -1, 0, 0, 0, 1e-30f, 0, 0}}) {
        const auto planes = PlanesOf(set, [&](const Triple& pels) {
            return Multiply(m, {pels[0] * double(set.images[0].Header().LuxPerGrey),
                                pels[1] * double(set.images[1].Header().LuxPerGrey),
                                pels[2] * double(set.images[2].Header().LuxPerGrey)});
        });
        const Outcome it = ToXyz2(set, m);
        ASSERT_EQ(it.status, 0);
        for (std::size_t c = 0; c < 3; ++c) {
            TqImageHeader expected = set.images[c].Header();
            expected.LuxPerGrey = static_cast<float>(planes[c].Largest() / 65000.0);
            EXPECT_TRUE(SameHeader(it.out[c].Header(), expected));
            planes[c].ExpectPels(it.out[c], expected.LuxPerGrey);
        }
    }
}

TEST(RgbToXyz, UniformAndDarkChannels) {
    const Outcome it = ToXyz(UniformChannels(5, 4, {100, 0, 50}), kIdentity);
    ASSERT_EQ(it.status, 0);
    EXPECT_EQ(it.scales, (Triple{100 / 64000.0, 0.0, 50 / 64000.0}));
    EXPECT_EQ(it.out[0](4, 3), 64000);
    EXPECT_EQ(it.out[1](4, 3), 0);
    // The primaries of sRGB and its white have the chromaticities that its standard names.
    const double published[4][2] = {{0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}, {0.3127, 0.3290}};
    for (std::size_t k = 0; k < 4; ++k) {
        std::array<int, 3> pels{0, 0, 0};
        if (k == 3) pels.fill(50000);
        if (k < 3) pels[k] = 50000;
        const Outcome primary = ToXyz2(UniformChannels(2, 2, pels), kSrgb);
        Triple xyz;
        for (std::size_t c = 0; c < 3; ++c)
            xyz[c] = primary.out[c](0, 0) * double(primary.out[c].Header().LuxPerGrey);
        EXPECT_NEAR(xyz[0] / (xyz[0] + xyz[1] + xyz[2]), published[k][0], 2e-4);
        EXPECT_NEAR(xyz[1] / (xyz[0] + xyz[1] + xyz[2]), published[k][1], 2e-4);
    }
}

TEST(RgbToXyz, CoefficientsThatAreNoNumbersLeaveZeros) {
    const ChannelSet set = NoiseChannels(19, 5, 2);
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    const Matrix m{nan, 0, 0, 0, inf, 0, 0, 0, 1};
    for (const Outcome& it : {ToXyz(set, m), ToXyz2(set, m)}) {
        ASSERT_EQ(it.status, 0);
        for (std::size_t i = 0; i < it.out[0].Count(); ++i)
            ASSERT_EQ(it.out[0].Pels()[i] + it.out[1].Pels()[i], 0);
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
            const Outcome it = ToRgb(set, {scale, scale * 2, scale}, m);
            ASSERT_EQ(it.status, 0);
            for (std::size_t c = 0; c < 3; ++c) {
                TqImageHeader expected = set.images[c].Header();
                if (scaled) expected.LuxPerGrey = static_cast<float>(expected.LuxPerGrey * unit);
                EXPECT_TRUE(SameHeader(it.out[c].Header(), expected));
                planes[c].ExpectPels(it.out[c], unit);
            }
        }
    }
    // Between the largest pel and the level where scaling begins there is the clamp.
    const Outcome edge =
        ToRgb(UniformChannels(2, 1, {1, 1, 1}), {65535.75, 65535.4, 1}, {1, 0, 0, 0, 1, 0, 0, 0, 1});
    EXPECT_EQ(edge.out[0](0, 0), 65535);
    EXPECT_EQ(edge.out[1](0, 0), 65535);
    EXPECT_EQ(edge.out[2](1, 0), 1);
    EXPECT_EQ(edge.out[0].Header().LuxPerGrey, 1.0f);
}

// There and back: what is lost is half a grey level of 64000 on each way.
TEST(XyzToRgb, UndoesTheTransform) {
    ChannelSet set = NoiseChannels(40, 30, 3);
    for (Image& image : set.images)
        image.Header().LuxPerGrey = 1;
    Outcome xyz = ToXyz(set, kSrgb);
    const ChannelSet middle{std::move(xyz.out)};
    const Outcome back = ToRgb(middle, xyz.scales,
                               {3.2406255, -1.5372080, -0.4986286, -0.9689307, 1.8757561, 0.0415175,
                                0.0557101, -0.2040211, 1.0569959});
    const double unit = back.out[0].Header().LuxPerGrey;
    for (std::size_t c = 0; c < 3; ++c) {
        for (std::size_t i = 0; i < set.images[c].Count(); ++i)
            ASSERT_NEAR(back.out[c].Pels()[i] * unit, set.images[c].Pels()[i], 4.0);
    }
}

using Transform = std::function<std::int32_t(TqImage**, TqImage**, TqImage**, const TqImage*, const TqImage*,
                                             const TqImage*)>;

TEST(Tristimulus, CodesAliasesAndMemory) {
    double s[3];
    const Transform transforms[] = {
        [&](auto x, auto y, auto z, auto a, auto b, auto c) {
            std::fill_n(s, 3, 5.0);
            const auto status =
                tqTransformRGBToXYZ(x, y, z, &s[0], &s[1], &s[2], a, b, c, 1, 0, 0, 0, 1, 0, 0, 0, 1);
            EXPECT_EQ(s[0] + s[1] + s[2] == 0.0, status != 0) << "zeros before any check";
            return status;
        },
        [](auto x, auto y, auto z, auto a, auto b, auto c) {
            return tqTransformRGBToXYZ2(x, y, z, a, b, c, 1, 0, 0, 0, 1, 0, 0, 0, 1);
        },
        [](auto x, auto y, auto z, auto a, auto b, auto c) {
            return tqTransformXYZToRGB3(x, y, z, a, b, c, 1, 1, 1, 1, 0, 0, 0, 1, 0, 0, 0, 1);
        }};
    for (const Transform& transform : transforms) {
        Image x, y, z;
        ExpectChannelCodes({-2, -3, -3, -3, -5}, [&](auto a, auto b, auto c) {
            return transform(x.Address(), y.Address(), z.Address(), a, b, c);
        });
        const ChannelSet set = NoiseChannels(17, 9, 4);
        EXPECT_EQ(transform(nullptr, y.Address(), z.Address(), set[0], set[1], set[2]), -2);
        EXPECT_EQ(transform(x.Address(), y.Address(), nullptr, set[0], set[1], set[2]), -2);
        ASSERT_EQ(transform(x.Address(), y.Address(), z.Address(), set[0], set[1], set[2]), 0);
        // Each output replaces an input, and not the one in its position.
        ChannelSet host = set;
        auto& in = host.images;
        ASSERT_EQ(transform(in[1].Address(), in[2].Address(), in[0].Address(), in[0], in[1], in[2]), 0);
        EXPECT_TRUE(SamePels(x, in[1]));
        EXPECT_TRUE(SamePels(y, in[2]));
        EXPECT_TRUE(SamePels(z, in[0]));
        if (!CanFailAllocations()) continue;
        host = set;
        EXPECT_EQ(FailEachAllocation(
                      -4, 0,
                      [&] {
                          return transform(in[0].Address(), in[1].Address(), in[2].Address(), in[0], in[1],
                                           in[2]);
                      },
                      [&] { EXPECT_TRUE(SamePels(set.images[2], in[2])); }),
                  3);
    }
}

}  // namespace
}  // namespace tqtest
