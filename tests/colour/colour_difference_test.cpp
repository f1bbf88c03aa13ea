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

/// The means of the channels over the spans that spanOf gives around a pel.
template <class SpanOf>
Triple Means(const ChannelSet& set, Block size, std::int32_t col, std::int32_t row, bool lit,
             SpanOf&& spanOf) {
    Triple means;
    for (std::size_t k = 0; k < 3; ++k) {
        const Image& image = set.images[k];
        const Span cols = spanOf(col, size.cols, image.Cols()), rows = spanOf(row, size.rows, image.Rows());
        double sum = 0, count = 0;
        for (std::int32_t r = rows.first; r <= rows.last; ++r) {
            for (std::int32_t c = cols.first; c <= cols.last; ++c) {
                sum += image(c, r);
                count += !lit || image(c, r) != 0;
            }
        }
        means[k] = sum / count;
    }
    return means;
}

/// The largest of valueAt(col, row) at 65000, and a header that says so. Values below 0 are left out.
template <class ValueAt>
void ExpectScaled(const Image& like, const Image& out, ValueAt&& valueAt) {
    std::vector<float> values;
    float largest = 0;
    bool holed = false;
    for (std::int32_t row = 0; row < like.Rows(); ++row) {
        for (std::int32_t col = 0; col < like.Cols(); ++col) {
            values.push_back(static_cast<float>(valueAt(col, row)));
            largest = values.back() > largest ? values.back() : largest;
            holed = holed || values.back() < 0;
        }
    }
    const float scale = 65000.0f / (largest < 1e-8 ? 1.0f : largest);
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

std::int32_t Error(Image& out, const TqImage* a, const TqImage* b, const TqImage* c, Uv at, float semiAxisA,
                   float semiAxisB, float degrees, Block block, const Matrix& m) {
    const auto call = [&](auto... k) {
        return tqCalcColorError(out.Address(), a, b, c, static_cast<float>(at.u), static_cast<float>(at.v),
                                semiAxisA, semiAxisB, degrees, block.cols, block.rows, k...);
    };
    return WithMatrix(call, m);
}

/// The difference of one pel; -1 where a channel that counts is 0.
float DifferenceAt(const ChannelSet& set, Form form, Block block, Block around, const Matrix& m, bool colour,
                   std::int32_t col, std::int32_t row) {
    const float lux = set.images[1].Header().LuxPerGrey;
    for (std::size_t k = 0; k < 3; ++k)
        if (form.lit && (colour || k == 1) && set.images[k](col, row) == 0) return -1;
    const Triple at = Means(set, block, col, row, form.lit, BlockSpan);
    Uv target{kU, kV};
    float reference = kLux;
    if (form.local) {
        const Triple means = Means(set, around, col, row, form.lit, WindowSpan);
        const Uv mean = UvOf(Multiply(m, means));
        target = {static_cast<float>(mean.u), static_cast<float>(mean.v)};
        reference = static_cast<float>(means[1] * double(lux));
    }
    const bool dark = !(reference >= 1e-7);
    const auto light = static_cast<float>(double(lux) * at[1]);
    if (!colour) return dark ? 0 : std::abs(light - reference) / reference * std::sqrt(0.7f);
    Triple xyz = Multiply(m, at);
    xyz[2] = float(xyz[2]);
    const double du = UvOf(xyz).u - target.u, dv = UvOf(xyz).v - target.v;
    const double dl = dark ? 0 : (at[1] * double(lux) - double(reference)) / double(reference);
    return static_cast<float>(std::sqrt((dv * dv + du * du) * 2.5 + dl * dl * double(0.7f)));
}

TEST(ColourDifference, AgreesWithTheObviousLoop) {
    ChannelSet set = NoiseChannels(37, 21, 8);
    for (std::int32_t row = 0; row < 12; ++row)  // a neighbourhood without light
        std::fill_n(&set.images[1](0, row), 14, std::uint16_t{0});
    for (const Form form : kForms) {
        for (const Matrix& m : {kSrgb, kMixed}) {
            for (const Block block : kBlocks) {
                for (const bool colour : {true, false}) {
                    for (const Block around : {kAround, Block{8, 7}}) {
                        if (around.cols <= block.cols) continue;
                        Image out;
                        ASSERT_EQ(LumDiff(form, out, set[0], set[1], set[2], -0.7f, colour ? -2.5f : 0.0f,
                                          block, m, around),
                                  0);
                        ExpectScaled(set.images[1], out, [&](std::int32_t col, std::int32_t row) {
                            return DifferenceAt(set, form, block, around, m, colour, col, row);
                        });
                    }
                }
            }
        }
    }
}

TEST(ColourDifference, LuminanceAloneTakesTheChannelThatThereIs) {
    const ChannelSet set = NoiseChannels(9, 8, 3);
    const Image level = MakeImage(6, 5, [](auto, auto) { return 200; });
    const TqImage* const none = nullptr;
    Image out;
    for (const Form form : kForms) {
        for (std::size_t k = 0; k < 3; ++k) {
            Image alone;
            ASSERT_EQ(LumDiff(form, alone, none, set[k], none, 1, 0, {1, 1}, kIdentity), 0);
            ASSERT_EQ(LumDiff(form, out, k == 0 ? set[0] : none, k == 1 ? set[1] : none,
                              k == 2 ? set[2] : none, 1, 1, {1, 1}, kIdentity),
                      0);
            EXPECT_TRUE(SamePels(alone, out));
        }
        ASSERT_EQ(LumDiff(form, out, none, level, none, 1, 1, {1, 1}, kIdentity, kAround, 200), 0);
        EXPECT_EQ(out.Header().LuxPerGrey, 1.0f / 65000.0f);
        EXPECT_TRUE(SamePels(MakeImage(6, 5, [&](auto, auto) { return form.lit ? 1 : 0; }), out));
    }
    for (const float lux : {0.0f, -3.0f, std::nanf("")}) {
        ASSERT_EQ(LumDiff(kForms[0], out, none, level, none, 1, 1, {1, 1}, kIdentity, kAround, lux), 0);
        EXPECT_NEAR(out(0, 0) * double(out.Header().LuxPerGrey), 199.0, 1e-3) << "the reference is 1";
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
            double du, dv;
            float a, b;
        } cases[] = {{0.01, 0, 0.01f, 0.01f},
                     {along * std::cos(angle), along * std::sin(angle), along, across},
                     {-across * std::sin(angle), across * std::cos(angle), along, across}};
        for (const auto& it : cases) {
            Image out;
            ASSERT_EQ(Error(out, set[0], set[1], set[2], {0.25 - it.du, 0.5625 - it.dv}, it.a, it.b, degrees,
                            {1, 3}, kIdentity),
                      0);
            EXPECT_EQ(out(1, 1), 65000);
            EXPECT_NEAR(out(1, 1) * double(out.Header().LuxPerGrey), 1.0, 3e-5);
        }
    }
}

