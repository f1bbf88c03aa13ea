#include "process_tests.h"
#include "tqimage/filters.h"

namespace {

using namespace tqtest;

Image Medians(const Image& image, std::int32_t width, std::int32_t height, std::int32_t left,
              std::int32_t top, std::int32_t right, std::int32_t bottom) {
    return MakeImage(image.Cols(), image.Rows(), [&](std::int32_t col, std::int32_t row) {
        if (col < left || col > right || row < top || row > bottom) return image(col, row);
        auto pels = ShiftedPels(image, col, row, width, height);
        std::nth_element(pels.begin(), pels.begin() + static_cast<std::ptrdiff_t>(pels.size() / 2),
                         pels.end());
        return pels[pels.size() / 2];
    });
}

/// Noise, few levels, runs of equal pels and the ends of the range: each defeats another shortcut.
std::vector<Image> Patterns(std::int32_t cols, std::int32_t rows) {
    return {
        RandomImage(cols, rows, 21), RandomImage(cols, rows, 22, 7, 9),
        MakeImage(cols, rows,
                  [](auto col, auto row) { return (col * 7 + row * 13 + col * row) % 3 == 0 ? 65535 : 0; }),
        MakeImage(cols, rows, [](auto col, auto row) { return 65535 - 97 * col - 1031 * row; })};
}

TEST(MedianFilter, IsTheMiddleOfTheShiftedSquare) {
    for (const auto& [cols, rows] : {std::pair{83, 27}, {1, 1}, {1, 40}, {2, 2}, {3, 3}, {4, 6}}) {
        for (const std::int32_t asked : {-3, 1, 2, 3, 4, 5, 7, 9, 15, 26, 27, kMax}) {
            for (Image& image : Patterns(cols, rows)) {
                const std::int32_t size = OddSize(asked, std::min(cols, rows));
                const TqImageHeader header = image.Header();
                const Image expected = Medians(image, size, size, 0, 0, cols - 1, rows - 1);
                const TqImage* block = image.Get();
                ASSERT_EQ(tqMedianFilter(image.Address(), asked), 0);
                EXPECT_TRUE(SamePels(expected, image)) << cols << " x " << rows << " by " << asked;
                EXPECT_TRUE(SameHeader(header, image.Header()));
                EXPECT_NE(image.Get(), block) << "even a window of one pel gives a new block";
            }
        }
    }
}

TEST(MedianFilter, RectanglesHaveWindowsOfTheirOwnWidthAndHeight) {
    struct Case {
        std::int32_t width, height, left, top, right, bottom;
    };
    for (const Case& c : {Case{3, 9, 2, 5, 60, 6},
                          {31, 1, 30, 0, 50, 26},
                          {5, 3, 82, 26, 82, 26},
                          {23, 27, 3, 3, 79, 20},
                          {9, 7, 60, 3, 50, 9}}) {
        for (Image& image : Patterns(83, 27)) {
            const Image expected = Medians(image, c.width, c.height, c.left, c.top, c.right, c.bottom);
            ASSERT_EQ(tqMedianFilterInRegion(image.Address(), c.width + (c.width > 3 ? 0 : 1), c.height,
                                             c.left, c.top, c.right, c.bottom),
                      0);
            EXPECT_TRUE(SamePels(expected, image)) << c.width << " x " << c.height;
        }
    }
}

// Larger than the pieces in which large windows are worked on, with a window larger still.
TEST(MedianFilter, LargeWindowsOfLargerImages) {
    for (const auto& [width, height] : {std::pair{11, 11}, {151, 41}, {7, 139}, {201, 1}}) {
        Image image = RandomImage(203, 141, 6, 0, 30000);
        const Image before = image;
        ASSERT_EQ(tqMedianFilterInRegion(image.Address(), width, height, 0, 0, 0, 0), 0);
        for (std::int32_t row = 0; row < 141; row += 5) {
            for (std::int32_t col = row % 7; col < 203; col += 7) {
                auto pels = ShiftedPels(before, col, row, width, height);
                std::sort(pels.begin(), pels.end());
                ASSERT_EQ(image(col, row), pels[pels.size() / 2]) << width << ": " << col << ", " << row;
            }
        }
    }
}

}  // namespace
