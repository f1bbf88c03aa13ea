#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "bitmaps.h"
#include "images.h"
#include "tqimage/bitmap.h"

namespace {

using tqtest::Bitmap;
using tqtest::Image;
using tqtest::MakeImage;

struct Levels {
    std::int32_t low;
    std::int32_t high;
    std::int32_t logarithmic;
    double gamma;
    float fullScale = 65535.0f;
};

/// One pel as the definition has it, the functions in extended precision rounded to double.
int PlainStretch(int pel, Levels levels) {
    if (levels.high == 0) levels.high = std::max(static_cast<int>(levels.fullScale), 1);
    if (levels.logarithmic != 0) {
        levels.low = std::max(levels.low, 1);
        levels.high = std::max(levels.high, 1);
    }
    if (pel == 0) return 0;
    const auto log = [](double value) {
        return static_cast<double>(std::log(static_cast<long double>(value)));
    };
    const double low = levels.low;
    const double high = levels.high;
    double result = 0.0;
    if (levels.gamma >= 0.0) {
        const double value = pel / high;
        const double exponent = (levels.gamma == 0.0 ? 1.0 : levels.gamma) * 0.4166;
        const auto power = static_cast<double>(
            std::pow(static_cast<long double>(value), static_cast<long double>(exponent)));
        result = 255.0 * (value > 0.0031308 ? 1.055 * power - 0.055 : 12.92 * value);
    } else if (levels.high == levels.low) {
        result = pel > levels.low ? 255.0 : 1.0;
    } else if (levels.logarithmic != 0) {
        result = 1.0 + 254.0 * (log(pel / low) / log(high / low));
    } else {
        result = 1.0 + (pel - low) * 254.0 / (high - low);
    }
    return static_cast<int>(std::clamp(result, 1.0, 255.0));
}

TEST(ImageToLeadBmpScale, EveryLevelOfEveryStretch) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    Image image = MakeImage(256, 256, [](std::int32_t col, std::int32_t row) { return 256 * row + col; });
    for (const Levels& levels :
         {Levels{100, 1100, 0, -1.0}, Levels{100, 1100, 1, -1.0}, Levels{0, 0, 0, -1.0},
          Levels{0, 0, 1, -1.0}, Levels{0, 0, 0, -1.0, 4095.5f}, Levels{0, 0, 1, -1.0, 0.5f},
          Levels{60000, 200, 0, -1.0}, Levels{60000, 200, 1, -1.0}, Levels{500, 500, 0, -1.0},
          Levels{500, 500, 1, -1.0}, Levels{-7, -3, 0, -1.0}, Levels{-7, -3, 1, -1.0},
          Levels{kLeast, kMost, 0, -1.0}, Levels{1, kMost, 1, -1.0}, Levels{9, 4095, 1, 1.0},
          Levels{0, 0, 0, 0.0}, Levels{0, 1100, 0, 2.2}, Levels{0, -5, 0, 0.45}}) {
        SCOPED_TRACE(testing::Message() << levels.low << ".." << levels.high << ", logarithmic "
                                        << levels.logarithmic << ", gamma " << levels.gamma);
        image.Header().MaxPelValue = levels.fullScale;
        Bitmap bitmap;
        double scale = 0.0;
        ASSERT_EQ(tqImageToLeadBmpScale(&bitmap, &scale, image, nullptr, 0, levels.low, levels.high,
                                        levels.logarithmic, levels.gamma),
                  0);
        EXPECT_EQ(scale, 255.0 / levels.fullScale);
        for (int pel = 0; pel < 65536; ++pel)
            ASSERT_EQ(bitmap.At(pel % 256, pel / 256), PlainStretch(pel, levels)) << "pel " << pel;
    }
}

TEST(TextPalette, FieldsOfThreeCharactersInGroupsOfFour) {
    Image image(1, 1);
    struct Case {
        std::string text;
        std::size_t entry;
        int blue, green, red, fourth;
    };
    const std::string full(4096, '7');
    for (const Case& c :
         {Case{"  1   2   3   4  10  20  30  40 ", 0, 3, 2, 1, 4},  // red, green, blue in the text
          Case{"  1   2   3   4  10  20  30  40 ", 1, 30, 20, 10, 40},
          Case{"  1   2   3   4  10  20  30  40 ", 2, 0, 0, 0, 0},
          Case{"12349999256,999x", 0, 0, 231, 123, 231},  // the fourth character counts for nothing
          Case{" -1x1 5 abc \t+9 ", 0, 0, 1, 255, 9}, Case{"  1   23", 0, 0, 2, 1, 0},
          Case{"", 255, 0, 0, 0, 0}, Case{full + "  5 ", 255, 777 % 256, 777 % 256, 777 % 256, 777 % 256}}) {
        SCOPED_TRACE(c.text.substr(0, 40));
        Bitmap bitmap;
        Bitmap stretched;
        double scale = 0.0;
        ASSERT_EQ(tqImageToLeadBmp0(&bitmap, &scale, image, c.text.c_str(), -2, 1.0), 0);
        ASSERT_EQ(tqImageToLeadBmpScale(&stretched, &scale, image, c.text.c_str(), -2, 0, 0, 0, 1.0), 0);
        for (const Bitmap* made : {&bitmap, &stretched}) {
            const std::uint8_t* entry = made->palette + 4 * c.entry;
            EXPECT_EQ(entry[0], c.blue);
            EXPECT_EQ(entry[1], c.green);
            EXPECT_EQ(entry[2], c.red);
            EXPECT_EQ(entry[3], c.fourth);
        }
    }
}

