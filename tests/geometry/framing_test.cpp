#include "tqimage/framing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "images.h"
#include "samples.h"

namespace {

using namespace tqtest;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

/// The pels from (left, top) on, and the header with this size and centre.
void ExpectCut(const Image& source, const Image& actual, std::int32_t left, std::int32_t top,
               std::int32_t cols, std::int32_t rows) {
    EXPECT_TRUE(
        SamePels(MakeImage(cols, rows, [&](int c, int r) { return source(left + c, top + r); }), actual));
    TqImageHeader header = source.Header();
    header.PelCols = cols;
    header.PelRows = rows;
    header.CenterCol -= static_cast<float>(left);
    header.CenterRow -= static_cast<float>(top);
    EXPECT_TRUE(SameHeader(header, actual.Header()));
}

struct Cut {
    std::int32_t left, top, cols, rows;
};

TEST(FrameUp, CutsTheRectangleBetweenAnyTwoCorners) {
    struct Case {
        std::int32_t col1, row1, col2, row2;
        Cut inPlace, own;  ///< only in place is one column or row none
    };
    const Image source = Noise(12, 8);
    for (const auto& [col1, row1, col2, row2, inPlace, own] :
         {Case{2, 1, 6, 3, {2, 1, 5, 3}, {2, 1, 5, 3}}, Case{6, 3, 2, 1, {2, 1, 5, 3}, {2, 1, 5, 3}},
          Case{-5, kMin, kMax, 100, {0, 0, 12, 8}, {0, 0, 12, 8}},
          Case{4, 6, 4, 2, {0, 0, 2, 2}, {4, 2, 1, 5}},
          Case{11, 7, kMax, kMax, {0, 0, 2, 2}, {11, 7, 1, 1}}}) {
        SCOPED_TRACE(testing::Message() << col1 << ", " << row1 << " to " << col2 << ", " << row2);
        Image zeroBased = source, oneBased = source, other(3, 3), itself = source;
        ASSERT_EQ(tqFrameUpImg0(zeroBased.Address(), col1, row1, col2, row2), 0);
        ExpectCut(source, zeroBased, inPlace.left, inPlace.top, inPlace.cols, inPlace.rows);
        const auto plus1 = [](std::int32_t at) { return at == kMax ? at : at + 1; };
        ASSERT_EQ(tqFrameUpImg(oneBased.Address(), plus1(col1), plus1(row1), plus1(col2), plus1(row2)), 0);
        ExpectCut(source, oneBased, inPlace.left, inPlace.top, inPlace.cols, inPlace.rows);
        ASSERT_EQ(tqFrameUpImg2(other.Address(), source, col1, row1, col2, row2), 0);
        ExpectCut(source, other, own.left, own.top, own.cols, own.rows);
        ASSERT_EQ(tqFrameUpImg2(itself.Address(), itself, col1, row1, col2, row2), 0);
        ExpectCut(source, itself, own.left, own.top, own.cols, own.rows);
    }
    // Where two columns are the least, an image of one gives what it has.
    Image line = Noise(1, 5);
    ASSERT_EQ(tqFrameUpImg(line.Address(), 1, 1, 9, 9), 0);
    ExpectCut(Noise(1, 5), line, 0, 0, 1, 2);
}

TEST(FrameOut, PutsTheCentresPelOnTheGivenOne) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    struct Case {
        float centreCol, centreRow;
        std::int32_t col, row, colsAfter, rowsAfter;
        Cut shown;                  ///< pels of the source
        std::int32_t atCol, atRow;  ///< where the first of them lies
        float newCentreCol, newCentreRow;
    };
    const Cut none{0, 0, 0, 0};
    for (const Case& c : {
             Case{5, 3, 20, 10, 15, 9, {0, 0, 12, 8}, 15, 7, 20, 10},                // whole: every pel
             Case{5.5f, 3.25f, 20, 10, 15, 9, {0, 0, 11, 7}, 15, 7, 20.5f, 10.25f},  // without the last ones
             Case{5.5f, 3.25f, 2, 1, 3, 2, {3, 2, 6, 4}, 0, 0, 2.5f, 1.25f},         // cut on every side
             Case{5, 3, -4, -2, 13, 9, {9, 5, 3, 3}, 0, 0, -4, -2},  // the centre beside the frame
             Case{12.5f, -1.5f, 40, 40, 2, 2, {0, 0, 12, 2}, 28, 41, 40.5f, 39.5f},
             Case{-3e9f, 3, 5, 5, 5, 5, none, 0, 0, 5, 5},
             Case{kNan, kInfinity, 5, 5, 5, 5, none, 0, 0, kNan, kNan},
             Case{2147483648.0f, 3, 5, 5, 5, 5, none, 0, 0, 5, 5},
         }) {
        SCOPED_TRACE(testing::Message()
                     << c.centreCol << ", " << c.centreRow << " on " << c.col << ", " << c.row);
        Image source = Noise(12, 8);
        source.Header().CenterCol = c.centreCol;
        source.Header().CenterRow = c.centreRow;
        Image out(2, 2);
        ASSERT_EQ(tqFrameOutImg0(out.Address(), source, c.col, c.row, c.colsAfter, c.rowsAfter), 0);
        const auto expected = [&](int col, int row) {
            const int fromCol = col - c.atCol, fromRow = row - c.atRow;
            const bool shows =
                fromCol >= 0 && fromRow >= 0 && fromCol < c.shown.cols && fromRow < c.shown.rows;
            return shows ? source(c.shown.left + fromCol, c.shown.top + fromRow) : std::uint16_t{0};
        };
        EXPECT_TRUE(SamePels(MakeImage(c.col + 1 + c.colsAfter, c.row + 1 + c.rowsAfter, expected), out));
        TqImageHeader header = source.Header();
        header.PelCols = out.Cols();
        header.PelRows = out.Rows();
        header.CenterCol = c.newCentreCol;
        header.CenterRow = c.newCentreRow;
        if (!std::isnan(c.centreCol)) {
            EXPECT_TRUE(SameHeader(header, out.Header()));
        }
    }
}

TEST(Framing, RefusalsAndSizesThatCannotBe) {
    Image image = Noise(4, 4);
    EXPECT_EQ(tqFrameUpImg(nullptr, 1, 1, 2, 2), -1);
    EXPECT_EQ(tqFrameUpImg2(nullptr, image, 0, 0, 1, 1), -1);
    EXPECT_EQ(tqFrameOutImg0(nullptr, image, 1, 1, 1, 1), -1);
    // An invalid input leaves the output, a size that cannot be has freed it.
    Image out(2, 2);
    EXPECT_EQ(tqFrameUpImg2(out.Address(), Image(1, 8001), 0, 0, 1, 1), -1);
    EXPECT_EQ(tqFrameOutImg0(out.Address(), nullptr, 1, 1, 1, 1), -1);
    EXPECT_NE(out.Get(), nullptr);
    for (const auto& [col, after] : {std::pair{-1, 0}, {kMax, kMax}, {kMin, kMin}, {4000, 4000}}) {
        Image held(2, 2);
        EXPECT_EQ(tqFrameOutImg0(held.Address(), image, col, 1, after, 1), -1) << col;
        EXPECT_EQ(held.Get(), nullptr);
        EXPECT_EQ(tqFrameOutImg0(image.Address(), image, 1, col, 1, after), -1) << col;
    }
    EXPECT_TRUE(SamePels(Noise(4, 4), image));
}

}  // namespace
