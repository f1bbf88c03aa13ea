#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "images.h"
#include "maps.h"
#include "samples.h"
#include "tqimage/projection.h"

namespace {

using namespace tqtest;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// Straight in front of the target, one pel of the image a pel of the result.
TqProjection Straight(double cols, double rows) {
    TqProjection p{};
    p.CameraZ = 2.0;
    p.FocalLength = 2000.0;
    p.PelsPerMeterX = p.PelsPerMeterY = 1000.0;
    p.Cols = cols;
    p.Rows = rows;
    p.PrincipalCol = p.CenterCol = (cols - 1) / 2;
    p.PrincipalRow = p.CenterRow = (rows - 1) / 2;
    p.Radius = 0.5;
    return p;
}

TEST(ProjectImage, StraightAheadIsTheImage) {
    const Image source = RandomImage(41, 31, 5, 1);
    Image image = source;
    image.Header().BinCols = 3;
    const TqProjection p = Straight(41, 31);
    Map map(41, 31);
    map.Fill(OwnPlace);
    ASSERT_EQ(tqProjectImage(image.Address(), &p, nullptr), 0);
    EXPECT_TRUE(SamePels(source, image));
    EXPECT_EQ(image.Header().BinCols, 1);
    EXPECT_EQ(image.Header().CenterCol, 20.0f);
    ASSERT_EQ(tqProjectImage(image.Address(), &p, map), 0);
    EXPECT_TRUE(SamePels(source, image));

    // Entries one column on; the last column has no source, and a black pel that is seen is 1.
    map.Fill([](std::int32_t col, std::int32_t row) {
        return std::pair{col < 40 ? static_cast<float>(col + 1) : -1.0f, static_cast<float>(row)};
    });
    image(1, 0) = 0;
    ASSERT_EQ(tqProjectImage(image.Address(), &p, map), 0);
    EXPECT_EQ(image(0, 0), 1);
    EXPECT_EQ(image(5, 7), source(6, 7));
    EXPECT_EQ(image(40, 7), 0);
}

/// Where the camera sees a place on the surface, by the textbook: rotation matrices written out.
std::pair<double, double> Seen(const TqProjection& p, double u, double v) {
    double x = u, y = v, z = 0;
    if (p.Surface > 0) {
        const double a = u / p.Radius, b = p.Surface > 1 ? v / p.Radius : 0;
        x = p.Radius * std::sin(a) * std::cos(b);
        y = p.Surface > 1 ? p.Radius * std::sin(b) : v;
        z = p.Radius * std::cos(a) * std::cos(b) - p.Radius;
    }
    const double rad = std::acos(-1.0) / 180;
    const double cy = std::cos(p.Yaw * rad), sy = std::sin(p.Yaw * rad);
    const double cp = std::cos(p.Pitch * rad), sp = std::sin(p.Pitch * rad);
    const double cr = std::cos(p.Roll * rad), sr = std::sin(p.Roll * rad);
    x -= p.CameraX, y -= p.CameraY, z -= p.CameraZ;
    const double x1 = cy * x + sy * z, depth1 = sy * x - cy * z;  // the yaw undone
    const double y2 = cp * y - sp * depth1, depth = sp * y + cp * depth1;
    const double right = cr * x1 - sr * y2, up = sr * x1 + cr * y2;
    return {p.PrincipalCol + p.FocalLength * right / depth, p.PrincipalRow - p.FocalLength * up / depth};
}

TEST(ProjectImage, EveryPelIsTakenFromWhereTheCameraSeesIt) {
    for (const double surface : {0.0, 1.0, 2.0}) {
        TqProjection p = Straight(401, 301);
        p.CameraX = 0.3;
        p.CameraY = -0.2;
        p.CameraZ = 1.5;
        p.Yaw = -11.0;
        p.Pitch = 7.0;
        p.Roll = 5.0;
        p.FocalLength = 1900.0;
        p.PrincipalCol = 310;
        p.PrincipalRow = 240;
        p.Surface = surface;
        // On ramps the grey tells the place.
        Image cols = MakeImage(640, 480, [](int col, int) { return 1 + 100 * col; });
        Image rows = MakeImage(640, 480, [](int, int row) { return 1 + 100 * row; });
        ASSERT_EQ(tqProjectImage(cols.Address(), &p, nullptr), 0);
        ASSERT_EQ(tqProjectImage(rows.Address(), &p, nullptr), 0);
        int seen = 0;
        for (int row = 0; row < 301; ++row) {
            for (int col = 0; col < 401; ++col) {
                const auto [c, r] = Seen(p, (col - 200) / 1000.0, (150 - row) / 1000.0);
                const bool inside = c >= 0 && r >= 0 && c <= 639 && r <= 479;
                ASSERT_NEAR(cols(col, row), inside ? 1 + 100 * c : 0, 0.51) << surface << ": " << col;
                ASSERT_NEAR(rows(col, row), inside ? 1 + 100 * r : 0, 0.51) << surface << ": " << col;
                seen += inside;
            }
        }
        EXPECT_GT(seen, 40000);
    }
}

TEST(ProjectImage, WhatTurnsAwayIsNotSeen) {
    // Around a cylinder of 50 pels the camera at 4 radii from its axis sees up to acos(1 / 5).
    Image image = MakeImage(400, 40, [](int, int) { return 500; });
    TqProjection p = Straight(401, 21);
    p.Surface = 1;
    p.Radius = 0.05;
    p.CameraZ = 0.2;
    p.FocalLength = 400;
    ASSERT_EQ(tqProjectImage(image.Address(), &p, nullptr), 0);
    const int seen = static_cast<int>(50 * std::acos(0.2));
    for (int col = 0; col < 401; ++col)
        ASSERT_EQ(image(col, 10), std::abs(col - 200) <= seen ? 500 : 0) << col;
}

TEST(ProjectImage, RefusesWhatNoCameraSees) {
    const Image source = RandomImage(41, 31, 5, 1);
    Image image = source;
    const auto status = [&](double TqProjection::*field, double value) {
        TqProjection p = Straight(41, 31);
        p.Surface = field == &TqProjection::Radius ? 2.0 : 0.0;
        p.*field = value;
        return tqProjectImage(image.Address(), &p, nullptr);
    };
    struct Case {
        double TqProjection::*field;
        double value;
        std::int32_t status;
    };
    using P = TqProjection;
    for (const Case& c :
         {Case{&P::PelsPerMeterX, 0, -2}, Case{&P::PelsPerMeterY, -1, -2}, Case{&P::FocalLength, kNan, -2},
          Case{&P::Radius, 0, -2}, Case{&P::Surface, 3, -2}, Case{&P::Surface, kNan, -2},
          Case{&P::Cols, 0.9, -3}, Case{&P::Cols, 8001, -3}, Case{&P::Rows, kNan, -3},
          Case{&P::Rows, 1e300, -3}, Case{&P::CameraZ, -1, -4}, Case{&P::CameraX, kNan, -4},
          Case{&P::Yaw, 90, -4}, Case{&P::Pitch, 1e300 * 1e300, -4}, Case{&P::CenterCol, 1e300, -4}}) {
        EXPECT_EQ(status(c.field, c.value), c.status) << c.value;
        EXPECT_TRUE(SamePels(source, image));
    }
    const TqProjection p = Straight(41, 31);
    EXPECT_EQ(tqProjectImage(nullptr, &p, nullptr), -1);
    EXPECT_EQ(tqProjectImage(image.Address(), nullptr, nullptr), -2);
    EXPECT_EQ(tqProjectImage(image.Address(), &p, Map(0, 5)), -4);
}

}  // namespace
