#include "calibration/far_field.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "calibration/far_error.h"

namespace {

using namespace tq;

constexpr SurfaceTile kTile{0, 0, kTileSide, kTileSide};
constexpr double kHalf = kTileSide / 2.0;

/// The least error for which this distance is known to be enough.
double Bound(const FarError& error, double distance) {
    double low = 1e-18, high = 1e6;
    while (high > 1.001 * low) {
        const double middle = std::sqrt(low * high);
        (error.DistanceFor(middle) <= distance ? high : low) = middle;
    }
    return high;
}

long double LogRadial(long double square) {
    return square * std::log(square);
}

long double InverseSquare(long double square) {
    return 1 / square;
}

void InverseSquareSums(const kernels::Centers& centers, const kernels::Places& places, double* out) {
    std::vector<double> norms(places.count);
    kernels::InverseSquareSums(centers, places, out, norms.data());
}

struct Case {
    const char* name;
    FarField::Sum sum;
    long double (*term)(long double square);
    FarError error;
    bool isShare;  ///< of the term; else in units of the half side, squared
    double distance;
    double slack;
};

/// The largest error at the pels of the first tile, of one centre this many half sides beside its middle.
double ErrorOf(const Case& c) {
    // The second point makes the frame as large as a sensor; it has no weight.
    const auto place = static_cast<float>(kHalf - 0.5 + c.distance * kHalf);
    const SurfacePoints points = PrepareSurfacePoints({{place, kHalf - 0.5, 1}, {7000, 7000, 1}});
    const std::vector<double> weights{1, 0};
    FarField field(points, weights, 1, c.sum);
    field.SetReach([&](std::size_t, double) { return c.distance * (1 - 1e-12); });
    field.MoveTo(kTile);
    EXPECT_EQ(field.Near().count, 0u);
    std::vector<double> values(kTileSide * kTileSide);
    field.ToPels(field.AtNodes(0).data(), kTile, values.data());

    double largest = 0.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const long double dx = points.frame.X(static_cast<double>(i % kTileSide)) - points.x[0];
        const long double dy = points.frame.Y(static_cast<double>(i / kTileSide)) - points.y[0];
        const long double exact = c.term(dx * dx + dy * dy);
        const double unit = c.isShare ? static_cast<double>(exact) : std::pow(kHalf * points.frame.scale, 2);
        largest = std::max(largest, std::abs(static_cast<double>(values[i] - exact)) / unit);
    }
    return largest;
}

// A centre that is only just far comes close to what the bound allows, so that one which is too small fails
// here. That of the inverse squares is the wider one: it is a share of the least value in the square.
TEST(FarField, TheBoundsHoldAndAreNeeded) {
    const FarError logs = FarError::OfLogRadial(), inverses = FarError::OfInverseSquare();
    for (const Case& c : {Case{"log", kernels::LogRadialSums, LogRadial, logs, false, 1.5, 60},
                          Case{"log", kernels::LogRadialSums, LogRadial, logs, false, 2, 30},
                          Case{"log", kernels::LogRadialSums, LogRadial, logs, false, 3, 20},
                          Case{"inverse", InverseSquareSums, InverseSquare, inverses, true, 3, 2000},
                          Case{"inverse", InverseSquareSums, InverseSquare, inverses, true, 4, 1000}}) {
        SCOPED_TRACE(testing::Message() << c.name << " at " << c.distance);
        const double bound = Bound(c.error, c.distance);
        const double error = ErrorOf(c);
        EXPECT_LE(error, bound);
        EXPECT_GE(error, bound / c.slack);
    }
}

TEST(FarField, NothingIsFarEnoughForNoErrorAtAll) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const FarError& error : {FarError::OfLogRadial(), FarError::OfInverseSquare()}) {
        EXPECT_EQ(error.DistanceFor(0.0), infinity);
        EXPECT_EQ(error.DistanceFor(std::nan("")), infinity);
        EXPECT_EQ(error.DistanceFor(infinity), 1.25);
    }
}

}  // namespace
