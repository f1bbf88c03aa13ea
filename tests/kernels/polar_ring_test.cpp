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
            for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{7}, cosines.size()}) {
                std::vector<double> expected(count, 0.0);
                for (std::size_t i = 0; i < count; ++i) {
                    expected[i] =
                        PlainSample(source, ring.colsPerLength * (radius * cosines[i]) + ring.centreCol,
                                    ring.centreRow - radius * sines[i] * ring.rowsPerLength);
                }
                expected.push_back(-7.0);
                tqtest::ForEachTarget([&] {
                    std::vector<double> greys(count + 1, -7.0);
                    SampleRing(source, ring, cosines.data(), sines.data(), count, greys.data());
                    ASSERT_EQ(greys, expected) << radius;
                });
            }
        }
    }
}

TEST(PolarRing, EveryTargetScalesAsThePlainLoopDoes) {
    std::vector<double> greys{0, 0.25, 0.5, 65534.5, 65535, 3, 7.5, 1e-300, 12345.678, 65535, 2, 40000.5, 17};
    for (const double factor : {1.0, 0.1, 1e300, 1e-310, kInfinity}) {
        for (const double scale : {1.0, 0.3, 0.0, 1e9}) {
            std::vector<tq::Pel> expected;
            double largest = 5.0;
            for (const double grey : greys) {
                if (grey * factor > largest) largest = grey * factor;
                const double value = grey * factor * scale + 0.5;
                // Beyond 32 bits a conversion gives the lowest integer, which counts as dark.
                expected.push_back(
                    static_cast<tq::Pel>(value < 2147483648.0 ? std::min(value, 65535.0) : 0.0));
            }
            tqtest::ForEachTarget([&] {
                std::vector<tq::Pel> out(greys.size());
                StoreProducts(greys.data(), factor, scale, greys.size(), out.data());
                EXPECT_EQ(out, expected) << factor << ' ' << scale;
                EXPECT_EQ(LargestProduct(greys.data(), factor, greys.size(), 5.0), largest);
            });
        }
    }
}

}  // namespace