TEST(ColourSpace, QuantitiesOfOneColourAndOfBlocks) {
    const auto space = [](const ChannelSet& set, int quantity, float low, float high, Block block) {
        Image out;
        EXPECT_EQ(tqTransformToColorSpace(out.Address(), set[0], set[1], set[2], quantity, 50000, low, high,
                                          block.cols, block.rows, 4, 0, 0, 0, 0.5f, 0, 0, 0, 5),
                  0);
        TqImageHeader header = set.images[1].Header();
        header.LuxPerGrey = high / 50000;
        EXPECT_TRUE(SameHeader(header, out.Header())) << "the upper end, not the span";
        return out;
    };
    // X = 100, Y = 200, Z = 50: 100 / 350, 200 / 350, 400 / 3250, 1800 / 3250 and percentages of Y; then
    // black.
    ChannelSet set = UniformChannels(2, 1, {25, 400, 10});
    for (const Image& image : set.images)
        image(1, 0) = 0;
    const int levels[] = {0, 19285, 33571, 11153, 32692, 65535, 65535, 0};
    for (int quantity = -1; quantity <= 6; ++quantity) {
        const bool undefined = quantity < 0 || quantity > 5;
        const Image out = space(set, quantity, -0.1f, 0.9f, {0, 0});
        EXPECT_EQ(out(0, 0), levels[quantity + 1]) << quantity;
        EXPECT_EQ(out(1, 0), undefined || quantity > 3 ? 0 : 5000) << "what is not finite is 0";
    }
    EXPECT_EQ(space(set, 4, 0, 100, {0, 0})(0, 0), 25000);
    EXPECT_EQ(space(set, 5, 0, 100, {0, 0})(0, 0), 12500);
    set = NoiseChannels(37, 21, 28);
    for (const Block block : kBlocks) {
        const auto pelAt = [&](std::int32_t col, std::int32_t row) {
            const Triple at = Means(set, block, col, row, false, BlockSpan);
            const double sum = 4 * at[0] + 0.5 * at[1] + 5 * at[2];
            return PelOf((sum == 0 ? 0 : 4 * at[0] / sum) * 50000);
        };
        EXPECT_TRUE(SamePels(MakeImage(37, 21, pelAt), space(set, 0, 0, 1, block)));
    }
}

