#include "tqimage/colour_bitmap.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "automation_host.h"
#include "bitmaps.h"
#include "bmp_writer.h"
#include "images.h"
#include "temp_file.h"
#include "tqimage/bitmap_files.h"

namespace tqtest {
namespace {

using Light = std::array<double, 3>;

struct Style {
    std::array<float, 3> gains;
    bool normalize, whiteForBlack;
    double gamma;
};

/// One pixel as the definition has it.
Colour PlainCombined(const Light& light, double fullScale, const Style& style) {
    const double largest = *std::max_element(light.begin(), light.end());
    if (style.whiteForBlack && largest == 0.0) return {255, 255, 255};
    Colour colour{};
    for (std::size_t i = 0; i < 3; ++i) {
        double value = light[i] / fullScale;
        if (style.gamma != 0.0 && largest > 0.0) value *= PlainPower(largest / fullScale, style.gamma - 1.0);
        const bool normal = style.normalize && largest > 0.0;
        colour[i] = static_cast<int>(
            std::clamp(normal ? light[i] * 255.0 / largest : PlainTone(value, 1.0), 0.0, 255.0));
    }
    return colour;
}

void ExpectEveryMixture(std::int32_t cols, std::int32_t rows, const std::vector<unsigned>& mixtures,
                        const std::vector<Style>& styles) {
    std::array<Image, 3> images;
    for (std::size_t i = 0; i < 3; ++i) {
        images[i] = RandomImageWithHoles(cols, rows, static_cast<std::uint32_t>(i), 2);
        images[i].Header().MaxPelValue = 50000.0f + 5000.0f * static_cast<float>(i);
    }
    for (const unsigned present : mixtures) {
        std::array<const TqImage*, 3> given{};
        double fullScale = 0.0;
        for (std::size_t i = 0; i < 3; ++i) {
            if ((present >> i & 1) == 0) continue;
            given[i] = images[i];
            fullScale = images[i].Header().MaxPelValue;
        }
        for (const Style& style : styles) {
            SCOPED_TRACE(testing::Message() << "images " << present << ", gamma " << style.gamma);
            const auto& [red, green, blue] = style.gains;
            Bitmap bitmap;
            ASSERT_EQ(tqCombineImagesRGB(&bitmap, given[0], given[1], given[2], red, green, blue,
                                         style.normalize, style.whiteForBlack, style.gamma),
                      0);
            ASSERT_EQ(bitmap.bitsPerPixel, 24);
            ASSERT_EQ(bitmap.colorOrder, 1);
            for (std::int32_t row = 0; row < rows; ++row) {
                for (std::int32_t col = 0; col < cols; ++col) {
                    Light light{};
                    for (std::size_t i = 0; i < 3; ++i)
                        if (given[i] != nullptr)
                            light[i] = images[i](col, row) * static_cast<double>(style.gains[i]);
                    ASSERT_EQ(bitmap.ColourAt(col, row), PlainCombined(light, fullScale, style))
                        << col << ", " << row;
                }
            }
        }
    }
}

TEST(CombineImagesRgb, EveryStyleOfEveryMixture) {
    ExpectEveryMixture(61, 47, {7, 1, 2, 4, 5},
                       {{{1, 1, 1}, false, false, 0.0},
                        {{1.5f, 0.7f, 1}, false, true, 1.0},
                        {{1, 0.1f, 2}, false, false, 0.6},
                        {{1, 1, 1}, false, true, 2.2},
                        {{1, 2, 3}, true, true, 1.0},
                        {{-1, 1, 0}, true, false, 2.0},
                        {{-1, -2, -3}, false, true, 0.5}});
    // Large images go over tables, where these hold the numbers.
    ExpectEveryMixture(251, 173, {5},
                       {{{1, 0.001f, 30}, false, false, 2.2},
                        {{1, 1, 1}, false, true, -2.0},
                        {{2, 1, 0.5f}, false, false, 0.6},
                        {{1, 1, 1e-4f}, false, false, 4.0},
                        {{-1, 1, 1}, false, true, 2.0}});
}

TEST(CombineImagesRgb, OnePixelAtATime) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        std::array<int, 3> pels;
        float scale;
        bool normalize, white;
        float gain;
        Colour expected;
    } cases[] = {{{10, 20, 5}, 65535.0f, true, false, 1, {127, 255, 63}},
                 {{65535, 0, 65535}, 65535.0f, false, false, 1, {254, 0, 254}},  // as the tone curve
                 {{10, 20, 5}, 0.0f, false, true, 1, {0, 0, 0}},                 // no scale is not no light
                 {{10, 20, 5}, -1.0f, true, false, 1, {127, 255, 63}},
                 {{0, 0, 0}, 0.0f, true, true, 1, {255, 255, 255}},
                 {{0, 0, 0}, 9.0f, true, false, 1, {0, 0, 0}},
                 {{0, 5, 0}, 65535.0f, false, false, kNan, {0, 0, 0}}};
    for (const auto& it : cases) {
        std::array<Image, 3> images;
        for (std::size_t i = 0; i < 3; ++i) {
            images[i] = MakeImage(1, 1, [&](auto, auto) { return it.pels[i]; });
            images[i].Header().MaxPelValue = it.scale;
        }
        Bitmap bitmap;
        ASSERT_EQ(tqCombineImagesRGB(&bitmap, images[0], images[1], images[2], 1, it.gain, 1, it.normalize,
                                     it.white, 1.0),
                  0);
        EXPECT_EQ(bitmap.ColourAt(0, 0), it.expected) << &it - cases;
        EXPECT_EQ(images[0].Header().MaxPelValue, it.scale);
    }
}

