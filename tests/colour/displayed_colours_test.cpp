#include <algorithm>
#include <limits>

#include "bitmaps.h"
#include "colours.h"
#include "tqimage/colour_bitmap.h"
#include "tqimage/equalisation.h"

namespace tqtest {
namespace {

using Images = std::array<const TqImage*, 3>;

/// X, Y and Z to linear sRGB (IEC 61966-2-1).
constexpr Matrix kToSrgb{3.2406f, -1.5372f, -0.4986f, -0.9689f, 1.8758f, 0.0415f, 0.0557f, -0.2040f, 1.0570f};

struct Style {
    float white;
    double gamma;
    int gamut;
};

std::int32_t Show(TqLeadBitmap* bitmap, const Images& images, const Style& style, int equalise = 0) {
    const auto call = [&](auto... k) {
        return tqTransformXYZtoRGB2(images[0], images[1], images[2], bitmap, k..., style.white, style.gamma,
                                    style.gamut, equalise);
    };
    return WithMatrix(call, kToSrgb);
}

/// One pixel as the definition has it.
Colour PlainColour(const Triple& xyz, double white, const Style& style) {
    Triple light = Multiply(kToSrgb, xyz);
    for (double& value : light)
        value /= white;
    if (style.gamut != 0) {
        const double grey = std::clamp(xyz[1] / white, 0.0, 1.0);
        double share = 1;
        for (const double value : light) {
            if (value < 0) share = std::min(share, grey / (grey - value));
            if (value > 1) share = std::min(share, (1 - grey) / (value - grey));
        }
        for (double& value : light)
            value = share < 1 ? grey + share * (value - grey) : value;
    }
    Colour colour;
    for (std::size_t k = 0; k < 3; ++k) {
        const double v = std::clamp(light[k], 0.0, 1.0);
        const double byte = style.gamma >= 0 ? PlainTone(v, style.gamma) : v * 255;
        colour[k] = static_cast<int>(std::clamp(byte, 0.0, 255.0));
    }
    return colour;
}

TEST(DisplayedColours, EveryStyleOfEveryMixture) {
    const ChannelSet set = NoiseChannels(61, 47, 5);
    for (const unsigned present : {7u, 2u, 5u, 4u}) {
        Images images{};
        Triple scales{}, largest{};
        for (std::size_t k = 0; k < 3; ++k) {
            if ((present >> k & 1) == 0) continue;
            images[k] = set[k];
            scales[k] = set.images[k].Header().LuxPerGrey;
            const auto pels = set.images[k].Values();
            largest[k] = *std::max_element(pels.begin(), pels.end()) * scales[k];
        }
        const double found = images[1] ? largest[1] : *std::max_element(largest.begin(), largest.end());
        // Noise fills the curve above the limit, a white of 30000 the straight part below it.
        for (const Style& style : {Style{0, 1, 0}, Style{-3, 0, 1}, Style{700, 0.45, 0}, Style{700, 2.2, 1},
                                   Style{2000, -1, 1}, Style{30000, 1, 0}, Style{700, 1e-9, 2},
                                   Style{std::numeric_limits<float>::quiet_NaN(), 900, 1}}) {
            SCOPED_TRACE(testing::Message() << "images " << present << ", gamma " << style.gamma);
            Bitmap bitmap;
            ASSERT_EQ(Show(&bitmap, images, style), 0);
            for (std::int32_t i = 0; i < 61 * 47; ++i) {
                const Triple pels = set.At(static_cast<std::size_t>(i));
                const Triple xyz{pels[0] * scales[0], pels[1] * scales[1], pels[2] * scales[2]};
                ASSERT_EQ(bitmap.ColourAt(i % 61, i / 61),
                          PlainColour(xyz, style.white > 0 ? double(style.white) : found, style))
                    << i;
            }
        }
    }
}

TEST(DisplayedColours, WhiteAndPrimariesOfTheDisplay) {
    const auto shown = [](const std::array<int, 3>& xyz, int gamut) {
        const ChannelSet set = UniformChannels(1, 1, xyz);
        Bitmap bitmap;
        EXPECT_EQ(Show(&bitmap, {set[0], set[1], set[2]}, {50000, 1, gamut}), 0);
        EXPECT_EQ(bitmap.bitsPerPixel, 24);
        return bitmap.ColourAt(0, 0);
    };
    for (const int gamut : {0, 1}) {
        // D65, and half of it: 255 (1.055 x 0.5^0.4166 - 0.055) = 187.5.
        EXPECT_EQ(shown({47528, 50010, 54460}, gamut), (Colour{254, 254, 254}));
        EXPECT_EQ(shown({23764, 25000, 27222}, gamut), (Colour{187, 187, 187}));
        const Colour red = shown({20620, 10630, 965}, gamut);
        EXPECT_GE(red[0], 253);
        EXPECT_LE(red[1] + red[2], 3);
    }
    // Light of 520 nm with a tenth of the white's luminance: green beyond the display. Limited channels are
    // brighter than it is; mixed with grey the luminance stays.
    const auto luminance = [](const Colour& bytes) {
        Triple light;
        for (std::size_t k = 0; k < 3; ++k) {
            const double v = (bytes[k] + 0.5) / 255;
            light[k] = v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 1 / 0.4166);
        }
        return Multiply(kSrgb, light)[1];
    };
    const std::array<int, 3> green{446, 5000, 552};
    EXPECT_GT(luminance(shown(green, 0)), 0.11);
    EXPECT_NEAR(luminance(shown(green, 1)), 0.1, 0.002);
    EXPECT_EQ(shown({60000, 60000, 500}, 1), (Colour{254, 254, 254})) << "brighter than white is white";
}

TEST(DisplayedColours, EqualisingIsThatOfTheImages) {
    ChannelSet set = NoiseChannels(40, 30, 8);
    for (std::size_t k = 0; k < 3; ++k)
        set.images[k].Header().MaxPelValue = k == 0 ? 255.0f : 70000.0f;
    const ChannelSet before = set;
    Bitmap bitmap, expected;
    ASSERT_EQ(Show(&bitmap, {set[0], nullptr, set[2]}, {0, 1, 1}, -5), 0);
    EXPECT_TRUE(SameHeader(set.images[0].Header(), before.images[0].Header()));
    Image x, z;
    ASSERT_EQ(tqHistoEqualize(x.Address(), set.images[0], 0), 0);
    ASSERT_EQ(tqHistoEqualize(z.Address(), set.images[2], 0), 0);
    ASSERT_EQ(Show(&expected, {x, nullptr, z}, {0, 1, 1}), 0);
    EXPECT_TRUE(std::equal(bitmap.rows, bitmap.rows + 30 * bitmap.bytesPerLine, expected.rows));
}

TEST(DisplayedColours, CodesAndWhatIsNoLight) {
    const Image good = RandomImage(7, 5, 1), other = RandomImage(5, 7, 2), invalid(8001, 1), dark(7, 5);
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        Images images;
        std::int32_t plain, equalised;
    } cases[] = {
        {{nullptr, nullptr, nullptr}, -1, -1}, {{invalid, other, good}, -2, -11},
        {{good, invalid, other}, -2, -21},     {{nullptr, nullptr, invalid}, -2, -31},
        {{good, nullptr, other}, -3, -3},      {{other, other, good}, -3, -3},
        {{good, dark, nullptr}, 0, -21},       {{good, good, good}, 0, 0},
    };
    for (const auto& it : cases) {
        for (const int equalise : {0, 1}) {
            Bitmap bitmap;
            const std::int32_t expected = equalise ? it.equalised : it.plain;
            EXPECT_EQ(Show(&bitmap, it.images, {0, 1, 0}, equalise), expected);
            EXPECT_EQ(bitmap.rows == nullptr, expected != 0);
        }
    }
    EXPECT_EQ(Show(nullptr, {good, good, good}, {0, 1, 0}), -4);
    EXPECT_EQ(tqTransformXYZtoRGB(nullptr, nullptr, nullptr, nullptr, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 0),
              -1);
    // No light, and light that is no number.
    Bitmap black, none;
    ASSERT_EQ(Show(&black, {good, dark, good}, {0, 1, 0}), 0);
    EXPECT_EQ(black.ColourAt(6, 4), (Colour{0, 0, 0}));
    ASSERT_EQ(tqTransformXYZtoRGB(good, good, good, &none, kNan, 0, 0, 0, 1e38f, 0, 0, 0, -1, 1, kNan, 1), 0);
    EXPECT_EQ(none.ColourAt(6, 4)[0], 0);
}

}  // namespace
}  // namespace tqtest
