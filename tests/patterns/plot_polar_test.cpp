#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

#include "failing_allocator.h"
#include "images.h"
#include "tqimage/plots.h"

namespace {

using namespace tqtest;

constexpr double kDegree = std::numbers::pi / 180.0;

/// A smooth polar image without a 0, whose last column continues in the first.
Image Lobes(std::int32_t cols, std::int32_t rows) {
    return MakeImage(cols, rows, [&](int col, int row) {
        const double azimuth = col * 2 * std::numbers::pi / cols;
        const double angle = row * 1.2 / (rows - 1);
        return std::lround(40000 * std::cos(angle) * (1 + 0.3 * std::sin(angle) * std::cos(2 * azimuth + 1)));
    });
}

TEST(PolarImage, OfALambertianSourceFollowsTheCosine) {
    Image target(1001, 801);
    TqImageHeader& header = target.Header();
    header.PelsPerMeterY = 800.0f;
    header.CenterCol = 480.25f;
    header.SourceDistance = 0.5f;
    header.LuxPerGrey = 0.02f;
    for (int row = 0; row < target.Rows(); ++row) {
        for (int col = 0; col < target.Cols(); ++col) {
            const double x = (col - 480.25) / 1000, y = (400 - row) / 800.0;
            const double squaredCosine = 0.25 / (0.25 + x * x + y * y);
            target(col, row) = static_cast<std::uint16_t>(60000 * squaredCosine * squaredCosine + 0.5);
        }
    }
    Image polar;
    ASSERT_EQ(tqCreatePolarImage(polar.Address(), target, 72, 44, 43.0f, 0, 1), 0);
    double worst = 0.0;
    for (int row = 0; row < 44; ++row) {
        for (int col = 0; col < 72; ++col)
            worst = std::max(worst, std::abs(polar(col, row) / 65000.0 - std::cos(row * kDegree)));
    }
    EXPECT_LT(worst, 1e-4);
    EXPECT_EQ(polar.Header().MaxPelValue, 65000.0f);
    const double candela = polar.Header().LuxPerGrey * 65000.0;
    EXPECT_NEAR(candela, 60000 * 0.02 * 0.25, 0.01);
}

TEST(PolarImage, LaysDirectionsOutAsTheLensDoes) {
    // On a plane of grey levels a bilinear sample is the plane, so every pel tells where it was taken.
    const auto plane = [](double col, double row) { return 5000 + 90 * col + 40 * row; };
    Image image = MakeImage(201, 151, [&](int col, int row) { return static_cast<int>(plane(col, row)); });
    image.Header().CenterCol = 80.0f;
    image.Header().CenterRow = 75.0f;
    image.Header().PelsPerMeterX = 100.0f;
    image.Header().PelsPerMeterY = 50.0f;
    double (*const radii[])(double) = {std::tan, [](double angle) { return angle; }, std::sin};
    for (int projection = 0; projection < 3; ++projection) {
        SCOPED_TRACE(projection);
        Image polar;
        ASSERT_EQ(tqCreatePolarImage(polar.Address(), image, 12, 10, 90.0f, projection, 0), 0);
        for (int row = 0; row < 10; ++row) {
            for (int col = 0; col < 12; ++col) {
                const double radius = radii[projection](row * 10 * kDegree), azimuth = col * 30 * kDegree;
                const double x = 80 + 100 * radius * std::cos(azimuth),
                             y = 75 - 50 * radius * std::sin(azimuth);
                const bool inside = x >= 0 && y >= 0 && x <= 200 && y <= 150;
                EXPECT_NEAR(polar(col, row), inside ? plane(x, y) : 0, 0.51) << col << ' ' << row;
            }
        }
        EXPECT_EQ(polar.Header().CenterCol, 5.5f);
        EXPECT_EQ(polar.Header().MaxPelValue, 65535.0f);
    }
    // Along the border of the image, and without any intensity.
    image.Header().CenterCol = 0.0f;
    image.Header().LuxPerGrey = -1.0f;
    Image polar;
    ASSERT_EQ(tqCreatePolarImage(polar.Address(), image, 4, 2, 45.0f, 1, 0), 0);
    EXPECT_EQ(polar(1, 1) != 0 && polar(3, 1) != 0, true) << "up and down run along column 0";
    EXPECT_EQ(polar(2, 1), 0);
    ASSERT_EQ(tqCreatePolarImage(polar.Address(), image, 4, 2, 45.0f, 1, 1), 0);
    EXPECT_TRUE(SamePels(Image(4, 2), polar));
}

TEST(RadarPlot, AndPolarImageAreInverse) {
    const Image polar = Lobes(360, 91);
    for (const bool interpolated : {true, false}) {
        Image radar, back;
        const auto create = interpolated ? tqCreateRadarPlot : tqCreateRadarPlotNoInterp;
        ASSERT_EQ(create(radar.Address(), polar, 801), 0);
        EXPECT_EQ(radar(0, 0) | radar(800, 0) | radar(0, 800) | radar(800, 800), 0);
        // The rim, 400 pels of a millimetre, stands for 60 degrees.
        radar.Header().SourceDistance = static_cast<float>(0.4 / (60 * kDegree));
        ASSERT_EQ(tqCreatePolarImage(back.Address(), radar, 360, 91, 59.0f, 1, 0), 0);
        for (int row = 0; row < 91; ++row) {
            for (int col = 0; col < 360; ++col) {
                const double place = row * 59.0 / 60.0;
                const int upper = std::min(static_cast<int>(place), 89);
                const double expected =
                    polar(col, upper) + (polar(col, upper + 1) - polar(col, upper)) * (place - upper);
                ASSERT_NEAR(back(col, row), expected, (interpolated ? 0.002 : 0.02) * expected)
                    << col << ' ' << row;
            }
        }
    }
}

TEST(RadarPlot, LeavesPelsWithoutDataOutAndClosesTheCircle) {
    // Four directions; the one to the left has no data but on the axis.
    const Image polar = MakeImage(4, 3, {100, 100, 100, 100, 200, 400, 0, 400, 300, 500, 0, 500});
    Image mean, nearest;
    ASSERT_EQ(tqCreateRadarPlot(mean.Address(), polar, 9), 0);
    ASSERT_EQ(tqCreateRadarPlotNoInterp(nearest.Address(), polar, 9), 0);
    EXPECT_EQ(mean(4, 4), 100);
    EXPECT_EQ(mean(8, 4), 300);
    EXPECT_EQ(mean(7, 4), 250);
    EXPECT_EQ(mean(4, 0), 500);
    EXPECT_EQ(mean(0, 4), 0) << "none of its neighbours has data";
    EXPECT_EQ(mean(3, 4), 100) << "only the axis has data";
    EXPECT_EQ(mean(2, 2), 441) << "up has data, left has none: 400 + 0.414 x 100";
    EXPECT_EQ(mean(6, 6), 341) << "half way from the last column to the first";
    EXPECT_EQ(nearest(7, 5), 300) << "in the last column's half of the way to the first";
    EXPECT_EQ(nearest(5, 7), 500);
    EXPECT_EQ(nearest(1, 4), 0);
    EXPECT_EQ(nearest(0, 0), 0);
    Image one;
    ASSERT_EQ(tqCreateRadarPlot(one.Address(), polar, 1), 0);
    EXPECT_EQ(one(0, 0), 100);
}

TEST(RadarPlot, GetsAFrameWithRingsAndSpokes) {
    const Image plot = MakeImage(101, 121, [](int, int) { return 7; });
    Image padded = plot;
    ASSERT_EQ(tqPadRadarPlot(padded.Address(), 10, 2, 4, 70000, -3), 0);
    ASSERT_EQ(padded.Cols(), 121);
    ASSERT_EQ(padded.Rows(), 141);
    EXPECT_EQ(padded.Header().CenterRow, 70.0f);
    for (int d = 0; d <= 70; ++d) {
        // Spokes straight, rings at 25 and 50 on the diagonal.
        EXPECT_EQ(padded(60, 70 - d), d <= 50 ? 65535 : 0) << d;
        if (d == 0 || d > 60) continue;
        EXPECT_EQ(padded(60 + d, 70), d <= 50 ? 65535 : 0) << d;
        const double distance = d * std::numbers::sqrt2;
        const bool ring = std::abs(distance - 25) < 0.5 || std::abs(distance - 50) < 0.5;
        EXPECT_EQ(padded(60 - d, 70 + d), ring ? 65535 : distance <= 50 ? 7 : 0) << d;
    }
    padded = plot;
    ASSERT_EQ(tqPadRadarPlot(padded.Address(), 0, -5, 0, 1, 9), 0);
    EXPECT_EQ(padded(0, 0), 9);
    EXPECT_EQ(padded(50, 10), 7);
    EXPECT_EQ(padded(50, 9), 9);
}

TEST(Plots, RefuseWhatTheyCannotDraw) {
    constexpr float kNoAngle = std::numeric_limits<float>::quiet_NaN();
    constexpr auto kMost = std::numeric_limits<std::int32_t>::max();
    const Image polar = Lobes(12, 5);
    Image tooWide(8001, 1), noScale(9, 9), noDistance(9, 9);
    noScale.Header().PelsPerMeterY = 0.0f;
    noDistance.Header().SourceDistance = -1.0f;
    const double values[] = {1.0, 2.0};
    Image out = polar;
    TqImage** const at = out.Address();
    const auto pad = [at](int margin, int rings, int spokes) {
        return tqPadRadarPlot(at, margin, rings, spokes, 1, 0);
    };
    const struct {
        int expected, actual;
    } refusals[] = {
        {-1, tqCreatePolarImage(nullptr, polar, 4, 4, 45.0f, 0, 0)},
        {-1, tqCreatePolarImage(at, polar, 0, 4, 45.0f, 0, 0)},
        {-1, tqCreatePolarImage(at, polar, 4, 8001, 45.0f, 0, 0)},
        {-1, tqCreatePolarImage(at, polar, 4, 4, 0.0f, 0, 0)},
        {-1, tqCreatePolarImage(at, polar, 4, 4, 90.5f, 0, 0)},
        {-1, tqCreatePolarImage(at, polar, 4, 4, 180.5f, 1, 0)},
        {-1, tqCreatePolarImage(at, polar, 4, 4, kNoAngle, 1, 0)},
        {-1, tqCreatePolarImage(at, polar, 4, 4, 45.0f, 3, 0)},
        {-1, tqCreatePolarImage(at, polar, 4, 4, 45.0f, 0, 2)},
        {-2, tqCreatePolarImage(at, nullptr, 4, 4, 45.0f, 0, 0)},
        {-2, tqCreatePolarImage(at, noScale, 4, 4, 45.0f, 0, 0)},
        {-2, tqCreatePolarImage(at, noDistance, 4, 4, 45.0f, 0, 0)},
        {-1, tqCreateRadarPlot(nullptr, polar, 9)},
        {-1, tqCreateRadarPlot(at, polar, 0)},
        {-1, tqCreateRadarPlotNoInterp(at, polar, kMost)},
        {-2, tqCreateRadarPlot(at, tooWide, 9)},
        {-2, tqCreateRadarPlotNoInterp(at, nullptr, 9)},
        {-1, tqPadRadarPlot(nullptr, 1, 1, 1, 1, 0)},
        {-1, pad(-1, 1, 1)},
        {-1, pad(3998, 1, 1)},
        {-1, pad(kMost, 1, 1)},
        {-1, pad(1, 361, 1)},
        {-1, pad(1, 1, kMost)},
        {-2, tqPadRadarPlot(tooWide.Address(), 1, 1, 1, 1, 0)},
        {-1, tqCreateGraphType(nullptr, values, 2, 9, 9, 0, 0, 1)},
        {-1, tqCreateGraphType(at, nullptr, 2, 9, 9, 0, 0, 1)},
        {-1, tqCreateGraphType(at, values, 0, 9, 9, 0, 0, 1)},
        {-1, tqCreateGraphType(at, values, 2, 8001, 9, 0, 0, 1)},
        {-1, tqCreateGraphType(at, values, 2, 9, -9, 0, 0, 1)},
        {-1, tqCreateGraphType(at, values, 2, 9, 9, -1, 0, 1)},
        {-1, tqCreateGraphType(at, values, 2, 9, 9, 6, 0, 1)},
        {-1, tqCreateGraphType(at, values, 2, 9, 9, 0, -1e308, 1e308)},
    };
    for (const auto& [expected, actual] : refusals)
        EXPECT_EQ(actual, expected) << &actual - &refusals[0].actual;
    EXPECT_TRUE(SamePels(polar, out));

    // The image that is replaced may be the one that is read, and stays when there is no memory.
    const std::function<int(TqImage**)> changes[] = {
        [](TqImage** image) { return tqCreatePolarImage(image, *image, 40, 9, 45.0f, 2, 1); },
        [](TqImage** image) { return tqCreateRadarPlot(image, *image, 30); },
        [](TqImage** image) { return tqCreateRadarPlotNoInterp(image, *image, 30); },
        [](TqImage** image) { return tqPadRadarPlot(image, 3, 2, 5, 1, 0); },
        [&](TqImage** image) { return tqCreateGraphType(image, values, 2, 9, 9, 1, 0, 1); },
    };
    for (const auto& change : changes) {
        out = polar;
        if (CanFailAllocations()) {
            EXPECT_GE(
                FailEachAllocation(
                    -3, 0, [&] { return change(out.Address()); }, [&] { EXPECT_TRUE(SamePels(polar, out)); }),
                1);
        } else {
            EXPECT_EQ(change(out.Address()), 0);
        }
        EXPECT_NE(out.Cols(), polar.Cols());
    }
}

}  // namespace
