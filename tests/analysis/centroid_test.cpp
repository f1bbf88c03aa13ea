#include "tqimage/centroid.h"

#include <cmath>
#include <limits>

#include "failing_allocator.h"
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

using WholeImage = decltype(&tqFindCentroid);
using InRegion = decltype(&tqFindCentroidInRegion);

Found Whole(WholeImage find, const TqImage* image, double threshold, std::int32_t width,
            std::int32_t height) {
    Found found{};
    found.status = find(image, &found.col, &found.row, threshold, width, height);
    return found;
}

Found Within(InRegion find, const TqImage* image, std::int32_t threshold, std::int32_t left, std::int32_t top,
             std::int32_t right, std::int32_t bottom) {
    Found found{};
    found.status = find(image, &found.col, &found.row, threshold, left, top, right, bottom);
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
    for (const Size& size : {Size{1, 1}, {0, -5}, {kLowest, 1}, {3, 3}, {4, 1}, {0, 7}, {15, 15}, {200, 5}}) {
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
            const Found centroid = Whole(&tqFindCentroid, image, threshold, size.width, size.height);
            const Found center = Whole(&tqFindGeometricCenter, image, threshold, size.width, size.height);
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
    EXPECT_EQ(Whole(&tqFindCentroid, image, 9.0, 1, 1).col, 2.0);
    EXPECT_EQ(Whole(&tqFindGeometricCenter, image, 8.99, 1, 1).col, 2.0);
    EXPECT_TRUE(std::isnan(Whole(&tqFindGeometricCenter, image, 8.99999, 1, 1).col));
    for (const double nothing : {1e300, HUGE_VAL, std::numeric_limits<double>::quiet_NaN()}) {
        for (const std::int32_t size : {1, 3}) {
            EXPECT_TRUE(std::isnan(Whole(&tqFindCentroid, image, nothing, size, size).row));
            EXPECT_TRUE(std::isnan(Whole(&tqFindGeometricCenter, image, nothing, size, size).row));
        }
    }
}

TEST(CentroidInRegion, EveryRectangleAndThreshold) {
    const Image image = RandomImage(43, 29, 2);
    struct Case {
        std::int32_t left, top, right, bottom;
    };
    for (const Case& it : {Case{5, 6, 40, 20}, {-3, kLowest, kHighest, 90}, {0, 0, 0, 0}, {42, 28, 42, 28}}) {
        for (const std::int32_t threshold : {kLowest, -1, 0, 30000, 60000}) {
            const auto above = [&](std::int32_t col, std::int32_t row) {
                return col >= it.left && col <= it.right && row >= it.top && row <= it.bottom &&
                       image(col, row) > threshold;
            };
            const Found centroid =
                Within(&tqFindCentroidInRegion, image, threshold, it.left, it.top, it.right, it.bottom);
            const Found center = Within(&tqFindGeometricCenterInRegion, image, threshold, it.left, it.top,
                                        it.right, it.bottom);
            const Found expected =
                Reference(image, [&](auto col, auto row) { return above(col, row) ? image(col, row) : 0; });
            if (std::isnan(expected.col)) {
                ExpectFound(centroid, {-99});
                ExpectFound(center, {-99});
                continue;
            }
            ExpectFound(centroid, expected);
            ExpectFound(center,
                        Reference(image, [&](auto col, auto row) { return above(col, row) ? 1 : 0; }));
        }
    }
}

TEST(CentroidInRegion, TellsWhatIsMissing) {
    const Image image = MakeImage(6, 5, [](auto, auto) { return 500; });
    const Image black(6, 5), wide(8001, 1);
    for (const auto find : {&tqFindCentroidInRegion, &tqFindGeometricCenterInRegion}) {
        ExpectFound(Within(find, image, 500, 0, 0, 5, 4), {-99});
        ExpectFound(Within(find, image, 0, 4, 0, 3, 4), {-2});
        ExpectFound(Within(find, image, 0, 6, 0, 9, 4), {-2});
        ExpectFound(Within(find, nullptr, 0, 0, 0, 5, 4), {-2});
        ExpectFound(Within(find, wide, 0, 0, 0, 5, 4), {-2});
        EXPECT_EQ(find(image, nullptr, nullptr, 0, 0, 0, 5, 4), 0);
    }
    ExpectFound(Within(&tqFindCentroidInRegion, black, -1, 0, 0, 5, 4), {-99});
    ExpectFound(Within(&tqFindGeometricCenterInRegion, black, -1, 0, 0, 5, 4), {0, 2.5, 2.0});
    for (const auto find : {&tqFindCentroid, &tqFindGeometricCenter}) {
        ExpectFound(Whole(find, nullptr, 1.0, 1, 1), {-2});
        ExpectFound(Whole(find, wide, 1.0, 3, 3), {-2});
    }
}

TEST(CentroidInRegion, TheLargestImageStaysExact) {
    const Image image = MakeImage(8000, 300, [](auto, auto) { return 65535; });
    ExpectFound(Within(&tqFindCentroidInRegion, image, 0, 0, 0, 7999, 299), {0, 3999.5, 149.5});
    const Found block = Whole(&tqFindCentroid, image, 0.0, 2, 2);
    ExpectFound(block, {0, 3999.5, 149.5});
}

Found InEllipse(const TqImage* image, std::int32_t threshold, std::int32_t col, std::int32_t row,
                std::int32_t width, std::int32_t height) {
    Found found{};
    found.status = tqFindCentroidInEllipse(image, &found.col, &found.row, threshold, col, row, width, height);
    return found;
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
    ExpectFound(InEllipse(nullptr, 0, 1, 1, 1, 1), {-1});
}

TEST(Centroid, NoMemoryForTheSweep) {
    if (!CanFailAllocations()) GTEST_SKIP() << "the library allocates for itself here";
    const Image image = RandomImage(20, 20, 4);
    for (const auto find : {&tqFindCentroid, &tqFindGeometricCenter}) {
        double col = -7.0, row = -7.0;
        const int made = FailEachAllocation(
            -2, 0, [&] { return find(image, &col, &row, 10.0, 3, 3); }, [&] { EXPECT_EQ(col, -7.0); });
        EXPECT_GE(made, 1);
    }
}

}  // namespace
}  // namespace tqtest
