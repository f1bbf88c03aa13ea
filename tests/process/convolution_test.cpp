#include "process_tests.h"
#include "tqimage/filters.h"

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
            ASSERT_EQ(tqSharpenImage(image.Address(), strength), 0);
            ASSERT_TRUE(SamePels(expected, image)) << strength << ": " << cols << " x " << rows;
            EXPECT_EQ(image.Header().MaxPelValue, LargestOf(expected));
            EXPECT_EQ(image.Header().TotalPelValue, SumOf(expected));
        }
    }
}

TEST(SharpenImage, ARectangleGetsThePelsOfTheWhole) {
    for (const Rectangle& c : kRectangles) {
        Image image = RandomImageWithHoles(61, 23, 18);
        const Image whole = Sharpened(image, 2.5f);
        const Image expected = Within(image, c, whole);
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
    Image flat = MakeImage(9, 9, [](std::int32_t, std::int32_t) { return 65535; });
    ASSERT_EQ(tqLowPassFilter(flat.Address()), 0);
    EXPECT_TRUE(SamePels(Image(9, 9), flat));
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
    EXPECT_EQ(tqLowPassFilter(Image(4, 50).Address()), -4);
    EXPECT_EQ(tqLowPassFilter(Image(50, 4).Address()), -4);
}

// A hole at the left border has no block on its left: the rule of rectangles makes it whole rows.
TEST(FillInHole, DrawsALineBetweenTheMeansOnBothSides) {
    for (const auto& [left, block] : {std::pair{7, Span{2, 6}}, {0, Span{0, 19}}}) {
        const Image before = RandomImage(20, 5, 4, 1000, 2000);
        Image image = before;
        ASSERT_EQ(tqFillInHole(image, left, 0, left + 3, 0), 0);
        const auto a = AllOf(WindowPels(before, block, {0, 2}));
        const auto b = AllOf(WindowPels(before, {left + 4, left + 8}, {0, 2}));
        const double from = static_cast<double>(a.sum) / static_cast<double>(a.count);
        const double to = static_cast<double>(b.sum) / static_cast<double>(b.count);
        Image expected = before;
        for (std::int32_t i = 0; i < 4; ++i)
            expected(left + i, 0) = static_cast<std::uint16_t>((i + 1) * (to - from) / 5 + from);
        EXPECT_TRUE(SamePels(expected, image)) << left;
    }
}

TEST(FillInHole, WritesOnlyInsideTheImage) {
    Image image = RandomImage(12, 6, 3);
    const Image before = image;
    EXPECT_EQ(tqFillInHole(image, 3, 5, 6, 4), 0);
    EXPECT_EQ(tqFillInHole(image, kMin, kMin, -1, kMax), 0);
    EXPECT_EQ(tqFillInHole(image, kMax, 0, kMin, 3), 0);
    EXPECT_TRUE(SamePels(before, image));
    EXPECT_EQ(tqFillInHole(image, kMin, kMin, kMax, kMax), 0);
}

}  // namespace
