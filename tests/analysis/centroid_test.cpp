#include "tqimage/centroid.h"

#include <cmath>
#include <limits>

#include "images.h"
#include "tqimage/pel_block.h"

namespace tqtest {
namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

struct Found {
    std::int32_t status;
    double col = -7.0, row = -7.0;
};

template <class Find, class... Where>
Found Call(Find find, const TqImage* image, Where... where) {
    Found found{};
    found.status = find(image, &found.col, &found.row, where...);
    return found;
}

/// Centre of what `weigh` gives each pel, as the rule reads.
template <class Weigh>
Found Reference(const Image& image, Weigh&& weigh) {
    long double sum = 0, cols = 0, rows = 0;
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            const long double w = weigh(col, row);
            sum += w;
            cols += w * col;
            rows += w * row;
        }
    }
    return {0, static_cast<double>(cols / sum), static_cast<double>(rows / sum)};
}

void ExpectFound(const Found& actual, const Found& expected) {
    EXPECT_EQ(actual.status, expected.status);
    EXPECT_NEAR(actual.col, expected.col, 1e-11 * (1.0 + std::abs(expected.col)));
    EXPECT_NEAR(actual.row, expected.row, 1e-11 * (1.0 + std::abs(expected.row)));
}

TEST(Centroid, BlocksOfEverySizeAgreeWithTheAveragesOfTheirPositions) {
    const Image image = RandomImage(53, 37, 1);
    struct Size {
        std::int32_t width, height;
    };
    for (const Size& size : {Size{1, 1}, {kLowest, 1}, {3, 3}, {4, 1}, {0, 7}, {200, 5}}) {
        for (const double threshold : {-1.0, 20000.0, 32767.5, 36000.25}) {
            SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << " from " << threshold);
            const auto average = [&](std::int32_t col, std::int32_t row) {
                return tqGetPelBlockAvg(image, col, row, size.width, size.height);
            };
            const auto grey = [&](auto col, auto row) {
                const double a = average(col, row);
                return a >= threshold ? a : 0.0;
            };
            const auto one = [&](auto col, auto row) {
                return average(col, row) > threshold + 0.00001 ? 1.0 : 0.0;
            };
            const Found centroid = Call(&tqFindCentroid, image, threshold, size.width, size.height);
            const Found center = Call(&tqFindGeometricCenter, image, threshold, size.width, size.height);
            const Found expected = Reference(image, grey);
            if (std::isnan(expected.col)) {
                EXPECT_TRUE(std::isnan(centroid.col) && std::isnan(center.row));
                continue;
            }
            ExpectFound(centroid, expected);
            ExpectFound(center, Reference(image, one));
        }
    }
}

TEST(Centroid, AtTheThresholdCountsForTheCentroidOnly) {
    const Image image = MakeImage(3, 1, {7, 8, 9});
    EXPECT_EQ(Call(&tqFindCentroid, image, 9.0, 1, 1).col, 2.0);
    EXPECT_EQ(Call(&tqFindGeometricCenter, image, 8.99, 1, 1).col, 2.0);
    EXPECT_TRUE(std::isnan(Call(&tqFindGeometricCenter, image, 8.99999, 1, 1).col));
    for (const double nothing : {1e300, HUGE_VAL, std::numeric_limits<double>::quiet_NaN()}) {
        for (const std::int32_t size : {1, 3}) {
            EXPECT_TRUE(std::isnan(Call(&tqFindCentroid, image, nothing, size, size).row));
            EXPECT_TRUE(std::isnan(Call(&tqFindGeometricCenter, image, nothing, size, size).row));
        }
    }
}

