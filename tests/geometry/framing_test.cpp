#include "tqimage/framing.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "images.h"

namespace {

using tqtest::DefaultHeader;
using tqtest::Image;
using tqtest::MakeImage;
using tqtest::RandomImage;
using tqtest::SameHeader;
using tqtest::SamePels;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

Image Noise(std::int32_t cols, std::int32_t rows, float centreCol, float centreRow) {
    Image image = RandomImage(cols, rows, 4, 1);
    image.Header() = {cols, rows, 11, 12, centreCol, centreRow, 9.0, 0.5f, 7, 8, 3, 2, 5, 0xDEADBEEF};
    return image;
}

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

TEST(FrameUp, CutsTheRectangleBetweenAnyTwoCorners) {
    struct Case {
        std::int32_t col1, row1, col2, row2;
        std::int32_t left, top, cols, rows;
        bool flat;  ///< no fallback for the function with an output of its own
    };
    for (const Case& c : {
             Case{2, 1, 6, 3, 2, 1, 5, 3, false},
             Case{6, 3, 2, 1, 2, 1, 5, 3, false},
             Case{-5, kMin, kMax, 100, 0, 0, 12, 8, false},
             Case{4, 2, 4, 6, 0, 0, 2, 2, true},
             Case{11, 7, kMax, kMax, 0, 0, 2, 2, true},
         }) {
        SCOPED_TRACE(testing::Message() << c.col1 << ", " << c.row1 << " to " << c.col2 << ", " << c.row2);
        const Image source = Noise(12, 8, 5.25f, 3.5f);
        Image zeroBased = source;
        ASSERT_EQ(tqFrameUpImg0(zeroBased.Address(), c.col1, c.row1, c.col2, c.row2), 0);
        ExpectCut(source, zeroBased, c.left, c.top, c.cols, c.rows);
        const auto plus1 = [](std::int32_t at) { return at == kMax ? at : at + 1; };
        Image oneBased = source;
        ASSERT_EQ(
            tqFrameUpImg(oneBased.Address(), plus1(c.col1), plus1(c.row1), plus1(c.col2), plus1(c.row2)), 0);
        ExpectCut(source, oneBased, c.left, c.top, c.cols, c.rows);
        if (c.flat) continue;
        Image other(3, 3);
        ASSERT_EQ(tqFrameUpImg2(other.Address(), source, c.col1, c.row1, c.col2, c.row2), 0);
        ExpectCut(source, other, c.left, c.top, c.cols, c.rows);
    }
}

TEST(FrameUp, IntoAnOutputOneColumnOrRowIsARectangle) {
    const Image source = Noise(12, 8, 5.25f, 3.5f);
    Image out;
    ASSERT_EQ(tqFrameUpImg2(out.Address(), source, 4, 6, 4, 2), 0);
    ExpectCut(source, out, 4, 2, 1, 5);
    ASSERT_EQ(tqFrameUpImg2(out.Address(), source, kMax, kMax, 50, 9), 0);
    ExpectCut(source, out, 11, 7, 1, 1);
    Image own = source;
    ASSERT_EQ(tqFrameUpImg2(own.Address(), own, 1, 1, 3, 2), 0);
    ExpectCut(source, own, 1, 1, 3, 2);
    // Where two columns are the least, an image of one gives what it has.
    const Image line = Noise(1, 5, 0.0f, 0.0f);
    Image cut = line;
    ASSERT_EQ(tqFrameUpImg(cut.Address(), 1, 1, 9, 9), 0);
    ExpectCut(line, cut, 0, 0, 1, 2);
}

TEST(FrameOut, PutsTheCentresPelOnTheGivenOne) {
    struct Case {
        float centreCol, centreRow;
        std::int32_t col, row, colsAfter, rowsAfter;
    };
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const Case& c : {
             Case{5, 3, 20, 10, 15, 9},         // whole centre: every pel
             Case{5.5f, 3.25f, 20, 10, 15, 9},  // broken: without the last column and row
             Case{5.5f, 3.25f, 2, 1, 3, 2},     // cut on every side
             Case{5, 3, -4, -2, 13, 9},         // the centre left of and above the frame
             Case{12.5f, -1.5f, 40, 40, 2, 2},
             Case{-3e9f, 3, 5, 5, 5, 5},
             Case{kNan, kInfinity, 5, 5, 5, 5},
             Case{2147483648.0f, 3, 5, 5, 5, 5},
         }) {
        SCOPED_TRACE(testing::Message()
                     << c.centreCol << ", " << c.centreRow << " on " << c.col << ", " << c.row);
        const Image source = Noise(12, 8, c.centreCol, c.centreRow);
        const auto visible = [](int at, int target, double centre, int pels) {
            if (!(std::abs(centre) < 2e9)) return -1;
            const int whole = static_cast<int>(centre);
            const int rest = static_cast<int>(pels - centre);
            return at >= target - whole && at < target + rest ? at - target + whole : -1;
        };
        const Image expected =
            MakeImage(c.col + 1 + c.colsAfter, c.row + 1 + c.rowsAfter, [&](int col, int row) {
                const int sourceCol = visible(col, c.col, c.centreCol, 12);
                const int sourceRow = visible(row, c.row, c.centreRow, 8);
                return sourceCol < 0 || sourceRow < 0 ? std::uint16_t{0} : source(sourceCol, sourceRow);
            });
        Image out(2, 2);
        ASSERT_EQ(tqFrameOutImg0(out.Address(), source, c.col, c.row, c.colsAfter, c.rowsAfter), 0);
        EXPECT_TRUE(SamePels(expected, out));
        if (!(std::abs(c.centreCol) < 100.0f)) continue;
        TqImageHeader header = source.Header();
        header.PelCols = expected.Cols();
        header.PelRows = expected.Rows();
        const auto broken = [](float centre) {
            return centre - static_cast<float>(static_cast<int>(centre));
        };
        header.CenterCol = broken(c.centreCol) + static_cast<float>(c.col);
        header.CenterRow = broken(c.centreRow) + static_cast<float>(c.row);
        EXPECT_TRUE(SameHeader(header, out.Header()));
    }
}

