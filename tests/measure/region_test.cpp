#include <cmath>
#include <random>

#include "statistics.h"
#include "tqimage/exchange.h"
#include "tqimage/pel_block.h"

namespace tqtest {
namespace {

/// Sides and centres that hosts and their faults pass: inside, on the border, outside, at the end of int32.
std::vector<std::int32_t> Coordinates(std::int32_t extent, std::mt19937& engine) {
    const auto inside = static_cast<std::int32_t>(engine() % static_cast<std::uint32_t>(extent));
    return {0, -1, inside, extent - 1, extent, extent + 40, -70000, kLowest, kHighest};
}

template <class Fn>
void ForRandomPicks(const Image& image, std::uint32_t seed, const std::vector<std::int32_t>& sizes, Fn&& fn) {
    std::mt19937 engine(seed);
    const int cases = image.Count() > 1000 ? 25 : 150;
    for (int i = 0; i < cases; ++i) {
        const auto cols = Coordinates(image.Cols(), engine);
        const auto rows = Coordinates(image.Rows(), engine);
        const auto pick = [&](const auto& from) { return from[engine() % from.size()]; };
        const std::int32_t col = pick(cols), row = pick(rows);
        const std::int32_t third = sizes.empty() ? pick(cols) : pick(sizes);
        const std::int32_t fourth = sizes.empty() ? pick(rows) : pick(sizes);
        SCOPED_TRACE(testing::Message() << image.Cols() << " x " << image.Rows() << ": " << col << ", " << row
                                        << ", " << third << ", " << fourth);
        fn(col, row, third, fourth);
    }
}

TEST(Rectangle, StatisticsOfEveryRectangle) {
    for (const Image& image : StatisticsImages()) {
        ForRandomPicks(image, 12, {}, [&](auto left, auto top, auto right, auto bottom) {
            const auto pels = ValuesAt(image, RectangleReference(image, left, top, right, bottom));
            const std::int32_t lastCol = image.Cols() - 1;
            const std::int32_t clampedRight =
                std::clamp(right, 0, lastCol) == 0 ? lastCol : std::min(right, lastCol);
            ExpectStatistics(OfRectangle(image, left, top, right, bottom), pels, clampedRight + 1);
            std::uint64_t sum = 0, squares = 0;
            std::int32_t lit = 0;
            for (const std::uint64_t pel : pels) {
                sum += pel;
                squares += pel * pel;
                lit += pel != 0 ? 1 : 0;
            }
            std::int32_t min = -9, max = -9, count = -9, nonZero = -9;
            float mean = -9;
            double total = -9, totalSquares = -9;
            ASSERT_EQ(tqGetTotalPelValuesInRegion(image, &min, &max, &mean, &count, &total, &totalSquares,
                                                  &nonZero, left, top, right, bottom),
                      0);
            EXPECT_EQ(count, static_cast<std::int32_t>(pels.size()));
            EXPECT_EQ(nonZero, lit);
            EXPECT_EQ(total, static_cast<double>(sum));
            EXPECT_EQ(totalSquares, static_cast<double>(squares));
            EXPECT_EQ(mean, pels.empty() ? 0 : static_cast<float>(total / count));
            EXPECT_EQ(min, pels.empty() ? 0 : *std::min_element(pels.begin(), pels.end()));
            EXPECT_EQ(max, pels.empty() ? 0 : *std::max_element(pels.begin(), pels.end()));
            EXPECT_EQ(tqGetAvgPelValueInRegion(image, left, top, right, bottom),
                      lit == 0 ? 0 : static_cast<double>(sum) / lit);
            const std::uint16_t corner =
                image(std::clamp(left, 0, image.Cols() - 1), std::clamp(top, 0, image.Rows() - 1));
            EXPECT_EQ(tqGetMinMaxPelValueInRegion(image, &min, &max, left, top, right, bottom), 0);
            EXPECT_EQ(min, pels.empty() ? corner : *std::min_element(pels.begin(), pels.end()));
            EXPECT_EQ(max, pels.empty() ? corner : *std::max_element(pels.begin(), pels.end()));
        });
    }
}

TEST(Rectangle, SumsOfTheLargestPelsStayExact) {
    const Image image = MakeImage(8000, 270, [](auto, auto) { return 65535; });
    double total = 0, squares = 0;
    std::int32_t count = 0;
    ASSERT_EQ(tqGetTotalPelValuesInRegion(image, nullptr, nullptr, nullptr, &count, &total, &squares, nullptr,
                                          0, 0, 0, 0),
              0);
    EXPECT_EQ(count, 8000 * 270);
    EXPECT_EQ(total, 65535.0 * 8000 * 270);
    EXPECT_EQ(squares, 65535.0 * 65535.0 * 8000 * 270);
    EXPECT_EQ(tqSumPelBlock(image, 65535, 0, 0, 7999, 269), total);
}

TEST(Rectangle, AverageOfARegionOfInterestHasItsOwnRule) {
    const Image image = RandomImage(17, 13, 4);
    EXPECT_EQ(tqGetROIPelAvg(image, 3, 2, 9, 11), RectangleMean(image, 3, 2, 9, 11));
    EXPECT_EQ(tqGetROIPelAvg(image, kLowest, kLowest, kHighest, kHighest),
              RectangleMean(image, 0, 0, 16, 12));
    EXPECT_EQ(tqGetROIPelAvg(image, 0, 0, 0, 0), image(0, 0)) << "a right of 0 is column 0 here";
    EXPECT_EQ(tqGetROIPelAvg(image, 20, 2, 30, 4), 0.0) << "beside the image: a negative number of pels";
    EXPECT_EQ(tqGetROIPelAvg(image, 17, 2, 30, 4), -HUGE_VAL) << "just beside it: none at all, not guarded";
    EXPECT_EQ(tqGetROIPelAvg(image, 19, 15, 30, 30), -2.0 / 4) << "beside and below: two negatives";
    EXPECT_EQ(tqGetROIPelAvg(nullptr, 5, 0, 4, 9), -2.0) << "the rectangle is looked at before the image";
    EXPECT_EQ(tqGetROIPelAvg(nullptr, 0, 0, 4, 9), -1.0);
}

TEST(Ellipse, StatisticsOfEveryEllipse) {
    const std::vector<std::int32_t> sizes = {1,   2,    3,  4,  5,  8,       13,      30,
                                             161, 8001, -1, -2, -3, kLowest, kHighest};
    for (const Image& image : StatisticsImages()) {
        ForRandomPicks(image, 13, sizes, [&](auto col, auto row, auto width, auto height) {
            const Visited visited = EllipseReference(image, col, row, width, height);
            ExpectStatistics(OfEllipse(image, col, row, width, height), ValuesAt(image, visited));
            EXPECT_EQ(tqGetPelBlockAvgEllipse(image, col, row, width, height),
                      EllipseBlockReference(image, col, row, width, height));
        });
    }
}

TEST(Ellipse, WithoutExtentIsTheNearestPelForEveryStatistic) {
    const Image image = RandomImage(17, 13, 6, 2);
    for (const auto& [col, row] : {std::pair{4, 7}, {kHighest, kLowest}}) {
        const std::int32_t pel = tqGetImgPel0(image, col, row);
        for (const auto& [width, height] : {std::pair{0, 5}, {5, 0}}) {
            const Statistics ellipse = OfEllipse(image, col, row, width, height);
            std::int32_t count = -9;
            EXPECT_EQ(ellipse.max(), pel);
            EXPECT_EQ(ellipse.min(), pel);
            EXPECT_EQ(ellipse.total(&count, kHighest), pel);
            EXPECT_EQ(count, 0);
            EXPECT_EQ(ellipse.weighted(0, 0), pel);
            EXPECT_EQ(ellipse.charArea(0, 0), pel);
            EXPECT_EQ(ellipse.area(), pel);
            EXPECT_EQ(tqGetPelBlockAvgEllipse(image, col, row, width, height), pel);
        }
    }
}

TEST(Regions, AnInvalidImageGivesTheCodeOfItsShape) {
    const Image flat(3, 0);
    HostArray triangle = VerticesOf({{0, 0}, {4, 0}, {0, 4}});
    ExpectCode(OfRectangle(flat, 0, 0, 0, 0), -2);
    ExpectCode(OfEllipse(flat, 1, 1, 0, 3), -1);
    ExpectCode(OfPolygon(flat, triangle.Address()), -7);
    std::int32_t min = 7, max = 7, count = 7, nonZero = 7;
    EXPECT_EQ(tqGetTotalPelValuesInRegion(flat, &min, &max, nullptr, &count, nullptr, nullptr, &nonZero, 0, 0,
                                          0, 0),
              -2);
    EXPECT_EQ(min + max, 14);
    EXPECT_EQ(count + nonZero, 0) << "the counts are set first";
}

}  // namespace
}  // namespace tqtest
