#include "tqimage/colour_difference.h"

#include <algorithm>

#include "colours.h"
#include "tqimage/colour_transforms.h"
#include "tqimage/pel_block.h"

namespace tqtest {
namespace {

struct Block {
    std::int32_t cols, rows;
};
constexpr Block kBlocks[] = {{0, 1}, {1, 3}, {5, -2}, {4, 7}, {200, 200}};

/// The channels at a pel: itself, or its block averages.
Triple Sample(const ChannelSet& set, Block block, std::int32_t col, std::int32_t row) {
    Triple value;
    for (std::size_t k = 0; k < 3; ++k) {
        value[k] = block.cols < 2 && block.rows < 2
                       ? set.images[k](col, row)
                       : tqGetPelBlockAvg(set[k], col, row, block.cols, block.rows);
    }
    return value;
}

template <class ValueAt>
std::vector<float> ValuesOf(const ChannelSet& set, Block block, ValueAt&& valueAt) {
    std::vector<float> values;
    for (std::int32_t row = 0; row < set.images[0].Rows(); ++row) {
        for (std::int32_t col = 0; col < set.images[0].Cols(); ++col)
            values.push_back(static_cast<float>(valueAt(Sample(set, block, col, row))));
    }
    return values;
}

/// Largest difference at 65000, and a header that says so.
void ExpectScaled(const std::vector<float>& values, const Image& like, const Image& out) {
    float largest = 0;
    for (const float value : values)
        largest = value > largest ? value : largest;
    if (largest < 1e-8) largest = 1;
    const float scale = 65000.0f / largest;
    TqImageHeader expected = like.Header();
    expected.MaxPelValue = 65000;
    expected.LuxPerGrey = 1.0f / scale;
    EXPECT_TRUE(SameHeader(expected, out.Header()));
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(out.Pels()[i], PelOf(values[i] * scale)) << i;
}

std::int32_t LumDiff(Image& out, const TqImage* a, const TqImage* b, const TqImage* c, float u, float v,
                     float lux, float wL, float wC, Block block, const Matrix& m) {
    return WithMatrix(
        [&](auto... k) {
            return tqCalcColorLumDiff(out.Address(), a, b, c, u, v, lux, wL, wC, block.cols, block.rows,
                                      k...);
        },
        m);
}

std::int32_t Error(Image& out, const ChannelSet& set, float u, float v, float a, float b, float angle,
                   Block block, const Matrix& m) {
    return WithMatrix(
        [&](auto... k) {
            return tqCalcColorError(out.Address(), set[0], set[1], set[2], u, v, a, b, angle, block.cols,
                                    block.rows, k...);
        },
        m);
}

TEST(ColourDifference, AgreesWithTheObviousLoop) {
    const ChannelSet set = NoiseChannels(37, 21, 8);
    const float lux = set.images[1].Header().LuxPerGrey;
    for (const Matrix& m : {kIdentity, kSrgb, kMixed}) {
        for (const Block block : kBlocks) {
            Image out;
            ASSERT_EQ(LumDiff(out, set[0], set[1], set[2], 0.2f, 0.47f, 300.0f, -0.7f, -2.5f, block, m), 0);
            const auto values = ValuesOf(set, block, [&](const Triple& at) {
                const Triple xyz = Multiply(m, at);
                const double d = xyz[0] + 15 * xyz[1] + 3 * double(float(xyz[2]));
                const double du = (d == 0 ? 0 : 4 * xyz[0] / d) - double(0.2f);
                const double dv = (d == 0 ? 0 : 9 * xyz[1] / d) - double(0.47f);
                const double dl = (at[1] * double(lux) - 300.0) / 300.0;
                return std::sqrt((dv * dv + du * du) * 2.5 + dl * dl * double(0.7f));
            });
            ExpectScaled(values, set.images[1], out);
            ASSERT_EQ(LumDiff(out, set[0], set[1], set[2], 0.2f, 0.47f, 300.0f, 0.7f, 0.0f, block, m), 0);
            const auto grey = ValuesOf(set, block, [&](const Triple& at) {
                return std::abs(lux * static_cast<float>(at[1]) - 300.0f) / 300.0f * std::sqrt(0.7f);
            });
            ExpectScaled(grey, set.images[1], out);
        }
    }
}

TEST(ColourDifference, LuminanceAloneTakesTheChannelThatThereIs) {
    const ChannelSet set = NoiseChannels(9, 8, 3);
    const TqImage* const none = nullptr;
    for (std::size_t k = 0; k < 3; ++k) {
        Image alone, out;
        ASSERT_EQ(LumDiff(alone, none, set[k], none, 0, 0, 5, 1, 0, {1, 1}, kIdentity), 0);
        ASSERT_EQ(LumDiff(out, k == 0 ? set[0] : none, k == 1 ? set[1] : none, k == 2 ? set[2] : none, 0, 0,
                          5, 1, 1, {1, 1}, kIdentity),
                  0);
        EXPECT_TRUE(SamePels(alone, out));
    }
    Image out;
    const Image level = MakeImage(6, 5, [](auto, auto) { return 200; });
    ASSERT_EQ(LumDiff(out, none, level, none, 0, 0, 200, 1, 1, {1, 1}, kIdentity), 0);
    EXPECT_EQ(out.Header().LuxPerGrey, 1.0f / 65000.0f);
    EXPECT_EQ(*std::max_element(out.Pels(), out.Pels() + out.Count()), 0);
    for (const float lux : {0.0f, -3.0f, std::nanf("")}) {
        ASSERT_EQ(LumDiff(out, none, level, none, 0, 0, lux, 1, 1, {1, 1}, kIdentity), 0);
        EXPECT_NEAR(out(0, 0) * double(out.Header().LuxPerGrey), 199.0, 1e-3) << "the reference is 1";
    }
}

TEST(ColourError, AgreesWithTheObviousLoop) {
    const ChannelSet set = NoiseChannels(37, 21, 18);
    for (const Matrix& m : {kIdentity, kSrgb, kMixed}) {
        for (const Block block : kBlocks) {
            Image out;
            ASSERT_EQ(Error(out, set, 0.2f, 0.47f, -0.5f, 0.25f, 90.0f, block, m), 0);
            // A quarter turn: a along v', but for the rounding of the angle.
            const float angle = static_cast<float>(90.0 * 3.141592654 / 180.0);
            const double c = static_cast<float>(std::cos(double(angle)));
            const auto values = ValuesOf(set, block, [&](const Triple& at) {
                const Triple xyz = Multiply(m, at);
                const double x = float(xyz[0]), y = float(xyz[1]), z = float(xyz[2]);
                const double d = float(x + 15 * y + 3 * z);
                const double du = float((d == 0 ? 0 : 4 * x / d) - double(0.2f));
                const double dv = float((d == 0 ? 0 : 9 * y / d) - double(0.47f));
                return std::sqrt((4 + c * c * 16) * (dv * dv) + 2 * ((4.0 - 16.0) * c) * du * dv +
                                 (c * c * 4 + 16) * (du * du));
            });
            ExpectScaled(values, set.images[1], out);
        }
    }
}

TEST(ColourError, IsOneOnTheEllipse) {
    // One pel of the centre's colour for the matrix that makes X = 4, Y = 4, Z = 0 of a white pel, so that
    // u' = 16 / 64 and v' = 36 / 64.
    const ChannelSet set = UniformChannels(2, 2, {40000, 40000, 0});
    for (const float degrees : {0.0f, 30.0f, 90.0f, 217.5f}) {
        const double angle = degrees * 3.14159265358979 / 180;
        const float along = 0.02f, across = 0.005f;
        const struct {
            double du, dv, a, b;
        } cases[] = {{0.01, 0, 0.01, 0.01},
                     {along * std::cos(angle), along * std::sin(angle), along, across},
                     {-across * std::sin(angle), across * std::cos(angle), along, across}};
        for (const auto& it : cases) {
            Image out;
            ASSERT_EQ(Error(out, set, static_cast<float>(0.25 - it.du), static_cast<float>(0.5625 - it.dv),
                            static_cast<float>(it.a), static_cast<float>(it.b), degrees, {1, 1}, kIdentity),
                      0);
            EXPECT_NEAR(out(1, 1) * double(out.Header().LuxPerGrey), 1.0, 3e-5);
        }
    }
}

TEST(ColourSpace, AgreesWithTheObviousLoop) {
    const ChannelSet set = NoiseChannels(37, 21, 28);
    const float low = -0.1f, high = 0.9f;
    const float gain = 50000.0f / (high - low);
    for (const Matrix& m : {kIdentity, kSrgb, kMixed}) {
        for (const Block block : kBlocks) {
            for (int quantity = -1; quantity <= 6; ++quantity) {
                Image out;
                ASSERT_EQ(WithMatrix(
                              [&](auto... k) {
                                  return tqTransformToColorSpace(out.Address(), set[0], set[1], set[2],
                                                                 quantity, 50000, low, high, block.cols,
                                                                 block.rows, k...);
                              },
                              m),
                          0);
                TqImageHeader expected = set.images[1].Header();
                expected.LuxPerGrey = high / 50000.0f;
                EXPECT_TRUE(SameHeader(expected, out.Header()));
                std::vector<std::uint16_t> pels;
                ValuesOf(set, block, [&](const Triple& at) {
                    const auto [x, y, z] = Multiply(m, at);
                    const double sum = x + y + z, d = x + 15 * y + 3 * z;
                    const double q[] = {sum == 0 ? 0 : x / sum,
                                        sum == 0 ? 0 : y / sum,
                                        d == 0 ? 0 : 4 * x / d,
                                        d == 0 ? 0 : 9 * y / d,
                                        100 * x / y,
                                        100 * z / y};
                    const bool defined = quantity >= 0 && quantity < 6;
                    const double level = defined ? (q[quantity] - double(low)) * double(gain) : 0;
                    pels.push_back(std::isfinite(level) ? PelOf(std::fmin(level, 65535.0)) : 0);
                    return 0;
                });
                ASSERT_EQ(out.Values(), pels) << quantity;
            }
        }
    }
}

TEST(ColourImages, CodesAliasesAndMemory) {
    Image out;
    const auto space = [&](auto a, auto b, auto c) {
        return tqTransformToColorSpace(out.Address(), a, b, c, 2, 65535, 0, 1, 3, 3, 1, 0, 0, 0, 1, 0, 0, 0,
                                       1);
    };
    ExpectChannelCodes({-2, -3, -4, -5, -7}, space);
    const ChannelSet set = NoiseChannels(7, 5, 6);
    const Image invalid(0, 3), other(5, 7);
    EXPECT_EQ(
        tqTransformToColorSpace(nullptr, set[0], set[1], set[2], 0, 1, 0, 1, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1),
        -2);
    const auto difference = [&](auto a, auto b, auto c, float wC) {
        return LumDiff(out, a, b, c, 0.2f, 0.4f, 1, 1, wC, {3, 3}, kIdentity);
    };
    const auto error = [&](const TqImage* a, const TqImage* b, const TqImage* c, float axis) {
        return tqCalcColorError(out.Address(), a, b, c, 0.2f, 0.4f, 0.1f, axis, 0, 3, 3, 1, 0, 0, 0, 1, 0, 0,
                                0, 1);
    };
    const TqImage* const none = nullptr;
    EXPECT_EQ(difference(none, none, none, 1), -2);
    EXPECT_EQ(error(none, none, none, 1), -2);
    const struct {
        const TqImage *a, *b, *c;
        std::int32_t expected;
    } cases[] = {{set[0], set[1], set[2], 0},
                 {invalid, invalid, other, -3},
                 {other, invalid, invalid, -4},
                 {other, set[1], invalid, -5},
                 {set[0], set[1], other, -7}};
    for (const auto& it : cases) {
        EXPECT_EQ(difference(it.a, it.b, it.c, 1), it.expected);
        EXPECT_EQ(error(it.a, it.b, it.c, 1), it.expected);
    }
    EXPECT_EQ(difference(set[0], invalid, set[2], 0), -6);
    EXPECT_EQ(difference(invalid, none, set[2], 1), -6) << "the first of those that there are";
    EXPECT_EQ(error(none, set[1], set[2], 1), -3);
    EXPECT_EQ(error(set[0], set[1], none, 1), -5);
    EXPECT_EQ(error(set[0], set[1], set[2], 0), -7);
    const std::function<std::int32_t(const ChannelSet&)> calls[] = {
        [&](const ChannelSet& it) { return difference(it[0], it[1], it[2], 1); },
        [&](const ChannelSet& it) { return error(it[0], it[1], it[2], 1); },
        [&](const ChannelSet& it) { return space(it[0], it[1], it[2]); }};
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_EQ(calls[i](set), 0);
        const Image expected = out;
        ChannelSet host = set;
        out = std::move(host.images[1]);
        host.images[1] = Image();
        const ChannelSet& rest = host;
        const TqImage* const held = out;
        const std::int32_t status = i == 0   ? difference(rest[0], held, rest[2], 1)
                                    : i == 1 ? error(rest[0], held, rest[2], 1)
                                             : space(rest[0], held, rest[2]);
        ASSERT_EQ(status, 0) << "out may hold a channel";
        EXPECT_TRUE(SamePels(expected, out));
        if (!CanFailAllocations()) continue;
        EXPECT_GT(FailEachAllocation(
                      i == 2 ? -6 : -8, 0, [&] { return calls[i](set); },
                      [&] { EXPECT_TRUE(SamePels(expected, out)); }),
                  3);
    }
}

}  // namespace
}  // namespace tqtest
