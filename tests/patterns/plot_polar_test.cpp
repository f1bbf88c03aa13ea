#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "images.h"
#include "tqimage/plots.h"

namespace tqtest {
namespace {

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
    Image target = MakeImage(1001, 801, [](int col, int row) {
        const double x = (col - 480.25) / 1000, y = (400 - row) / 800.0;
        const double squaredCosine = 0.25 / (0.25 + x * x + y * y);
        return 60000 * squaredCosine * squaredCosine + 0.5;
    });
    TqImageHeader& header = target.Header();
    header.PelsPerMeterY = 800.0f;
    header.CenterCol = 480.25f;
    header.SourceDistance = 0.5f;
    header.LuxPerGrey = 0.02f;
    Image polar;
    ASSERT_EQ(tqCreatePolarImage(polar.Address(), target, 72, 44, 43.0f, 0, 1), 0);
    for (int row = 0; row < 44; ++row)
        for (int col = 0; col < 72; ++col)
            ASSERT_NEAR(polar(col, row) / 65000.0, std::cos(row * kDegree), 1e-4) << col << ' ' << row;
    EXPECT_EQ(polar.Header().MaxPelValue, 65000.0f);
    EXPECT_NEAR(polar.Header().LuxPerGrey * 65000.0, 60000 * 0.02 * 0.25, 0.01) << "candela";
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
    EXPECT_EQ(nearest(1, 4) | nearest(0, 0), 0);
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
    Image tooWide(8001, 1), noScale(9, 9), noDistance(9, 9), out = polar;
    noScale.Header().PelsPerMeterY = 0.0f;
    noDistance.Header().SourceDistance = -1.0f;
    const double two[] = {1.0, 2.0};
    TqImage** const at = out.Address();
    const struct {
        int cols, rows;
        float angle;
        int projection, quantity;
    } unrolled[] = {{0, 4, 45, 0, 0},     {4, 8001, 45, 0, 0},    {4, 4, 0, 0, 0},  {4, 4, 90.5f, 0, 0},
                    {4, 4, 180.5f, 1, 0}, {4, 4, kNoAngle, 1, 0}, {4, 4, 45, 3, 0}, {4, 4, 45, 0, 2}};
    for (const auto& it : unrolled)
        EXPECT_EQ(tqCreatePolarImage(at, polar, it.cols, it.rows, it.angle, it.projection, it.quantity), -1);
    const struct {
        int margin, rings, spokes;
    } padded[] = {{-1, 1, 1}, {3995, 1, 1}, {kMost, 1, 1}, {1, 361, 1}, {1, 1, 361}};
    for (const auto& it : padded)
        EXPECT_EQ(tqPadRadarPlot(at, it.margin, it.rings, it.spokes, 1, 0), -1);
    const struct {
        int count, cols, rows, type;
        double low;
    } graphs[] = {{0, 9, 9, 0, 0},  {2, 8001, 9, 0, 0}, {2, 9, 0, 0, 0},
                  {2, 9, 9, -1, 0}, {2, 9, 9, 6, 0},    {2, 9, 9, 0, -1e308}};
    for (const auto& it : graphs)
        EXPECT_EQ(tqCreateGraphType(at, two, it.count, it.cols, it.rows, it.type, it.low, 1e308), -1);
    EXPECT_EQ(tqCreateRadarPlot(at, polar, 8001), -1);
    EXPECT_EQ(tqCreatePolarImage(at, noScale, 4, 4, 45, 0, 0), -2);
    EXPECT_EQ(tqCreatePolarImage(at, noDistance, 4, 4, 45, 0, 0), -2);
    EXPECT_EQ(tqPadRadarPlot(tooWide.Address(), 1, 1, 1, 1, 0), -2);
    EXPECT_TRUE(SamePels(polar, out));
    // The image that is replaced may be the one that is read.
    Image disc;
    ASSERT_EQ(tqCreateRadarPlot(disc.Address(), polar, 30), 0);
    ASSERT_EQ(tqCreateRadarPlot(at, out, 30), 0);
    EXPECT_TRUE(SamePels(disc, out));
}

}  // namespace
}  // namespace tqtest
