#include "process_tests.h"
#include "tqimage/filters.h"
#include "tqimage/point_operations.h"
#include "tqimage/thresholds.h"

namespace {

using namespace tqtest;

/// A rectangle as hosts ask for it, and the pels of a 61 x 23 image that it is.
struct Rectangle {
    std::int32_t left, top, right, bottom;
    std::int32_t firstCol, firstRow, lastCol, lastRow;

    bool Holds(std::int32_t col, std::int32_t row) const {
        return col >= firstCol && col <= lastCol && row >= firstRow && row <= lastRow;
    }
};

constexpr Rectangle kRectangles[] = {{0, 0, 0, 0, 0, 0, 60, 22},       {5, 3, 31, 9, 5, 3, 31, 9},
                                     {kMin, -1, kMax, 4, 0, 0, 60, 4}, {20, 0, 10, 0, 1, 1, 0, 0},
                                     {0, 21, 0, 20, 1, 1, 0, 0},       {-9, -9, -3, -3, 0, 0, 60, 22},
                                     {60, 22, 90, 90, 60, 22, 60, 22}};

/// The source with the pels of another image in the rectangle.
Image Within(const Image& source, const Rectangle& rectangle, const Image& inside) {
    return MakeImage(source.Cols(), source.Rows(), [&](auto col, auto row) {
        return rectangle.Holds(col, row) ? inside(col, row) : source(col, row);
    });
}

/// A function of the whole image and its like for a rectangle, given as left, top, right and bottom.
struct Pair {
    const char* what;
    std::int32_t (*whole)(TqImage** image);
    std::int32_t (*inRegion)(TqImage** image, const Rectangle& r);
    bool keepsTheRest = true;
};

std::vector<std::uint16_t> SomeTable() {
    std::vector<std::uint16_t> table(65536);
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<std::uint16_t>(i * 40503U + 77U);
    return table;
}

constexpr Pair kPairs[] = {
    {"table", [](TqImage** i) { return tqCorrectLinearity(*i, SomeTable().data()); },
     [](TqImage** i, const Rectangle& r) {
         return tqApplyLUTInRegion(*i, SomeTable().data(), r.left, r.top, r.right, r.bottom);
     }},
    {"brightness", [](TqImage** i) { return tqBrightnessCorrectionInRegion(i, 3, 0, 0, 0, 0); },
     [](TqImage** i, const Rectangle& r) {
         return tqBrightnessCorrectionInRegion(i, 3, r.left, r.top, r.right, r.bottom);
     },
     false},
    {"threshold", [](TqImage** i) { return tqThresholdImage(i, 30000, 0); },
     [](TqImage** i, const Rectangle& r) {
         return tqThresholdImageInRegion(i, 30000, 0, r.left, r.top, r.right, r.bottom);
     }},
    {"band", [](TqImage** i) { return tqThresholdImage2(i, 20000, 40000); },
     [](TqImage** i, const Rectangle& r) {
         return tqThresholdImage2InRegion(i, 20000, 40000, r.left, r.top, r.right, r.bottom);
     }},
    {"average", [](TqImage** i) { return tqNeighborhoodAverage(i, 8, 6); },
     [](TqImage** i, const Rectangle& r) {
         return tqNeighborhoodAverageInRegion(i, 8, 6, r.left, r.top, r.right, r.bottom);
     }},
    {"average of data", [](TqImage** i) { return tqNeighborhoodAverage0(i, 8, 6); },
     [](TqImage** i, const Rectangle& r) {
         return tqNeighborhoodAverageInRegion0(i, 8, 6, r.left, r.top, r.right, r.bottom);
     }},
    {"median", [](TqImage** i) { return tqMedianFilter(i, 9); },
     [](TqImage** i, const Rectangle& r) {
         return tqMedianFilterInRegion(i, 9, 9, r.left, r.top, r.right, r.bottom);
     }},
    {"sharpen", [](TqImage** i) { return tqSharpenImage(i, 2.5f); },
     [](TqImage** i, const Rectangle& r) {
         return tqSharpenImageInRegion(i, 2.5f, r.left, r.top, r.right, r.bottom);
     }},
};

TEST(Regions, HoldWhatTheWholeImageWould) {
    const Image source = RandomImageWithHoles(61, 23, 8);
    for (const Pair& pair : kPairs) {
        Image whole = source;
        ASSERT_EQ(pair.whole(whole.Address()), 0);
        for (const Rectangle& r : kRectangles) {
            SCOPED_TRACE(testing::Message() << pair.what << ": " << r.left << ", " << r.top << ", " << r.right
                                            << ", " << r.bottom);
            Image image = source;
            ASSERT_EQ(pair.inRegion(image.Address(), r), 0);
            EXPECT_TRUE(SamePels(Within(pair.keepsTheRest ? source : Image(61, 23), r, whole), image));
        }
    }
}

TEST(Regions, ContrastIsAboutTheMeanOfTheRectangle) {
    Image image = MakeImage(4, 2, {10, 20, 500, 500, 30, 40, 500, 500});
    ASSERT_EQ(tqContrastCorrectionInRegion(image.Address(), 3.0f, 0, 0, 1, 1), 0);
    EXPECT_TRUE(SamePels(MakeImage(4, 2, {65516, 10, 0, 0, 40, 70, 0, 0}), image))
        << "the mean is 25; -20 wraps";
    ASSERT_EQ(tqContrastCorrectionInRegion(image.Address(), 2.0f, 2, 0, 1, 0), 0);
    EXPECT_TRUE(SamePels(Image(4, 2), image));
}

TEST(Regions, TheHeaderSaysWhatTheRectangleHolds) {
    const Image source = MakeImage(4, 1, {60000, 3, 5, 60000});
    Image image = source;
    ASSERT_EQ(tqThresholdImage2InRegion(image.Address(), 4, 0, 1, 0, 2, 0), 0);
    EXPECT_EQ(image.Header().MaxPelValue, 5.0f) << "of the rectangle alone";
    image = source;
    ASSERT_EQ(tqBrightnessCorrectionInRegion(image.Address(), 3, 1, 0, 2, 0), 0);
    EXPECT_EQ(image.Header().MaxPelValue, 8.0f);
    image = source;
    ASSERT_EQ(tqThresholdImageInRegion(image.Address(), 4, 0, 1, 0, 2, 0), 0);
    EXPECT_TRUE(SameHeader(source.Header(), image.Header()));
}

}  // namespace
