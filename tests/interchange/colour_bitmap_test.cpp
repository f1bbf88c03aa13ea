#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "automation_host.h"
#include "bitmaps.h"
#include "bmp_writer.h"
#include "images.h"
#include "temp_file.h"
#include "tqimage/bitmap_files.h"
#include "tqimage/colour_bitmap.h"

namespace {

using tqtest::Bitmap;
using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::MakeImage;
using tqtest::RandomImageWithHoles;
using tqtest::TempName;

using Colour = std::array<int, 3>;  // red, green, blue

Colour At(const TqLeadBitmap& bitmap, std::int32_t col, std::int32_t row) {
    const std::uint8_t* pixel = bitmap.rows + static_cast<std::ptrdiff_t>(row) * bitmap.bytesPerLine +
                                3 * static_cast<std::ptrdiff_t>(col);
    return {pixel[2], pixel[1], pixel[0]};
}

struct Style {
    float red, green, blue;  ///< gains
    bool normalize, whiteForBlack;
    double gamma;
};

/// One pixel as the definition has it, powers in extended precision.
Colour PlainCombined(const std::array<double, 3>& light, double fullScale, const Style& style) {
    const auto power = [](double base, double exponent) {
        return static_cast<double>(
            std::pow(static_cast<long double>(base), static_cast<long double>(exponent)));
    };
    const double largest = *std::max_element(light.begin(), light.end());
    Colour colour{0, 0, 0};
    if (style.whiteForBlack && largest == 0.0) return {255, 255, 255};
    if (!(style.normalize && largest > 0.0) && !(fullScale > 0.0)) return colour;
    const double gamma = style.gamma == 0.0 ? 1.0 : style.gamma;
    for (std::size_t i = 0; i < 3; ++i) {
        double value = light[i] / fullScale;
        if (gamma != 1.0 && largest > 0.0) value *= power(largest / fullScale, gamma - 1.0);
        value = value > 0.0031308 ? 1.055 * power(value, 0.4166) - 0.055 : 12.92 * value;
        const double scaled = style.normalize && largest > 0.0 ? light[i] * 255.0 / largest : value * 255.0;
        colour[i] = static_cast<int>(std::clamp(scaled, 0.0, 255.0));
    }
    return colour;
}

TEST(CombineImagesRgb, EveryStyleOfEveryMixture) {
    std::array<Image, 3> images;
    for (std::size_t i = 0; i < 3; ++i) {
        images[i] = RandomImageWithHoles(61, 47, static_cast<std::uint32_t>(i), 2);
        images[i].Header().MaxPelValue = 50000.0f + 5000.0f * static_cast<float>(i);
    }
    for (const unsigned present : {7u, 1u, 2u, 4u, 5u}) {
        std::array<const TqImage*, 3> given{};
        double fullScale = 0.0;
        for (std::size_t i = 0; i < 3; ++i) {
            if ((present >> i & 1) == 0) continue;
            given[i] = images[i];
            fullScale = images[i].Header().MaxPelValue;
        }
        for (const Style& style : {Style{1, 1, 1, false, false, 0.0}, Style{1.5f, 0.7f, 1, false, true, 1.0},
                                   Style{1, 0.1f, 2, false, false, 0.6}, Style{1, 1, 1, false, true, 2.2},
                                   Style{1, 2, 3, true, true, 1.0}, Style{-1, 1, 0, true, false, 2.0},
                                   Style{-1, -2, -3, false, true, 0.5}}) {
            SCOPED_TRACE(testing::Message() << "images " << present << ", gamma " << style.gamma);
            Bitmap bitmap;
            ASSERT_EQ(tqCombineImagesRGB(&bitmap, given[0], given[1], given[2], style.red, style.green,
                                         style.blue, style.normalize, style.whiteForBlack, style.gamma),
                      0);
            ASSERT_EQ(bitmap.bitsPerPixel, 24);
            ASSERT_EQ(bitmap.colorOrder, 1);
            for (std::int32_t row = 0; row < 47; ++row) {
                for (std::int32_t col = 0; col < 61; ++col) {
                    const std::array<float, 3> gains{style.red, style.green, style.blue};
                    std::array<double, 3> light{};
                    for (std::size_t i = 0; i < 3; ++i)
                        if (given[i] != nullptr)
                            light[i] = images[i](col, row) * static_cast<double>(gains[i]);
                    ASSERT_EQ(At(bitmap, col, row), PlainCombined(light, fullScale, style))
                        << col << ", " << row;
                }
            }
        }
    }
}

TEST(CombineImagesRgb, LargeImagesGetTheSameBytes) {
    std::array<Image, 3> images;
    for (std::size_t i = 0; i < 3; ++i) {
        images[i] = RandomImageWithHoles(251, 173, static_cast<std::uint32_t>(i), 1);
        images[i].Header().MaxPelValue = 60000.0f;
    }
    // Numbers that tables hold and numbers that they do not.
    for (const Style& style : {Style{1, 0.001f, 30, false, false, 2.2}, Style{1, 1, 1, false, true, -2.0},
                               Style{2, 1, 0.5f, false, false, 0.6}, Style{1, 1, 1e-4f, false, false, 4.0},
                               Style{1, -1, 1, false, true, 2.0}}) {
        Bitmap bitmap;
        ASSERT_EQ(tqCombineImagesRGB(&bitmap, images[0], nullptr, images[2], style.red, style.green,
                                     style.blue, 0, style.whiteForBlack, style.gamma),
                  0);
        for (std::int32_t row = 0; row < 173; ++row) {
            for (std::int32_t col = 0; col < 251; ++col) {
                const std::array<double, 3> light{images[0](col, row) * static_cast<double>(style.red), 0.0,
                                                  images[2](col, row) * static_cast<double>(style.blue)};
                ASSERT_EQ(At(bitmap, col, row), PlainCombined(light, 60000.0, style))
                    << "gamma " << style.gamma << ", " << col << ", " << row;
            }
        }
    }
}

TEST(CombineImagesRgb, OnePixelAtATime) {
    const auto pixel = [](std::vector<int> pels, float scale, bool normalize, bool white, float gain = 1.0f) {
        std::array<Image, 3> images;
        for (std::size_t i = 0; i < 3; ++i) {
            images[i] = MakeImage(1, 1, std::vector<int>{pels[i]});
            images[i].Header().MaxPelValue = scale;
        }
        Bitmap bitmap;
        EXPECT_EQ(
            tqCombineImagesRGB(&bitmap, images[0], images[1], images[2], 1, gain, 1, normalize, white, 1.0),
            0);
        EXPECT_EQ(images[0].Header().MaxPelValue, scale);
        return At(bitmap, 0, 0);
    };
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(pixel({10, 20, 5}, 65535.0f, true, false), (Colour{127, 255, 63}));
    EXPECT_EQ(pixel({65535, 0, 65535}, 65535.0f, false, false), (Colour{254, 0, 254})) << "as the tone curve";
    EXPECT_EQ(pixel({10, 20, 5}, 0.0f, false, true), (Colour{0, 0, 0})) << "no scale is not no light";
    EXPECT_EQ(pixel({10, 20, 5}, -1.0f, true, false), (Colour{127, 255, 63}));
    EXPECT_EQ(pixel({0, 0, 0}, 0.0f, true, true), (Colour{255, 255, 255}));
    EXPECT_EQ(pixel({0, 0, 0}, 9.0f, true, false), (Colour{0, 0, 0}));
    EXPECT_EQ(pixel({0, 5, 0}, 65535.0f, false, false, kNan)[1], 0);
}

TEST(CombineImagesRgb, RefusesWhatDoesNotFitTogether) {
    Image image(4, 3);
    Image wider(5, 3);
    Image empty(DefaultHeader(0, 3));
    Bitmap bitmap;
    const auto combine = [&](TqLeadBitmap* to, const TqImage* r, const TqImage* g, const TqImage* b) {
        return tqCombineImagesRGB(to, r, g, b, 1, 1, 1, 0, 0, 1.0);
    };
    EXPECT_EQ(combine(&bitmap, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(combine(&bitmap, image, wider, image), -1);
    EXPECT_EQ(combine(&bitmap, nullptr, image, wider), -1);
    EXPECT_EQ(combine(&bitmap, empty, image, image), -1);
    EXPECT_EQ(combine(&bitmap, nullptr, nullptr, empty), -1);
    EXPECT_EQ(combine(nullptr, image, nullptr, nullptr), -2);
    EXPECT_EQ(bitmap.rows, nullptr);
    void* dib = nullptr;
    EXPECT_EQ(tqCombineImagesRGBtoDIB(&dib, image, wider, image, 1, 1, 1, 0, 0, 1.0), -1);
    EXPECT_EQ(tqCombineImagesRGBtoDIB(nullptr, image, image, image, 1, 1, 1, 0, 0, 1.0), -11);
    EXPECT_EQ(dib, nullptr);
}

TEST(CombineImagesRgbToDib, IsTheFileOfTheBitmapWithoutItsFileHeader) {
    const TempName name("tq_combined.bmp");
    Image image = RandomImageWithHoles(7, 3, 5);
    Bitmap bitmap;
    ASSERT_EQ(tqCombineImagesRGB(&bitmap, image, nullptr, image, 1, 1, 0.5f, 0, 1, 2.0), 0);
    ASSERT_EQ(tqLeadBmpToDiskBmp(name.c_str(), &bitmap), 0);
    void* dib = nullptr;
    ASSERT_EQ(tqCombineImagesRGBtoDIB(&dib, image, nullptr, image, 1, 1, 0.5f, 0, 1, 2.0), 0);
    const std::string file = name.Bytes();
    ASSERT_EQ(file.size(), 54u + 3 * 24);
    EXPECT_EQ(
        file.compare(14, std::string::npos, static_cast<const char*>(GlobalLock(dib)), file.size() - 14), 0);
    GlobalUnlock(dib);
    EXPECT_EQ(GlobalFree(dib), nullptr);
}

TEST(ColourBitmapToImage, LinearisesAndMixes) {
    const TempName name("tq_tristimulus.bmp");
    // White and black above red, green and blue of half the bytes.
    tqtest::WriteBytes(
        name,
        tqtest::MakeBmp({40, 3, 2, 24, 0, 0, {}, {}, {0,   0,   128, 0, 128, 0, 128, 0,  0,  0, 0, 0,
                                                      255, 255, 255, 0, 0,   0, 10,  10, 10, 0, 0, 0}}));
    std::array<Image, 3> images;
    const auto load = [&](const char* file, const TqImageHeader* info) {
        return tq24bitColorBitmapToImage(file, info, images[0].Address(), images[1].Address(),
                                         images[2].Address());
    };
    ASSERT_EQ(load(name.c_str(), nullptr), 0);
    // ((128/255 + 0.055) / 1.055)^2.4 = 0.2158605; 10/255/12.92 = 0.0030353.
    EXPECT_TRUE(tqtest::SamePels(MakeImage(3, 2, {9643, 0, 29, 941, 831, 308}), images[0]));
    EXPECT_TRUE(tqtest::SamePels(MakeImage(3, 2, {10000, 0, 30, 480, 1547, 130}), images[1]));
    EXPECT_TRUE(tqtest::SamePels(MakeImage(3, 2, {8251, 0, 25, 30, 209, 1541}), images[2]));
    EXPECT_EQ(images[2].Header().MaxPelValue, 8251.0f);
    EXPECT_EQ(images[0].Header().PelsPerMeterX, 1.0f);

    // A palette's colours are colours too; the header may be that of an image that goes.
    tqtest::WriteBytes(name,
                       tqtest::MakeBmp({40, 1, 1, 1, 0, 2, {}, {0, 0, 0, 0, 0, 0, 0, 0}, {0x80, 0, 0, 0}}));
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
