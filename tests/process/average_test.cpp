#include "process_tests.h"
#include "tqimage/filters.h"

namespace {

using namespace tqtest;

struct Size {
    std::int32_t width, height;
};

constexpr Size kSizes[] = {{3, 3}, {2, 3}, {4, 9}, {5, 1}, {15, 4}, {-8, 3}, {41, 3}, {kMax, kMin}};

std::uint32_t MeanAt(const Image& image, Size asked, bool lit, std::int32_t col, std::int32_t row) {
    const std::int32_t width = OddSize(asked.width, image.Cols()),
                       height = OddSize(asked.height, image.Rows());
    const Total total = lit ? LitOf(ClippedPels(image, col, row, width, height))
                            : AllOf(ShiftedPels(image, col, row, width, height));
    if (lit && image(col, row) == 0) return 0;
    return static_cast<std::uint32_t>(static_cast<double>(total.sum) / static_cast<double>(total.count) +
                                      0.5);
}

TEST(NeighborhoodAverage, IsTheMeanOfTheShiftedOrTheCutWindow) {
    for (const auto& [cols, rows] : {Size{41, 23}, {1, 9}, {9, 1}, {2, 2}, {300, 7}}) {
        for (const Size& size : kSizes) {
            SCOPED_TRACE(testing::Message()
                         << cols << " x " << rows << " by " << size.width << " x " << size.height);
            for (const bool lit : {false, true}) {
                Image image = RandomImageWithHoles(cols, rows, 3);
                const TqImageHeader header = image.Header();
                const Image expected = MakeImage(
                    cols, rows, [&](auto col, auto row) { return MeanAt(image, size, lit, col, row); });
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
            Image image = MakeImage(307, 305, [](auto col, auto) { return col == 300 ? 65534 : 65535; });
            const Image before = image;
            ASSERT_EQ(average(image.Address(), size, size), 0);
            for (std::int32_t col = 150; col <= 154; ++col)
                EXPECT_EQ(image(col, 150),
                          MeanAt(before, {size, size}, average == tqNeighborhoodAverage0, col, 150));
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
    for (const auto& [cols, rows] : {Size{67, 13}, {1, 1}, {1, 5}, {2, 3}, {1100, 3}}) {
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
