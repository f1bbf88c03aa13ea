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
    for (const auto function : {tqGetColAvg, tqGetRowAvg}) {
        HostArray array;
        ASSERT_EQ(function(white, 0, 0, 0, 0, array.Address()), 0);
        EXPECT_EQ(array.At<double>({0}), 65535);
        ASSERT_EQ(SafeArrayLock(array.Get()), S_OK);
        EXPECT_EQ(function(white, 0, 0, 0, 0, array.Address()), -3);
    }
}

struct Range {
    std::int32_t min = -9, max = -9;
    bool operator==(const Range&) const = default;
};

TEST(CrossSection, EndsAnywhere) {
    const Image image = MakeImage(8, 6, [](auto col, auto row) { return 1 + col + 10 * row; });
    struct Case {
        std::int32_t col1, row1, col2, row2, status;
        Range range;
    };
    for (const Case& it :
         {Case{1, 1, 6, 1, 0, {12, 17}}, Case{6, 4, 6, 1, 0, {17, 47}}, Case{0, 0, 5, 5, 0, {1, 56}},
          Case{0, 0, 1, 2, 0, {1, 22}}, Case{0, 1, 2, 0, 0, {2, 11}},
          Case{0, 2, 2, 1, 0, {13, 22}},  // halves go to the even pel
          Case{-3, 3, 2, 3, 0, {31, 33}}, Case{-4, -1, 11, -1, -99, {}}, Case{3, 3, 3, 3, 0, {34, 34}},
          Case{-1, 0, 0, -1, -99, {}}, Case{kLowest, 2, kHighest, 2, 0, {21, 28}},
          Case{3, kHighest, 3, kLowest, 0, {4, 54}}, Case{kLowest, kLowest, kHighest, kHighest, 0, {1, 56}},
          // Row -1 - col just misses the corner.
          Case{kLowest, kHighest, kHighest, kLowest, -99, {}}, Case{kHighest, 0, kHighest, 0, -99, {}}}) {
        Range found;
        EXPECT_EQ(tqGetXSectionMinMax(image, it.col1, it.row1, it.col2, it.row2, &found.min, &found.max),
                  it.status);
        EXPECT_EQ(found, it.range);
    }
}

}  // namespace
}  // namespace tqtest
