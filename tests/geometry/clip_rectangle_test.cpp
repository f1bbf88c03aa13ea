#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <tuple>
#include <utility>

#include "images.h"
#include "maps.h"
#include "tqimage/projection.h"

namespace {

using namespace tqtest;

using Corners = std::tuple<std::int32_t, std::int32_t, std::int32_t, std::int32_t>;

Corners ClipRect(const Map& map, const TqImageHeader& info, std::int32_t status = 0) {
    std::int32_t left = 7, top = 7, right = 7, bottom = 7;
    EXPECT_EQ(tqCalcCameraClipRect(map, &info, &left, &top, &right, &bottom), status);
    return {left, top, right, bottom};
}

/// Every rectangle tried, in the order in which equal ones are preferred.
Corners EveryRectangle(const Map& map, std::int32_t cols, std::int32_t rows) {
    Corners best{-1, -1, -1, -1};
    std::int32_t area = 0;
    for (std::int32_t first = 0; first < cols * rows; ++first) {
        const std::int32_t left = first % cols, top = first / cols;
        // Downward, to where each row narrows what the rows above left clear.
        std::int32_t end = cols;
        for (std::int32_t bottom = top; bottom < rows; ++bottom) {
            std::int32_t clear = left;
            while (clear < end && map.Entry(clear, bottom)[0] >= 0.0f)
                ++clear;
            end = clear;
            const std::int32_t here = (end - left) * (bottom - top + 1);
            if (here <= area) continue;
            area = here;
            best = {left, top, end - 1, bottom};
        }
    }
    return best;
}

TEST(CameraClipRect, EqualsEveryRectangleTried) {
    std::mt19937 engine(3);
    const TqImageHeader info = DefaultHeader(100, 100);
    for (int trial = 0; trial < 200; ++trial) {
        const auto cols = static_cast<std::int32_t>(1 + engine() % 9);
        const auto rows = static_cast<std::int32_t>(1 + engine() % 9);
        const auto holes = 1 + engine() % 12;
        Map map(cols, rows);
        map.Fill([&](std::int32_t, std::int32_t) {
            return engine() % 12 < holes ? std::pair{-1.0f, 3.0f} : std::pair{5.0f, 3.0f};
        });
        const Corners expected = EveryRectangle(map, cols, rows);
        EXPECT_EQ(ClipRect(map, info, std::get<0>(expected) < 0 ? -99 : 0), expected) << "trial " << trial;
    }
}

TEST(CameraClipRect, InsideMeansTheUnbinnedImage) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    Map map(7, 1);
    for (const auto& [col, place] : {std::pair{0, std::pair{0.0f, 0.0f}},
                                     {1, {99.0f, 49.0f}},
                                     {2, {99.01f, 49.0f}},
                                     {3, {nan, 1.0f}},
                                     {4, {5.0f, 49.01f}},
                                     {5, {-0.01f, 0.0f}},
                                     {6, {0.0f, 0.0f}}})
        map.Put(col, 0, place.first, place.second);
    TqImageHeader info = DefaultHeader(100, 50);
    EXPECT_EQ(ClipRect(map, info), Corners(0, 0, 1, 0));
    info = DefaultHeader(50, 25);
    EXPECT_EQ(ClipRect(map, info), Corners(0, 0, 0, 0));
    info.BinCols = info.BinRows = 2;
    EXPECT_EQ(ClipRect(map, info), Corners(0, 0, 1, 0));
    info.BinCols = info.BinRows = std::numeric_limits<std::int16_t>::min();
    EXPECT_EQ(ClipRect(map, info), Corners(0, 0, 0, 0));
}

TEST(CameraClipRect, RefusesWhatCannotBeSearched) {
    const Corners nowhere{-1, -1, -1, -1};
    const Map map(4, 4);
    std::int32_t left = 7, top = 7, right = 7, bottom = 7;
    EXPECT_EQ(tqCalcCameraClipRect(map, nullptr, &left, &top, &right, &bottom), -1);
    EXPECT_EQ(Corners(left, top, right, bottom), nowhere);
    EXPECT_EQ(ClipRect(map, DefaultHeader(0, 4), -1), nowhere);
    EXPECT_EQ(ClipRect(map, DefaultHeader(4, 8001), -1), nowhere);
    EXPECT_EQ(ClipRect(Map(), DefaultHeader(4, 4), -2), nowhere);
    EXPECT_EQ(ClipRect(Map(0, 4), DefaultHeader(4, 4), -99), nowhere);
}

}  // namespace
