#include "tqimage/point_operations.h"
#include "process_tests.h"

namespace {

using namespace tqtest;

std::vector<std::uint16_t> SomeTable() {
    std::vector<std::uint16_t> table(65536);
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<std::uint16_t>(i * 40503U + 77U);
    return table;
}

TEST(PointOperations, ConstantsStopAtTheEndsOfTheRange) {
    for (const std::int32_t value : {0, 1, -1, 300, -300, 65535, -65535, 65536, kMax, kMin}) {
        SCOPED_TRACE(value);
        const Image source = Noise(3);
        Image added = source;
        ASSERT_EQ(tqAddConstant(added, value), 0);
        EXPECT_TRUE(SamePels(
            MapImage(source,
                     [&](int pel) { return std::clamp<std::int64_t>(std::int64_t{pel} + value, 0, 65535); }),
            added));
        EXPECT_TRUE(SameHeader(source.Header(), added.Header()));

        Image subtracted = source;
        ASSERT_EQ(tqSubtractValue(subtracted.Address(), value), 0);
        const int amount = std::clamp(value, 0, 65535);
        EXPECT_TRUE(
            SamePels(MapImage(source, [&](int pel) { return std::max(0, pel - amount); }), subtracted));
        EXPECT_TRUE(SameHeader(source.Header(), subtracted.Header()));
    }
    EXPECT_EQ(tqAddConstant(nullptr, 0), 0);
    EXPECT_EQ(tqAddConstant(nullptr, 1), -1);
}

TEST(PointOperations, DarkPelsAreReplacedOrRemovedUpToTheThreshold) {
    const Image source = MakeImage(5, 1, {0, 1, 99, 100, 101});
    struct Case {
        std::int32_t threshold, value;
        std::vector<int> replaced;
        std::int32_t count;
        std::vector<int> kept;
    };
    for (const Case& c : {Case{99, 7, {0, 7, 7, 100, 101}, 2, {0, 0, 0, 100, 101}},
                          Case{100, 70000, {0, 65535, 65535, 65535, 101}, 1, {0, 0, 0, 0, 101}},
                          Case{kMax, -3, {0, 0, 0, 0, 0}, 0, {0, 0, 0, 0, 0}},
                          Case{0, 7, {0, 1, 99, 100, 101}, 4, {0, 1, 99, 100, 101}},
                          // Even a 0 is greater than a negative threshold.
                          Case{-1, 7, {0, 1, 99, 100, 101}, 5, {0, 1, 99, 100, 101}}}) {
        SCOPED_TRACE(c.threshold);
        Image image = source;
        ASSERT_EQ(tqReplaceDarkPels0(image, c.threshold, c.value), 0);
        EXPECT_TRUE(SamePels(MakeImage(5, 1, c.replaced), image));
        image = source;
        std::int32_t count = -5;
        ASSERT_EQ(tqRemoveDarkPels(image, &count, c.threshold), 0);
        EXPECT_EQ(count, c.count);
        EXPECT_TRUE(SamePels(MakeImage(5, 1, c.kept), image));
    }
}

TEST(PointOperations, TablesActInsideTheRectangle) {
    const auto table = SomeTable();
    const Image source = Noise(4);
    Image whole = source;
    ASSERT_EQ(tqCorrectLinearity(whole, table.data()), 0);
    EXPECT_TRUE(
        SamePels(MapImage(source, [&](int pel) { return table[static_cast<std::size_t>(pel)]; }), whole));
    for (const Rectangle& c : kRectangles) {
        SCOPED_TRACE(testing::Message() << c.left << ", " << c.top << ", " << c.right << ", " << c.bottom);
        Image image = source;
        ASSERT_EQ(tqApplyLUTInRegion(image, table.data(), c.left, c.top, c.right, c.bottom), 0);
        const Image expected =
            Within(source, c, [&](std::int32_t col, std::int32_t row) { return table[source(col, row)]; });
        EXPECT_TRUE(SamePels(expected, image));
        EXPECT_TRUE(SameHeader(source.Header(), image.Header()));

        // The corrections share the rectangle; what lies outside it is not carried over.
        Image brighter = source;
        ASSERT_EQ(tqBrightnessCorrectionInRegion(brighter.Address(), 3, c.left, c.top, c.right, c.bottom), 0);
        const Image wrapped = Within(
            Image(61, 23), c, [&](std::int32_t col, std::int32_t row) { return source(col, row) + 3; });
        EXPECT_TRUE(SamePels(wrapped, brighter));
        EXPECT_TRUE(SameHeader(With(source.Header(), &TqImageHeader::MaxPelValue, LargestOf(wrapped)),
                               brighter.Header()));
    }
}

TEST(PointOperations, ContrastStretchesAboutTheMeanOfTheRectangle) {
    for (const float factor : {1.0f, 1.7f, -2.5f, 0.0f, 40000.0f, 1e9f, kNan}) {
        SCOPED_TRACE(factor);
        const Image source = Noise(6);
        const double mean = static_cast<double>(AllOf(WindowPels(source, {3, 52}, {2, 8})).sum) / (7 * 50);
        Image image = source;
        ASSERT_EQ(tqContrastCorrectionInRegion(image.Address(), factor, 3, 2, 52, 8), 0);
        const Image expected = MakeImage(61, 23, [&](std::int32_t col, std::int32_t row) {
            if (!Inside(col, row, 3, 2, 52, 8)) return std::int64_t{0};
            return Truncated((source(col, row) - mean) * double{factor} + mean) & 0xFFFF;
        });
        EXPECT_TRUE(SamePels(expected, image));
        EXPECT_EQ(image.Header().MaxPelValue, LargestOf(expected));
    }
    Image image = Noise(6);
    ASSERT_EQ(tqContrastCorrectionInRegion(image.Address(), 2.0f, 9, 0, 8, 0), 0);
    EXPECT_TRUE(SamePels(Image(61, 23), image));
    EXPECT_EQ(image.Header().MaxPelValue, 0.0f);
}

TEST(PointOperations, InvertingReversesTheRangeThatIsThere) {
    Image image = MakeImage(5, 1, {10, 11, 500, 60000, 20});
    ASSERT_EQ(tqInvertImage(image), 0);
    EXPECT_TRUE(SamePels(MakeImage(5, 1, {60000, 59999, 59510, 10, 59990}), image));
    EXPECT_EQ(image.Header().MaxPelValue, 60000.0f);
    EXPECT_EQ(tqInvertImage(nullptr), -2);
    EXPECT_EQ(tqInvertImage(Image(0, 4)), -9);
}

TEST(PointOperations, ScalingStopsAbove65535AndWrapsBelowZero) {
    for (const float factor : {0.3f, 1.0f, 1.5f, 0.0f, -1.0f, -0.37f, 32768.0f, 65537.0f, 1e9f, kInfinity}) {
        SCOPED_TRACE(factor);
        const Image source = Noise(7);
        Image image = source;
        ASSERT_EQ(tqScaleImage2(image, factor), 0);
        EXPECT_TRUE(SamePels(MapImage(source,
                                      [&](int pel) {
                                          return std::min<std::int64_t>(Truncated(pel * double{factor} + 0.5),
                                                                        65535);
                                      }),
                             image));
        EXPECT_TRUE(SameHeader(source.Header(), image.Header()));
    }
}

TEST(PointOperations, TheBrightestNeighbourhoodGetsTheNewMaximum) {
    for (const std::int32_t wanted : {-7, 0, 1, 255, 30000, 65535, 65536, kMax}) {
        SCOPED_TRACE(wanted);
        const Image source = Noise(8);
        double largest = 0;
        for (std::int32_t row = 1; row < 22; ++row) {
            for (std::int32_t col = 1; col < 60; ++col) {
                const auto sum = AllOf(ShiftedPels(source, col, row, 3, 3)).sum;
                largest = std::max(largest, static_cast<double>(sum));
            }
        }
        const double old = static_cast<float>(largest / 9.0);
        const double maximum = std::clamp(wanted, 0, 65535);
        Image image = source;
        ASSERT_EQ(tqSetMaxGrayValue(image, wanted), 0);
        EXPECT_TRUE(SamePels(
            MapImage(source,
                     [&](int pel) { return std::min<std::int64_t>(Truncated(pel * maximum / old), 65535); }),
            image));
        EXPECT_TRUE(SameHeader(With(source.Header(), &TqImageHeader::MaxPelValue, maximum), image.Header()));
    }
    // Without a neighbourhood the stored maximum counts, and a maximum of 0 leaves the pels.
    Image small = MakeImage(2, 2, {10, 20, 30, 40});
    small.Header().MaxPelValue = 40.0f;
    ASSERT_EQ(tqSetMaxGrayValue(small, 80), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 2, {20, 40, 60, 80}), small));
    small.Header().MaxPelValue = 0.0f;
    ASSERT_EQ(tqSetMaxGrayValue(small, 9), 0);
    EXPECT_TRUE(SamePels(MakeImage(2, 2, {20, 40, 60, 80}), small));
    EXPECT_EQ(small.Header().MaxPelValue, 9.0f);
}

