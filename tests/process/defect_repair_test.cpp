#include <array>

#include "process_tests.h"
#include "tqimage/defects.h"

namespace {

using namespace tqtest;

/// Columns 0..4 and rows 0..3, every pel telling where it is.
Image Places() {
    return MakeImage(5, 4, [](std::int32_t col, std::int32_t row) { return 100 * row + 10 * col + 1; });
}

TEST(ReplacePel, TakesTheMeanOfTheOthersAtTheBorderToo) {
    Image image = Places();
    image(2, 1) = 65535;
    EXPECT_EQ(tqReplacePel(image, 2, 1, 3, 3), 0);
    EXPECT_EQ(image(2, 1), 121);

    // In the corner the others are (1, 0), (0, 1) and (1, 1): (11 + 101 + 111) / 3 = 74.33.
    EXPECT_EQ(tqReplacePel(image, 0, 0, 2, 2), 0);
    EXPECT_EQ(image(0, 0), 74);

    // A neighbour without data counts as a 0.
    image = Places();
    image(1, 1) = 0;
    EXPECT_EQ(tqReplacePel(image, 2, 1, 3, 1), 0);
    EXPECT_EQ(image(2, 1), 131 / 2);

    // All of a large bright image: the sum is beyond 32 bits.
    Image bright = MakeImage(300, 300, [](std::int32_t, std::int32_t) { return 65535; });
    bright(7, 7) = 0;
    EXPECT_EQ(tqReplacePel(bright, 7, 7, kMax, kMax), 0);
    EXPECT_EQ(bright(7, 7), 65535);
}

TEST(ReplaceCol, ThreeWideTakesTheOuterPelsWiderTheMean) {
    Image image = MakeImage(5, 2, {10, 20, 99, 41, 50, 10, 20, 99, 41, 51});
    EXPECT_EQ(tqReplaceCol(image, 2, 0, 0, 2), 0);
    EXPECT_EQ(tqReplaceCol(image, 2, 1, 1, 5), 0);
    EXPECT_TRUE(SamePels(MakeImage(5, 2, {10, 20, 30, 41, 50, 10, 20, 30, 41, 51}), image));
}

TEST(ReplaceCol, AtTheBorderThreeColumnsAreStillTheOuterTwo) {
    // Width 5 at column 0 leaves columns 0..2, and the first of them is the repaired one.
    Image image = MakeImage(5, 1, {900, 20, 40, 60, 80});
    EXPECT_EQ(tqReplaceCol(image, 0, 0, 0, 5), 0);
    EXPECT_EQ(image(0, 0), (900 + 40) / 2);
    // Width 3 leaves two columns: the neighbour alone.
    EXPECT_EQ(tqReplaceCol(image, 4, 0, 0, 3), 0);
    EXPECT_EQ(image(4, 0), 60);
}

TEST(ReplaceRow, IsReplaceColTurned) {
    const auto turn = [](const Image& image) {
        return MakeImage(image.Rows(), image.Cols(), [&](auto col, auto row) { return image(row, col); });
    };
    for (std::int32_t row = 0; row < 7; ++row) {
        for (std::int32_t height = -1; height < 16; ++height) {
            Image image = RandomImage(6, 7, static_cast<std::uint32_t>(row)), turned = turn(image);
            ASSERT_EQ(tqReplaceRow(image, row, 1, 4, height), tqReplaceCol(turned, row, 1, 4, height));
            ASSERT_TRUE(SamePels(turn(turned), image));
        }
    }
}

TEST(ReplaceBlock, FillsWithTheMeanOfTheFrame) {
    // The frame of the 2 x 1 block at (1, 1) is columns 0..4 (two to each side), rows 0..2.
    Image image = MakeImage(6, 4, {1,   2,   3,   4,   5,   900,  //
                                   6,   0,   0,   7,   8,   900,  //
                                   9,   10,  11,  12,  13,  900,  //
                                   900, 900, 900, 900, 900, 900});
    EXPECT_EQ(tqReplaceBlock(image, 1, 1, 2, 1), 0);
    EXPECT_EQ(image(1, 1), 91 / 13);
    EXPECT_EQ(image(2, 1), 91 / 13);
    EXPECT_EQ(image(3, 1), 7);
    EXPECT_EQ(image(1, 2), 10);

    // Half outside: the block is column 0, its frame one column to the right and the rows around it.
    image = MakeImage(3, 3, {1, 2, 100, 500, 4, 100, 5, 6, 100});
    EXPECT_EQ(tqReplaceBlock(image, -1, 1, 2, 1), 0);
    EXPECT_TRUE(SamePels(MakeImage(3, 3, {1, 2, 100, 318 / 8, 4, 100, 5, 6, 100}), image));
}

TEST(ReplaceBlock, ChangesNothingWithoutABlockOrAFrame) {
    const Image before = RandomImage(5, 4, 6);
    Image image = before;
    using Block = std::array<std::int32_t, 4>;
    for (const auto& [col, row, width, height] : {Block{0, 0, 5, 4},
                                                  {kMin, kMin, kMax, kMax},
                                                  {0, 0, kMax, kMax},
                                                  {5, 0, 1, 1},
                                                  {0, 4, 1, 1},
                                                  {2, 2, 0, 1},
                                                  {2, 2, kMin, kMin},
                                                  {kMax, kMax, kMax, kMax}}) {
        EXPECT_EQ(tqReplaceBlock(image, col, row, width, height), 0);
        EXPECT_TRUE(SamePels(before, image)) << col << ' ' << row << ' ' << width << ' ' << height;
    }
}

TEST(Repairs, RefuseWhatTheyCannotRepair) {
    const Image before = RandomImage(5, 4, 6);
    Image image = before;
    for (const std::int32_t outside : {-1, 5, kMin, kMax}) {
        EXPECT_EQ(tqReplacePel(image, outside, 0, 3, 3), -1);
        EXPECT_EQ(tqReplacePel(image, 0, outside, 3, 3), -1);
        EXPECT_EQ(tqReplaceCol(image, outside, 0, 3, 3), -1);
        EXPECT_EQ(tqReplaceRow(image, outside, 0, 4, 3), -1);
    }
    // No neighbourhood: the pel alone, or, with negative sizes, not even that. Two negative sizes are no
    // area.
    for (const std::int32_t size : {-1, 0, 1, -2, -4, -8, kMin}) {
        EXPECT_EQ(tqReplacePel(image, 2, 2, size, size), -1) << size;
        EXPECT_EQ(tqReplaceCol(image, 2, 0, 3, size), -1) << size;
        EXPECT_EQ(tqReplaceRow(image, 2, 0, 4, size), -1) << size;
    }
    EXPECT_TRUE(SamePels(before, image));

    Image column = RandomImage(1, 4, 6);
    EXPECT_EQ(tqReplaceCol(column, 0, 0, 3, 9), -1);
    EXPECT_EQ(tqReplaceRow(column, 0, 0, 0, 2), 0);
}

}  // namespace
