#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "images.h"
#include "tqimage/filters.h"
#include "windows.h"

namespace {

using namespace tqtest;

/// The packed results of a kernel, each product truncated before the sum.
std::vector<std::int64_t> Convolve(const Image& image, const std::vector<float>& kernel, std::int32_t size) {
    std::vector<std::int64_t> results;
    for (std::int32_t row = 0; row + size <= image.Rows(); ++row) {
        for (std::int32_t col = 0; col + size <= image.Cols(); ++col) {
            std::int64_t sum = 0;
            for (std::int32_t i = 0; i < size * size; ++i) {
                const float product = static_cast<float>(image(col + i % size, row + i / size)) *
                                      kernel[static_cast<std::size_t>(i)];
                sum += product >= -2147483648.0f && product < 2147483648.0f
                           ? static_cast<std::int64_t>(product)
                           : std::numeric_limits<std::int32_t>::min();
            }
            results.push_back(sum);
        }
    }
    return results;
}

Image Sharpened(const Image& image, float strength) {
    strength = strength < 1.0f ? 1.0f : strength;
    std::vector<float> kernel(9, -1.0f / 9.0f);
    kernel[4] = (9.0f * strength - 1.0f) / 9.0f;
    const auto packed = Convolve(image, kernel, 3);
    Image expected = image;
    std::size_t i = 0;
    for (std::int32_t row = 1; row < image.Rows() - 1; ++row) {
        for (std::int32_t col = 1; col < image.Cols() - 1; ++col, ++i) {
            const std::int64_t floor = image.Pels()[i] != 0 ? 1 : 0;
            expected(col, row) =
                static_cast<std::uint16_t>(packed[i] < 1 ? floor : std::min<std::int64_t>(packed[i], 65535));
        }
    }
    return expected;
}

TEST(SharpenImage, TruncatesProductsAndPairsResultsByRunningIndex) {
    for (const float strength :
         {1.0f, -7.0f, 1.1f, 2.0f, 3.7f, 40000.0f, 1e30f, std::numeric_limits<float>::quiet_NaN()}) {
        for (const auto& [cols, rows] : {std::pair{45, 21}, {3, 3}, {3, 9}, {70, 3}}) {
            Image image = RandomImageWithHoles(cols, rows, 17, 3);
            image.Header().MaxPelValue = 1.0f;
            const Image expected = Sharpened(image, strength);
            const auto pels = expected.Values();
            ASSERT_EQ(tqSharpenImage(image.Address(), strength), 0);
            ASSERT_TRUE(SamePels(expected, image)) << strength << ": " << cols << " x " << rows;
            EXPECT_EQ(image.Header().MaxPelValue, *std::max_element(pels.begin(), pels.end()));
            EXPECT_EQ(image.Header().TotalPelValue, static_cast<double>(AllOf(pels).sum));
        }
    }
}

TEST(SharpenImage, ARectangleGetsThePelsOfTheWhole) {
    struct Case {
        std::int32_t left, top, right, bottom;
        std::int32_t seenLeft, seenTop, seenRight, seenBottom;
    };
    for (const Case& c : {Case{4, 5, 30, 9, 4, 5, 30, 9},
                          {0, 0, 0, 0, 0, 0, 44, 20},
                          {-9, 3, INT_MAX, 3, 0, 3, 44, 3},
                          {9, 9, 5, 5, 1, 1, 0, 0}}) {
        Image image = RandomImageWithHoles(45, 21, 18);
        const Image whole = Sharpened(image, 2.5f);
        const Image expected = MakeImage(45, 21, [&](std::int32_t col, std::int32_t row) {
            const bool inside = Inside(col, row, c.seenLeft, c.seenTop, c.seenRight, c.seenBottom);
            return inside ? whole(col, row) : image(col, row);
        });
        ASSERT_EQ(tqSharpenImageInRegion(image.Address(), 2.5f, c.left, c.top, c.right, c.bottom), 0);
        EXPECT_TRUE(SamePels(expected, image)) << c.left;
    }
}

TEST(LowPassFilter, LaysThePackedResultsOutFromTheFirstPel) {
    const std::vector<float> kernel{1, 1, 1, 1, 1, 1, 4, 4, 4, 1, 1, 4, 12,
                                    4, 1, 1, 4, 4, 4, 1, 1, 1, 1, 1, 1};
    for (const float largest : {65535.0f, 1000.0f, 0.0f, -5.0f, 1e9f}) {
        for (const auto& [cols, rows] : {std::pair{29, 13}, {5, 6}, {6, 5}, {120, 7}}) {
            Image image = RandomImage(cols, rows, 19, 100);
            image.Header().MaxPelValue = largest;
            const TqImageHeader header = image.Header();
            const auto packed = Convolve(image, kernel, 5);
            const auto [low, high] = std::minmax_element(packed.begin(), packed.end());
            Image expected(cols, rows);
            for (std::size_t i = 0; i < packed.size(); ++i) {
                const double value = double{largest} / static_cast<double>(*high - *low) *
                                     static_cast<double>(packed[i] - *low);
                expected.Pels()[i] = static_cast<std::uint16_t>(
                    value < 2147483648.0 ? std::clamp(static_cast<std::int32_t>(value), 0, 65535) : 0);
            }
            ASSERT_EQ(tqLowPassFilter(image.Address()), 0);
            EXPECT_TRUE(SamePels(expected, image)) << largest << ": " << cols << " x " << rows;
            EXPECT_TRUE(SameHeader(header, image.Header()));
        }
    }
}

TEST(LowPassFilter, AFlatImageGivesZeros) {
    for (const auto& [cols, rows] : {std::pair{9, 9}, {5, 5}}) {
        Image image = MakeImage(cols, rows, [](std::int32_t, std::int32_t) { return 65535; });
        ASSERT_EQ(tqLowPassFilter(image.Address()), 0);
        EXPECT_TRUE(SamePels(Image(cols, rows), image));
    }
}

TEST(Convolutions, KeepImagesThatAreSmallerThanTheKernel) {
    for (const auto& [cols, rows] : {std::pair{2, 9}, {9, 2}, {1, 1}}) {
        Image image = RandomImage(cols, rows, 2);
        const Image before = image;
        EXPECT_EQ(tqSharpenImage(image.Address(), 2.0f), -4);
        EXPECT_EQ(tqSharpenImageInRegion(image.Address(), 2.0f, 0, 0, 0, 0), -4);
        EXPECT_EQ(tqLowPassFilter(image.Address()), -4);
        EXPECT_TRUE(SamePels(before, image));
    }
    Image narrow(4, 50), flat(50, 4);
    EXPECT_EQ(tqLowPassFilter(narrow.Address()), -4);
    EXPECT_EQ(tqLowPassFilter(flat.Address()), -4);
}

TEST(FillInHole, DrawsALineBetweenTheMeansOnBothSides) {
    Image image = MakeImage(20, 9, [](std::int32_t col, std::int32_t) { return col < 8 ? 100 : 200; });
    for (std::int32_t row = 3; row <= 5; ++row)
        for (std::int32_t col = 8; col <= 10; ++col)
            image(col, row) = 9;
    Image expected = image;
    ASSERT_EQ(tqFillInHole(image, 8, 3, 10, 5), 0);
    for (std::int32_t row = 3; row <= 5; ++row)
        for (std::int32_t i = 0; i < 3; ++i)
            expected(8 + i, row) = static_cast<std::uint16_t>(125 + 25 * i);
    EXPECT_TRUE(SamePels(expected, image));
}

// A hole at the left border has no block on its left: the rule of rectangles makes it whole rows.
TEST(FillInHole, AtTheLeftBorderWholeRowsStandOnTheLeft) {
    Image image = RandomImage(16, 5, 4, 1000, 2000);
    const Image before = image;
    ASSERT_EQ(tqFillInHole(image, 0, 0, 3, 0), 0);
    const auto a = AllOf(WindowPels(before, {0, 15}, {0, 2}));
    const auto b = AllOf(WindowPels(before, {4, 8}, {0, 2}));
    const double from = static_cast<double>(a.sum) / static_cast<double>(a.count);
    const double to = static_cast<double>(b.sum) / static_cast<double>(b.count);
    for (std::int32_t i = 0; i < 4; ++i)
        EXPECT_EQ(image(i, 0), static_cast<int>((i + 1) * (to - from) / 5 + from));
    EXPECT_EQ(image(4, 0), before(4, 0));
    EXPECT_EQ(image(0, 1), before(0, 1));
}

TEST(FillInHole, WritesOnlyInsideTheImage) {
    Image image = RandomImage(12, 6, 3);
    const Image before = image;
    EXPECT_EQ(tqFillInHole(image, 3, 5, 6, 4), 0);
    EXPECT_EQ(tqFillInHole(image, 6, 1, 3, 4), 0);
    EXPECT_EQ(tqFillInHole(image, 12, 0, INT_MAX, 5), 0);
    EXPECT_EQ(tqFillInHole(image, INT_MIN, INT_MIN, -1, INT_MAX), 0);
    EXPECT_EQ(tqFillInHole(image, INT_MAX, 0, INT_MIN, 3), 0);
    EXPECT_TRUE(SamePels(before, image));
    EXPECT_EQ(tqFillInHole(image, INT_MIN, INT_MIN, INT_MAX, INT_MAX), 0);
    Image tooTall(DefaultHeader(1, 8001));
    EXPECT_EQ(tqFillInHole(nullptr, 0, 0, 1, 1), -2);
    EXPECT_EQ(tqFillInHole(tooTall, 0, 0, 1, 1), -2);
}

}  // namespace