TEST(MultiplyImages, MultipliesWhereBothAreAndKeepsTheRest) {
    struct Case {
        float offsetCol, offsetRow;
        std::int32_t col, row, divisor;
    };
    for (const Case& c : {Case{0, 0, 0, 0, 65535}, Case{-1.0f, -1.9f, 0, 0, 3}, Case{7.9f, 3.0f, 7, 3, -5},
                          Case{2, 1, 2, 1, 0}, Case{60.0f, 22.0f, 60, 22, 7}, Case{61.0f, 0, 61, 0, 7}}) {
        SCOPED_TRACE(testing::Message() << c.offsetCol << ", " << c.offsetRow);
        const Image a = Noise(9);
        Image b = RandomImageWithHoles(61, 23, 10);
        b.Header().CenterCol = c.offsetCol;
        b.Header().CenterRow = c.offsetRow;
        Image image = a;
        ASSERT_EQ(tqMultiplyImages(image.Address(), b, c.divisor), 0);
        const Image expected = MakeImage(61, 23, [&](std::int32_t col, std::int32_t row) -> std::int64_t {
            if (col + c.col >= 61 || row + c.row >= 23) return a(col, row);
            const float product =
                static_cast<float>(a(col, row)) * static_cast<float>(b(col + c.col, row + c.row));
            const float v = product / static_cast<float>(c.divisor);
            return v >= 65535.0f ? 65535 : Truncated(double{v});
        });
        EXPECT_TRUE(SamePels(expected, image));
        EXPECT_TRUE(SameHeader(a.Header(), image.Header()));
    }
    for (const auto& [col, row, status] :
         {std::tuple{-2.0f, -2.0f, -7}, {0.0f, -2.0f, -8}, {3e9f, 0.0f, -7}}) {
        Image image = Noise(9);
        const Image before = image;
        Image b = Noise(1);
        b.Header().CenterCol = col;
        b.Header().CenterRow = row;
        EXPECT_EQ(tqMultiplyImages(image.Address(), b, 1), status);
        EXPECT_TRUE(SamePels(before, image));
    }
    EXPECT_EQ(tqMultiplyImages(Image(4, 4).Address(), nullptr, 1), -3);
}

}  // namespace
