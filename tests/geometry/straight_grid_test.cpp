#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "automation_host.h"
#include "maps.h"
#include "tqimage/distortion.h"
#include "tqimage/keystone.h"
#include "tqimage/lens_model.h"

namespace {

using tqtest::Image;
using Point = std::pair<double, double>;

constexpr std::int32_t kCols = 300, kRows = 220;
constexpr int kLines = 8;

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

template <class Level>
Image Seen(Level&& level) {
    Image image = tqtest::MakeImage(kCols, kRows, [&](std::int32_t col, std::int32_t row) {
        const auto [x, y] = OnScreen(col, row);
        return static_cast<int>(level(x, y));
    });
    image.Header().CenterCol = static_cast<float>(kLens[0]);
    image.Header().CenterRow = static_cast<float>(kLens[1]);
    return image;
}

double Square(double x) {
    return x * x;
}

/// Centre of the bright line that crosses the pels at(0) .. at(count - 1) near a place.
template <class At>
double LineNear(double place, At&& at) {
    const int first = static_cast<int>(place + 0.5) - 8;
    double sum = 0.0, moment = 0.0;
    for (int i = first; i <= first + 16; ++i) {
        const double level = std::max(at(i) - 2000.0, 0.0);
        sum += level;
        moment += level * i;
    }
    return moment / sum;
}

void ExpectStraight(const std::vector<double>& centres) {
    double mean = 0.0;
    for (const double centre : centres)
        mean += centre / static_cast<double>(centres.size());
    for (const double centre : centres)
        EXPECT_NEAR(centre, mean, 0.05);
}

// The screen is measured lit, with the corners found in the picture; then a grid on it is put straight by the
// two corrections in turn.
TEST(Corrections, AGridSeenObliquelyThroughALensComesOutStraight) {
    const TqLensSetting setting{kCols, kRows, 0, 0, -1.0f, -1.0f};
    tqtest::HostArray table =
        tqtest::MakeDoubleArray(1, 9, [](int, int field) { return kLens[static_cast<std::size_t>(field)]; });
    tqtest::Map lens, keystone;
    ASSERT_EQ(tqBuildLensDistortionImage(lens.Address(), &setting, table.Address()), 0);

    Image lit = Seen([](double x, double y) {
        const auto covered = [](double inside) { return std::clamp(100.0 * inside + 0.5, 0.0, 1.0); };
        return 1000 + 39000 * covered(std::min(x, 1 - x)) * covered(std::min(y, 1 - y));
    });
    ASSERT_EQ(tqCorrectLensDistortion(lit.Address(), lens), 0);
    std::array<double, 8> q{-1};  // columns and rows of the corners
    ASSERT_EQ(tqCalcKeyStone(keystone.Address(), lit, 20000, q.data(), nullptr, nullptr), 0);

    Image grid = Seen([](double x, double y) {
        double level = 1000;
        for (int i = 1; i < kLines; ++i) {
            const double at = static_cast<double>(i) / kLines;
            level = std::max({level, 40000 * std::exp(-Square((x - at) / 0.016)),
                              40000 * std::exp(-Square((y - at) / 0.02))});
        }
        return level;
    });
    ASSERT_EQ(tqCorrectLensDistortion(grid.Address(), lens), 0);
    ASSERT_EQ(tqRemoveKeystone(grid.Address(), keystone), 0);

    // The screen is now an upright rectangle of its mean sides, around the place where its diagonals cross.
    const double width = 0.5 * (std::hypot(q[2] - q[0], q[3] - q[1]) + std::hypot(q[4] - q[6], q[5] - q[7]));
    const double height = 0.5 * (std::hypot(q[6] - q[0], q[7] - q[1]) + std::hypot(q[4] - q[2], q[5] - q[3]));
    const double part = ((q[2] - q[0]) * (q[7] - q[3]) - (q[3] - q[1]) * (q[6] - q[2])) /
                        ((q[4] - q[0]) * (q[7] - q[3]) - (q[5] - q[1]) * (q[6] - q[2]));
    const double middleCol = q[0] + part * (q[4] - q[0]), middleRow = q[1] + part * (q[5] - q[1]);
    for (int line = 1; line < kLines; ++line) {
        const double across = static_cast<double>(line) / kLines - 0.5;
        std::vector<double> cols, rows;
        // Half-way between the crossing lines.
        for (int gap = 0; gap < kLines; ++gap) {
            const double along = (gap + 0.5) / kLines - 0.5;
            const auto row = static_cast<std::int32_t>(middleRow + along * height + 0.5);
            const auto col = static_cast<std::int32_t>(middleCol + along * width + 0.5);
            cols.push_back(
                LineNear(middleCol + across * width, [&](std::int32_t i) { return grid(i, row); }));
            rows.push_back(
                LineNear(middleRow + across * height, [&](std::int32_t i) { return grid(col, i); }));
        }
        SCOPED_TRACE(line);
        ExpectStraight(cols);
        ExpectStraight(rows);
    }
}

}  // namespace
