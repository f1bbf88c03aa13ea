#include "kernels/radial_sums.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "kernels/matrix_product.h"
#include "simd_targets.h"

namespace {

using namespace tq::kernels;

struct Cloud {
    std::vector<double> x, y, weight;

    Centers AsCenters() const { return {x.data(), y.data(), weight.data(), x.size()}; }
    Places AsPlaces() const { return {x.data(), y.data(), x.size()}; }
};

/// Some at the same place, some far out, some as far from each other as numbers reach.
Cloud Scattered(std::size_t count, std::uint32_t seed) {
    std::mt19937 random(seed);
    const auto draw = [&] { return static_cast<double>(random() % 2001) / 1000 - 1; };
    Cloud cloud;
    for (std::size_t i = 0; i < count; ++i) {
        const double scale = i % 11 == 3 ? 1e6 : i % 17 == 5 ? 1e-90 : 1.0;
        cloud.x.push_back(i % 7 == 6 ? cloud.x[i / 2] : draw() * scale);
        cloud.y.push_back(i % 7 == 6 ? cloud.y[i / 2] : draw() * scale);
        cloud.weight.push_back(draw() * (i % 13 == 1 ? 1e9 : 1.0));
    }
    return cloud;
}

double Square(const Cloud& centers, std::size_t c, double x, double y) {
    const double dx = x - centers.x[c], dy = y - centers.y[c];
    return std::max(dx * dx + dy * dy, kLeastSquare);
}

/// The sum of one term a centre, in groups.
template <class Term>
double Grouped(std::size_t count, Term term) {
    double total = 0.0;
    for (std::size_t first = 0; first < count; first += kCenterGroup) {
        double group = 0.0;
        for (std::size_t c = first; c < std::min(count, first + kCenterGroup); ++c)
            group += term(c);
        total += group;
    }
    return total;
}

double PlainNeighbourMean(const Cloud& centers, double x, double y) {
    std::vector<double> squares;
    for (std::size_t c = 0; c < centers.x.size(); ++c)
        squares.push_back(Square(centers, c, x, y));
    double bound = std::numeric_limits<double>::infinity();
    if (squares.size() >= kBoundingRank) {
        std::vector<double> ranked = squares;
        std::sort(ranked.begin(), ranked.end());
        bound = ranked[kBoundingRank - 1];
    }
    double sum = 0.0, norm = 0.0, edgeSum = 0.0, edgeNorm = 0.0;
    for (std::size_t c = 0; c < squares.size(); ++c) {
        if (squares[c] > bound) continue;
        const double nearer = 1.0 / std::sqrt(squares[c]) - 1.0 / std::sqrt(bound);
        sum += nearer * nearer * centers.weight[c];
        norm += nearer * nearer;
        edgeSum += centers.weight[c];
        edgeNorm += 1.0;
    }
    return norm == 0.0 ? edgeSum / edgeNorm : sum / norm;
}

TEST(RadialSums, EveryTargetAddsUpAsThePlainLoopsDo) {
    for (const std::size_t count : {1u, 12u, 13u, 14u, 127u, 128u, 300u}) {
        const Cloud centers = Scattered(count, 5);
        // Every remainder of a vector, and places that are centres.
        for (const std::size_t places : {0u, 1u, 2u, 3u, 5u, 7u, 8u, 23u, 60u}) {
            Cloud at = Scattered(places, 6);
            for (std::size_t i = 0; i < places; i += 3) {
                at.x[i] = centers.x[i % count];
                at.y[i] = centers.y[i % count];
            }
            std::vector<double> first;
            tqtest::ForEachTarget([&] {
                // One more, which must stay.
                std::vector<double> sums(places + 1, 7), norms(places + 1, 7), means(places + 1, 7),
                    logs(places + 1, 7);
                InverseSquareSums(centers.AsCenters(), at.AsPlaces(), sums.data(), norms.data());
                NeighbourMeans(centers.AsCenters(), at.AsPlaces(), means.data());
                LogRadialSums(centers.AsCenters(), at.AsPlaces(), logs.data());
                for (std::size_t i = 0; i < places; ++i) {
                    const auto square = [&](std::size_t c) { return Square(centers, c, at.x[i], at.y[i]); };
                    ASSERT_EQ(norms[i], Grouped(count, [&](std::size_t c) { return 1.0 / square(c); }));
                    ASSERT_EQ(sums[i], Grouped(count, [&](std::size_t c) {
                                  return centers.weight[c] * (1.0 / square(c));
                              }));
                    ASSERT_EQ(means[i], PlainNeighbourMean(centers, at.x[i], at.y[i]));
                    const auto term = [&](std::size_t c) {
                        return centers.weight[c] * square(c) * std::log(square(c));
                    };
                    const double scale = Grouped(count, [&](std::size_t c) { return std::abs(term(c)); });
                    ASSERT_NEAR(logs[i], Grouped(count, term), scale * 1e-15 * kCenterGroup);
                }
                for (const std::vector<double>* out : {&sums, &norms, &means, &logs})
                    ASSERT_EQ(out->back(), 7);
                if (first.empty()) first = logs;
                ASSERT_EQ(logs, first);
            });
        }
    }
}

TEST(RadialSums, TheLogarithmIsGoodToItsLastPlaces) {
    // One centre at the origin and weight 1: the sum divided by the square is the logarithm alone.
    Cloud at;
    for (int exponent = -160; exponent <= 160; exponent += 4) {
        for (const double factor : {1.0, 1.1, 1.18, 1.19, 1.3, 1.41, 1.42, 1.9}) {
            at.x.push_back(std::ldexp(factor, exponent));
            at.y.push_back(0.0);
        }
    }
    const double zero = 0.0, one = 1.0;
    std::vector<double> out(at.x.size());
    tqtest::ForEachTarget([&] {
        LogRadialSums({&zero, &zero, &one, 1}, at.AsPlaces(), out.data());
        for (std::size_t i = 0; i < out.size(); ++i) {
            const double square = at.x[i] * at.x[i];
            const double expected = square * std::log(square);
            ASSERT_NEAR(out[i], expected, std::abs(expected) * 8e-16) << at.x[i];
        }
    });
}

TEST(MatrixProduct, EveryTargetAddsUpInTheOrderOfTheColumns) {
    std::mt19937 random(9);
    const auto fill = [&](std::size_t count) {
        std::vector<double> values(count);
        for (double& value : values)
            value = std::ldexp(static_cast<double>(random()) - 2e9, static_cast<int>(random() % 40));
        return values;
    };
    struct Size {
        std::size_t rows, inner, cols;
    };
    for (const auto& [rows, inner, cols] :
         {Size{1, 1, 8}, Size{3, 16, 64}, Size{16, 16, 16}, Size{5, 7, 24}}) {
        const std::vector<double> left = fill(rows * inner), right = fill(inner * cols);
        std::vector<double> expected(rows * cols + 1);
        for (std::size_t i = 0; i < rows * cols; ++i) {
            for (std::size_t k = 0; k < inner; ++k)
                expected[i] += left[i / cols * inner + k] * right[k * cols + i % cols];
        }
        tqtest::ForEachTarget([&, rows = rows, inner = inner, cols = cols] {
            std::vector<double> out(rows * cols + 1);
            MatrixProduct(left.data(), right.data(), rows, inner, cols, out.data());
            ASSERT_EQ(out, expected);
        });
    }
}

}  // namespace
