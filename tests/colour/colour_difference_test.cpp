#include "tqimage/colour_difference.h"

#include <algorithm>

#include "colours.h"
#include "tqimage/colour_transforms.h"

namespace tqtest {
namespace {

struct Block {
    std::int32_t cols, rows;
};
constexpr Block kBlocks[] = {{0, 1}, {1, 3}, {5, -2}, {4, 7}, {200, 200}};

struct Span {
    std::int32_t first, last;
};

/// Where a block lies along an axis: it slides at its start and is cut at its end …
Span BlockSpan(std::int32_t at, std::int32_t size, std::int32_t pels) {
    const std::int32_t first = std::max(at - std::max(size, 1) / 2, 0);
    return {first, std::min(first + std::max(size, 1) - 1, pels - 1)};
}

/// … and where a neighbourhood, which is odd and slides at both ends.
Span WindowSpan(std::int32_t at, std::int32_t size, std::int32_t pels) {
    const std::int32_t cut = std::min(size, pels), odd = cut - 1 + cut % 2;
    const std::int32_t first = std::clamp(at - odd / 2, 0, pels - odd);
    return {first, first + odd - 1};
}

double Mean(const Image& image, Span cols, Span rows, bool lit) {
    double sum = 0, count = 0;
    for (std::int32_t row = rows.first; row <= rows.last; ++row) {
        for (std::int32_t col = cols.first; col <= cols.last; ++col) {
            sum += image(col, row);
            count += !lit || image(col, row) != 0;
        }
    }
    return sum / count;
}

/// The channels at a pel: itself, or its block averages.
Triple Sample(const ChannelSet& set, Block block, std::int32_t col, std::int32_t row, bool lit = false) {
    Triple value;
    for (std::size_t k = 0; k < 3; ++k) {
        const Image& image = set.images[k];
        value[k] = Mean(image, BlockSpan(col, block.cols, image.Cols()),
                        BlockSpan(row, block.rows, image.Rows()), lit);
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

/// Largest difference at 65000, and a header that says so. Values below 0 are left out.
void ExpectScaled(const std::vector<float>& values, const Image& like, const Image& out) {
    float largest = 0;
    for (const float value : values)
        largest = value > largest ? value : largest;
    if (largest < 1e-8) largest = 1;
    const float scale = 65000.0f / largest;
    const bool holed = *std::min_element(values.begin(), values.end()) < 0;
    TqImageHeader expected = like.Header();
    expected.MaxPelValue = 65000;
    expected.LuxPerGrey = 1.0f / scale;
    EXPECT_TRUE(SameHeader(expected, out.Header()));
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(out.Pels()[i], std::max<int>(PelOf(values[i] * scale), holed && values[i] >= 0)) << i;
}

/// Which of the four images of differences: from a target or from the neighbourhood, with holes or without.
struct Form {
    bool local, lit;
};
constexpr Form kForms[] = {{false, false}, {false, true}, {true, false}, {true, true}};
constexpr Block kAround{201, 200};
constexpr float kU = 0.2f, kV = 0.47f, kLux = 300.0f;

std::int32_t LumDiff(Form form, Image& out, const TqImage* a, const TqImage* b, const TqImage* c, float wL,
                     float wC, Block block, const Matrix& m, Block around = kAround, float lux = kLux) {
    const auto call = [&](auto... k) {
        if (form.local) {
            const auto make = form.lit ? tqCalcLocalColorLumDiff0 : tqCalcLocalColorLumDiff;
            return make(out.Address(), a, b, c, wL, wC, block.cols, block.rows, around.cols, around.rows,
                        k...);
        }
        const auto make = form.lit ? tqCalcColorLumDiff0 : tqCalcColorLumDiff;
        return make(out.Address(), a, b, c, kU, kV, lux, wL, wC, block.cols, block.rows, k...);
    };
    return WithMatrix(call, m);
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

double DenominatorOf(const Triple& xyz) {
    return xyz[0] + 15 * xyz[1] + 3 * xyz[2];
}

/// The difference of one pel; -1 where a channel that counts is 0.
float DifferenceAt(const ChannelSet& set, Form form, Block block, Block around, const Matrix& m, bool colour,
                   std::int32_t col, std::int32_t row) {
    const Image& second = set.images[1];
    const float lux = second.Header().LuxPerGrey;
    for (std::size_t k = 0; k < 3; ++k)
        if (form.lit && (colour || k == 1) && set.images[k](col, row) == 0) return -1;
    const Triple at = Sample(set, block, col, row, form.lit);
    float u = kU, v = kV, reference = kLux;
    if (form.local) {
        Triple means;
        for (std::size_t k = 0; k < 3; ++k)
            means[k] = Mean(set.images[k], WindowSpan(col, around.cols, second.Cols()),
                            WindowSpan(row, around.rows, second.Rows()), form.lit);
        const Triple xyz = Multiply(m, means);
        const double d = DenominatorOf(xyz);
        u = static_cast<float>(d == 0 ? 0 : 4 * xyz[0] / d);
        v = static_cast<float>(d == 0 ? 0 : 9 * xyz[1] / d);
        reference = static_cast<float>(means[1] * double(lux));
    }
    const bool dark = !(reference >= 1e-7);
    if (!colour)
        return dark ? 0 : std::abs(lux * static_cast<float>(at[1]) - reference) / reference * std::sqrt(0.7f);
    Triple xyz = Multiply(m, at);
    xyz[2] = float(xyz[2]);
    const double d = DenominatorOf(xyz);
    const double du = (d == 0 ? 0 : 4 * xyz[0] / d) - double(u);
    const double dv = (d == 0 ? 0 : 9 * xyz[1] / d) - double(v);
    const double dl = dark ? 0 : (at[1] * double(lux) - double(reference)) / double(reference);
    return static_cast<float>(std::sqrt((dv * dv + du * du) * 2.5 + dl * dl * double(0.7f)));
}

TEST(ColourDifference, AgreesWithTheObviousLoop) {
    ChannelSet set = NoiseChannels(37, 21, 8);
    for (std::int32_t row = 0; row < 12; ++row)  // a neighbourhood without light
        std::fill_n(&set.images[1](0, row), 14, std::uint16_t{0});
    for (const Form form : kForms) {
        for (const Matrix& m : {kIdentity, kSrgb, kMixed}) {
            for (const Block block : kBlocks) {
                for (const bool colour : {true, false}) {
                    for (const Block around : {kAround, Block{8, 7}}) {
                        if (around.cols <= block.cols) continue;
                        Image out;
                        ASSERT_EQ(LumDiff(form, out, set[0], set[1], set[2], -0.7f, colour ? -2.5f : 0.0f,
                                          block, m, around),
                                  0);
                        std::vector<float> values;
                        for (std::int32_t row = 0; row < out.Rows(); ++row)
                            for (std::int32_t col = 0; col < out.Cols(); ++col)
                                values.push_back(DifferenceAt(set, form, block, around, m, colour, col, row));
                        ExpectScaled(values, set.images[1], out);
                    }
                }
            }
        }
    }
}

TEST(ColourDifference, LuminanceAloneTakesTheChannelThatThereIs) {
    const ChannelSet set = NoiseChannels(9, 8, 3);
    const TqImage* const none = nullptr;
    for (const Form form : kForms) {
        for (std::size_t k = 0; k < 3; ++k) {
            Image alone, out;
            ASSERT_EQ(LumDiff(form, alone, none, set[k], none, 1, 0, {1, 1}, kIdentity), 0);
            ASSERT_EQ(LumDiff(form, out, k == 0 ? set[0] : none, k == 1 ? set[1] : none,
                              k == 2 ? set[2] : none, 1, 1, {1, 1}, kIdentity),
                      0);
            EXPECT_TRUE(SamePels(alone, out));
        }
    }
    Image out;
    const Image level = MakeImage(6, 5, [](auto, auto) { return 200; });
    for (const Form form : kForms) {
        const int expected = form.lit ? 1 : 0;
        ASSERT_EQ(LumDiff(form, out, none, level, none, 1, 1, {1, 1}, kIdentity, kAround, 200), 0);
        EXPECT_EQ(out.Header().LuxPerGrey, 1.0f / 65000.0f);
        EXPECT_EQ(out.Values(), std::vector<std::uint16_t>(30, static_cast<std::uint16_t>(expected)));
    }
    for (const float lux : {0.0f, -3.0f, std::nanf("")}) {
        ASSERT_EQ(LumDiff(kForms[0], out, none, level, none, 1, 1, {1, 1}, kIdentity, kAround, lux), 0);
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
    const auto difference = [&](Form form, auto a, auto b, auto c, float wC) {
        return LumDiff(form, out, a, b, c, 1, wC, {3, 3}, kIdentity);
    };
    const auto error = [&](const TqImage* a, const TqImage* b, const TqImage* c, float axis) {
        return tqCalcColorError(out.Address(), a, b, c, 0.2f, 0.4f, 0.1f, axis, 0, 3, 3, 1, 0, 0, 0, 1, 0, 0,
                                0, 1);
    };
    const TqImage* const none = nullptr;
    EXPECT_EQ(error(none, none, none, 1), -2);
    const struct {
        const TqImage *a, *b, *c;
        std::int32_t expected;
    } cases[] = {{set[0], set[1], set[2], 0},
                 {invalid, invalid, other, -3},
                 {other, invalid, invalid, -4},
                 {other, set[1], invalid, -5},
                 {set[0], set[1], other, -7}};
    for (const auto& it : cases)
        EXPECT_EQ(error(it.a, it.b, it.c, 1), it.expected);
    for (const Form form : kForms) {
        for (const auto& it : cases)
            EXPECT_EQ(difference(form, it.a, it.b, it.c, 1), it.expected);
        EXPECT_EQ(difference(form, none, none, none, 1), -2);
        EXPECT_EQ(difference(form, set[0], invalid, set[2], 0), -6);
        EXPECT_EQ(difference(form, invalid, none, set[2], 1), -6) << "the first of those that there are";
        for (const Block around : {Block{3, 3}, Block{2, 9}, Block{9, 2}, Block{-1, 5}, Block{3, 4}}) {
            const bool larger = !form.local || around.rows == 4;
            EXPECT_EQ(LumDiff(form, out, set[0], set[1], set[2], 1, 1, {3, 3}, kIdentity, around),
                      larger ? 0 : -7);
        }
    }
    EXPECT_EQ(error(none, set[1], set[2], 1), -3);
    EXPECT_EQ(error(set[0], set[1], none, 1), -5);
    EXPECT_EQ(error(set[0], set[1], set[2], 0), -7);
    struct Call {
        std::int32_t noMemory;
        ChannelCall images;
    };
    std::vector<Call> calls{{-8, [&](auto a, auto b, auto c) { return error(a, b, c, 1); }}, {-6, space}};
    for (const Form form : kForms)
        calls.push_back({-8, [&, form](auto a, auto b, auto c) { return difference(form, a, b, c, 1); }});
    for (const Call& call : calls) {
        ASSERT_EQ(call.images(set[0], set[1], set[2]), 0);
        const Image expected = out;
        ChannelSet host = set;
        out = std::move(host.images[1]);
        host.images[1] = Image();
        const ChannelSet& rest = host;
        const TqImage* const held = out;
        ASSERT_EQ(call.images(rest[0], held, rest[2]), 0) << "out may hold a channel";
        EXPECT_TRUE(SamePels(expected, out));
        if (!CanFailAllocations()) continue;
        EXPECT_GT(FailEachAllocation(
                      call.noMemory, 0, [&] { return call.images(set[0], set[1], set[2]); },
                      [&] { EXPECT_TRUE(SamePels(expected, out)); }),
                  3);
    }
}

}  // namespace
}  // namespace tqtest
