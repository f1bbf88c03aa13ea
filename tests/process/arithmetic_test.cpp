#include "process_tests.h"
#include "tqimage/point_operations.h"

namespace {

using namespace tqtest;

/// A dark image of this size whose centre fields place the other image in it.
Image Dark(std::int32_t cols, std::int32_t rows, float offsetCol, float offsetRow) {
    Image dark = RandomImage(cols, rows, 77);
    dark.Header().CenterCol = offsetCol;
    dark.Header().CenterRow = offsetRow;
    return dark;
}

TEST(SubtractImage, SubtractsAtTheOffsetAndStopsAtZero) {
    struct Case {
        std::int32_t darkCols, darkRows;
        float offsetCol, offsetRow;
        std::int32_t col, row;
    };
    // Fractions are cut off toward zero; anything from -1.99 up counts as no offset.
    for (const Case& c :
         {Case{37, 11, 0.0f, 0.0f, 0, 0}, Case{37, 11, -1.0f, -1.99f, 0, 0}, Case{37, 11, 0.99f, -0.5f, 0, 0},
          Case{60, 20, 23.7f, 9.0f, 23, 9}, Case{60, 20, -1.0f, 4.2f, 0, 4}}) {
        SCOPED_TRACE(testing::Message() << c.offsetCol << ", " << c.offsetRow);
        Image image = RandomImage(37, 11, 5);
        image.Header().Spare = 0xDEADBEEF;
        image.Header().BinRows = 3;
        const TqImageHeader header = image.Header();
        Image dark = Dark(c.darkCols, c.darkRows, c.offsetCol, c.offsetRow);
        const Image expected = MakeImage(37, 11, [&](std::int32_t col, std::int32_t row) {
            return std::max(0, image(col, row) - dark(col + c.col, row + c.row));
        });
        ASSERT_EQ(tqSubtractImage(image.Address(), dark), 0);
        EXPECT_TRUE(SamePels(expected, image));
        EXPECT_TRUE(SameHeader(image.Header(), header));
    }
}

TEST(SubtractImage, RefusesInTheOrderOfItsChecksAndLeavesTheImage) {
    struct Case {
        std::int32_t darkCols, darkRows;
        float offsetCol, offsetRow;
        std::int32_t status;
    };
    for (const Case& c : {
             Case{9, 8, 0.0f, 0.0f, -8},        // a column short
             Case{10, 7, 0.0f, 0.0f, -8},       // a row short
             Case{12, 8, 3.0f, 0.0f, -8},       // pushed out to the right
             Case{10, 8, -2.0f, 0.0f, -7},      // misplaced
             Case{10, 8, 0.0f, -2.0f, -8},      //
             Case{10, 8, -2.0f, -2.0f, -7},     // the column speaks first
             Case{7, 8, -2.0f, 0.0f, -8},       // but after the size
             Case{9, 8, -1.0f, 0.0f, -8},       // -1 is 0, and then a column is missing
             Case{10, 8, kNan, 0.0f, -7},       // no number is no place
             Case{10, 8, kInfinity, 0.0f, -7},  //
             Case{10, 8, 2147483520.0f, 0.0f, -8},
         }) {
        SCOPED_TRACE(testing::Message()
                     << c.darkCols << " x " << c.darkRows << " at " << c.offsetCol << ", " << c.offsetRow);
        Image image = RandomImage(10, 8, 1);
        const Image before = image;
        Image dark = Dark(c.darkCols, c.darkRows, c.offsetCol, c.offsetRow);
        EXPECT_EQ(tqSubtractImage(image.Address(), dark), c.status);
        EXPECT_TRUE(SamePels(before, image));
    }
    EXPECT_EQ(tqSubtractImage(Image(4, 4).Address(), nullptr), -3);
    EXPECT_EQ(tqSubtractImage(Image(4, 4).Address(), Image(0, 4)), -3);
}

}  // namespace
