#include "tqimage/uniformity.h"

#include <cmath>
#include <limits>
#include <random>

#include "statistics.h"
#include "tqimage/pel_block.h"
#include "tqimage/whole_image.h"

namespace tqtest {
namespace {

/// The header values that leave an image without a scale.
const std::vector<std::pair<float, float>> kNoScales = {{0.0f, 1000.0f}, {1000.0f, -1.0f}};

TEST(Ansi, SpotsAreEllipsesForShapeOneOnly) {
    const Image field = RandomImageWithHoles(77, 55, 41);
    field.Header().PelsPerMeterX = 500.0f;
    field.Header().LuxPerGrey = 0.5f;
    const double lit = tqCountNonZeroPels(field) / (500.0 * 1000.0);
    const std::vector<Position> corners = {{3, 2}, {72, 2}, {3, 51}, {72, 51}};
    for (const auto& [width, height] : {std::pair{1, 1}, {9, 7}, {0, 4}, {-3, 5}, {200, 200}}) {
        for (const std::int32_t shape : {0, 1, -1, kHighest}) {
            const auto sample = [&, width = width, height = height](std::int32_t col, std::int32_t row) {
                return shape == 1 ? tqGetPelBlockAvgEllipse(field, col, row, width, height)
                                  : tqGetPelBlockAvg(field, col, row, width, height);
            };
            double sum = 0, max = 0, min = 100000;
            for (const std::int32_t row : {9, 27, 44}) {
                for (const std::int32_t col : {12, 38, 63})
                    sum += sample(col, row);
            }
            for (const std::int32_t row : {2, 9, 27, 44, 51}) {
                for (const std::int32_t col : {3, 12, 38, 63, 72}) {
                    if ((row == 2 || row == 51) != (col == 3 || col == 72)) continue;
                    max = std::max(max, sample(col, row));
                    min = std::min(min, sample(col, row));
                }
            }
            const double mean = sum / 9;
            double above = 0, below = 0;
            ASSERT_EQ(tqCalcANSIUniformity(field, &above, &below, shape, width, height), 0);
            EXPECT_EQ(above, (max - mean) * 100 / mean);
            EXPECT_EQ(below, (min - mean) * 100 / mean);
            EXPECT_DOUBLE_EQ(tqCalcANSILumens(field, shape, width, height), mean * 0.5 * lit);
        }
    }
}

TEST(Ansi, NeedsAScaleAndLight) {
    Image field = MakeImage(9, 9, [](auto, auto) { return 5; });
    double above = 7, below = 7;
    for (const auto& [x, y] : kNoScales) {
        field.Header().PelsPerMeterX = x;
        field.Header().PelsPerMeterY = y;
        above = below = 7;
        EXPECT_EQ(tqCalcANSILumens(field, 0, 1, 1), -3.0);
        EXPECT_EQ(tqCalcANSIUniformity(field, &above, &below, 0, 1, 1), -3);
        EXPECT_EQ(above + below, 0.0);
    }
    double dark = 7;
    EXPECT_EQ(tqCalcANSIUniformity(Image(9, 9), &above, &dark, 0, 1, 1), 0);
    EXPECT_TRUE(std::isnan(above) && std::isnan(dark)) << "a dark field deviates from nothing";
}

TEST(Mura, TotalsFromAThresholdOn) {
    const Image image = MakeImage(4, 2, {32000, 31990, 0, 65535, 32003, 32000, 31996, 32000});
    struct Case {
        std::int32_t left, top, right, bottom, threshold;
        double total, squares;
        std::int32_t pels, signals;
    };
    for (const Case& it : {Case{0, 0, 0, 0, 1, 10 + 33535 + 3 + 4, 100 + 33535.0 * 33535 + 9 + 16, 7, 4},
                           {0, 0, 1, 1, kLowest, 13, 109, 4, 2},
                           {-5, kLowest, 2, 1, 0, 10 + 32000 + 3 + 4, 100 + 32000.0 * 32000 + 9 + 16, 6, 4},
                           {0, 0, 1, 1, 31991, 3, 9, 3, 1},
                           {0, 0, 1, 1, 32000, 3, 9, 3, 1},
                           {0, 0, 1, 1, 32004, 0, 0, 0, 0},
                           {0, 0, 0, 0, 65535, 33535, 33535.0 * 33535, 1, 1},
                           {0, 0, 0, 0, 65536, 0, 0, 0, 0},
                           {3, 0, 2, 1, 0, 0, 0, 0, 0}}) {
        SCOPED_TRACE(testing::Message() << it.threshold << " in " << it.left << ".." << it.right);
        std::int32_t pels = -7, signals = -7;
        EXPECT_EQ(tqGetTotalMuraInRegion(image, &pels, it.left, it.top, it.right, it.bottom, it.threshold),
                  it.total);
        EXPECT_EQ(pels, it.pels);
        EXPECT_EQ(tqGetRMSMuraInRegion(image, &signals, it.left, it.top, it.right, it.bottom, it.threshold),
                  it.signals > 0 ? std::sqrt(it.squares / it.signals) : 0.0);
        EXPECT_EQ(signals, it.signals);
    }
    const Image stripes = MakeImage(300, 200, [](auto col, auto) { return col % 2 ? 0 : 65535; });
    std::int32_t count = 7;
    EXPECT_EQ(tqGetTotalMuraInRegion(stripes, &count, 0, 0, 0, 0, 0), 30000 * 65535.0);
    for (const auto function : {tqGetTotalMuraInRegion, tqGetRMSMuraInRegion}) {
        count = 7;
        EXPECT_EQ(function(nullptr, &count, 0, 0, 0, 0, 0), -2.0);
        EXPECT_EQ(count, 0);
    }
}

std::vector<std::int32_t> ClipRange(const Image& image, std::int32_t threshold) {
    std::vector<std::int32_t> range(4, -9);
    EXPECT_EQ(tqCalcLampClipRange(image, threshold, &range[0], &range[1], &range[2], &range[3]), 0);
    return range;
}

/// A cell is four pels that meet; it has the mean of those that are neither half as bright as all nor twice.
TEST(LampClipRange, FindsTheFieldOfLitCells) {
    const auto field = [](std::int32_t cols, std::int32_t rows, std::int32_t left, std::int32_t top,
                          std::int32_t right, std::int32_t bottom) {
        return MakeImage(cols, rows, [=](auto col, auto row) {
            return col >= left && col <= right && row >= top && row <= bottom ? 5000 : 20;
        });
    };
    struct Case {
        Image image;
        std::int32_t threshold;
        std::vector<std::int32_t> range;
    };
    for (const Case& it : {Case{field(60, 40, 12, 7, 40, 30), 100, {11, 6, 41, 31}},
                           {field(60, 40, 12, 7, 40, 30), 4999, {11, 6, 41, 31}},
                           {field(60, 40, 0, 0, 59, 39), 100, {0, 0, 59, 39}},
                           {field(9, 7, 4, 3, 4, 3), 100, {3, 2, 5, 4}},
                           {field(9, 7, 4, 3, 4, 3), 65535, {3, 2, 4, 3}},  // nothing lit: the middle
                           {field(1, 1, 0, 0, 0, 0), 100, {-1, -1, 0, 0}},
                           {Image(9, 8), kLowest, {0, 0, 8, 7}},
                           {Image(9, 8), kHighest, {3, 3, 4, 4}}}) {
        EXPECT_EQ(ClipRange(it.image, it.threshold), it.range)
            << it.image.Cols() << " pels, " << it.threshold;
    }
}

TEST(LampClipRange, ACellThatWrapsMakesNoField) {
    Image image(8, 6);
    image(7, 2) = image(7, 3) = image(0, 3) = image(0, 4) = 9000;
    EXPECT_EQ(ClipRange(image, 6000), (std::vector{3, 2, 4, 3})) << "no other cell has a level above 4500";
}

/// The mean is a sum in single precision, in row order; the strongest contrast becomes 65535.
TEST(AbsContrast, EveryPelAgainstTheMean) {
    struct Case {
        Image source;
        int first, last;
    };
    Case cases[] = {
        {MakeImage(2, 2, {300, 100, 100, 100}), 65535, 39321},  // contrasts of 1 / 3 and 1 / 5 with 150
        {MakeImage(2, 2, {0, 0, 0, 9}), 65535, 39321},
        {Image(5, 5), 0, 0},
        // Equal pels, though their rounded mean differs.
        {MakeImage(1000, 700, [](auto, auto) { return 40001; }), 0, 0}};
    for (Case& it : cases) {
        it.source.Header().Spare = 0xDEADBEEF;
        it.source.Header().BinCols = 3;
        Image map(2, 2);
        ASSERT_EQ(tqCalcAbsContrast(map.Address(), it.source), 0);
        EXPECT_EQ(map(0, 0), it.first);
        EXPECT_EQ(map(map.Cols() - 1, map.Rows() - 1), it.last);
        EXPECT_TRUE(SameHeader(it.source.Header(), map.Header()));
        ASSERT_EQ(tqCalcAbsContrast(it.source.Address(), it.source), 0) << "the source's own place";
        EXPECT_TRUE(SamePels(map, it.source));
    }
}

TEST(AbsContrast, WithoutAScaleIsAnImageOfZeros) {
    Image source = RandomImage(6, 5, 51);
    Image map;
    std::vector<std::pair<float, float>> noScales = kNoScales;
    noScales.push_back({1000.0f, std::numeric_limits<float>::quiet_NaN()});
    for (const auto& [x, y] : noScales) {
        source.Header().PelsPerMeterX = x;
        source.Header().PelsPerMeterY = y;
        EXPECT_EQ(tqCalcAbsContrast(map.Address(), source), -3);
        EXPECT_TRUE(SamePels(Image(6, 5), map));
        EXPECT_TRUE(SameHeader(source.Header(), map.Header()));
    }
}

}  // namespace
}  // namespace tqtest
