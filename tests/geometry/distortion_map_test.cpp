#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <utility>

#include "images.h"
#include "maps.h"
#include "tqimage/distortion.h"

namespace {

using namespace tqtest;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

TEST(CreateDistortionImage, HasTheSensorsSizeAndItsCentreInTheMiddle) {
    struct Case {
        std::int32_t cols, rows;
        int mapCols;
        float centerCol, centerRow;
    };
    Map map;
    // Over the map it holds: that one is released, which the leak checker of the sanitizer build sees.
    for (const Case& c : {Case{5, 3, 5, 2.0f, 1.0f}, Case{8000, 2, 8000, 3999.5f, 0.5f},
                          Case{65536 + 4, 2, 4, 1.5f, 0.5f}}) {  // the record has 16 bits for a size
        TqImageHeader info = DefaultHeader(c.cols, c.rows);
        info.CenterCol = 77.0f;
        ASSERT_EQ(tqCreateDistortionImage(map.Address(), &info), 0);
        EXPECT_EQ(map.Head().Cols, c.mapCols);
        EXPECT_EQ(map.Head().Rows, c.rows);
        EXPECT_EQ(map.Head().CenterCol, c.centerCol);
        EXPECT_EQ(map.Head().CenterRow, c.centerRow);
    }
}

TEST(CreateDistortionImage, RefusesSizesNobodyCanHold) {
    for (const auto& [cols, rows] :
         {std::pair{3, -1}, {-3, -3}, {kMin, kMin}, {kMax, kMax}, {65536, 65536}, {16384, 16384}}) {
        Map map(4, 4);
        const TqImageHeader info = DefaultHeader(cols, rows);
        EXPECT_EQ(tqCreateDistortionImage(map.Address(), &info), -1) << cols << " x " << rows;
        EXPECT_EQ(static_cast<const TqDistortionMap*>(map), nullptr);
        EXPECT_EQ(tqCreateDistortionImage(nullptr, &info), -1);
        EXPECT_EQ(tqCreateDistortionImage(map.Address(), nullptr), -1);
    }
}

TEST(PutDistortionPel, CountsRowsByTheHeaderAndStaysInTheMap) {
    Map map(6, 4);
    map.Fill([](int, int) { return std::pair{-1.0f, -1.0f}; });
    map.Put(5, 3, 1.5f, 2.5f);
    // A header of half the width: its row 3 is the second half of the map's row 1.
    TqDistortionMap* const head = &map.Head();
    const TqImageHeader half = DefaultHeader(3, 8);
    EXPECT_EQ(tqPutDistortionPel(head, &half, 1, 3, 7.0f, 8.0f), 0);
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 6; ++col) {
            const auto [x, y] = col == 5 && row == 3   ? std::pair{1.5f, 2.5f}
                                : col == 4 && row == 1 ? std::pair{7.0f, 8.0f}
                                                       : std::pair{-1.0f, -1.0f};
            EXPECT_EQ(map.Entry(col, row)[0], x);
            EXPECT_EQ(map.Entry(col, row)[1], y);
        }
    }
    TqImageHeader info = DefaultHeader(6, 4);
    for (const auto& [col, row] : {std::pair{0, 4}, std::pair{6, 3}, std::pair{-1, 0}, std::pair{0, -1},
                                   std::pair{kMin, kMin}, std::pair{kMax, kMax}, std::pair{0, kMax}}) {
        EXPECT_EQ(tqPutDistortionPel(head, &info, col, row, 0.0f, 0.0f), -1) << col << ", " << row;
    }
    EXPECT_EQ(tqPutDistortionPel(nullptr, &info, 0, 0, 0.0f, 0.0f), -1);
    EXPECT_EQ(tqPutDistortionPel(head, nullptr, 0, 0, 0.0f, 0.0f), -1);
    info.PelCols = kMax;
    EXPECT_EQ(tqPutDistortionPel(head, &info, kMax, kMax, 0.0f, 0.0f), -1);
}

}  // namespace