TEST(CombineImagesRgb, RefusesWhatDoesNotFitTogether) {
    const Image image(4, 3), wider(5, 3), empty(0, 3);
    Bitmap bitmap;
    void* dib = nullptr;
    const struct {
        const TqImage *red, *green, *blue;
    } misfits[] = {{nullptr, nullptr, nullptr},
                   {image, wider, image},
                   {nullptr, image, wider},
                   {empty, image, image},
                   {nullptr, nullptr, empty}};
    for (const auto& [red, green, blue] : misfits) {
        EXPECT_EQ(tqCombineImagesRGB(&bitmap, red, green, blue, 1, 1, 1, 0, 0, 1.0), -1);
        EXPECT_EQ(tqCombineImagesRGBtoDIB(&dib, red, green, blue, 1, 1, 1, 0, 0, 1.0), -1);
    }
    EXPECT_EQ(bitmap.rows, nullptr);
    EXPECT_EQ(dib, nullptr);
    EXPECT_EQ(tqCombineImagesRGB(nullptr, image, nullptr, nullptr, 1, 1, 1, 0, 0, 1.0), -2);
    EXPECT_EQ(tqCombineImagesRGBtoDIB(nullptr, image, image, image, 1, 1, 1, 0, 0, 1.0), -11);
}

TEST(ColourBitmapToImage, LinearisesAndMixes) {
    const TempName name("tq_tristimulus.bmp");
    // White and black above red, green and blue of half the bytes.
    WriteBytes(name, MakeBmp({40, 3, 2, 24, 0, 0, {}, {}, {0,   0,   128, 0, 128, 0, 128, 0,  0,  0, 0, 0,
                                                           255, 255, 255, 0, 0,   0, 10,  10, 10, 0, 0, 0}}));
    std::array<Image, 3> images;
    const auto load = [&](const char* file, const TqImageHeader* info) {
        return tq24bitColorBitmapToImage(file, info, images[0].Address(), images[1].Address(),
                                         images[2].Address());
    };
    ASSERT_EQ(load(name.c_str(), nullptr), 0);
    // ((128/255 + 0.055) / 1.055)^2.4 = 0.2158605; 10/255/12.92 = 0.0030353.
    EXPECT_TRUE(SamePels(MakeImage(3, 2, {9643, 0, 29, 941, 831, 308}), images[0]));
    EXPECT_TRUE(SamePels(MakeImage(3, 2, {10000, 0, 30, 480, 1547, 130}), images[1]));
    EXPECT_TRUE(SamePels(MakeImage(3, 2, {8251, 0, 25, 30, 209, 1541}), images[2]));
    EXPECT_EQ(images[2].Header().MaxPelValue, 8251.0f);
    EXPECT_EQ(images[0].Header().PelsPerMeterX, 1.0f);

    // A palette's colours are colours too; the header may be that of an image that goes.
    WriteBytes(name, MakeBmp({40, 1, 1, 1, 0, 2, {}, {0, 0, 0, 0, 0, 0, 0, 0}, {0x80, 0, 0, 0}}));
    images[1].Header().Spare = 77;
    ASSERT_EQ(load(name.c_str(), &images[1].Header()), 0);
    for (const Image& image : images) {
        EXPECT_EQ(image.Header().Spare, 77u);
        EXPECT_EQ(image.Header().MaxPelValue, 1.0f);
        EXPECT_EQ(image.Count(), 1u);
    }
    EXPECT_EQ(load("no_such_file.bmp", nullptr), -100);
    EXPECT_EQ(
        tq24bitColorBitmapToImage(name.c_str(), nullptr, images[0].Address(), nullptr, images[2].Address()),
        -4);
    EXPECT_EQ(images[0].Count(), 1u);
}

}  // namespace
}  // namespace tqtest
