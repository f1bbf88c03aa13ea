#include "tqimage/adaptive_colour.h"

#include <algorithm>
#include <limits>

#include "colours.h"

namespace tqtest {
namespace {

/// Matrices of nine coefficients and chromaticities one after another, as hosts pass them.
struct Tables {
    std::vector<float> matrices;
    std::vector<float> chroma;

    std::int32_t Count() const { return static_cast<std::int32_t>(chroma.size() / 2); }
    Uv At(std::size_t k) const { return {double(chroma[2 * k]), double(chroma[2 * k + 1])}; }
};

Tables MakeTables(const std::vector<Matrix>& matrices, const std::vector<float>& chroma) {
    Tables tables{{}, chroma};
    for (const Matrix& m : matrices)
        tables.matrices.insert(tables.matrices.end(), m.begin(), m.end());
    return tables;
}

/// Four matrices that tell their weights apart, at colours in the middle of the noise's.
Tables FourTables() {
    return MakeTables({kIdentity, kSrgb, kMixed, Matrix{2, 0, 0, 0, 3, 0, 0, 0, 1}},
                      {0.15f, 0.3f, 0.25f, 0.4f, 0.2f, 0.55f, 0.3f, 0.3f});
}

using Planes = std::array<Image, 3>;

Planes Adapt(const ChannelSet& set, const Matrix& m, const Tables& tables, float power) {
    Planes out;
    const auto call = [&](auto... k) {
        return tqAdaptiveColor(out[0].Address(), out[1].Address(), out[2].Address(), set[0], set[1], set[2],
                               k..., tables.Count(), tables.matrices.data(), tables.chroma.data(), power);
    };
    EXPECT_EQ(WithMatrix(call, m), 0);
    return out;
}

Triple ValuesAt(const ChannelSet& set, std::size_t i) {
    Triple value = set.At(i);
    for (std::size_t k = 0; k < 3; ++k)
        value[k] *= double(set.images[k].Header().LuxPerGrey);
    return value;
}

TEST(AdaptiveColour, NearCalibrationsWeighMore) {
    // u' = 16 / 64 and v' = 36 / 64: 0.1 below it a matrix of 1, 0.2 to its right one of 2, which makes Z
    // negative.
    ChannelSet set = UniformChannels(2, 1, {40000, 40000, 0});
    set.images[1].Header().LuxPerGrey = set.images[0].Header().LuxPerGrey = 0.5f;
    Tables tables = MakeTables({kIdentity, {2, 0, 0, 0, 2, 0, -1, 0, 0}}, {0.25f, 0.4625f, 0.45f, 0.5625f});
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const auto& [power, counted] : {std::pair{2.0f, 2.0},
                                         {0.0f, 2.0},
                                         {-3.0f, 2.0},
                                         {kNan, 2.0},
                                         {1.0f, 1.0},
                                         {3.7f, 3.7},
                                         {0.01f, 0.01},
                                         {200.0f, 200.0},
                                         {kInfinity, 1000.0}}) {
        const Planes out = Adapt(set, kIdentity, tables, power);
        // Twice the distance is a weight of 2^-p.
        const double weight = std::pow(2.0, -counted), factor = (1 + 2 * weight) / (1 + weight);
        EXPECT_EQ(out[1].Values(), (std::vector<std::uint16_t>{65000, 65000}));
        EXPECT_EQ(out[2].Values(), (std::vector<std::uint16_t>{0, 0}));
        TqImageHeader header = set.images[1].Header();
        header.LuxPerGrey = out[1].Header().LuxPerGrey;
        EXPECT_TRUE(SameHeader(header, out[1].Header()));
        EXPECT_NEAR(double(header.LuxPerGrey) * 65000, 20000 * factor, 0.005) << power;
    }
    // At the colour of a calibration its matrix has the word alone; distances that are no numbers do not
    // count.
    tables = FourTables();
    tables.chroma[6] = 0.25f;
    tables.chroma[7] = 0.5625f;
    for (const float power : {2.0f, 3.7f})
        EXPECT_FLOAT_EQ(Adapt(set, kIdentity, tables, power)[1].Header().LuxPerGrey * 65000, 3 * 20000.0f);
    tables.chroma.assign(8, kNan);
    EXPECT_EQ(Adapt(set, kIdentity, tables, 1)[1](0, 0), 0);
}

TEST(AdaptiveColour, SelectNamesTheNearestCalibration) {
    const ChannelSet set = NoiseChannels(61, 23, 17);
    Tables tables = FourTables();
    tables.chroma.insert(tables.chroma.end(), {0.25f, 0.4f});  // as near as the second, which is first
    Image out;
    const auto call = [&](auto... k) {
        return tqAdaptiveSelect(out.Address(), set[0], set[1], set[2], k..., 5, tables.chroma.data());
    };
    ASSERT_EQ(WithMatrix(call, kSrgb), 0);
    TqImageHeader header = set.images[1].Header();
    header.LuxPerGrey = 1;
    header.MaxPelValue = 5;
    EXPECT_TRUE(SameHeader(header, out.Header()));
    for (std::size_t i = 0; i < out.Count(); ++i) {
        const Triple xyz = Multiply(kSrgb, ValuesAt(set, i));
        std::size_t best = 0;
        for (std::size_t k = 1; k < 5; ++k)
            if (Distance(UvOf(xyz), tables.At(k)) < Distance(UvOf(xyz), tables.At(best))) best = k;
        const bool dark = xyz[0] + 15 * xyz[1] + 3 * xyz[2] == 0;
        ASSERT_EQ(out.Pels()[i], dark ? 0 : best + 1) << i;
    }
}

TEST(AdaptiveColour, TablesAndOutputs) {
    const std::vector<float> many(64 * 9, 0.25f);
    const float* const m = many.data();
    ChannelSet set = NoiseChannels(9, 5, 1);
    Planes out;
    const auto blend = [&](TqImage** x, int count, const float* matrices, const float* chroma) {
        return tqAdaptiveColor(x, out[1].Address(), out[2].Address(), set[0], set[1], set[2], 1, 0, 0, 0, 1,
                               0, 0, 0, 1, count, matrices, chroma, 2);
    };
    const auto select = [&](TqImage** to, int count, const float* chroma) {
        return tqAdaptiveSelect(to, set[0], set[1], set[2], 1, 0, 0, 0, 1, 0, 0, 0, 1, count, chroma);
    };
    TqImage** const x = out[0].Address();
    for (const auto& [count, status] : {std::pair{64, 0}, {65, -7}, {0, -7}, {-1, -7}}) {
        EXPECT_EQ(select(x, count, m), status);
        EXPECT_EQ(blend(x, count, m, m), status);
    }
    EXPECT_EQ(select(x, 4, nullptr), -7);
    EXPECT_EQ(blend(x, 4, nullptr, m), -7);
    EXPECT_EQ(blend(x, 4, m, nullptr), -7);
    EXPECT_EQ(blend(nullptr, 4, m, m), -2);
    EXPECT_EQ(select(nullptr, 4, m), -2);
    // The form for four is the same; an output may hold an input.
    const Tables four = FourTables();
    const Planes expected = Adapt(set, kIdentity, four, 1.5f);
    ASSERT_EQ(
        tqAdaptiveColor4(set.images[1].Address(), out[1].Address(), out[2].Address(), set[0], set[1], set[2],
                         1, 0, 0, 0, 1, 0, 0, 0, 1, four.matrices.data(), four.chroma.data(), 1.5f),
        0);
    EXPECT_TRUE(SamePels(expected[0], set.images[1]));
    EXPECT_TRUE(SamePels(expected[2], out[2]));
}

}  // namespace
}  // namespace tqtest
