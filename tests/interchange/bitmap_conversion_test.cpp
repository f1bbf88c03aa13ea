#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <tuple>

#include "bitmaps.h"
#include "failing_allocator.h"
#include "images.h"
#include "tqimage/bitmap.h"

namespace {

using tqtest::Bitmap;
using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::MakeImage;

/// Every pel there is.
Image AllLevels() {
    return MakeImage(256, 256, [](std::int32_t col, std::int32_t row) { return 256 * row + col; });
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
        EXPECT_EQ(bitmap.structSize, sizeof(TqLeadBitmap));
        EXPECT_EQ(bitmap.width, cols);
        EXPECT_EQ(bitmap.height, 2);
        EXPECT_EQ(bitmap.bitsPerPixel, 8);
        EXPECT_EQ(bitmap.bytesPerLine, cols <= 4 ? 4 : 8);
        EXPECT_EQ(bitmap.viewPerspective, 1);
        EXPECT_EQ(bitmap.paletteEntries, 256);
        for (std::int32_t col = 0; col < cols; ++col) {
            EXPECT_EQ(bitmap.At(col, 0), col);
            EXPECT_EQ(bitmap.At(col, 1), 10 + col);
        }
        for (std::int32_t col = cols; col < bitmap.bytesPerLine; ++col)
            EXPECT_EQ(bitmap.At(col, 1), 0);
    }
}

/// The curve in extended precision, rounded to double where the definition has a double.
int PlainCurve(int pel, double gamma, double fullScale) {
    double value = pel / fullScale;
    if (value > 0.0031308) {
        const auto power = static_cast<double>(
            std::pow(static_cast<long double>(value), static_cast<long double>(gamma * 0.4166)));
        value = 1.055 * power - 0.055;
    } else {
        value = 12.92 * value;
    }
    return std::max(0, static_cast<int>(std::min(value * 255.0, 255.0)));
}

