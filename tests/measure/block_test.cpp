#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "statistics.h"
#include "tqimage/pel_block.h"

namespace tqtest {
namespace {

const std::vector<std::pair<std::int32_t, std::int32_t>> kBlocks = {
    {1, 1}, {0, 0}, {3, 3}, {2, 2}, {1, 6}, {6, 1}, {5, 2}, {15, 15}, {51, 51}, {-4, 3}, {kLowest, kHighest}};

TEST(PelBlock, SlidesInwardAtLeftAndTopAndIsCutAtRightAndBottom) {
    const Image row = MakeImage(10, 1, {1, 2, 4, 8, 16, 32, 64, 128, 256, 512});
    EXPECT_EQ(tqGetPelBlockAvg(row, 0, 0, 4, 1), 15.0 / 4);
    EXPECT_EQ(tqGetPelBlockAvg(row, 5, 0, 4, 1), (8.0 + 16 + 32 + 64) / 4);
    EXPECT_EQ(tqGetPelBlockAvg(row, 9, 0, 4, 1), (128.0 + 256 + 512) / 3);
    for (const Image& image : StatisticsImages()) {
        for (const auto& [width, height] : kBlocks) {
            for (const std::int32_t col : {kLowest, -1, 0, 1, image.Cols() / 2, image.Cols() - 1, kHighest}) {
                for (const std::int32_t line : {kLowest, 0, image.Rows() / 2, image.Rows() - 1, kHighest}) {
                    ASSERT_EQ(tqGetPelBlockAvg(image, col, line, width, height),
                              BlockReference(image, col, line, width, height))
                        << col << ", " << line << ": " << width << " x " << height;
                }
            }
        }
    }
}

/// Sums of rectangles and of the circles in them, threshold by threshold.
TEST(BlockSum, RectanglesAndCircles) {
    std::mt19937 engine(32);
    for (const Image& image : StatisticsImages()) {
        const std::vector<std::int32_t> sides = {kLowest,          -20, -1, 0,       3, image.Cols() - 1,
                                                 image.Rows() - 1, 12,  25, kHighest};
        for (int i = 0; i < 200; ++i) {
            const std::int32_t left = sides[engine() % sides.size()], top = sides[engine() % sides.size()];
            const std::int32_t right = sides[engine() % sides.size()],
                               bottom = sides[engine() % sides.size()];
            const std::int32_t threshold = std::vector{0, 1, 30000, 65535, 65536, -1}[engine() % 6];
            const double spanX = static_cast<double>(right) - left, spanY = static_cast<double>(bottom) - top;
            const double span = std::abs(spanX) > std::abs(spanY) ? spanX : spanY;
            const double radius = (std::abs(span) + 1) * 0.5;
            double sum = 0, circle = 0;
            for (std::int32_t y = std::max(top, 0); y <= std::min(bottom, image.Rows() - 1); ++y) {
                for (std::int32_t x = std::max(left, 0); x <= std::min(right, image.Cols() - 1); ++x) {
                    if (image(x, y) < (threshold & 0xFFFF)) continue;
                    sum += image(x, y);
                    const double dx = x - (left + 0.5 * spanX), dy = y - (top + 0.5 * spanY);
                    if (dx * dx + dy * dy <= radius * radius) circle += image(x, y);
                }
            }
            const bool empty = std::max(left, 0) > std::min(right, image.Cols() - 1) ||
                               std::max(top, 0) > std::min(bottom, image.Rows() - 1);
            SCOPED_TRACE(testing::Message() << left << ", " << top << ", " << right << ", " << bottom);
            ASSERT_EQ(tqSumPelBlock(image, threshold, left, top, right, bottom), empty ? -2.0 : sum);
            ASSERT_EQ(tqSumPelBlockCircle(image, threshold, left, top, right, bottom), empty ? -2.0 : circle);
        }
    }
}

TEST(BlockSum, NumberOfPelsInACircle) {
    const Image ones = MakeImage(40, 40, [](auto, auto) { return 1; });
    for (std::int32_t right = 2; right < 36; ++right) {
        for (std::int32_t bottom = 3; bottom < 36; bottom += 3) {
            ASSERT_EQ(tqSumPelBlockCirclePels(2, 3, right, bottom),
                      tqSumPelBlockCircle(ones, 0, 2, 3, right, bottom));
            ASSERT_EQ(tqSumPelBlockCirclePels(kLowest + 2, -7, kLowest + right, bottom - 10),
                      tqSumPelBlockCirclePels(2, 3, right, bottom))
                << "a circle counts alike wherever it lies";
        }
    }
    EXPECT_EQ(tqSumPelBlockCirclePels(0, 0, 9, 4), 50) << "D = 9: the circle covers the flat rectangle";
    EXPECT_EQ(tqSumPelBlockCirclePels(0, 0, 3, 3), 16 - 4) << "squared radius 4 leaves the corners out";
    EXPECT_EQ(tqSumPelBlockCirclePels(5, 0, 4, 0), -2);
    EXPECT_EQ(tqSumPelBlockCirclePels(0, 5, 0, 4), -2);
}

/// Blocks with an average of at least and of at most the threshold, then ellipses.
using Counts = std::array<std::uint32_t, 4>;

Counts CountsReference(const Image& image, double threshold, std::int32_t width, std::int32_t height) {
    width = std::min(std::max(width, 1), image.Cols());
    height = std::min(std::max(height, 1), image.Rows());
    Counts counts{0, 0, 0, 0};
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            const double block = BlockReference(image, col, row, width, height);
            const double ellipse = EllipseBlockReference(image, col, row, width, height);
            counts[0] += block >= threshold;
            counts[1] += block <= threshold;
            counts[2] += ellipse >= threshold;
            counts[3] += ellipse <= threshold;
        }
    }
    return counts;
}

