#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "bitmaps.h"
#include "images.h"
#include "tqimage/bitmap.h"

namespace tqtest {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

/// Every pel there is.
Image AllLevels(float fullScale) {
    Image image = MakeImage(256, 256, [](std::int32_t col, std::int32_t row) { return 256 * row + col; });
    image.Header().MaxPelValue = fullScale;
    return image;
}

TEST(ImageToLeadBmp, DescribesTheBitmapItMakesAndTheLinearCurveTruncates) {
    // On a scale of 510 a level is two greys.
    for (const std::int32_t cols : {1, 3, 4, 5}) {
        Image image =
            MakeImage(cols, 2, [](std::int32_t col, std::int32_t row) { return 1 + 20 * row + 2 * col; });
        image.Header().MaxPelValue = 510.0f;
        Bitmap bitmap;
        double scale = 0.0;
        ASSERT_EQ(tqImageToLeadBmp(&bitmap, &scale, image, 6, -1.0), 0);
        EXPECT_EQ(scale, 0.5);
        TqLeadBitmap expected{sizeof expected, cols,       2, 8, cols <= 4 ? 4 : 8, 1, 0, 256,
                              bitmap.palette,  bitmap.rows};
        EXPECT_EQ(std::memcmp(&expected, static_cast<TqLeadBitmap*>(&bitmap), sizeof expected), 0);
        for (std::int32_t col = 0; col < bitmap.bytesPerLine; ++col) {
            EXPECT_EQ(bitmap.At(col, 0), col < cols ? col : 0);
            EXPECT_EQ(bitmap.At(col, 1), col < cols ? 10 + col : 0);
        }
        for (int twice = 0; twice < 2; ++twice)  // a record of zeros may be freed again
            EXPECT_EQ(tqFreeLeadBmp(&bitmap), 0);
        EXPECT_EQ(bitmap.rows, nullptr);
    }
    EXPECT_EQ(tqFreeLeadBmp(nullptr), 0);
}

TEST(ImageToLeadBmp, EveryLevelOnTheCurve) {
    const struct {
        double gamma;
        float fullScale;
    } cases[] = {{1.0, 65535.0f}, {1.0, 4095.0f},   {1.0, 1.5f},     {0.0, 65000.0f}, {2.2, 65535.0f},
                 {2.2, 1023.0f},  {0.45, 65535.0f}, {0.45, 4095.5f}, {5.0, 65000.0f}, {1e-300, 255.0f}};
    for (const auto& [gamma, fullScale] : cases) {
        Image image = AllLevels(fullScale);
        const Bitmap bitmap(image, 0, gamma);
        for (int pel = 0; pel < 65536; ++pel) {
            const double tone = PlainTone(pel / static_cast<double>(fullScale), gamma);
            ASSERT_EQ(bitmap.At(pel % 256, pel / 256), static_cast<int>(std::clamp(tone, 0.0, 255.0)))
                << "gamma " << gamma << ", full scale " << fullScale << ", pel " << pel;
        }
    }
}

TEST(ImageToLeadBmp, AnImageWithoutScaleCountsAsBytes) {
    for (const float none : {0.0f, -0.0f, -7.0f}) {
        Image image = MakeImage(4, 1, {0, 100, 255, 400});
        image.Header().MaxPelValue = none;
        Bitmap bitmap;
        double scale = 0.0;
        ASSERT_EQ(tqImageToLeadBmp(&bitmap, &scale, image, 3, -1.0), 0);
        EXPECT_EQ(scale, 1.0);
        EXPECT_EQ(image.Header().MaxPelValue, 255.0f) << "later calls see the same scale";
        EXPECT_EQ(bitmap.At(1, 0), 100);
        EXPECT_EQ(bitmap.At(3, 0), 255);
    }
    // No scale that is a number: black, but no failure.
    Image image = MakeImage(2, 1, {5, 65535});
    image.Header().MaxPelValue = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(Bitmap(image, 3, 1.0).At(1, 0), 0);
}

using Entry = std::array<int, 4>;  // blue, green, red, the fourth byte

Entry EntryOf(const TqLeadBitmap& bitmap, std::size_t index) {
    const std::uint8_t* entry = bitmap.palette + 4 * index;
    return {entry[0], entry[1], entry[2], entry[3]};
}

TEST(Palettes, RampsAndNone) {
    Image image(1, 1);
    EXPECT_EQ(Bitmap(image, 0, 1.0).paletteEntries, 0);
    EXPECT_EQ(Bitmap(image, 0, 1.0).palette, nullptr);
    const struct {
        std::int32_t code;
        Entry step;
        int whites;
    } ramps[] = {{1, {1, 1, 1, 0}, 16}, {3, {0, 0, 1, 0}, 0},  {4, {0, 1, 0, 0}, 0},     {5, {1, 0, 0, 0}, 0},
                 {6, {1, 1, 1, 0}, 0},  {-2, {1, 1, 1, 0}, 0}, {kLeast, {1, 1, 1, 0}, 0}};
    for (const auto& ramp : ramps) {
        const Bitmap bitmap(image, ramp.code, 1.0);
        ASSERT_EQ(bitmap.paletteEntries, 256);
        for (int i = 0; i < 256; ++i) {
            const Entry grey{ramp.step[0] * i, ramp.step[1] * i, ramp.step[2] * i, 0};
            EXPECT_EQ(EntryOf(bitmap, static_cast<std::size_t>(i)),
                      i < ramp.whites ? (Entry{255, 255, 255, 0}) : grey)
                << "palette " << ramp.code << ", entry " << i;
        }
    }
}

TEST(Palettes, FalseColoursPassThroughTheirTellingRows) {
    Image image(1, 1);
    const Bitmap dark(image, -1, 1.0), white(image, 2, 1.0);
    for (std::size_t i = 0; i < 256; ++i) {
        const int ramp = std::min(static_cast<int>(10 * i), 170);
        EXPECT_EQ(EntryOf(dark, std::min<std::size_t>(i, 32)), (Entry{ramp, 0, ramp, 0})) << i;
        EXPECT_EQ(EntryOf(white, i), i < 16 ? (Entry{255, 255, 255, 0}) : EntryOf(dark, i)) << i;
    }
    const struct {
        std::size_t index;
        Entry entry;
    } rows[] = {{64, {255, 0, 85, 0}},
                {96, {170, 170, 0, 0}},
                {128, {170, 255, 0, 0}},
                {160, {0, 255, 128, 0}},
                {192, {0, 170, 255, 0}},
                {224, {0, 0, 255, 0}},
                {254, {198, 198, 255, 0}},
                {255, {203, 203, 255, 0}},
                // Between them: straight lines, halves (212.5 and 127.5) to the even neighbour.
                {48, {212, 0, 128, 0}},
                {112, {170, 212, 0, 0}},
                {225, {7, 7, 255, 0}},
                {253, {191, 191, 255, 0}}};
    for (const auto& row : rows)
        EXPECT_EQ(EntryOf(dark, row.index), row.entry) << row.index;
}

TEST(Palettes, OfTextAreFieldsOfThreeCharactersInGroupsOfFour) {
    Image image(1, 1);
    const std::string numbers = "  1   2   3   4  10  20  30  40 ", full(4096, '7');
    const struct {
        std::string text;
        std::size_t index;
        Entry entry;
    } cases[] = {{numbers, 0, {3, 2, 1, 4}},  // red, green, blue in the text
                 {numbers, 1, {30, 20, 10, 40}},
                 {numbers, 2, {0, 0, 0, 0}},
                 {"12349999256,999x", 0, {0, 231, 123, 231}},  // the fourth character counts for nothing
                 {" -1x1 5 abc \t+9 ", 0, {0, 1, 255, 9}},
                 {"  1   23", 0, {0, 2, 1, 0}},
                 {"", 255, {0, 0, 0, 0}},
                 {full + "  5 ", 255, {777 % 256, 777 % 256, 777 % 256, 777 % 256}}};
    for (const auto& it : cases) {
        SCOPED_TRACE(it.text.substr(0, 40));
        Bitmap bitmap, stretched;
        double scale = 0.0;
        ASSERT_EQ(tqImageToLeadBmp0(&bitmap, &scale, image, it.text.c_str(), -2, 1.0), 0);
        ASSERT_EQ(tqImageToLeadBmpScale(&stretched, &scale, image, it.text.c_str(), -2, 0, 0, 0, 1.0), 0);
        EXPECT_EQ(EntryOf(bitmap, it.index), it.entry);
        EXPECT_EQ(EntryOf(stretched, it.index), it.entry);
    }
}

TEST(ImageToLeadBmp, RefusalsLeaveTheBitmap) {
    Image image(3, 3), empty(0, 3), tooWide(8001, 1);
    TqLeadBitmap bitmap;
    std::memset(&bitmap, 0x5A, sizeof bitmap);
    const TqLeadBitmap before = bitmap;
    double scale = 42.0;
    for (TqImage* none : {static_cast<TqImage*>(nullptr), empty.Get(), tooWide.Get()})
        EXPECT_EQ(tqImageToLeadBmp(&bitmap, &scale, none, 1, 1.0), -100);
    EXPECT_EQ(tqImageToLeadBmp0(&bitmap, &scale, image, nullptr, -2, 1.0), -100);
    EXPECT_EQ(tqImageToLeadBmpScale(&bitmap, &scale, image, nullptr, -2, 0, 0, 0, 1.0), -100);
    EXPECT_EQ(tqImageToLeadBmp(nullptr, &scale, image, 0, 1.0), -2);
    EXPECT_EQ(tqImageToLeadBmp0(nullptr, &scale, image, nullptr, 0, 1.0), -2);
    EXPECT_EQ(tqImageToLeadBmp(nullptr, &scale, image, 1, 1.0), -3);
    EXPECT_EQ(tqImageToLeadBmpScale(nullptr, &scale, image, "", -2, 0, 0, 0, 1.0), -3);
    EXPECT_EQ(std::memcmp(&bitmap, &before, sizeof bitmap), 0);
    EXPECT_EQ(scale, 42.0);
}

struct Levels {
    std::int32_t low;
    std::int32_t high;
    std::int32_t logarithmic;
    double gamma;
    float fullScale = 65535.0f;
};

/// One pel as the definition has it.
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
    const double low = levels.low, high = levels.high;
    double result = 1.0 + (pel - low) * 254.0 / (high - low);
    if (levels.gamma >= 0.0) {
        result = PlainTone(pel / high, levels.gamma);
    } else if (levels.high == levels.low) {
        result = pel > levels.low ? 255.0 : 1.0;
    } else if (levels.logarithmic != 0) {
        result = 1.0 + 254.0 * (log(pel / low) / log(high / low));
    }
    return static_cast<int>(std::clamp(result, 1.0, 255.0));
}

