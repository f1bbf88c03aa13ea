#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

#include "images.h"
#include "maps.h"
#include "tqimage/keystone.h"

namespace {

using namespace tqtest;

using Points = std::array<double, 12>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// A camera of 900 pels before a cylinder of radius 1 that bulges toward it (1) or away (-1), seen from the
/// right and from above.
struct Scene {
    double bulge;

    std::pair<double, double> Seen(double angle, double up) const {
        const double x = std::sin(angle) - 0.6, y = up - 0.4, z = bulge * (std::cos(angle) - 1) - 3.5;
        const double c = std::cos(0.17), s = std::sin(0.17);
        const double right = c * x - s * z, depth = -(s * x + c * z);
        return {320 + 900 * right / depth, 200 - 900 * (y + 0.11 * depth) / depth};
    }
    Points Marks(double halfAngle, double height) const {
        Points points{};
        const std::array<double, 6> angles{-halfAngle, 0, halfAngle, halfAngle, 0, -halfAngle};
        for (std::size_t i = 0; i < 6; ++i)
            std::tie(points[2 * i], points[2 * i + 1]) = Seen(angles[i], i < 3 ? height / 2 : -height / 2);
        return points;
    }
};

double Chord(const Points& p, std::size_t a, std::size_t b) {
    return std::hypot(p[2 * b] - p[2 * a], p[2 * b + 1] - p[2 * a + 1]);
}

TEST(CalcCylinderKeyStone, RecoversTheCamera) {
    const Image image(640, 480);
    for (const auto& [bulge, halfAngle] :
         {std::pair{1.0, 0.5}, std::pair{-1.0, 0.5}, std::pair{1.0, 0.05}, std::pair{-1.0, 0.9}}) {
        SCOPED_TRACE(testing::Message() << bulge << ", " << halfAngle);
        const Scene scene{bulge};
        const Points marks = scene.Marks(halfAngle, 0.8);
        Map map(2, 2);
        double rms = -1;
        ASSERT_EQ(tqCalcCylinderKeyStone(map.Address(), image, marks.data(), halfAngle, 0.8, &rms), 0);
        EXPECT_LT(rms, 1e-6);
        EXPECT_GE(rms, 0.0);
        ASSERT_EQ(map.Head().Cols, 640);
        ASSERT_EQ(map.Head().Rows, 480);
        const double length =
            (Chord(marks, 0, 1) + Chord(marks, 1, 2) + Chord(marks, 3, 4) + Chord(marks, 4, 5)) / 2;
        const double radians = 2 * halfAngle / length;
        const auto [middleCol, middleRow] = scene.Seen(0, 0);
        int sources = 0;
        for (std::int32_t row = 0; row < 480; row += 3) {
            for (std::int32_t col = 0; col < 640; ++col) {
                const double angle = (col - middleCol) * radians, up = (middleRow - row) * radians;
                const float* entry = map.Entry(col, row);
                if (std::abs(angle) > halfAngle || std::abs(up) > 0.4) continue;
                const auto [c, r] = scene.Seen(angle, up);
                if (c < 0.01 || r < 0.01 || c > 638.99 || r > 478.99) continue;
                ++sources;
                ASSERT_NEAR(entry[0], c, 1e-3) << col << ", " << row;
                ASSERT_NEAR(entry[1], r, 1e-3) << col << ", " << row;
            }
        }
        EXPECT_GT(sources, 500);
    }
}

TEST(CalcCylinderKeyStone, WhatTurnsAwayHasNoSource) {
    const Image image(640, 480);
    const Scene scene{1.0};
    Points marks = scene.Marks(0.3, 0.4);
    Map map;
    double rms = 0;
    ASSERT_EQ(tqCalcCylinderKeyStone(map.Address(), image, marks.data(), 0.3, 0.4, nullptr), 0);
    const auto row = static_cast<std::int32_t>(scene.Seen(0, 0).second);
    int sources = 0;
    for (std::int32_t col = 1; col < 640; ++col) {
        const float before = map.Entry(col - 1, row)[0], here = map.Entry(col, row)[0];
        if (before < 0.0f || here < 0.0f) continue;
        ++sources;
        ASSERT_GT(here, before) << col;
    }
    EXPECT_GT(sources, 100);
    // One pel too many among twelve numbers for eleven unknowns: a part of it stays.
    marks[2] += 0.7;
    ASSERT_EQ(tqCalcCylinderKeyStone(map.Address(), image, marks.data(), 0.3, 0.4, &rms), 0);
    EXPECT_GT(rms, 1e-4);
    EXPECT_LT(rms, 0.7);
}

TEST(CalcCylinderKeyStone, RefusesWhatIsNoScreen) {
    const Image image(64, 48);
    const Points marks = Scene{1.0}.Marks(0.5, 0.8);
    Map map(3, 3);
    const TqDistortionMap* const block = map;
    const auto status = [&](const Points& points, double halfAngle, double height) {
        double rms = 7;
        const std::int32_t result =
            tqCalcCylinderKeyStone(map.Address(), image, points.data(), halfAngle, height, &rms);
        EXPECT_EQ(rms, 7);
        return result;
    };
    for (const double angle : {0.0, -0.5, 1.5708, kNan})
        EXPECT_EQ(status(marks, angle, 0.8), -2) << angle;
    for (const double height : {0.0, -1.0, kNan})
        EXPECT_EQ(status(marks, 0.5, height), -2) << height;
    Points bad = marks, unlimited = marks;
    bad[3] = kNan;
    unlimited[3] = std::numeric_limits<double>::infinity();
    const Points onALine{0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5};
    for (const Points& points : {bad, unlimited, onALine, Points{}})
        EXPECT_EQ(status(points, 0.5, 0.8), -3);
    EXPECT_EQ(status(marks, 1e-9, 0.8), -3) << "the cosine of such an angle is 1";
    EXPECT_EQ(tqCalcCylinderKeyStone(nullptr, image, marks.data(), 0.5, 0.8, nullptr), -1);
    EXPECT_EQ(tqCalcCylinderKeyStone(map.Address(), nullptr, marks.data(), 0.5, 0.8, nullptr), -1);
    EXPECT_EQ(tqCalcCylinderKeyStone(map.Address(), image, nullptr, 0.5, 0.8, nullptr), -1);
    EXPECT_EQ(static_cast<const TqDistortionMap*>(map), block);
}

}  // namespace
