#include "tqimage/stitching.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "images.h"

namespace {

using namespace tqtest;

struct Window {
    int cols, rows;
};

int Odd(int asked, int pels) {
    const int size = asked < 2 ? 1 : std::min(asked, pels);
    return size % 2 == 0 ? size - 1 : size;
}

/// Calls visit(col, row) for every pel of the window, pushed inward at the border.
template <class Visit>
void VisitWindow(const Image& image, int col, int row, Window size, Visit&& visit) {
    const int left = std::min(std::max(0, col - size.cols / 2), image.Cols() - size.cols);
    const int top = std::min(std::max(0, row - size.rows / 2), image.Rows() - size.rows);
    for (int r = top; r < top + size.rows; ++r) {
        for (int c = left; c < left + size.cols; ++c)
            visit(c, r);
    }
}

Image Smoothed(const Image& image, const Image& labels, Window detect, Window average) {
    return MakeImage(image.Cols(), image.Rows(), [&](int col, int row) -> std::uint64_t {
        const std::uint16_t pel = image(col, row);
        const std::uint16_t label = labels(col, row);
        if (pel == 0 || label == 0) return pel;
        bool seam = false;
        VisitWindow(image, col, row, detect, [&](int c, int r) {
            seam = seam || (image(c, r) != 0 && labels(c, r) != 0 && labels(c, r) != label);
        });
        if (!seam) return pel;
        std::uint64_t sum = 0, count = 0;
        VisitWindow(image, col, row, average, [&](int c, int r) {
            sum += image(c, r);
            count += image(c, r) != 0 ? 1 : 0;
        });
        return count == 0 ? 0 : sum / count;
    });
}

/// Segments of a few labels, the largest included, with pels that belong to none.
Image Segments(int cols, int rows) {
    return MakeImage(cols, rows, [=](int col, int row) {
        if ((col * 7 + row * 3) % 11 == 0) return 0;
        return col * 3 / cols == 1 ? 65535 : 1 + (row * 2 / rows) + col / 40;
    });
}

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

TEST(SmoothStitch, AveragesTheDataAroundSeams) {
    for (const auto& [cols, rows] : {std::pair{41, 23}, {1, 30}, {30, 1}, {2, 2}}) {
        const Image before = RandomImageWithHoles(cols, rows, 9);
        const Image labels = Segments(cols, rows);
        for (const Window asked : {Window{3, 3}, {4, 7}, {15, 1}, {kMin, 5}, {kMax, kMax}, {2, 3}}) {
            SCOPED_TRACE(testing::Message()
                         << asked.cols << " x " << asked.rows << " on " << cols << " x " << rows);
            const Window size{Odd(asked.cols, cols), Odd(asked.rows, rows)};
            Image image = before;
            ASSERT_EQ(tqSmoothStitch(image.Address(), labels, asked.cols, asked.rows), 0);
            EXPECT_TRUE(SamePels(Smoothed(before, labels, size, size), image));
            EXPECT_TRUE(SameHeader(before.Header(), image.Header()));

            image = before;
            ASSERT_EQ(tqSmoothStitch2(image.Address(), labels, asked.cols, asked.rows, 6, 9), 0);
            EXPECT_TRUE(SamePels(Smoothed(before, labels, size, {Odd(6, cols), Odd(9, rows)}), image));
        }
    }
}

TEST(SmoothStitch, WithoutColumnsToAverageSeamsBecomeBlack) {
    const Image before = RandomImage(20, 6, 2, 1);
    const Image labels = Segments(20, 6);
    for (const std::int32_t none : {0, -1, kMin}) {
        Image image = before;
        ASSERT_EQ(tqSmoothStitch2(image.Address(), labels, 3, 3, none, 3), 0);
        EXPECT_TRUE(SamePels(Smoothed(before, labels, {3, 3}, {0, 3}), image));
    }
}

TEST(SmoothStitch, RefusesMissingImagesAndLabelsOfAnotherSize) {
    Image image = RandomImage(5, 4, 2);
    EXPECT_EQ(tqSmoothStitch(nullptr, image, 3, 3), -2);
    EXPECT_EQ(tqSmoothStitch(image.Address(), nullptr, 1, 1), -2);
    EXPECT_EQ(tqSmoothStitch(image.Address(), Image(4, 4), 1, 1), -2);
    EXPECT_EQ(tqSmoothStitch2(image.Address(), Image(5, 5), 3, 3, 3, 3), -2);
    EXPECT_TRUE(SamePels(RandomImage(5, 4, 2), image));
}

}  // namespace
