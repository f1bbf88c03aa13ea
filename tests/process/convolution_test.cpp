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
    for (const float strength : {1.0f, -7.0f, 3.7f, 40000.0f, 1e30f, kNan}) {
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

TEST(Convolutions, RefuseImagesThatAreSmallerThanTheKernel) {
    for (const auto& [cols, rows] : {std::pair{2, 9}, {9, 2}}) {
        EXPECT_EQ(tqSharpenImage(Image(cols, rows).Address(), 2.0f), -4);
        EXPECT_EQ(tqSharpenImageInRegion(Image(cols, rows).Address(), 2.0f, 0, 0, 0, 0), -4);
    }
    EXPECT_EQ(tqLowPassFilter(Image(4, 50).Address()), -4);
    EXPECT_EQ(tqLowPassFilter(Image(50, 4).Address()), -4);
}

TEST(FillInHole, DrawsALineBetweenTheMeansOnBothSides) {
    // The five columns on each side have means of 100 and 160.
    const Image before = MakeImage(20, 3, [](auto col, auto) {
        return col < 2 || col > 15 ? 7777 : col < 9 ? 100 : 160;
    });
    Image image = before;
    ASSERT_EQ(tqFillInHole(image, 7, 0, 10, 0), 0);
    Image expected = before;
    for (const std::int32_t i : {0, 1, 2, 3})
        expected(7 + i, 0) = static_cast<std::uint16_t>(112 + 12 * i);
    EXPECT_TRUE(SamePels(expected, image));
    // At the left border there is no block on the left: the rule of rectangles makes it whole rows.
    image = MakeImage(20, 3, [](auto col, auto) { return col >= 4 && col <= 8 ? 1600 : 0; });
    ASSERT_EQ(tqFillInHole(image, 0, 0, 3, 0), 0);
    EXPECT_EQ(std::vector(image.Pels(), image.Pels() + 5),
              (std::vector<std::uint16_t>{640, 880, 1120, 1360, 1600}));
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
