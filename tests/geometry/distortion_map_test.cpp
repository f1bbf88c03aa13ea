#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "failing_allocator.h"
#include "images.h"
#include "maps.h"
#include "tqimage/distortion.h"

namespace {

using tqtest::DefaultHeader;
using tqtest::Map;

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

void FreeMap(TqDistortionMap* map) {
    auto* block = reinterpret_cast<TqImage*>(map);
    tqImageFree(&block);
}

TEST(CreateDistortionImage, HasTheSensorsSizeAndItsCentreInTheMiddle) {
    TqImageHeader info = DefaultHeader(5, 3);
    info.CenterCol = 77.0f;
    TqDistortionMap* map = nullptr;
    ASSERT_EQ(tqCreateDistortionImage(&map, &info), 0);
    EXPECT_EQ(map->Cols, 5);
    EXPECT_EQ(map->Rows, 3);
    EXPECT_EQ(map->CenterCol, 2.0f);
    EXPECT_EQ(map->CenterRow, 1.0f);

    // Over the map it holds: that one is released, which the leak checker of the sanitizer build sees.
    info = DefaultHeader(8000, 2);
    ASSERT_EQ(tqCreateDistortionImage(&map, &info), 0);
    EXPECT_EQ(map->CenterCol, 3999.5f);
    EXPECT_EQ(tqPutDistortionPel(map, &info, 7999, 1, 1.0f, 2.0f), 0);
    FreeMap(map);

    // The record has 16 bits for a size; the map is what they say.
    info = DefaultHeader(65536 + 4, 2);
    map = nullptr;
    ASSERT_EQ(tqCreateDistortionImage(&map, &info), 0);
    EXPECT_EQ(map->Cols, 4);
    EXPECT_EQ(map->CenterCol, 1.5f);
    FreeMap(map);
}

TEST(CreateDistortionImage, RefusesSizesNobodyCanHold) {
    for (const auto& [cols, rows] :
         {std::pair{3, -1}, {-3, -3}, {kMin, kMin}, {kMax, kMax}, {65536, 65536}, {16384, 16384}}) {
        SCOPED_TRACE(testing::Message() << cols << " x " << rows);
        TqImageHeader info = DefaultHeader(4, 4);
        TqDistortionMap* map = nullptr;
        ASSERT_EQ(tqCreateDistortionImage(&map, &info), 0);
        info.PelCols = cols;
        info.PelRows = rows;
        EXPECT_EQ(tqCreateDistortionImage(&map, &info), -1);
        EXPECT_EQ(map, nullptr);
    }
    TqImageHeader info = DefaultHeader(4, 4);
    TqDistortionMap* map = nullptr;
    EXPECT_EQ(tqCreateDistortionImage(nullptr, &info), -1);
    EXPECT_EQ(tqCreateDistortionImage(&map, nullptr), -1);
}

TEST(PutDistortionPel, CountsRowsByTheHeaderAndStaysInTheMap) {
    Map map(6, 4);
    map.Fill([](std::int32_t, std::int32_t) { return std::pair{-1.0f, -1.0f}; });
    map.Put(5, 3, 1.5f, 2.5f);
    EXPECT_EQ(map.Entry(5, 3)[0], 1.5f);
    EXPECT_EQ(map.Entry(5, 3)[1], 2.5f);
    EXPECT_EQ(map.Entry(4, 3)[0], -1.0f);

    // A header of half the width: its row 3 is the second half of the map's row 1.
    TqDistortionMap* const head = &map.Head();
    const TqImageHeader half = DefaultHeader(3, 8);
    EXPECT_EQ(tqPutDistortionPel(head, &half, 1, 3, 7.0f, 8.0f), 0);
    EXPECT_EQ(map.Entry(4, 1)[0], 7.0f);
    EXPECT_EQ(map.Entry(4, 1)[1], 8.0f);

    const TqImageHeader info = DefaultHeader(6, 4);
    for (const auto& [col, row] : {std::pair{0, 4}, std::pair{6, 3}, std::pair{-1, 0}, std::pair{0, -1},
                                   std::pair{kMin, kMin}, std::pair{kMax, kMax}, std::pair{0, kMax}}) {
        EXPECT_EQ(tqPutDistortionPel(head, &info, col, row, 0.0f, 0.0f), -1) << col << ", " << row;
    }
    EXPECT_EQ(tqPutDistortionPel(nullptr, &info, 0, 0, 0.0f, 0.0f), -1);
    EXPECT_EQ(tqPutDistortionPel(head, nullptr, 0, 0, 0.0f, 0.0f), -1);
    TqImageHeader wide = info;
    wide.PelCols = kMax;
    EXPECT_EQ(tqPutDistortionPel(head, &wide, kMax, kMax, 0.0f, 0.0f), -1);
}

TEST(CreateDistortionImage, NoMemoryLeavesNull) {
    if (!tqtest::CanFailAllocations()) GTEST_SKIP() << "the library allocates for itself here";
    const TqImageHeader info = DefaultHeader(5, 3);
    TqDistortionMap* map = nullptr;
    const int made = tqtest::FailEachAllocation(
        -1, 0, [&] { return tqCreateDistortionImage(&map, &info); }, [&] { EXPECT_EQ(map, nullptr); });
    EXPECT_EQ(made, 1);
    FreeMap(map);
}

}  // namespace
