#include "tqimage/profiles.h"

#include <cmath>

#include "statistics.h"

namespace tqtest {
namespace {

std::vector<double> ValuesOf(const HostArray& array) {
    EXPECT_EQ(array->cDims, 1);
    EXPECT_EQ(array->cbElements, 8u);
    EXPECT_EQ(array->rgsabound[0].lLbound, 0);
    EXPECT_EQ(array.Locks(), 0u);
    std::vector<double> values;
    for (LONG i = 0; i < static_cast<LONG>(array->rgsabound[0].cElements); ++i)
        values.push_back(array.At<double>({i}));
    return values;
}

TEST(LineMeans, OfEveryColumnAndRowOfARectangle) {
    struct Case {
        std::int32_t left, top, right, bottom;   // as asked
        std::int32_t first, upper, last, lower;  // as measured
    };
    for (const Case& it :
         {Case{0, 0, 0, 0, 0, 0, 16, 12}, Case{3, 2, 9, 11, 3, 2, 9, 11}, Case{7, 0, 6, 0, 7, 0, 6, 12},
          Case{0, 7, 0, 6, 0, 7, 16, 6}, Case{9, 9, 1, 1, 9, 9, 8, 8},
          Case{kLowest, kLowest, kHighest, kHighest, 0, 0, 16, 12}}) {
        SCOPED_TRACE(testing::Message()
                     << it.left << ", " << it.top << ", " << it.right << ", " << it.bottom);
        const Image image = RandomImageWithHoles(17, 13, 31);
        std::vector<double> columns, rows;
        for (std::int32_t col = it.first; col <= it.last; ++col) {
            columns.push_back(it.upper > it.lower ? 0 : RectangleMean(image, col, it.upper, col, it.lower));
        }
        for (std::int32_t row = it.upper; row <= it.lower; ++row) {
            rows.push_back(it.first > it.last ? 0 : RectangleMean(image, it.first, row, it.last, row));
        }
        HostArray array(VT_I4, {{3}, {2}});
        ASSERT_EQ(tqGetColAvg(image, it.left, it.top, it.right, it.bottom, array.Address()), 0);
        EXPECT_EQ(ValuesOf(array), columns);
        ASSERT_EQ(tqGetRowAvg(image, it.left, it.top, it.right, it.bottom, array.Address()), 0);
        EXPECT_EQ(ValuesOf(array), rows);
    }
    // The longest and brightest column: its sum fills 29 bits.
    const Image white = MakeImage(1, 8000, [](auto, auto) { return 65535; });
    HostArray array;
    ASSERT_EQ(tqGetColAvg(white, 0, 0, 0, 0, array.Address()), 0);
    EXPECT_EQ(ValuesOf(array), std::vector<double>{65535});
}

TEST(LineMeans, Statuses) {
    const Image invalid(0, 1), image = RandomImage(17, 13, 32);
    for (const auto function : {tqGetColAvg, tqGetRowAvg}) {
        HostArray array(VT_R8, {{2}});
        SAFEARRAY* const before = array.Get();
        EXPECT_EQ(function(nullptr, 0, 0, 0, 0, array.Address()), -2);
        EXPECT_EQ(function(invalid, 0, 0, 0, 0, array.Address()), -2);
        EXPECT_EQ(function(image, 0, 0, 0, 0, nullptr), -2);
        ASSERT_EQ(SafeArrayLock(before), S_OK);
        EXPECT_EQ(function(image, 0, 0, 0, 0, array.Address()), -3);
        EXPECT_EQ(array.Get(), before);
    }
}

struct Range {
    std::int32_t min = -9, max = -9;
    bool operator==(const Range&) const = default;
};

/// Walks the whole line, however far outside it starts; std::nearbyint rounds halves to even.
Range LineReference(const Image& image, double col1, double row1, double col2, double row2) {
    const double steps = std::max(std::abs(col2 - col1), std::abs(row2 - row1));
    Range range{kHighest, -1};
    for (double i = 0; i <= steps; ++i) {
        const double col = std::nearbyint(col1 + (steps > 0 ? i * (col2 - col1) / steps : 0));
        const double row = std::nearbyint(row1 + (steps > 0 ? i * (row2 - row1) / steps : 0));
        if (col < 0 || col >= image.Cols() || row < 0 || row >= image.Rows()) continue;
        const std::int32_t pel = image(static_cast<std::int32_t>(col), static_cast<std::int32_t>(row));
        range = {std::min(range.min, pel), std::max(range.max, pel)};
    }
    return range.max < 0 ? Range{} : range;
}

TEST(CrossSection, ExtremesOfEveryLine) {
    const Image image = RandomImage(12, 9, 33);
    const std::vector<std::int32_t> places = {-25, -3, 0, 1, 4, 7, 8, 11, 15, 40};
    for (const std::int32_t col1 : places) {
        for (const std::int32_t row1 : places) {
            for (const std::int32_t col2 : places) {
                for (const std::int32_t row2 : places) {
                    Range found;
                    const Range expected = LineReference(image, col1, row1, col2, row2);
                    ASSERT_EQ(tqGetXSectionMinMax(image, col1, row1, col2, row2, &found.min, &found.max),
                              expected.max < 0 ? -99 : 0);
                    ASSERT_EQ(found, expected) << col1 << ", " << row1 << " to " << col2 << ", " << row2;
                }
            }
        }
    }
}

TEST(CrossSection, EndsAnywhereAndInvalidImages) {
    const Image image = MakeImage(8, 6, [](auto col, auto row) { return 1 + col + 10 * row; });
    const Image invalid(8001, 1);
    struct Case {
        std::int32_t col1, row1, col2, row2, status;
        Range range;
    };
    for (const Case& it :
         {Case{kLowest, 2, kHighest, 2, 0, {21, 28}}, Case{3, kHighest, 3, kLowest, 0, {4, 54}},
          Case{kLowest, kLowest, kHighest, kHighest, 0, {1, 56}},
          // Row -1 - col just misses the corner.
          Case{kLowest, kHighest, kHighest, kLowest, -99, {}}, Case{kHighest, 0, kHighest, 0, -99, {}}}) {
        Range found;
        EXPECT_EQ(tqGetXSectionMinMax(image, it.col1, it.row1, it.col2, it.row2, &found.min, &found.max),
                  it.status);
        EXPECT_EQ(found, it.range);
    }
    Range found;
    EXPECT_EQ(tqGetXSectionMinMax(nullptr, 0, 0, 1, 1, &found.min, &found.max), -2);
    EXPECT_EQ(tqGetXSectionMinMax(invalid, 0, 0, 1, 1, &found.min, &found.max), -2);
    EXPECT_EQ(found, Range{});
}

}  // namespace
}  // namespace tqtest