TEST(Framing, RefusalsAndSizesThatCannotBe) {
    Image nothing;
    Image tooHigh(DefaultHeader(1, 8001));
    EXPECT_EQ(tqFrameUpImg(nullptr, 1, 1, 2, 2), -1);
    EXPECT_EQ(tqFrameUpImg(tooHigh.Address(), 1, 1, 2, 2), -1);
    EXPECT_EQ(tqFrameUpImg0(nothing.Address(), 1, 1, 2, 2), -1);
    Image image = Noise(4, 4, 1, 1);
    EXPECT_EQ(tqFrameUpImg2(nullptr, image, 0, 0, 1, 1), -1);
    EXPECT_EQ(tqFrameOutImg0(nullptr, image, 1, 1, 1, 1), -1);
    // An invalid input leaves the output, a size that cannot be has freed it.
    Image out(2, 2);
    EXPECT_EQ(tqFrameUpImg2(out.Address(), tooHigh, 0, 0, 1, 1), -1);
    EXPECT_EQ(tqFrameOutImg0(out.Address(), nullptr, 1, 1, 1, 1), -1);
    EXPECT_NE(out.Get(), nullptr);
    for (const auto& [col, after] : {std::pair{-1, 0}, {kMax, kMax}, {kMin, kMin}, {4000, 4000}}) {
        Image held(2, 2);
        EXPECT_EQ(tqFrameOutImg0(held.Address(), image, col, 1, after, 1), -1) << col;
        EXPECT_EQ(held.Get(), nullptr);
        EXPECT_EQ(tqFrameOutImg0(image.Address(), image, 1, col, 1, after), -1) << col;
    }
    EXPECT_TRUE(SamePels(Noise(4, 4, 1, 1), image));
}

}  // namespace