TEST(CentroidInRegion, WeighsWhatLiesAboveTheThreshold) {
    const Image image = MakeImage(4, 3, {1, 2, 0, 0, 5, 0, 0, 4, 0, 0, 8, 0});
    struct Case {
        std::int32_t threshold, left, top, right, bottom;
        Found centroid, center;
    };
    for (const Case& it : {Case{0, 0, 0, 3, 2, {0, 30 / 20.0, 25 / 20.0}, {0, 6 / 5.0, 4 / 5.0}},
                           {-1, kLowest, -3, kHighest, 90, {0, 30 / 20.0, 25 / 20.0}, {0, 1.5, 1.0}},
                           {4, 0, 0, 3, 2, {0, 16 / 13.0, 21 / 13.0}, {0, 1.0, 1.5}},
                           {0, 1, 0, 3, 1, {0, 14 / 6.0, 4 / 6.0}, {0, 2.0, 0.5}},
                           {0, 0, 0, 0, 0, {0, 0, 0}, {0, 0, 0}},  // a right of 0 is column 0 here
                           {8, 0, 0, 3, 2, {-99}, {-99}}}) {
        SCOPED_TRACE(testing::Message() << "above " << it.threshold << " from column " << it.left);
        ExpectFound(Call(&tqFindCentroidInRegion, image, it.threshold, it.left, it.top, it.right, it.bottom),
                    it.centroid);
        ExpectFound(
            Call(&tqFindGeometricCenterInRegion, image, it.threshold, it.left, it.top, it.right, it.bottom),
            it.center);
    }
}

TEST(CentroidInRegion, TellsWhatIsMissing) {
    const Image image = MakeImage(6, 5, [](auto, auto) { return 500; });
    const Image black(6, 5);
    for (const auto find : {&tqFindCentroidInRegion, &tqFindGeometricCenterInRegion}) {
        ExpectFound(Call(find, image, 500, 0, 0, 5, 4), {-99});
        ExpectFound(Call(find, image, 0, 4, 0, 3, 4), {-2});
        ExpectFound(Call(find, image, 0, 6, 0, 9, 4), {-2});
        EXPECT_EQ(find(image, nullptr, nullptr, 0, 0, 0, 5, 4), 0);
    }
    ExpectFound(Call(&tqFindCentroidInRegion, black, -1, 0, 0, 5, 4), {-99});
    ExpectFound(Call(&tqFindGeometricCenterInRegion, black, -1, 0, 0, 5, 4), {0, 2.5, 2.0});
}

TEST(CentroidInRegion, TheLargestImageStaysExact) {
    const Image image = MakeImage(8000, 300, [](auto, auto) { return 65535; });
    ExpectFound(Call(&tqFindCentroidInRegion, image, 0, 0, 0, 7999, 299), {0, 3999.5, 149.5});
    const Found block = Call(&tqFindCentroid, image, 0.0, 2, 2);
    ExpectFound(block, {0, 3999.5, 149.5});
}

Found InEllipse(const TqImage* image, std::int32_t threshold, std::int32_t col, std::int32_t row,
                std::int32_t width, std::int32_t height) {
    return Call(&tqFindCentroidInEllipse, image, threshold, col, row, width, height);
}

TEST(CentroidInEllipse, WeighsWhatLiesInside) {
    const Image image = RandomImage(41, 31, 3), even = MakeImage(6, 5, [](auto, auto) { return 500; });
    struct Case {
        std::int32_t col, row, width, height;
    };
    for (const Case& it :
         {Case{20, 15, 21, 11}, {3, 28, 30, 40}, {20, 15, 1, 9}, {20, 15, kHighest, 7}, {-4, 15, 20, 9}}) {
        for (const std::int32_t threshold : {-1, 40000}) {
            const double a = 0.5 * it.width, b = 0.5 * it.height;
            const auto weight = [&](std::int32_t col, std::int32_t row) -> double {
                const double x = (col - it.col) / a, y = (row - it.row) / b;
                return x * x + y * y <= 1.0 && image(col, row) > threshold ? image(col, row) : 0;
            };
            ExpectFound(InEllipse(image, threshold, it.col, it.row, it.width, it.height),
                        Reference(image, weight));
        }
    }
    ExpectFound(InEllipse(even, kHighest, -70, kHighest, 1, 1), {0, -70.0, 2147483647.0});
    ExpectFound(InEllipse(even, 0, 3, 2, 0, kLowest), {0, 3.0, 2.0});
    ExpectFound(InEllipse(even, 500, 3, 2, 3, 3), {-99, -1.0, -1.0});
    ExpectFound(InEllipse(even, 0, 90, 90, 3, 3), {-99, -1.0, -1.0});
}

}  // namespace
}  // namespace tqtest