TEST(ImageToLeadBmp0, IsImageToLeadBmpWithOneMorePalette) {
    Image image = tqtest::RandomImage(37, 5, 11);
    Bitmap expected;
    Bitmap bitmap;
    double scale = 0.0;
    ASSERT_EQ(tqImageToLeadBmp(&expected, &scale, image, 5, 2.2), 0);
    ASSERT_EQ(tqImageToLeadBmp0(&bitmap, &scale, image, nullptr, 5, 2.2), 0);
    EXPECT_TRUE(std::equal(expected.rows, expected.rows + 5 * expected.bytesPerLine, bitmap.rows));
    EXPECT_TRUE(std::equal(expected.palette, expected.palette + 1024, bitmap.palette));

    EXPECT_EQ(tqImageToLeadBmp0(&bitmap, &scale, nullptr, "", -2, 1.0), -100);
    EXPECT_EQ(tqImageToLeadBmp0(&bitmap, &scale, image, nullptr, -2, 1.0), -100);
    EXPECT_EQ(tqImageToLeadBmp0(nullptr, &scale, image, "", 0, 1.0), -2);
    EXPECT_EQ(tqImageToLeadBmpScale(&bitmap, &scale, image, nullptr, -2, 0, 0, 0, 1.0), -100);
    EXPECT_EQ(tqImageToLeadBmpScale(nullptr, &scale, image, "", -2, 0, 0, 0, 1.0), -3);
}

TEST(LeadBmpToImage, TakesBytesFromTheTopRowOn) {
    std::uint8_t rows[] = {1, 2, 3, 99, 4, 5, 6, 99};
    TqLeadBitmap bitmap{sizeof bitmap, 3, 2, 8, 4, 1, 0, 0, nullptr, rows};
    Image image(9, 9);
    ASSERT_EQ(tqLeadBmpToImage(bitmap, image.Address()), 0);
    EXPECT_TRUE(tqtest::SamePels(MakeImage(3, 2, {1, 2, 3, 4, 5, 6}), image));
    const TqImageHeader& header = image.Header();
    EXPECT_EQ(header.MaxPelValue, 6.0f) << "without the padding";
    EXPECT_EQ(header.PelsPerMeterX, 1.0f);
    EXPECT_EQ(header.LuxPerGrey, 1.0f);
    EXPECT_EQ(header.SourceDistance, 1.0f);
    EXPECT_EQ(header.BinRows, 1);
    bitmap.viewPerspective = 2;
    ASSERT_EQ(tqLeadBmpToImage(bitmap, image.Address()), 0);
    EXPECT_TRUE(tqtest::SamePels(MakeImage(3, 2, {4, 5, 6, 1, 2, 3}), image));
    // A row of colours is bytes too.
    bitmap.width = 1;
    bitmap.bitsPerPixel = 24;
    ASSERT_EQ(tqLeadBmpToImage(bitmap, image.Address()), 0);
    EXPECT_TRUE(tqtest::SamePels(MakeImage(1, 2, {4, 1}), image));
    std::fill(std::begin(rows), std::end(rows), std::uint8_t{0});
    ASSERT_EQ(tqLeadBmpToImage(bitmap, image.Address()), 0);
    EXPECT_EQ(image.Header().MaxPelValue, 1.0f);
}

TEST(LeadBmpToImage, RefusesRecordsWithoutReadableRows) {
    std::uint8_t rows[64]{};
    const TqLeadBitmap sound{sizeof sound, 3, 2, 8, 4, 1, 0, 0, nullptr, rows};
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    Image image(2, 2);
    const TqImage* const before = image.Get();
    const auto refused = [&](auto&& spoil) {
        TqLeadBitmap bitmap = sound;
        spoil(bitmap);
        EXPECT_EQ(tqLeadBmpToImage(bitmap, image.Address()), -1);
        EXPECT_EQ(image.Get(), before);
    };
    refused([](TqLeadBitmap& b) { b = {}; });
    refused([](TqLeadBitmap& b) { b.rows = nullptr; });
    refused([](TqLeadBitmap& b) { b.width = 0; });
    refused([](TqLeadBitmap& b) { b.height = -2; });
    refused([](TqLeadBitmap& b) { b.bitsPerPixel = 4; });
    refused([](TqLeadBitmap& b) { b.width = 5; });
    refused([](TqLeadBitmap& b) { b.bitsPerPixel = 24; });
    refused([](TqLeadBitmap& b) { b.bytesPerLine = -4; });
    refused([](TqLeadBitmap& b) { b.width = 1, b.bytesPerLine = 1, b.height = kMost; });
    EXPECT_EQ(tqLeadBmpToImage(sound, nullptr), -1);
}

}  // namespace
