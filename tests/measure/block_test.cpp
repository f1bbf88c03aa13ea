#include <array>
#include <cmath>
#include <limits>

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

TEST(BlockSum, RectanglesAndTheCirclesInThem) {
    const Image image = MakeImage(6, 4, [](auto col, auto row) { return col + 10 * row; });
    struct Case {
        std::int32_t threshold, left, top, right, bottom;
        double rectangle, circle;
    };
    for (const Case& c : {Case{0, 1, 0, 4, 3, 280, 280 - 1 - 4 - 31 - 34},  // without the corners
                          {13, 1, 1, 3, 2, 13 + 21 + 22 + 23, 13 + 21 + 22 + 23},
                          {65536 + 13, 1, 1, 3, 2, 13 + 21 + 22 + 23, 13 + 21 + 22 + 23},
                          {-1, 0, 0, 5, 3, 0, 0},
                          {0, -1, 0, 2, 3, 192, 192 - 2 - 32},  // cut after the circle is drawn
                          {0, kLowest, kLowest, kHighest, kHighest, 420, 420},
                          {0, 6, 0, 9, 3, -2, -2},
                          {0, 4, 0, 3, 3, -2, -2},
                          {0, 0, -9, 3, -1, -2, -2}}) {
        SCOPED_TRACE(testing::Message() << c.threshold << ": " << c.left << ", " << c.top);
        EXPECT_EQ(tqSumPelBlock(image, c.threshold, c.left, c.top, c.right, c.bottom), c.rectangle);
        EXPECT_EQ(tqSumPelBlockCircle(image, c.threshold, c.left, c.top, c.right, c.bottom), c.circle);
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
    const Image images[] = {RandomImageWithHoles(1, 1, 33), RandomImageWithHoles(1, 8, 34),
                            RandomImageWithHoles(17, 13, 35), RandomImageWithHoles(70, 54, 36)};
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

}  // namespace
}  // namespace tqtest
