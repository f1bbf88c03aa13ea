#include "tqimage/whole_image.h"

#include <cmath>
#include <utility>

#include "statistics.h"

namespace tqtest {
namespace {

TEST(WholeImage, CountsAndSums) {
    const Image image = MakeImage(3, 2, {0, 1, 2, 30000, 65535, 65535});
    struct Case {
        std::uint16_t level;
        std::int32_t count;
        double sum;
    };
    for (const Case& it : {Case{0, 6, 161073},
                           {1, 5, 161073},
                           {2, 4, 161072},
                           {30000, 3, 161070},
                           {30001, 2, 131070},
                           {65535, 2, 131070}}) {
        std::int32_t count = -9;
        double mean = -9;
        EXPECT_EQ(tqCountAllPels(image, &count, it.level), 0);
        EXPECT_EQ(count, it.count) << it.level;
        EXPECT_EQ(tqCountPixels(image, it.level), it.count);
        EXPECT_EQ(tqSumAllPels(image, &mean, it.level), it.sum);
        EXPECT_EQ(mean, it.sum / it.count);
    }
    std::int32_t count = -9;
    double mean = -9;
    float largest = -9;
    EXPECT_EQ(tqCountNonZeroPels(image), 5);
    EXPECT_EQ(tqNonZeroPixelCount(image, &count), 0);
    EXPECT_EQ(std::exchange(count, -9), 5);
    EXPECT_EQ(tqSumNonZeroPels(image, &count), 161073.0);
    EXPECT_EQ(count, 5);
    EXPECT_EQ(tqSumAllPels2(image, &mean, &largest), 161073.0);
    EXPECT_EQ(mean, 161073.0 / 6);
    EXPECT_EQ(std::exchange(largest, -9), 65535.0f);
    EXPECT_EQ(tqSumAllPels2(image, nullptr, &largest), 161073.0);
    EXPECT_EQ(std::exchange(largest, -9), 65535.0f);
    EXPECT_EQ(tqGetMaxPelValue2(image, &largest), 0);
    EXPECT_EQ(largest, 65535.0f);
    EXPECT_EQ(tqGetMaxPelValue2(nullptr, &largest), -2);
    EXPECT_EQ(largest, 0) << "set before the image is looked at";
    EXPECT_EQ(tqSumAllPels(Image(3, 3), &mean, 1), 0.0);
    EXPECT_EQ(mean, 0.0);
    EXPECT_EQ(tqSumAllPels2(MakeImage(8000, 3, [](auto, auto) { return 65535; }), &mean, &largest),
              24000 * 65535.0);
}

TEST(WholeImage, TheSmallestPelIsSoughtInAllButTheLast) {
    float smallest = -9;
    ASSERT_EQ(tqGetMinPelValue2(MakeImage(3, 2, {7, 9, 5, 6, 8, 3}), &smallest), 0);
    EXPECT_EQ(smallest, 5.0f);
    ASSERT_EQ(tqGetMinPelValue2(MakeImage(1, 1, {3}), &smallest), 0);
    EXPECT_EQ(smallest, 65535.0f);
}

TEST(LargestNeighbourhood, IsStoredAndLiesInsideTheImage) {
    for (const auto& [cols, rows] : {std::pair{3, 3}, {17, 13}, {300, 200}}) {
        Image image = RandomImage(cols, rows, 5);
        image(0, 0) = image(cols - 1, 0) = 65535;
        double expected = -1;
        for (std::int32_t row = 1; row < rows - 1; ++row) {
            for (std::int32_t col = 1; col < cols - 1; ++col)
                expected = std::max(expected, RectangleMean(image, col - 1, row - 1, col + 1, row + 1));
        }
        TqImageHeader header = image.Header();
        header.MaxPelValue = static_cast<float>(expected);
        ASSERT_EQ(tqMaxAvgPels(image), 0);
        EXPECT_TRUE(SameHeader(image.Header(), header));
    }
    Image narrow = RandomImage(2, 3, 6);
    EXPECT_EQ(tqMaxAvgPels(narrow), -1);
    EXPECT_EQ(narrow.Header().MaxPelValue, 65535.0f);
}

TEST(ImageValues, TotalMaximumAndCenterAreRefreshed) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    struct Case {
        std::int32_t cols, rows;
        float col, row, value;
    };
    // From 151 pels on the centre is a block of 3, from 351 on one of 5; its place is rounded.
    for (const Case& it : {Case{9, 7, 4.4f, 3, 34},
                           {9, 7, 4.5f, 3, 35},
                           {9, 7, 8.49f, 6, 68},
                           {9, 7, 8.6f, 6, 0},  // nothing is left
                           {9, 7, 9, 6, 1},
                           {9, 7, -0.01f, 0, 1},
                           {9, 7, 0, -1e30f, 1},
                           {9, 7, kNan, 0, 1},
                           {9, 7, 0, kNan, 1},
                           {1, 1, 0, 0, 0},
                           {150, 7, 100, 3, 130},
                           {151, 7, 100, 3, 130},
                           {151, 7, 0, 0, 0.5f},
                           {351, 7, 0, 0, 1},
                           {351, 151, 0, 0, 6}}) {
        SCOPED_TRACE(testing::Message() << it.cols << " pels around " << it.col << ", " << it.row);
        Image image = MakeImage(it.cols, it.rows, [](auto col, auto row) { return col + 10 * row; });
        image.Header().CenterCol = it.col;
        image.Header().CenterRow = it.row;
        image.Header().Spare = 0xDEADBEEF;
        TqImageHeader header = image.Header();
        header.TotalPelValue = tqSumAllPels2(image, nullptr, &header.MaxPelValue);
        header.CenterPelValue = it.value;
        ASSERT_EQ(tqCalcImageValues(image), 0);
        EXPECT_TRUE(SameHeader(image.Header(), header)) << image.Header().CenterPelValue;
    }
}

TEST(LineAverages, EveryLineBecomesItsRoundedMean) {
    const Image source = MakeImage(3, 2, {1, 2, 4, 5, 7, 8});
    Image columns = source, rows = source;
    ASSERT_EQ(tqColAverage(columns), 0);
    EXPECT_TRUE(SamePels(MakeImage(3, 2, {3, 5, 6, 3, 5, 6}), columns));
    ASSERT_EQ(tqRowAverage(rows), 0);
    EXPECT_TRUE(SamePels(MakeImage(3, 2, {2, 2, 2, 7, 7, 7}), rows));
    EXPECT_TRUE(SameHeader(columns.Header(), source.Header()));
    EXPECT_TRUE(SameHeader(rows.Header(), source.Header()));
}

// Exact sums would give other figures; adding in another order too.
TEST(LineAverages, TheRoundingOfSinglePrecisionStays) {
    for (const bool brightFirst : {true, false}) {
        const auto pel = [&](std::int32_t i) {
            return (brightFirst ? i < 257 : i >= 8000 - 257) ? 65535 : 1;
        };
        Image column = MakeImage(1, 8000, [&](auto, auto row) { return pel(row); });
        Image rows = MakeImage(8000, 8, [&](auto col, auto) { return pel(col); });
        ASSERT_EQ(tqColAverage(column), 0);
        ASSERT_EQ(tqRowAverage(rows), 0);
        EXPECT_EQ(column(0, 7999), brightFirst ? 2105 : 2106);
        EXPECT_EQ(rows(0, 7), brightFirst ? 2105 : 2106);
    }
}

}  // namespace
}  // namespace tqtest
