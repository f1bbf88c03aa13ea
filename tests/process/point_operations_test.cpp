#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include "failing_allocator.h"
#include "images.h"
#include "pel_formula.h"
#include "tqimage/point_operations.h"

namespace {

using namespace tqtest;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

std::vector<std::uint16_t> SomeTable() {
    std::vector<std::uint16_t> table(65536);
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<std::uint16_t>(i * 40503U + 77U);
    return table;
}

TEST(PointOperations, ConstantsStopAtTheEndsOfTheRange) {
    for (const std::int32_t value : {0, 1, -1, 300, -300, 65535, -65535, 65536, kHighest, kLowest}) {
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
                          Case{kHighest, -3, {0, 0, 0, 0, 0}, 0, {0, 0, 0, 0, 0}},
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
    Image large = RandomImage(130, 70, 5);
    const auto pels = large.Values();
    std::int32_t count = 0;
    ASSERT_EQ(tqRemoveDarkPels(large, &count, 30000), 0);
    EXPECT_EQ(count, std::count_if(pels.begin(), pels.end(), [](int pel) { return pel > 30000; }));
    EXPECT_EQ(tqRemoveDarkPels(large, nullptr, 30000), 0);
}

TEST(PointOperations, TablesActInsideTheRectangle) {
    const auto table = SomeTable();
    const Image source = Noise(4);
    Image whole = source;
    ASSERT_EQ(tqCorrectLinearity(whole, table.data()), 0);
    EXPECT_TRUE(
        SamePels(MapImage(source, [&](int pel) { return table[static_cast<std::size_t>(pel)]; }), whole));
    struct Case {
        std::int32_t left, top, right, bottom;
        std::int32_t firstCol, firstRow, lastCol, lastRow;
    };
    for (const Case& c : {Case{0, 0, 0, 0, 0, 0, 60, 22}, Case{5, 3, 31, 9, 5, 3, 31, 9},
                          Case{kLowest, -1, kHighest, 4, 0, 0, 60, 4}, Case{20, 0, 10, 0, 1, 1, 0, 0},
                          Case{0, 21, 0, 20, 1, 1, 0, 0}, Case{-9, -9, -3, -3, 0, 0, 60, 22}}) {
        SCOPED_TRACE(testing::Message() << c.left << ", " << c.top << ", " << c.right << ", " << c.bottom);
        Image image = source;
        ASSERT_EQ(tqApplyLUTInRegion(image, table.data(), c.left, c.top, c.right, c.bottom), 0);
        const auto inside = [&](std::int32_t col, std::int32_t row) {
            return col >= c.firstCol && col <= c.lastCol && row >= c.firstRow && row <= c.lastRow;
        };
        const Image expected = MakeImage(61, 23, [&](std::int32_t col, std::int32_t row) {
            return inside(col, row) ? table[source(col, row)] : source(col, row);
        });
        EXPECT_TRUE(SamePels(expected, image));
        EXPECT_TRUE(SameHeader(source.Header(), image.Header()));

        // The corrections share the rectangle; what lies outside it is not carried over.
        Image brighter = source;
        ASSERT_EQ(tqBrightnessCorrectionInRegion(brighter.Address(), 3, c.left, c.top, c.right, c.bottom), 0);
        const Image wrapped = MakeImage(61, 23, [&](std::int32_t col, std::int32_t row) {
            return inside(col, row) ? source(col, row) + 3 : 0;
        });
        EXPECT_TRUE(SamePels(wrapped, brighter));
        const auto pels = wrapped.Values();
        EXPECT_TRUE(SameHeader(
            With(source.Header(), &TqImageHeader::MaxPelValue, *std::max_element(pels.begin(), pels.end())),
            brighter.Header()));
    }
}

TEST(PointOperations, BrightnessWrapsAndItsNegativeUndoesIt) {
    Image image = MakeImage(3, 1, {65535, 0, 7});
    ASSERT_EQ(tqBrightnessCorrectionInRegion(image.Address(), 65537, 0, 0, 0, 0), 0);
    EXPECT_TRUE(SamePels(MakeImage(3, 1, {0, 1, 8}), image));
    ASSERT_EQ(tqBrightnessCorrectionInRegion(image.Address(), -65537, 0, 0, 0, 0), 0);
    EXPECT_TRUE(SamePels(MakeImage(3, 1, {65535, 0, 7}), image));
}

TEST(PointOperations, ContrastStretchesAboutTheMeanOfTheRectangle) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    for (const float factor : {1.0f, 1.7f, -2.5f, 0.0f, 40000.0f, 1e9f, kNan}) {
        SCOPED_TRACE(factor);
        const Image source = Noise(6);
        double sum = 0;
        for (std::int32_t row = 2; row <= 8; ++row)
            for (std::int32_t col = 3; col <= 52; ++col)
                sum += source(col, row);
        const double mean = sum / (7 * 50);
        Image image = source;
        ASSERT_EQ(tqContrastCorrectionInRegion(image.Address(), factor, 3, 2, 52, 8), 0);
        const Image expected = MakeImage(61, 23, [&](std::int32_t col, std::int32_t row) {
            const bool inside = col >= 3 && col <= 52 && row >= 2 && row <= 8;
            return inside ? Truncated((source(col, row) - mean) * double{factor} + mean) & 0xFFFF : 0;
        });
        EXPECT_TRUE(SamePels(expected, image));
        const auto pels = expected.Values();
        EXPECT_EQ(image.Header().MaxPelValue, *std::max_element(pels.begin(), pels.end()));
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
}

TEST(PointOperations, ScalingStopsAbove65535AndWrapsBelowZero) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
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
    for (const std::int32_t wanted : {-7, 0, 1, 255, 30000, 65535, 65536, kHighest}) {
        SCOPED_TRACE(wanted);
        const Image source = Noise(8);
        double largest = 0;
        for (std::int32_t row = 1; row < 22; ++row) {
            for (std::int32_t col = 1; col < 60; ++col) {
                double sum = 0;
                for (int k = 0; k < 9; ++k)
                    sum += source(col - 1 + k % 3, row - 1 + k / 3);
                largest = std::max(largest, sum);
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
    Image image(4, 4);
    EXPECT_EQ(tqMultiplyImages(nullptr, image, 1), -2);
    EXPECT_EQ(tqMultiplyImages(image.Address(), nullptr, 1), -3);
}

TEST(PointOperations, RefuseInvalidImages) {
    const auto table = SomeTable();
    std::int32_t count = 123;
    Image nothing;
    Image empty(DefaultHeader(0, 4));
    Image wide(DefaultHeader(8001, 1));
    for (Image* image : {&nothing, &empty, &wide}) {
        EXPECT_EQ(tqSubtractValue(image->Address(), 1), -2);
        EXPECT_EQ(tqCorrectLinearity(*image, table.data()), -2);
        EXPECT_EQ(tqApplyLUTInRegion(*image, table.data(), 0, 0, 0, 0), -2);
        EXPECT_EQ(tqReplaceDarkPels0(*image, 1, 1), -2);
        EXPECT_EQ(tqRemoveDarkPels(*image, &count, 1), -2);
        EXPECT_EQ(tqInvertImage(*image), image == &nothing ? -2 : -9);
        EXPECT_EQ(tqScaleImage2(*image, 1.0f), -2);
        EXPECT_EQ(tqSetMaxGrayValue(*image, 1), -2);
        EXPECT_EQ(tqBrightnessCorrectionInRegion(image->Address(), 1, 0, 0, 0, 0), -2);
        EXPECT_EQ(tqContrastCorrectionInRegion(image->Address(), 1.0f, 0, 0, 0, 0), -2);
    }
    EXPECT_EQ(count, 123);
    EXPECT_EQ(tqAddConstant(empty, 1), -1);
    EXPECT_EQ(tqSubtractValue(nullptr, 1), -2);
    EXPECT_EQ(tqBrightnessCorrectionInRegion(nullptr, 1, 0, 0, 0, 0), -2);
    EXPECT_EQ(tqContrastCorrectionInRegion(nullptr, 1, 0, 0, 0, 0), -2);
    Image image(3, 3);
    EXPECT_EQ(tqCorrectLinearity(image, nullptr), -2);
    EXPECT_EQ(tqApplyLUTInRegion(image, nullptr, 0, 0, 0, 0), -2);
}

TEST(PointOperations, NoMemoryLeavesTheImage) {
    if (!CanFailAllocations()) GTEST_SKIP() << "the library allocates for itself here";
    const Image before = Noise(2);
    Image other = Noise(1);
    other.Header().CenterCol = other.Header().CenterRow = 0.0f;
    struct Case {
        std::int32_t failure;
        std::function<std::int32_t(TqImage**)> call;
    };
    for (const Case& c : {
             Case{-5, [](TqImage** i) { return tqSubtractValue(i, 1); }},
             Case{-3, [](TqImage** i) { return tqBrightnessCorrectionInRegion(i, 1, 0, 0, 0, 0); }},
             Case{-3, [](TqImage** i) { return tqContrastCorrectionInRegion(i, 1.0f, 0, 0, 0, 0); }},
             Case{-5, [&](TqImage** i) { return tqMultiplyImages(i, other, 1); }},
         }) {
        Image image = before;
        EXPECT_GE(FailEachAllocation(
                      c.failure, 0, [&] { return c.call(image.Address()); },
                      [&] {
                          EXPECT_TRUE(SamePels(before, image));
                          EXPECT_TRUE(SameHeader(before.Header(), image.Header()));
                      }),
                  1);
    }
}

}  // namespace
