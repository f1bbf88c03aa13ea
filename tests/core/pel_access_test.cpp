#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "images.h"
#include "tqimage/exchange.h"

namespace {

using tqtest::Image;
using tqtest::MakeImage;
using tqtest::SamePels;

constexpr std::int32_t kLow = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHigh = std::numeric_limits<std::int32_t>::max();

/// 4 x 3 pels, each 100 x row + column.
Image Numbered() {
    return MakeImage(4, 3, [](int col, int row) { return 100 * row + col; });
}

TEST(PelAccess, ReadsClampToTheNearestPel) {
    const Image image = Numbered();
    struct Case {
        std::int32_t col, row, from1, from0;
    };
    for (const Case& c : {Case{1, 1, 0, 101}, Case{4, 3, 203, 203}, Case{0, 0, 0, 0}, Case{-7, 2, 100, 200},
                          Case{3, -7, 2, 3}, Case{kLow, kHigh, 200, 200}, Case{kHigh, kLow, 3, 3}}) {
        EXPECT_EQ(tqGetImgPel(image, c.col, c.row), c.from1) << c.col << ", " << c.row;
        EXPECT_EQ(tqGetImgPel0(image, c.col, c.row), c.from0) << c.col << ", " << c.row;
    }
}

TEST(PelAccess, WritesClampAndChangeOnePel) {
    for (const auto& [col, row] : {std::pair{2, 1}, {9, 1}, {kHigh, kHigh}, {kLow, 5}}) {
        Image expected = Numbered();
        const int atCol = col < 0 ? 0 : (col > 3 ? 3 : col);
        const int atRow = row < 0 ? 0 : (row > 2 ? 2 : row);
        expected(atCol, atRow) = 60000;

        Image image = Numbered();
        EXPECT_EQ(tqPutImgPel0(image, col, row, 60000), 60000);
        EXPECT_TRUE(SamePels(expected, image)) << col << ", " << row;
        image = Numbered();
        EXPECT_EQ(tqPutShortImgPel(image, col, row, 60000), 60000 - 65536);
        EXPECT_TRUE(SamePels(expected, image)) << col << ", " << row;
        if (col == kHigh || row == kHigh) continue;
        image = Numbered();
        EXPECT_EQ(tqPutImgPel(image, col + 1, row + 1, 60000), 60000);
        EXPECT_TRUE(SamePels(expected, image)) << col << ", " << row;
    }
}

TEST(PelAccess, StoresTheLow16BitsAndAnswersAsHostsExpect) {
    struct Case {
        std::int32_t value, stored, fromShort;
    };
    for (const Case& c : {Case{70000, 4464, 4464}, {40000, 40000, -25536}, {-1, 65535, -1}, {kLow, 0, 0}}) {
        Image image(1, 1);
        EXPECT_EQ(tqPutImgPel(image, 1, 1, c.value), c.value);
        EXPECT_EQ(tqGetImgPel(image, 1, 1), c.stored);
        image(0, 0) = 7;
        EXPECT_EQ(tqPutImgPel0(image, 0, 0, c.value), c.value);
        EXPECT_EQ(tqGetImgPel0(image, 0, 0), c.stored);
        image(0, 0) = 7;
        EXPECT_EQ(tqPutShortImgPel(image, 0, 0, c.value), c.fromShort);
        EXPECT_EQ(tqGetImgPel0(image, 0, 0), c.stored);
    }
}

TEST(ReplaceValue, ReplacesThatValueAlone) {
    // More pels than any vector takes at once, with a rest.
    const Image before = tqtest::RandomImage(101, 7, 3, 0, 3);
    for (const std::uint32_t old : {0u, 2u, 65535u, 65536u, 65538u, 0xFFFF0002u, 0xFFFFFFFFu}) {
        const Image expected = MakeImage(101, 7, [&](int col, int row) -> std::uint32_t {
            return before(col, row) == old ? 65535 : before(col, row);
        });
        Image replaced = before;
        EXPECT_EQ(tqReplacePelValue(replaced, old, 65535), 0);
        EXPECT_TRUE(SamePels(expected, replaced)) << old;
        Image substituted = before;
        TqImage* const block = substituted.Get();
        EXPECT_EQ(tqSubstituteValue(substituted.Address(), old, 65535), 0);
        EXPECT_EQ(substituted.Get(), block);
        EXPECT_TRUE(SamePels(expected, substituted)) << old;
    }
}

}  // namespace
