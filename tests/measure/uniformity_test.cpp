#include "tqimage/uniformity.h"

#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "reference.h"
#include "tqimage/pel_block.h"
#include "tqimage/whole_image.h"

namespace tqtest {
namespace {

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

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

TEST(Ansi, RefusesImagesWithoutPelsOrScale) {
    Image field = MakeImage(9, 9, [](auto, auto) { return 5; });
    double above = 7, below = 7;
    EXPECT_EQ(tqCalcANSILumens(nullptr, 0, 1, 1), -2.0);
    EXPECT_EQ(tqCalcANSILumens(Image(8001, 1), 0, 1, 1), -2.0);
    EXPECT_EQ(tqCalcANSIUniformity(nullptr, &above, &below, 0, 1, 1), -2);
    EXPECT_EQ(above, 0.0);
    EXPECT_EQ(below, 0.0);
    for (const auto& [x, y] : kNoScales) {
        field.Header().PelsPerMeterX = x;
        field.Header().PelsPerMeterY = y;
        above = below = 7;
        EXPECT_EQ(tqCalcANSILumens(field, 0, 1, 1), -3.0);
        EXPECT_EQ(tqCalcANSIUniformity(field, &above, &below, 0, 1, 1), -3);
        EXPECT_EQ(above, 0.0);
        EXPECT_EQ(below, 0.0);
    }
    double dark = 7;
    EXPECT_EQ(tqCalcANSIUniformity(Image(9, 9), &above, &dark, 0, 1, 1), 0);
    EXPECT_TRUE(std::isnan(above) && std::isnan(dark)) << "a dark field deviates from nothing";
}

TEST(Mura, TotalsAgreeWithEveryPelAndThreshold) {
    std::vector<Image> images = {RandomImage(1, 1, 42),
                                 RandomImage(9, 1, 43),
                                 RandomImage(300, 200, 44),
                                 RandomImage(300, 200, 45, 31990, 32010),
                                 MakeImage(20, 10, [](auto, auto) { return 32000; }),
                                 MakeImage(40, 30, [](auto col, auto) { return col % 2 ? 0 : 65535; })};
    for (const auto function : {tqGetTotalMuraInRegion, tqGetRMSMuraInRegion}) {
        std::int32_t count = 7;
        EXPECT_EQ(function(nullptr, &count, 0, 0, 0, 0, 0), -2.0);
        EXPECT_EQ(count, 0);
    }
    for (const Image& image : images) {
        const std::vector<std::vector<std::int32_t>> regions = {
            {0, 0, 0, 0}, {3, 2, 5, 4}, {-5, kLowest, kHighest, 3}, {5, 5, 4, 8}, {kHighest, 0, 1, 1}};
        for (const auto& at : regions) {
            const auto pels = ValuesAt(image, RectangleReference(image, at[0], at[1], at[2], at[3]));
            for (const std::int32_t threshold :
                 {kLowest, 0, 1, 31999, 32000, 32001, 65535, 65536, kHighest}) {
                double total = 0, squares = 0;
                std::int32_t counted = 0, signals = 0;
                for (const std::int32_t pel : pels) {
                    if (pel < threshold) continue;
                    ++counted;
                    signals += pel != 32000;
                    total += std::abs(pel - 32000);
                    squares += (pel - 32000.0) * (pel - 32000.0);
                }
                std::int32_t count = -7;
                EXPECT_EQ(tqGetTotalMuraInRegion(image, &count, at[0], at[1], at[2], at[3], threshold),
                          total);
                EXPECT_EQ(count, counted) << "threshold " << threshold;
                count = -7;
                EXPECT_EQ(tqGetRMSMuraInRegion(image, &count, at[0], at[1], at[2], at[3], threshold),
                          signals > 0 ? std::sqrt(squares / signals) : 0.0);
                EXPECT_EQ(count, signals) << "threshold " << threshold;
            }
        }
    }
}

/// The lit field as its rule reads: columns from the left, cells by position in the array.
std::vector<std::int32_t> ClipRangeReference(const Image& image, std::int32_t threshold) {
    const std::int32_t cols = image.Cols(), rows = image.Rows();
    const auto lit = [&](std::int32_t col, std::int32_t row) {
        const auto pel = [&](std::int32_t c, std::int32_t r) {
            const std::size_t at =
                static_cast<std::size_t>(r) * static_cast<std::size_t>(cols) + static_cast<std::size_t>(c);
            return at < image.Count() ? image.Pels()[at] : 0;
        };
        const int pels[] = {pel(col, row), pel(col, row + 1), pel(col + 1, row), pel(col + 1, row + 1)};
        const float mean = static_cast<float>(pels[0] + pels[1] + pels[2] + pels[3]) / 4;
        int sum = 0, count = 0;
        for (const int v : pels) {
            if (static_cast<float>(v) < 2 * mean && v > static_cast<int>(mean * 0.5f)) sum += v, ++count;
        }
        return (count > 0 ? sum / count : static_cast<int>(mean)) > threshold;
    };
    const auto columnLit = [&](std::int32_t col) {
        for (std::int32_t row = 0; row <= rows - 2; ++row) {
            if (lit(col, row)) return true;
        }
        return false;
    };
    const auto rowLit = [&](std::int32_t row) {
        for (std::int32_t col = 0; col <= cols - 2; ++col) {
            if (lit(col, row)) return true;
        }
        return false;
    };
    std::int32_t left = 0;
    while (left < cols && !columnLit(left))
        ++left;
    if (left >= cols - 1) return {cols / 2 - 1, rows / 2 - 1, cols / 2, rows / 2};
    std::int32_t right = cols - 1;
    while (right >= left + 2 && !columnLit(right - 1))
        --right;
    std::int32_t top = 0;
    while (top < rows && !rowLit(top))
        ++top;
    if (top >= rows - 1) return {left, rows - 2, right, rows - 1};
    std::int32_t bottom = rows - 1;
    while (bottom > top && !rowLit(bottom - 1))
        --bottom;
    return {left, top, right, bottom};
}

std::vector<std::int32_t> ClipRange(const Image& image, std::int32_t threshold) {
    std::vector<std::int32_t> range(4, -9);
    EXPECT_EQ(tqCalcLampClipRange(image, threshold, &range[0], &range[1], &range[2], &range[3]), 0);
    return range;
}

TEST(LampClipRange, FindsTheFieldOfAnyImage) {
    const Image lamp = MakeImage(60, 40, [](auto col, auto row) {
        return col >= 12 && col <= 40 && row >= 7 && row <= 30 ? 5000 : 20;
    });
    EXPECT_EQ(ClipRange(lamp, 100), (std::vector{11, 6, 41, 31})) << "a cell is lit by one bright pel";
    std::mt19937 random(46);
    const auto engine = [&random] { return static_cast<std::uint32_t>(random()); };
    for (int i = 0; i < 600; ++i) {
        const auto cols = static_cast<std::int32_t>(1 + engine() % 9);
        const auto rows = static_cast<std::int32_t>(1 + engine() % 9);
        // Mostly dark, so that single cells decide, in every place and with every mixture of levels.
        const std::uint32_t oneIn = 1 + engine() % 30;
        const Image image = MakeImage(
            cols, rows, [&](auto, auto) { return engine() % oneIn == 0 ? engine() % 65536 : engine() % 40; });
        for (const std::int32_t threshold : {-1, 0, 10, 30, 1000, 20000, 60000, 65535, kLowest, kHighest}) {
            ASSERT_EQ(ClipRange(image, threshold), ClipRangeReference(image, threshold))
                << cols << " x " << rows << ", threshold " << threshold << ", round " << i;
        }
    }
}

TEST(LampClipRange, ACellThatWrapsMakesNoField) {
    Image image(8, 6);
    image(7, 2) = image(7, 3) = image(0, 3) = image(0, 4) = 9000;
    EXPECT_EQ(ClipRange(image, 6000), (std::vector{3, 2, 4, 3})) << "no other cell has a level above 4500";
    std::vector<std::int32_t> range(4, -9);
    EXPECT_EQ(tqCalcLampClipRange(nullptr, 0, &range[0], &range[1], &range[2], &range[3]), -1);
    EXPECT_EQ(range, std::vector<std::int32_t>(4, -9));
}

/// Pel by pel, the sum in single precision in row order.
Image ContrastReference(const Image& source) {
    float sum = 0;
    std::uint16_t min = 65535, max = 0;
    for (const std::uint16_t pel : source.Values()) {
        sum += static_cast<float>(pel);
        min = std::min(min, pel);
        max = std::max(max, pel);
    }
    const double mean = sum / static_cast<float>(source.Count());
    const auto contrast = [mean](double v) { return std::abs((v - mean) / (mean + v)); };
    const double strongest = std::max(contrast(max), contrast(min));
    return MakeImage(source.Cols(), source.Rows(), [&](auto col, auto row) {
        return min == max ? 0 : static_cast<int>(std::lrint(contrast(source(col, row)) / strongest * 65535));
    });
}

TEST(AbsContrast, EveryPelAgainstTheMean) {
    std::vector<Image> images = {RandomImage(1, 1, 47), RandomImage(31, 17, 48), RandomImage(700, 900, 49),
                                 RandomImage(900, 800, 50, 20000, 20255),
                                 MakeImage(800, 700, [](auto col, auto) { return col % 2 ? 256 : 768; }),
                                 MakeImage(2, 2, {0, 0, 0, 9}), Image(5, 5),
                                 // Equal pels, though their rounded mean differs.
                                 MakeImage(1000, 700, [](auto, auto) { return 40001; })};
    for (Image& source : images) {
        source.Header().Spare = 0xDEADBEEF;
        source.Header().BinCols = 3;
        Image map(2, 2);
        ASSERT_EQ(tqCalcAbsContrast(map.Address(), source), 0);
        EXPECT_TRUE(SamePels(ContrastReference(source), map));
        EXPECT_TRUE(SameHeader(source.Header(), map.Header()));
        ASSERT_EQ(tqCalcAbsContrast(source.Address(), source), 0) << "the source's own place";
        EXPECT_TRUE(SamePels(map, source));
    }
}

TEST(AbsContrast, FailuresLeaveWhatTheyPromise) {
    Image source = RandomImage(6, 5, 51);
    Image map = MakeImage(2, 1, {3, 4});
    EXPECT_EQ(tqCalcAbsContrast(map.Address(), nullptr), -2);
    EXPECT_EQ(tqCalcAbsContrast(map.Address(), Image(1, 8001)), -2);
    EXPECT_EQ(tqCalcAbsContrast(nullptr, source), -2);
    EXPECT_TRUE(SamePels(MakeImage(2, 1, {3, 4}), map));
    for (const auto& [x, y] : kNoScales) {
        source.Header().PelsPerMeterX = x;
        source.Header().PelsPerMeterY = y;
        EXPECT_EQ(tqCalcAbsContrast(map.Address(), source), -3);
        EXPECT_TRUE(SamePels(Image(6, 5), map));
        EXPECT_TRUE(SameHeader(source.Header(), map.Header()));
    }
}

}  // namespace
}  // namespace tqtest
