#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

#include "automation_host.h"
#include "maps.h"
#include "tqimage/distortion.h"
#include "tqimage/keystone.h"
#include "tqimage/lens_model.h"

namespace {

using namespace tqtest;
using Point = std::pair<double, double>;

constexpr std::int32_t kCols = 300, kRows = 220;

/// cx, cy, Rn, k1, k2, k3, p1, p2, s: a barrel of some ten pels in the corners, a little out of centre.
constexpr std::array<double, 9> kLens{150, 110, 150, -0.09, 0.01, 0, 0.001, -0.0015, 1};

/// Where the lens puts a place of the undistorted picture, by the formula of the map.
Point Distorted(Point place) {
    const auto& [cx, cy, radius, k1, k2, k3, p1, p2, scale] = kLens;
    const double x = (place.first - cx) / radius, y = (place.second - cy) / radius, q = x * x + y * y;
    const double radial = 1 + k1 * q + k2 * q * q + k3 * q * q * q;
    return {cx + radius * scale * (x * radial + 2 * p1 * x * y + p2 * (q + 2 * x * x)),
            cy + radius * scale * (y * radial + 2 * p2 * x * y + p1 * (q + 2 * y * y))};
}

/// The place on the screen, a unit square seen obliquely, that a pel of the measured image shows.
Point OnScreen(std::int32_t col, std::int32_t row) {
    Point place{col, row};
    for (int i = 0; i < 12; ++i) {
        const Point at = Distorted(place);
        place = {place.first + col - at.first, place.second + row - at.second};
    }
    // place = ((330 x + 25 y + 60) / w, (40 x + 190 y + 50) / w) with w = 0.35 x - 0.2 y + 1.3, solved.
    const auto [c, r] = place;
    const double a = 330 - 0.35 * c, b = 25 + 0.2 * c, e = 1.3 * c - 60;
    const double d = 40 - 0.35 * r, f = 190 + 0.2 * r, g = 1.3 * r - 50;
    const double determinant = a * f - b * d;
    return {(e * f - b * g) / determinant, (a * g - e * d) / determinant};
}

TEST(Corrections, AScreenSeenObliquelyThroughALensComesOutStraight) {
    const TqLensSetting setting{kCols, kRows, 0, 0, -1.0f, -1.0f};
    HostArray table =
        MakeDoubleArray(1, 9, [](int, int field) { return kLens[static_cast<std::size_t>(field)]; });
    Map lens, keystone;
    ASSERT_EQ(tqBuildLensDistortionImage(lens.Address(), &setting, table.Address()), 0);
    // The corners of the unit square in the picture without distortion.
    std::array<double, 8> q{60 / 1.3,   50 / 1.3,   390 / 1.65, 90 / 1.65,
                            415 / 1.45, 280 / 1.45, 85 / 1.1,   240 / 1.1};
    ASSERT_EQ(tqCalcKeyStone(keystone.Address(), Image(kCols, kRows), 0, q.data(), nullptr, nullptr), 0);
    const double width = 0.5 * (std::hypot(q[2] - q[0], q[3] - q[1]) + std::hypot(q[4] - q[6], q[5] - q[7]));
    const double height = 0.5 * (std::hypot(q[6] - q[0], q[7] - q[1]) + std::hypot(q[4] - q[2], q[5] - q[3]));
    const double middleCol = (165 + 12.5 + 60) / 1.375, middleRow = (20 + 95 + 50) / 1.375;

    // Two pictures whose grey tells the place on the screen.
    for (const bool across : {true, false}) {
        Image image = MakeImage(kCols, kRows, [&](std::int32_t col, std::int32_t row) {
            const auto [x, y] = OnScreen(col, row);
            return std::clamp(10000 + 40000 * (across ? x : y), 0.0, 65535.0);
        });
        image.Header().CenterCol = static_cast<float>(kLens[0]);
        image.Header().CenterRow = static_cast<float>(kLens[1]);
        ASSERT_EQ(tqCorrectLensDistortion(image.Address(), lens), 0);
        ASSERT_EQ(tqRemoveKeystone(image.Address(), keystone), 0);
        int seen = 0;
        for (std::int32_t row = 0; row < kRows; ++row) {
            for (std::int32_t col = 0; col < kCols; ++col) {
                const double x = (col - middleCol) / width + 0.5, y = (row - middleRow) / height + 0.5;
                if (std::abs(x - 0.5) > 0.45 || std::abs(y - 0.5) > 0.45) continue;
                // A fortieth of a pel.
                ASSERT_NEAR(image(col, row), 10000 + 40000 * (across ? x : y), 5) << col << ", " << row;
                ++seen;
            }
        }
        EXPECT_GT(seen, 15000);
    }
}

}  // namespace