TEST(ImageToLeadBmp, EveryLevelOnTheCurve) {
    Image image = AllLevels();
    struct Case {
        double gamma;
        float fullScale;
    };
    for (const auto& [gamma, fullScale] :
         {Case{1.0, 65535.0f}, Case{1.0, 4095.0f}, Case{1.0, 1.5f}, Case{0.0, 65000.0f}, Case{2.2, 65535.0f},
          Case{2.2, 1023.0f}, Case{0.45, 65535.0f}, Case{0.45, 4095.5f}, Case{5.0, 65000.0f},
          Case{1e-300, 255.0f}}) {
        SCOPED_TRACE(testing::Message() << "gamma " << gamma << ", full scale " << fullScale);
        image.Header().MaxPelValue = fullScale;
        Bitmap bitmap;
        double scale = 0.0;
        ASSERT_EQ(tqImageToLeadBmp(&bitmap, &scale, image, 0, gamma), 0);
        for (std::int32_t pel = 0; pel < 65536; ++pel) {
            ASSERT_EQ(bitmap.At(pel % 256, pel / 256), PlainCurve(pel, gamma == 0.0 ? 1.0 : gamma, fullScale))
                << "pel " << pel;
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
    // No scale that is a number, and no gamma either: black, but no failure.
    Image image = MakeImage(2, 1, {5, 65535});
    image.Header().MaxPelValue = std::numeric_limits<float>::quiet_NaN();
    Bitmap bitmap;
    double scale = 0.0;
    ASSERT_EQ(tqImageToLeadBmp(&bitmap, &scale, image, 3, 1.0), 0);
    EXPECT_EQ(bitmap.At(1, 0), 0);
    EXPECT_TRUE(std::isnan(scale));
}

using Colour = std::array<int, 3>;  // blue, green, red

/// The palette of a code; empty when the bitmap has none.
std::vector<Colour> PaletteOf(std::int32_t code) {
    Image image(1, 1);
    Bitmap bitmap;
    double scale = 0.0;
    if (tqImageToLeadBmp(&bitmap, &scale, image, code, 1.0) != 0) throw std::runtime_error("no bitmap");
    std::vector<Colour> colours;
    for (std::int32_t i = 0; i < bitmap.paletteEntries; ++i) {
        const std::uint8_t* entry = bitmap.palette + 4 * static_cast<std::ptrdiff_t>(i);
        EXPECT_EQ(entry[3], 0);
        colours.push_back({entry[0], entry[1], entry[2]});
    }
    return colours;
}

TEST(Palettes, RampsAndNone) {
    constexpr Colour kWhite{255, 255, 255};
    EXPECT_TRUE(PaletteOf(0).empty());
    struct Ramp {
        std::int32_t code;
        Colour colour;
        std::size_t whites;
    };
    for (const Ramp& ramp : {Ramp{1, {1, 1, 1}, 16}, Ramp{3, {0, 0, 1}, 0}, Ramp{4, {0, 1, 0}, 0},
                             Ramp{5, {1, 0, 0}, 0}, Ramp{6, {1, 1, 1}, 0}, Ramp{-2, {1, 1, 1}, 0},
                             Ramp{std::numeric_limits<std::int32_t>::min(), {1, 1, 1}, 0}}) {
        const std::vector<Colour> colours = PaletteOf(ramp.code);
        ASSERT_EQ(colours.size(), 256u);
        for (std::size_t i = 0; i < 256; ++i) {
            const int level = static_cast<int>(i);
            const Colour grey{ramp.colour[0] * level, ramp.colour[1] * level, ramp.colour[2] * level};
            EXPECT_EQ(colours[i], i < ramp.whites ? kWhite : grey)
                << "palette " << ramp.code << ", entry " << i;
        }
    }
}

TEST(Palettes, FalseColoursPassThroughTheirTellingRows) {
    const std::vector<Colour> dark = PaletteOf(-1);
    const std::vector<Colour> white = PaletteOf(2);
    ASSERT_EQ(dark.size(), 256u);
    ASSERT_EQ(white.size(), 256u);
    for (std::size_t i = 0; i < 256; ++i) {
        const int ramp = std::min(static_cast<int>(10 * i), 170);
        if (i <= 32) {
            EXPECT_EQ(dark[i], (Colour{ramp, 0, ramp})) << i;
        }
        EXPECT_EQ(white[i], i < 16 ? (Colour{255, 255, 255}) : dark[i]) << i;
    }
    struct Row {
        std::size_t entry;
        Colour colour;
    };
    for (const Row& row : {Row{64, {255, 0, 85}}, Row{96, {170, 170, 0}}, Row{128, {170, 255, 0}},
                           Row{160, {0, 255, 128}}, Row{192, {0, 170, 255}}, Row{224, {0, 0, 255}},
                           Row{254, {198, 198, 255}}, Row{255, {203, 203, 255}},
                           // Between them: straight lines, halves (212.5 and 127.5) to the even neighbour.
                           Row{48, {212, 0, 128}}, Row{112, {170, 212, 0}}, Row{225, {7, 7, 255}},
                           Row{253, {191, 191, 255}}}) {
        EXPECT_EQ(dark[row.entry], row.colour) << row.entry;
    }
}

TEST(ImageToLeadBmp, RefusesInvalidImagesAndLeavesTheBitmap) {
    Image empty(DefaultHeader(0, 3));
    Image tooWide(DefaultHeader(8001, 1));
    TqLeadBitmap bitmap;
    std::memset(&bitmap, 0x5A, sizeof bitmap);
    const TqLeadBitmap before = bitmap;
    double scale = 42.0;
    for (TqImage* image : {static_cast<TqImage*>(nullptr), empty.Get(), tooWide.Get()}) {
        EXPECT_EQ(tqImageToLeadBmp(&bitmap, &scale, image, 1, 1.0), -100);
    }
    Image image(3, 3);
    EXPECT_EQ(tqImageToLeadBmp(nullptr, &scale, image, 0, 1.0), -2);
    EXPECT_EQ(tqImageToLeadBmp(nullptr, &scale, image, 1, 1.0), -3);
    EXPECT_EQ(std::memcmp(&bitmap, &before, sizeof bitmap), 0);
    EXPECT_EQ(scale, 42.0);
}

TEST(FreeLeadBmp, LeavesARecordOfZerosThatMayBeFreedAgain) {
    Image image(3, 3);
    TqLeadBitmap bitmap{};
    double scale = 0.0;
    ASSERT_EQ(tqImageToLeadBmp(&bitmap, &scale, image, 1, 1.0), 0);
    EXPECT_EQ(tqFreeLeadBmp(&bitmap), 0);
    EXPECT_EQ(bitmap.rows, nullptr);
    EXPECT_EQ(bitmap.palette, nullptr);
    EXPECT_EQ(bitmap.width, 0);
    EXPECT_EQ(tqFreeLeadBmp(&bitmap), 0);
    EXPECT_EQ(tqFreeLeadBmp(nullptr), 0);
}

TEST(ImageToLeadBmp, NoMemoryLeavesTheBitmapAlone) {
    if (!tqtest::CanFailAllocations()) GTEST_SKIP() << "the library allocates for itself here";
    Image image(9, 9);
    for (const std::int32_t palette : {0, 1}) {
        Bitmap bitmap;
        double scale = 0.0;
        const int made = tqtest::FailEachAllocation(
            palette == 0 ? -2 : -3, 0, [&] { return tqImageToLeadBmp(&bitmap, &scale, image, palette, 1.0); },
            [&] {
                EXPECT_EQ(bitmap.rows, nullptr);
                EXPECT_EQ(bitmap.palette, nullptr);
                EXPECT_EQ(scale, 0.0);
            });
        EXPECT_GE(made, palette == 0 ? 1 : 2);
    }
}

}  // namespace
