#include "kernels/polar_ring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "simd_targets.h"

namespace {

using namespace tq::kernels;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

double PlainSample(const SourcePels& source, double col, double row) {
    if (!(col >= 0 && row >= 0 && col <= source.cols - 1 && row <= source.rows - 1)) return 0.0;
    const int i = std::min(static_cast<int>(col), source.cols - 2);
    const int j = std::min(static_cast<int>(row), source.rows - 2);
    const double fx = col - i, fy = row - j;
    const auto pel = [&](int c, int r) { return static_cast<double>(source.pels[r * source.cols + c]); };
    double sum = (1 - fy) * fx * pel(i + 1, j) + (1 - fy) * (1 - fx) * pel(i, j);
    sum += fx * fy * pel(i + 1, j + 1);
    return sum + fy * (1 - fx) * pel(i, j + 1);
}

TEST(PolarRing, EveryTargetSamplesAsThePlainLoopDoes) {
    std::mt19937 random(4);
    struct Size {
        int cols, rows;
    };
    for (const auto& [cols, rows] : {Size{2, 2}, Size{31, 23}}) {
        const auto pels = tqtest::HostilePels(static_cast<std::size_t>(cols * rows), 8);
        const SourcePels source{pels.data(), cols, rows};
        // Inside, across the border, on whole pels, far out and nowhere.
        for (const double radius : {0.0, 1.0, 9.75, 14.0, 40.0, 1e300, kInfinity, std::nan("")}) {
            const RingPlaces ring{radius, (cols - 1) / 2.0, (rows - 1) / 2.0, 1.0, 1.25};
            std::vector<double> cosines{1, 0, -1, 0}, sines{0, 1, 0, -1};
            while (cosines.size() < 530) {
                const double turn = static_cast<double>(random()) * 1e-8;
                cosines.push_back(std::cos(turn));
                sines.push_back(std::sin(turn));
            }
            const auto col = [&](std::size_t i) {
                return ring.colsPerLength * (radius * cosines[i]) + ring.centreCol;
            };
            const auto row = [&](std::size_t i) {
                return ring.centreRow - radius * sines[i] * ring.rowsPerLength;
            };
            SCOPED_TRACE(radius);
            tqtest::ForEachTarget([&] {
                for (const std::size_t count :
                     {std::size_t{0}, std::size_t{1}, std::size_t{7}, cosines.size()}) {
                    tqtest::ExpectRun<double>(
                        count,
                        [&](double* out) {
                            SampleRing(source, ring, cosines.data(), sines.data(), count, out);
                        },
                        [&](std::size_t i) { return PlainSample(source, col(i), row(i)); });
                }
            });
        }
    }
}

TEST(PolarRing, EveryTargetScalesAsThePlainLoopDoes) {
    std::vector<double> greys{0, 0.25, 0.5, 65534.5, 65535, 3, 7.5, 1e-300, 12345.678, 65535, 2, 40000.5, 17};
    for (const double factor : {1.0, 0.1, 1e300, 1e-310, kInfinity}) {
        for (const double scale : {1.0, 0.3, 0.0, 1e9}) {
            double largest = 5.0;
            for (const double grey : greys)
                largest = std::max(largest, grey * factor);
            SCOPED_TRACE(testing::Message() << factor << ' ' << scale);
            tqtest::ForEachTarget(
                [&] { EXPECT_EQ(LargestProduct(greys.data(), factor, greys.size(), 5.0), largest); });
            tqtest::ExpectRuns<tq::Pel>(
                greys.size(),
                [&](tq::Pel* out, std::size_t count) {
                    StoreProducts(greys.data(), factor, scale, count, out);
                },
                [&](std::size_t i) {
                    // Beyond 32 bits a conversion gives the lowest integer, which counts as dark.
                    const double value = greys[i] * factor * scale + 0.5;
                    return value < 2147483648.0 ? std::min(value, 65535.0) : 0.0;
                });
        }
    }
}

}  // namespace
