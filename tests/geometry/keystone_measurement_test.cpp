#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

#include "images.h"
#include "maps.h"
#include "tqimage/keystone.h"

namespace {

using namespace tqtest;

using Corners = std::array<double, 8>;

constexpr Corners kSeen{52.3, 38.7, 251.1, 25.4, 262.8, 190.2, 40.6, 168.9};
constexpr Corners kFind{-1, -1, -1, -1, -1, -1, -1, -1};

bool Inside(const Corners& q, double col, double row) {
    for (std::size_t i = 0; i < 4; ++i) {
        const double c = q[2 * i], r = q[2 * i + 1];
        const double nextCol = q[(2 * i + 2) % 8], nextRow = q[(2 * i + 3) % 8];
        if ((nextCol - c) * (row - r) - (nextRow - r) * (col - c) < 0.0) return false;
    }
    return true;
}

/// A lit quadrilateral, pels at its border by the share that is lit, and noise of one percent.
Image Screen(const Corners& q, int dark, int bright) {
    std::mt19937 engine(17);
    return MakeImage(300, 220, [&](std::int32_t col, std::int32_t row) {
        int lit = 0;
        for (int i = 0; i < 64; ++i)
            lit += Inside(q, col - 0.4375 + 0.125 * (i % 8), row - 0.4375 + 0.125 * (i / 8));
        // Twelve uniform numbers have the variance of a normal one.
        double noise = -6.0;
        for (int i = 0; i < 12; ++i)
            noise += static_cast<double>(engine() % 10000) / 10000.0;
        const double value = dark + (bright - dark) * lit / 64.0;
        return static_cast<int>(std::max(value + 0.01 * bright * noise, 0.0));
    });
}

TEST(CalcKeyStone, FindsTheCornersOfANoisyScreen) {
    const Corners axisParallel{50.25, 40.5, 240.75, 40.5, 240.75, 180.1, 50.25, 180.1};
    const Corners turned{120, 20, 270, 80, 210, 205, 45, 150};
    for (const Corners& q : {kSeen, axisParallel, turned}) {
        Image image = Screen(q, 1500, 40000);
        // Specks beside the screen and a dead line in it.
        image(3, 100) = image(297, 100) = image(150, 3) = 50000;
        Corners found = kFind;
        Map map;
        ASSERT_EQ(tqCalcKeyStone(map.Address(), image, 20000, found.data(), nullptr, nullptr), 0);
        for (std::size_t i = 0; i < 8; ++i)
            EXPECT_NEAR(found[i], q[i], 0.05) << i;
    }
}

TEST(CalcKeyStone, BeyondTheHorizonThereIsNoSource) {
    // Sides that meet a little right of the image's middle: columns right of the horizon see nothing.
    const Corners given{20, 20, 100, 95, 100, 105, 20, 180};
    Corners corners = given;
    Map map(5, 5);  // is replaced
    double horizontal = 0.0, vertical = 7.0;
    ASSERT_EQ(tqCalcKeyStone(map.Address(), Image(300, 220), 0, corners.data(), &horizontal, &vertical), 0);
    EXPECT_EQ(corners, given);
    EXPECT_DOUBLE_EQ(horizontal, 100.0 * (160 - 10) / (160 + 10));
    EXPECT_EQ(vertical, 0.0);
    ASSERT_EQ(map.Head().Cols, 300);
    ASSERT_EQ(map.Head().Rows, 220);
    int sources = 0;
    for (std::int32_t row = 0; row < 220; ++row) {
        for (std::int32_t col = 1; col < 300; ++col) {
            // Forward in the result is forward in the image, up to where it ends.
            const float here = map.Entry(col, row)[0], before = map.Entry(col - 1, row)[0];
            if (here < 0.0f || before < 0.0f) continue;
            ASSERT_GT(here, before) << col << ", " << row;
            ++sources;
        }
    }
    EXPECT_GT(sources, 3000);
}

TEST(CalcKeyStone, RefusesWhatShowsNoScreen) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const auto lit = [](auto&& isLit) {
        return MakeImage(50, 50, [&](int col, int row) { return isLit(col, row) ? 40000 : 10; });
    };
    const Image full = lit([](int, int) { return true; });
    const Image cut = lit([](int col, int row) { return col > 20 && row > 9 && row < 40; });
    const Image speck = lit([](int col, int row) { return col == 20 && row == 9; });
    const Image pel = MakeImage(1, 1, {40000});
    Map map(3, 3);
    const TqDistortionMap* const block = map;
    const auto status = [&](const Image& shown, Corners corners, std::int32_t threshold) {
        const Corners before = corners;
        const std::int32_t result =
            tqCalcKeyStone(map.Address(), shown, threshold, corners.data(), nullptr, nullptr);
        EXPECT_EQ(std::memcmp(before.data(), corners.data(), sizeof before), 0) << "untouched";
        return result;
    };
    EXPECT_EQ(status(full, kFind, 65535), -99);
    for (const Image* shown : {&full, &cut, &speck, &pel})
        EXPECT_EQ(status(*shown, kFind, 20000), -2);
    EXPECT_EQ(status(pel, kFind, std::numeric_limits<std::int32_t>::min()), -2);
    for (const Corners& corners :
         {Corners{}, Corners{0, 0, 0, 10, 10, 10, 10, 0}, Corners{0, 0, 10, 10, 10, 0, 0, 10},
          Corners{0, 0, 10, 0, 20, 0, 5, 10}, Corners{0, 0, 10, 0, 4, 4, 0, 10},
          Corners{0, 0, kNan, 0, 10, 10, 0, 10}, Corners{0, 0, 1e300, 0, 1e300, 1e300, 0, 1e300},
          Corners{kNan, 0, 10, 0, 10, 10, 0, 10}})
        EXPECT_EQ(status(full, corners, 0), -3);
    Corners corners = kSeen;
    EXPECT_EQ(tqCalcKeyStone(nullptr, full, 0, corners.data(), nullptr, nullptr), -1);
    EXPECT_EQ(tqCalcKeyStone(map.Address(), full, 0, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(static_cast<const TqDistortionMap*>(map), block);
}

}  // namespace