Counts CountsOf(const Image& image, double threshold, std::int32_t width, std::int32_t height) {
    Counts counts{99, 99, 99, 99};
    EXPECT_EQ(tqCountAllPelBlocks(image, &counts[0], threshold, width, height), 0);
    EXPECT_EQ(tqCountAllPelBlocksLess(image, &counts[1], threshold, width, height), 0);
    EXPECT_EQ(tqCountAllPelBlocksEllipse(image, &counts[2], threshold, width, height), 0);
    EXPECT_EQ(tqCountAllPelBlocksEllipseLess(image, &counts[3], threshold, width, height), 0);
    return counts;
}

TEST(BlockCount, EveryPositionOfEveryBlock) {
    std::vector<Image> images;
    std::uint32_t seed = 33;
    for (const auto& [cols, rows] : {std::pair{1, 1}, {9, 1}, {1, 8}, {17, 13}, {70, 54}}) {
        images.push_back(RandomImageWithHoles(cols, rows, seed++));
    }
    for (const Image& image : images) {
        for (const auto& [width, height] : kBlocks) {
            const double middle = BlockReference(image, image.Cols() / 2, image.Rows() / 2, width, height);
            for (const double threshold : {middle, 0.0, -1.0, 20000.5, 65535.0, 65536.0, HUGE_VAL, -HUGE_VAL,
                                           std::numeric_limits<double>::quiet_NaN()}) {
                ASSERT_EQ(CountsOf(image, threshold, width, height),
                          CountsReference(image, threshold, width, height))
                    << image.Cols() << " x " << image.Rows() << ", block " << width << " x " << height
                    << ", threshold " << threshold;
            }
        }
    }
}

TEST(PelBlock, AnInvalidImageGivesTheCodeOfItsFunction) {
    const Image invalid(1, 8001);
    for (const TqImage* image :
         {static_cast<const TqImage*>(nullptr), static_cast<const TqImage*>(invalid)}) {
        EXPECT_EQ(tqGetPelBlockAvg(image, 0, 0, 3, 3), -1.0);
        EXPECT_EQ(tqSumPelBlock(image, 0, 5, 5, 4, 4), -1.0);
        EXPECT_EQ(tqSumPelBlockCircle(image, 0, 5, 5, 4, 4), -1.0);
        std::uint32_t count = 7;
        EXPECT_EQ(tqCountAllPelBlocks(image, &count, 0, 3, 3), -2);
        EXPECT_EQ(tqCountAllPelBlocksLess(image, &count, 0, 3, 3), -2);
        EXPECT_EQ(tqCountAllPelBlocksEllipse(image, &count, 0, 3, 3), -2);
        EXPECT_EQ(tqCountAllPelBlocksEllipseLess(image, &count, 0, 3, 3), -2);
        EXPECT_EQ(count, 7u);
    }
}

}  // namespace
}  // namespace tqtest