TEST(ColourDifference, CodesAndAnOutputThatHoldsAChannel) {
    const ChannelSet set = NoiseChannels(7, 5, 6);
    const Image invalid(0, 3), other(5, 7);
    const TqImage* const none = nullptr;
    Image out;
    const auto difference = [&](Form form, auto a, auto b, auto c, float wC) {
        return LumDiff(form, out, a, b, c, 1, wC, {3, 3}, kIdentity);
    };
    const auto error = [&](auto a, auto b, auto c, float axis = 1) {
        return Error(out, a, b, c, {0.2, 0.4}, 0.1f, axis, 0, {3, 3}, kIdentity);
    };
    const struct {
        const TqImage *a, *b, *c;
        std::int32_t expected;
    } cases[] = {{set[0], set[1], set[2], 0},   {none, none, none, -2},       {invalid, invalid, other, -3},
                 {other, invalid, invalid, -4}, {other, set[1], invalid, -5}, {set[0], set[1], other, -7}};
    for (const auto& [a, b, c, expected] : cases) {
        EXPECT_EQ(error(a, b, c), expected);
        for (const Form form : kForms)
            EXPECT_EQ(difference(form, a, b, c, 1), expected);
    }
    EXPECT_EQ(error(none, set[1], set[2]), -3);
    EXPECT_EQ(error(set[0], set[1], none), -5);
    EXPECT_EQ(error(set[0], set[1], set[2], 0), -7);
    for (const Form form : kForms) {
        EXPECT_EQ(difference(form, set[0], invalid, set[2], 0), -6);
        EXPECT_EQ(difference(form, invalid, none, set[2], 1), -6) << "the first of those that there are";
        for (const Block around : {Block{3, 3}, Block{2, 9}, Block{9, 2}, Block{-1, 5}, Block{3, 4}}) {
            const bool larger = !form.local || around.rows == 4;
            EXPECT_EQ(LumDiff(form, out, set[0], set[1], set[2], 1, 1, {3, 3}, kIdentity, around),
                      larger ? 0 : -7);
        }
        ASSERT_EQ(difference(form, set[0], set[1], set[2], 1), 0);
        const Image expected = out;
        out = set.images[1];
        const TqImage* const held = out;
        ASSERT_EQ(difference(form, set[0], held, set[2], 1), 0);
        EXPECT_TRUE(SamePels(expected, out));
    }
}

}  // namespace
}  // namespace tqtest
