#include "tqimage/resampling.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "images.h"
#include "samples.h"

namespace {

using namespace tqtest;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

TEST(Interpolate, SamplesInsideAndNamesTheAxisThatIsNot) {
    const Image image = MakeImage(3, 2, {10, 20, 40, 50, 60, 90});
    struct Case {
        double col, row;
        std::int32_t status;
        double value;
        double unchecked;  ///< of the form that goes on with the border
    };
    for (const Case& c :
         {Case{0, 0, 0, 10, 10}, Case{2, 1, 0, 90, 90}, Case{0.5, 0, 0, 15, 15},
          Case{1.25, 0.5, 0, 46.25, 46.25}, Case{2, 0.25, 0, 52.5, 52.5}, Case{-0.0, -0.0, 0, 10, 10},
          Case{-0.001, 0, -3, 0, 10}, Case{2.001, 9, -3, 0, 90}, Case{0, 1.001, -4, 0, 50},
          Case{1, -1e-300, -4, 0, 20}, Case{0.5, 77.7, -4, 0, 55}, Case{-1e300, 0.5, -3, 0, 30},
          Case{1, kNan, -4, 0, kNan}, Case{-kInfinity, 0, -3, 0, kNan}}) {
        SCOPED_TRACE(testing::Message() << c.col << ", " << c.row);
        double value = -1.0;
        EXPECT_EQ(tqInterpolateImage(image, c.col, c.row, &value), c.status);
        EXPECT_EQ(value, c.value);
        EXPECT_EQ(tqInterpolateImage2(image, c.col, c.row, &value), 0);
        EXPECT_THAT(value, testing::NanSensitiveDoubleEq(c.unchecked));
    }
    for (const auto call : {&tqInterpolateImage, &tqInterpolateImage2}) {
        double value = 5.0;
        EXPECT_EQ(call(nullptr, 0, 0, &value), -2);
        EXPECT_EQ(value, 0.0);
        EXPECT_EQ(call(image, 0, 0, nullptr), -2);
        EXPECT_EQ(call(MakeImage(1, 1, {7}), 0, 0, &value), 0);
        EXPECT_EQ(value, 7.0);
    }
}

/// Each pel sampled where place(at, axis) says for its column and row, stored as the low 16 bits of the
/// truncated value + bias.
template <class Place>
Image Resampled(const Image& source, std::int32_t cols, std::int32_t rows, double bias, Place&& place) {
    return MakeImage(cols, rows, [&](int col, int row) {
        return static_cast<int>(Sample(source, place(col, 0), place(row, 1)) + bias) & 0xFFFF;
    });
}

TEST(ScaleAndShift, MoveThePictureAndKeepTheHeader) {
    for (const auto& [cols, rows] : {std::pair{61, 37}, {1, 20}, {20, 1}}) {
        const Image before = Noise(cols, rows);
        const double last[] = {cols - 1.0, rows - 1.0};
        const float centre[] = {before.Header().CenterCol, before.Header().CenterRow};
        const auto inside = [&](double place, int axis) {
            return place >= 0.0 && place <= last[axis] ? place : -9.0;
        };
        constexpr double kBy[][2] = {{1, 1},         {1.7, 0.6},  {0.31, 5},    {-1, -0.8},
                                     {0, 1},         {3, -2},     {-5.1, -0.1}, {kNan, 1},
                                     {kInfinity, 2}, {1e-300, 1}, {1, -1e300}};
        for (const auto& by : kBy) {
            SCOPED_TRACE(testing::Message() << by[0] << ", " << by[1] << " on " << cols);
            // About the centre, in single precision.
            const auto zoomed = [&](int at, int axis) {
                const auto step = static_cast<float>(1.0 / by[axis]);
                const float offset = (static_cast<float>(at) - centre[axis]) * step;
                const float place = offset + centre[axis];
                return inside(place, axis);
            };
            Image image = before;
            ASSERT_EQ(tqScaleImage(image.Address(), by[0], by[1]), 0);
            EXPECT_TRUE(SamePels(Resampled(before, cols, rows, 0.0, zoomed), image));
            EXPECT_TRUE(SameHeader(before.Header(), image.Header()));
            const auto shifted = [&](int at, int axis) { return inside(at - by[axis], axis); };
            image = before;
            ASSERT_EQ(tqShiftImage(image.Address(), by[0], by[1]), 0);
            EXPECT_TRUE(SamePels(Resampled(before, cols, rows, 0.0, shifted), image));
            EXPECT_TRUE(SameHeader(before.Header(), image.Header()));
        }
    }
}

/// The ends of the axes on each other, rounded.
Image Stretched(const Image& source, std::int32_t cols, std::int32_t rows) {
    const double step[] = {(source.Cols() - 1.0) / std::max(cols - 1, 1),
                           (source.Rows() - 1.0) / std::max(rows - 1, 1)};
    return Resampled(source, cols, rows, 0.5, [&](int at, int axis) { return at * step[axis]; });
}

/// An image of 40 x 31 with its axis at (20, 15), 1000 x 1200 pels a metre and a total of 5000.
Image Sensor(std::int16_t binCols, std::int16_t binRows) {
    Image image = Noise(40, 31);
    image.Header() = {40, 31, 1000, 1200, 20, 15, 5000, 0.5f, 77, 88, 3, binCols, binRows, 0xDEADBEEF};
    return image;
}

TEST(Size, KeepsTheProportions) {
    for (const auto& [header, newCols] :
         // 13 / 40 of 31 rows are 10.075: the resolution down is that of 10 rows, the centre that of 10.075.
         {std::pair{
              TqImageHeader{13, 10, 325, static_cast<float>(12000 / 31.0), static_cast<float>(240 / 39.0),
                            4.5375f, 5000, 0.5f, 77, 88, 3, 3, 3, 0xDEADBEEF},
              13},
          {{80, 62, 2000, 2400, static_cast<float>(1580 / 39.0), 30.5f, 5000, 0.5f, 77, 88, 3, 1, 1,
            0xDEADBEEF},
           80},
          // A single pel: no whole row is left for the resolution.
          {{1, 1, 25, 0, 0, -0.1125f, 5000, 0.5f, 77, 88, 3, 40, 31, 0xDEADBEEF}, 1}}) {
        SCOPED_TRACE(newCols);
        Image image = Sensor(7, 7);
        ASSERT_EQ(tqSizeImage(image.Address(), newCols), 0);
        EXPECT_TRUE(SamePels(Stretched(Sensor(7, 7), header.PelCols, header.PelRows), image));
        EXPECT_TRUE(SameHeader(header, image.Header()));
    }
    for (const std::int32_t newCols : {0, kMin, 8001, 7000}) {
        Image image = Noise(4, 5);
        EXPECT_EQ(tqSizeImage(image.Address(), newCols), -4) << newCols;
        EXPECT_TRUE(SamePels(Noise(4, 5), image));
    }
    Image line = Noise(1, 5);
    ASSERT_EQ(tqSizeImage(line.Address(), 3), 0);
    EXPECT_TRUE(SamePels(Stretched(Noise(1, 5), 3, 15), line));
}

TEST(Bin, AveragesWholeBlocks) {
    const Image before = MakeImage(5, 5, {0,  0,  9, 9, 7,  //
                                          10, 11, 9, 8, 7,  //
                                          0,  0,  1, 0, 7,  //
                                          0,  0,  0, 0, 7,  //
                                          40, 50, 7, 6, 65535});
    struct Case {
        std::int32_t binCols, binRows, cols, rows;
        std::vector<int> means, ofData;
    };
    for (const Case& c : std::vector<Case>{{2, 2, 2, 2, {5, 8, 0, 0}, {10, 8, 0, 1}},
                                           {kMax, 2, 1, 2, {7, 1}, {8, 5}},
                                           {3, 5, 1, 1, {9}, {17}},
                                           {4, -7, 1, 5, {4, 9, 0, 0, 25}, {9, 9, 1, 0, 25}}}) {
        SCOPED_TRACE(testing::Message() << c.binCols << " x " << c.binRows);
        Image image = before, lit = before;
        ASSERT_EQ(tqBinImage(image.Address(), c.binCols, c.binRows), 0);
        ASSERT_EQ(tqBinImage0(lit.Address(), c.binCols, c.binRows), 0);
        EXPECT_TRUE(SamePels(MakeImage(c.cols, c.rows, c.means), image));
        EXPECT_TRUE(SamePels(MakeImage(c.cols, c.rows, c.ofData), lit));
    }
    Image image = Sensor(2, 3), lit = image;
    ASSERT_EQ(tqBinImage(image.Address(), 4, 3), 0);
    ASSERT_EQ(tqBinImage0(lit.Address(), 4, 3), 0);
    TqImageHeader header{10, 10, 250, 400, 5, 5, 5000 / 12.0, 0.5f, 77, 88, 3, 8, 9, 0xDEADBEEF};
    EXPECT_TRUE(SameHeader(header, image.Header()));
    header.TotalPelValue = 0.0;
    for (const std::uint16_t pel : lit.Values())
        header.TotalPelValue += pel;
    EXPECT_TRUE(SameHeader(header, lit.Header()));
}

TEST(Bin, AccumulatorAndFactorsWrap) {
    // 200 x 200 pels of 65535 add up to 2621400000, which a signed 32-bit integer reads as -1673567296.
    Image image = MakeImage(200, 200, [](int, int) { return 65535; });
    image.Header().BinCols = 300;
    Image lit = image;
    ASSERT_EQ(tqBinImage(image.Address(), 200, 200), 0);
    EXPECT_EQ(image(0, 0), (-1673567296 / 40000) & 0xFFFF);
    EXPECT_EQ(image.Header().BinCols, 60000 - 65536);
    ASSERT_EQ(tqBinImage0(lit.Address(), 200, 200), 0);
    EXPECT_EQ(lit(0, 0), 65535);
}

TEST(UnBin, ExpandsByTheQuotientOfTheFactors) {
    struct Case {
        std::int16_t oldCols, oldRows;
        std::int32_t binCols, binRows;
        TqImageHeader header;
    };
    // The total grows by the whole quotients only: 3 / 2 counts as 1.
    for (const Case& c :
         {Case{4, 3, 2, 2, {80, 46, 2000, 1800, 40, 22.5f, 10000, 0.5f, 77, 88, 3, 2, 2, 0xDEADBEEF}},
          Case{2, 3, kMin, 0, {80, 93, 2000, 3600, 40, 45, 30000, 0.5f, 77, 88, 3, 1, 1, 0xDEADBEEF}},
          Case{2, 3, 2, 3, {40, 31, 1000, 1200, 20, 15, 5000, 0.5f, 77, 88, 3, 2, 3, 0xDEADBEEF}}}) {
        SCOPED_TRACE(testing::Message() << c.header.PelCols << " x " << c.header.PelRows);
        Image image = Sensor(c.oldCols, c.oldRows);
        ASSERT_EQ(tqUnBinImage(image.Address(), c.binCols, c.binRows), 0);
        EXPECT_TRUE(SamePels(Stretched(Sensor(1, 1), c.header.PelCols, c.header.PelRows), image));
        EXPECT_TRUE(SameHeader(c.header, image.Header()));
    }
    struct Refusal {
        std::int16_t oldCols, oldRows;
        std::int32_t binCols, binRows, status;
    };
    for (const Refusal& c :
         {Refusal{2, 3, 1, 4, -3}, Refusal{2, 3, kMax, 1, -3}, Refusal{0, 3, 0, 1, -3},
          Refusal{2, -1, 1, -5, -3}, Refusal{32767, 1, 1, 1, -4}, Refusal{1, 8000, 1, 1, -4}}) {
        Image image = Sensor(c.oldCols, c.oldRows);
        EXPECT_EQ(tqUnBinImage(image.Address(), c.binCols, c.binRows), c.status);
        EXPECT_TRUE(SamePels(Sensor(1, 1), image));
    }
}

TEST(Resampling, RefusesMissingImages) {
    EXPECT_EQ(tqRotateImage(nullptr, 10, 3, 3), -2);
    EXPECT_EQ(tqScaleImage(nullptr, 2, 2), -1);
    EXPECT_EQ(tqShiftImage(nullptr, 2, 2), -1);
    EXPECT_EQ(tqSizeImage(nullptr, 5), -2);
    EXPECT_EQ(tqUnBinImage(nullptr, 1, 1), -2);
    EXPECT_EQ(tqBinImage(nullptr, 2, 2), -1);
    EXPECT_EQ(tqBinImage0(nullptr, 2, 2), -1);
}

}  // namespace
