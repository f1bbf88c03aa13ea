#include "tqimage/whole_image.h"

#include <cmath>
#include <cstring>

#include "statistics.h"

namespace tqtest {
namespace {

const std::vector<std::uint16_t> kLevels = {0, 1, 2, 30000, 32768, 65534, 65535};

TEST(WholeImage, CountsAndSums) {
    for (const Image& image : StatisticsImages()) {
        const auto pels = image.Values();
        for (const std::uint16_t level : kLevels) {
            std::int32_t expected = 0;
            std::uint64_t sum = 0;
            for (const std::uint16_t pel : pels) {
                if (pel < level) continue;
                ++expected;
                sum += pel;
            }
            SCOPED_TRACE(testing::Message()
                         << image.Cols() << " x " << image.Rows() << " from level " << level);
            std::int32_t count = -9;
            EXPECT_EQ(tqCountAllPels(image, &count, level), 0);
            EXPECT_EQ(count, expected);
            EXPECT_EQ(tqCountPixels(image, level), expected);
            double mean = -9;
            EXPECT_EQ(tqSumAllPels(image, &mean, level), static_cast<double>(sum));
            EXPECT_EQ(mean, expected == 0 ? 0 : static_cast<double>(sum) / expected);
            if (level != 1) continue;
            EXPECT_EQ(tqCountNonZeroPels(image), expected);
            EXPECT_EQ(tqNonZeroPixelCount(image, &(count = -9)), 0);
            EXPECT_EQ(count, expected);
            EXPECT_EQ(tqSumNonZeroPels(image, &(count = -9)), static_cast<double>(sum));
            EXPECT_EQ(count, expected);
            float largest = -9;
            EXPECT_EQ(tqSumAllPels2(image, &mean, &largest), static_cast<double>(sum));
            EXPECT_EQ(mean, static_cast<double>(sum) / static_cast<double>(pels.size()));
            EXPECT_EQ(largest, *std::max_element(pels.begin(), pels.end()));
            EXPECT_EQ(tqSumAllPels2(image, nullptr, &(largest = -9)), static_cast<double>(sum));
            EXPECT_EQ(tqGetMaxPelValue2(image, &(mean = 0, largest = -9)), 0);
            EXPECT_EQ(largest, *std::max_element(pels.begin(), pels.end()));
        }
    }
}

TEST(WholeImage, TheSmallestPelIsSoughtInAllButTheLast) {
    for (Image image : StatisticsImages()) {
        for (std::size_t i = 0; i < image.Count(); ++i)
            image.Pels()[i] = static_cast<std::uint16_t>(image.Pels()[i] / 2 + 100);
        image.Pels()[image.Count() - 1] = 3;
        const auto pels = image.Values();
        float smallest = -9;
        ASSERT_EQ(tqGetMinPelValue2(image, &smallest), 0);
        EXPECT_EQ(smallest, pels.size() == 1 ? 65535 : *std::min_element(pels.begin(), pels.end() - 1));
    }
}

TEST(WholeImage, AnInvalidImageGivesTheCodeOfItsFunction) {
    Image tall(1, 8001), empty(0, 4);
    for (TqImage* image : {static_cast<TqImage*>(nullptr), tall.Get(), empty.Get()}) {
        std::int32_t count = 7;
        double mean = 7;
        float extreme = 7;
        EXPECT_EQ(tqCountAllPels(image, &count, 0), -1);
        EXPECT_EQ(tqCountPixels(image, 0), -1);
        EXPECT_EQ(tqCountNonZeroPels(image), -2);
        EXPECT_EQ(tqNonZeroPixelCount(image, &count), -1);
        EXPECT_EQ(tqSumAllPels(image, &mean, 0), -1.0);
        EXPECT_EQ(tqSumAllPels2(image, &mean, &extreme), -1.0);
        EXPECT_EQ(tqSumNonZeroPels(image, &count), -1.0);
        EXPECT_EQ(tqGetMinPelValue2(image, &extreme), -2);
        EXPECT_EQ(tqMaxAvgPels(image), -1);
        EXPECT_EQ(tqCalcImageValues(image), -2);
        EXPECT_EQ(tqColAverage(image), -2);
        EXPECT_EQ(tqRowAverage(image), -2);
        EXPECT_EQ(count, 7);
        EXPECT_EQ(mean, 7);
        EXPECT_EQ(extreme, 7);
        EXPECT_EQ(tqGetMaxPelValue2(image, &extreme), -2);
        EXPECT_EQ(extreme, 0) << "set before the image is looked at";
    }
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
    for (const auto& [cols, rows] : {std::pair{2, 3}, {3, 2}, {1, 8000}}) {
        Image image = RandomImage(cols, rows, 6);
        const TqImageHeader header = image.Header();
        EXPECT_EQ(tqMaxAvgPels(image), -1);
        EXPECT_TRUE(SameHeader(image.Header(), header));
    }
}

/// The block around the centre as the header's contract words it; cols and rows below 8000, so half is small.
double CenterReference(const Image& image, double centerCol, double centerRow) {
    const auto half = [](std::int32_t pels) { return std::trunc((pels + 49) * 0.005); };
    const auto place = [](double at) { return static_cast<std::int64_t>(std::trunc(at)); };
    const double halfCols = half(image.Cols()), halfRows = half(image.Rows());
    const auto left = std::max<std::int64_t>(place(centerCol - halfCols + 0.5), 0);
    const auto right = std::min<std::int64_t>(place(centerCol + halfCols + 0.5), image.Cols() - 1);
    const auto top = std::max<std::int64_t>(place(centerRow - halfRows + 0.5), 0);
    const auto bottom = std::min<std::int64_t>(place(centerRow + halfRows + 0.5), image.Rows() - 1);
    return left > right || top > bottom ? 0 : RectangleMean(image, left, top, right, bottom);
}

TEST(ImageValues, TotalMaximumAndCenterAreRefreshed) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    for (const auto& [cols, rows] : {std::pair{1, 1}, {9, 7}, {150, 151}, {420, 330}}) {
        Image image = RandomImageWithHoles(cols, rows, 7);
        const auto lastCol = static_cast<float>(cols - 1), lastRow = static_cast<float>(rows - 1);
        struct Center {
            float col, row;
        };
        for (const Center& at : {Center{0, 0},
                                 {lastCol * 0.5f, lastRow * 0.5f},
                                 {lastCol, lastRow},
                                 {lastCol + 0.49f, lastRow},
                                 {lastCol + 0.6f, lastRow},  // rounds past a small image: nothing is left
                                 {lastCol, lastRow + 0.9999f},
                                 {lastCol + 1, lastRow},
                                 {-0.01f, 0},
                                 {0, -1e30f},
                                 {kNan, 0},
                                 {0, kNan}}) {
            SCOPED_TRACE(testing::Message()
                         << cols << " x " << rows << " around " << at.col << ", " << at.row);
            image.Header().CenterCol = at.col;
            image.Header().CenterRow = at.row;
            image.Header().Spare = 0xDEADBEEF;
            const bool inside = at.col >= 0 && at.col < static_cast<float>(cols) && at.row >= 0 &&
                                at.row < static_cast<float>(rows);
            TqImageHeader header = image.Header();
            header.TotalPelValue = tqSumAllPels2(image, nullptr, &header.MaxPelValue);
            header.CenterPelValue =
                inside ? static_cast<float>(CenterReference(image, at.col, at.row)) : 1.0f;
            image.Header().MaxPelValue = image.Header().CenterPelValue = -5;
            ASSERT_EQ(tqCalcImageValues(image), 0);
            EXPECT_TRUE(SameHeader(image.Header(), header))
                << image.Header().CenterPelValue << " for " << header.CenterPelValue;
        }
    }
}

/// Means of the lines whose pels lie `step` apart, summed in single precision and in order.
void ExpectLineMeans(const Image& before, const Image& after, bool columns) {
    const std::int32_t lines = columns ? before.Cols() : before.Rows();
    const std::int32_t length = columns ? before.Rows() : before.Cols();
    for (std::int32_t line = 0; line < lines; ++line) {
        const auto pel = [&](const Image& image, std::int32_t i) {
            return columns ? image(line, i) : image(i, line);
        };
        volatile float sum = 0;  // rounded at each step, whatever the compiler holds it in
        for (std::int32_t i = 0; i < length; ++i)
            sum = sum + static_cast<float>(pel(before, i));
        const auto mean = static_cast<std::int32_t>(static_cast<double>(sum) / length + 0.5);
        for (std::int32_t i = 0; i < length; ++i)
            ASSERT_EQ(pel(after, i), mean & 0xFFFF) << "line " << line << ", pel " << i;
    }
}

TEST(LineAverages, EveryLineBecomesItsMeanSummedInSinglePrecision) {
    std::vector<Image> images = StatisticsImages();
    for (const auto& [cols, rows] : {std::pair{3, 3001}, {3001, 3}, {37, 1019}, {1019, 37}})
        images.push_back(RandomImage(cols, rows, 9, 20000));
    for (const Image& image : images) {
        SCOPED_TRACE(testing::Message() << image.Cols() << " x " << image.Rows());
        Image columns = image, rows = image;
        ASSERT_EQ(tqColAverage(columns), 0);
        ExpectLineMeans(image, columns, true);
        ASSERT_EQ(tqRowAverage(rows), 0);
        ExpectLineMeans(image, rows, false);
        EXPECT_TRUE(SameHeader(columns.Header(), image.Header()));
        EXPECT_TRUE(SameHeader(rows.Header(), image.Header()));
    }
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
