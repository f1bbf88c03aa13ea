#include "process_tests.h"
#include "tqimage/filters.h"

namespace {

using namespace tqtest;

struct Size {
    std::int32_t width, height;
};

constexpr Size kSizes[] = {{3, 3},  {2, 3},       {1, 2},  {4, 9},  {5, 1},      {1, 7},
                           {15, 4}, {1000, 1000}, {-8, 3}, {41, 3}, {kMax, kMin}};

Image Averaged(const Image& image, Size asked, bool lit, std::int32_t left, std::int32_t top,
               std::int32_t right, std::int32_t bottom) {
    const std::int32_t width = OddSize(asked.width, image.Cols());
    const std::int32_t height = OddSize(asked.height, image.Rows());
    return MakeImage(image.Cols(), image.Rows(), [&](std::int32_t col, std::int32_t row) -> std::uint32_t {
        const std::uint16_t pel = image(col, row);
        if (!Inside(col, row, left, top, right, bottom) || (lit && pel == 0)) return pel;
        const Total total = lit ? LitOf(ClippedPels(image, col, row, width, height))
                                : AllOf(ShiftedPels(image, col, row, width, height));
        const double mean = static_cast<double>(total.sum) / static_cast<double>(total.count) + 0.5;
        return static_cast<std::uint32_t>(mean);
    });
}

TEST(NeighborhoodAverage, IsTheMeanOfTheShiftedOrTheCutWindow) {
    for (const auto& [cols, rows] : {Size{41, 23}, {1, 9}, {9, 1}, {2, 2}, {300, 7}}) {
        for (const Size& size : kSizes) {
            SCOPED_TRACE(testing::Message()
                         << cols << " x " << rows << " by " << size.width << " x " << size.height);
            for (const bool lit : {false, true}) {
                Image image = RandomImageWithHoles(cols, rows, 3);
                const TqImageHeader header = image.Header();
                const Image expected = Averaged(image, size, lit, 0, 0, cols - 1, rows - 1);
                const auto average = lit ? tqNeighborhoodAverage0 : tqNeighborhoodAverage;
                ASSERT_EQ(average(image.Address(), size.width, size.height), 0);
                EXPECT_TRUE(SamePels(expected, image)) << (lit ? "lit" : "all");
                EXPECT_TRUE(SameHeader(header, image.Header()));
            }
        }
    }
}

// Above 32768 pels a window of white has a sum beyond 2^31, and a large one beyond 2^32.
TEST(NeighborhoodAverage, LargeWindowsOfWhiteStayWhite) {
    for (const std::int32_t size : {181, 183, 301}) {
        for (const auto average : {tqNeighborhoodAverage, tqNeighborhoodAverage0}) {
            Image image = MakeImage(
                307, 305, [](std::int32_t col, std::int32_t) { return col == 300 ? 65534 : 65535; });
            const Image expected =
                Averaged(image, {size, size}, average == tqNeighborhoodAverage0, 150, 150, 154, 150);
            ASSERT_EQ(average(image.Address(), size, size), 0);
            for (std::int32_t col = 150; col <= 154; ++col)
                EXPECT_EQ(image(col, 150), expected(col, 150)) << size;
        }
    }
}

TEST(NeighborhoodAverage, RectanglesReadAroundThemselvesAndWriteInside) {
    for (const Rectangle& c : kRectangles) {
        for (const bool lit : {false, true}) {
            SCOPED_TRACE(testing::Message()
                         << c.left << ", " << c.top << ", " << c.right << ", " << c.bottom);
            Image image = RandomImageWithHoles(61, 23, 8);
            const Image expected = Averaged(image, {7, 5}, lit, c.firstCol, c.firstRow, c.lastCol, c.lastRow);
            const auto average = lit ? tqNeighborhoodAverageInRegion0 : tqNeighborhoodAverageInRegion;
            ASSERT_EQ(average(image.Address(), 8, 6, c.left, c.top, c.right, c.bottom), 0);
            EXPECT_TRUE(SamePels(expected, image));
        }
    }
}

TEST(NeighborhoodAverage, AWindowOfOnePelKeepsTheBlock) {
    Image image = RandomImage(9, 1, 1);
    const TqImage* block = image.Get();
    EXPECT_EQ(tqNeighborhoodAverage(image.Address(), 1, 50), 0);
    EXPECT_EQ(tqNeighborhoodAverage0(image.Address(), 2, 1), 0);
    EXPECT_EQ(tqNeighborhoodAverageInRegion(image.Address(), -1, 0, 0, 0, 0, 0), 0);
    EXPECT_EQ(image.Get(), block);
}

Image Smoothed(const Image& image, bool lit) {
    return MakeImage(image.Cols(), image.Rows(), [&](std::int32_t col, std::int32_t row) -> std::uint64_t {
        if (lit && image(col, row) == 0) return 0;
        const auto pels = ClippedPels(image, col, row, 3, 3);
        const Total total = lit ? LitOf(pels) : AllOf(pels);
        return total.sum / total.count;
    });
}

TEST(SmoothImage, EachPassIsTheTruncatedMeanOfTheCutWindow) {
    for (const auto& [cols, rows] : {Size{67, 13}, {1, 1}, {1, 5}, {5, 1}, {2, 3}, {1100, 3}}) {
        for (const bool lit : {false, true}) {
            Image image = RandomImageWithHoles(cols, rows, 4);
            const Image expected = Smoothed(Smoothed(Smoothed(image, lit), lit), lit);
            ASSERT_EQ((lit ? tqSmoothImage0 : tqSmoothImage)(image.Address(), 3), 0);
            EXPECT_TRUE(SamePels(expected, image)) << cols << " x " << rows << (lit ? " lit" : " all");
        }
    }
}

TEST(SmoothImage, WithoutPassesNothingHappensAndEndlessOnesEnd) {
    Image image = RandomImage(12, 9, 1);
    const Image before = image;
    for (const std::int32_t passes : {0, -1, kMin}) {
        EXPECT_EQ(tqSmoothImage(image.Address(), passes), 0);
        EXPECT_EQ(tqSmoothImage0(nullptr, passes), 0);
    }
    EXPECT_TRUE(SamePels(before, image));
    EXPECT_EQ(tqSmoothImage(image.Address(), kMax), 0);
    const Image settled = image;
    EXPECT_EQ(tqSmoothImage(image.Address(), 1), 0);
    EXPECT_TRUE(SamePels(settled, image));
}

}  // namespace