TEST(ImageToLeadBmpScale, EveryLevelOfEveryStretch) {
    for (const Levels& levels :
         {Levels{100, 1100, 0, -1.0}, Levels{100, 1100, 1, -1.0}, Levels{0, 0, 0, -1.0},
          Levels{0, 0, 1, -1.0}, Levels{0, 0, 0, -1.0, 4095.5f}, Levels{0, 0, 1, -1.0, 0.5f},
          Levels{60000, 200, 0, -1.0}, Levels{60000, 200, 1, -1.0}, Levels{500, 500, 0, -1.0},
          Levels{500, 500, 1, -1.0}, Levels{-7, -3, 0, -1.0}, Levels{-7, -3, 1, -1.0},
          Levels{kLeast, kMost, 0, -1.0}, Levels{1, kMost, 1, -1.0}, Levels{9, 4095, 1, 1.0},
          Levels{0, 0, 0, 0.0}, Levels{0, 1100, 0, 2.2}, Levels{0, -5, 0, 0.45}}) {
        SCOPED_TRACE(testing::Message() << levels.low << ".." << levels.high << ", logarithmic "
                                        << levels.logarithmic << ", gamma " << levels.gamma);
        Image image = AllLevels(levels.fullScale);
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

TEST(LeadBmpToImage, TakesBytesFromTheTopRowOn) {
    std::uint8_t rows[] = {1, 2, 3, 99, 4, 5, 6, 99};
    TqLeadBitmap bitmap{sizeof bitmap, 3, 2, 8, 4, 1, 0, 0, nullptr, rows};
    Image image(9, 9);
    ASSERT_EQ(tqLeadBmpToImage(bitmap, image.Address()), 0);
    EXPECT_TRUE(SamePels(MakeImage(3, 2, {1, 2, 3, 4, 5, 6}), image));
    // The largest pel does not lie in the padding.
    const TqImageHeader expected{3, 2, 1, 1, 0, 0, 0, 1, 0, 6, 1, 1, 1, 0};
    EXPECT_TRUE(SameHeader(expected, image.Header()));
    bitmap.viewPerspective = 2;
    ASSERT_EQ(tqLeadBmpToImage(bitmap, image.Address()), 0);
    EXPECT_TRUE(SamePels(MakeImage(3, 2, {4, 5, 6, 1, 2, 3}), image));
    // A row of colours is bytes too.
    bitmap.width = 1;
    bitmap.bitsPerPixel = 24;
    ASSERT_EQ(tqLeadBmpToImage(bitmap, image.Address()), 0);
    EXPECT_TRUE(SamePels(MakeImage(1, 2, {4, 1}), image));
    std::fill(std::begin(rows), std::end(rows), std::uint8_t{0});
    ASSERT_EQ(tqLeadBmpToImage(bitmap, image.Address()), 0);
    EXPECT_EQ(image.Header().MaxPelValue, 1.0f);
}

TEST(LeadBmpToImage, RefusesRecordsWithoutReadableRows) {
    std::uint8_t rows[64]{};
    const TqLeadBitmap sound{sizeof sound, 3, 2, 8, 4, 1, 0, 0, nullptr, rows};
    Image image(2, 2);
    const TqImage* const before = image.Get();
    void (*const spoilers[])(TqLeadBitmap&) = {
        [](auto& b) { b = {}; },
        [](auto& b) { b.rows = nullptr; },
        [](auto& b) { b.width = 0; },
        [](auto& b) { b.height = -2; },
        [](auto& b) { b.bitsPerPixel = 4; },
        [](auto& b) { b.width = 5; },
        [](auto& b) { b.bitsPerPixel = 24; },
        [](auto& b) { b.bytesPerLine = -4; },
        [](auto& b) { b.width = 1, b.bytesPerLine = 1, b.height = kMost; }};
    for (const auto& spoil : spoilers) {
        TqLeadBitmap bitmap = sound;
        spoil(bitmap);
        EXPECT_EQ(tqLeadBmpToImage(bitmap, image.Address()), -1) << &spoil - spoilers;
    }
    EXPECT_EQ(tqLeadBmpToImage(sound, nullptr), -1);
    EXPECT_EQ(image.Get(), before);
}

}  // namespace
}  // namespace tqtest
