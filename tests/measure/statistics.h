#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "automation_host.h"
#include "reference.h"
#include "tqimage/region_ellipse.h"
#include "tqimage/region_polygon.h"
#include "tqimage/region_rectangle.h"

/// The six statistics every shape has, bound to one region, and what they must be for the pels it visits.
namespace tqtest {

inline constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

using Polygon = std::vector<Position>;

inline HostArray VerticesOf(const Polygon& polygon) {
    return MakeInt32Array(2, static_cast<std::uint32_t>(polygon.size()), [&](int part, int vertex) {
        const Position& at = polygon[static_cast<std::size_t>(vertex)];
        return part == 0 ? at.col : at.row;
    });
}

struct Statistics {
    std::function<std::int32_t()> max;
    std::function<std::int32_t()> min;
    std::function<double(std::int32_t* count, std::int32_t threshold)> total;
    std::function<double(std::int32_t low, std::int32_t high)> weighted;
    std::function<double(std::int32_t full, std::int32_t none)> charArea;
    std::function<double()> area;
};

/// Every function of a shape takes the image, its count if it has one, where to measure, and its limits.
template <class Max, class Min, class Total, class Weighted, class CharArea, class Area, class... Where>
Statistics Bind(Max max, Min min, Total total, Weighted weighted, CharArea charArea, Area area,
                const TqImage* image, Where... where) {
    return {[=] { return max(image, where...); },
            [=] { return min(image, where...); },
            [=](auto* count, auto threshold) { return total(image, count, where..., threshold); },
            [=](auto low, auto high) { return weighted(image, where..., low, high); },
            [=](auto full, auto none) { return charArea(image, where..., full, none); },
            [=] { return area(image, where...); }};
}

inline Statistics OfRectangle(const TqImage* image, std::int32_t left, std::int32_t top, std::int32_t right,
                              std::int32_t bottom) {
    return Bind(tqGetMaxPelValueInRegion, tqGetMinPelValueInRegion, tqGetTotalPelValueInRegion,
                tqGetWeightedPelValueInRegion, tqCalcCharAreaInRegion, tqCalcAreaInRegion, image, left, top,
                right, bottom);
}

inline Statistics OfEllipse(const TqImage* image, std::int32_t col, std::int32_t row, std::int32_t width,
                            std::int32_t height) {
    return Bind(tqGetMaxPelValueInEllipse, tqGetMinPelValueInEllipse, tqGetTotalPelValueInEllipse,
                tqGetWeightedPelValueInEllipse, tqCalcCharAreaInEllipse, tqCalcAreaInEllipse, image, col, row,
                width, height);
}

inline Statistics OfPolygon(const TqImage* image, SAFEARRAY** vertices) {
    return Bind(tqGetMaxPelValueInPoly, tqGetMinPelValueInPoly, tqGetTotalPelValueInPoly,
                tqGetWeightedPelValueInPoly, tqCalcCharAreaInPoly, tqCalcAreaInPoly, image, vertices);
}

/// The pels that a polygon visits, asked one by one: the drawings show that they are the right ones.
inline Visited PolygonPels(const Image& like, const Polygon& polygon) {
    HostArray vertices = VerticesOf(polygon);
    Image image(like.Header());
    Visited visited;
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            image(col, row) = 1;
            if (tqGetMaxPelValueInPoly(image, vertices.Address()) == 1) visited.push_back({col, row});
            image(col, row) = 0;
        }
    }
    return visited;
}

/// Two limits for the weighted means and areas: ordered, touching, reversed, negative, beyond every pel.
inline const std::vector<std::pair<std::int32_t, std::int32_t>> kLimits = {
    {0, 65535},          {1000, 40000}, {-500, 70000},  {30000, 30000}, {40000, 1000},      {0, 0},
    {kLowest, kHighest}, {-7, 0},       {65535, 65536}, {70000, 80000}, {kHighest, kLowest}};

/// A sum of weights is compared within its rounding: one part in 2^40 for up to 2^16 of them.
inline void ExpectNearly(double expected, double actual) {
    EXPECT_NEAR(expected, actual, std::abs(expected) * 1e-12);
}

inline void ExpectWeighted(const Statistics& region, const std::vector<std::uint16_t>& pels) {
    for (const auto& [low, high] : kLimits) {
        SCOPED_TRACE(testing::Message() << "limits " << low << ", " << high);
        const double span = static_cast<double>(high) - low;
        const bool weighs = high != 0 && low < high;
        double sum = 0, weight = 0, area = 0;
        for (const std::int32_t pel : pels) {
            if (pel >= low) {
                sum += pel;
                weight += weighs && pel < high ? (static_cast<double>(pel) - low) / span : 1;
            }
            if (pel <= low) {
                area += 1;
            } else if (low < high && pel <= high) {
                area += (static_cast<double>(pel) - high) / -span;
            }
        }
        ExpectNearly(weight > 0 ? sum / weight : sum, region.weighted(low, high));
        ExpectNearly(area, region.charArea(low, high));
    }
}

/// All six statistics of a region that visits these pels; `emptyMin` is the minimum of no pel.
inline void ExpectStatistics(const Statistics& region, const std::vector<std::uint16_t>& pels,
                             std::int32_t emptyMin = 0) {
    const auto [low, high] = std::minmax_element(pels.begin(), pels.end());
    EXPECT_EQ(region.max(), pels.empty() ? 0 : *high);
    EXPECT_EQ(region.min(), pels.empty() ? emptyMin : *low);
    EXPECT_EQ(region.area(), static_cast<double>(pels.size()));
    for (const std::int32_t threshold : {kLowest, -1, 0, 1, 30000, 65535, 65536, kHighest}) {
        std::int32_t expectedCount = 0;
        std::uint64_t sum = 0;
        for (const std::uint16_t pel : pels) {
            if (pel < threshold) continue;
            ++expectedCount;
            sum += pel;
        }
        std::int32_t count = -9;
        EXPECT_EQ(region.total(&count, threshold), static_cast<double>(sum)) << "threshold " << threshold;
        EXPECT_EQ(count, expectedCount) << "threshold " << threshold;
    }
    ExpectWeighted(region, pels);
}

/// Every statistic answers with the same code, and the total still sets its count.
inline void ExpectCode(const Statistics& region, std::int32_t code) {
    std::int32_t count = 9;
    EXPECT_EQ(region.max(), code);
    EXPECT_EQ(region.min(), code);
    EXPECT_EQ(region.total(&count, 0), code);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(region.weighted(0, 1), code);
    EXPECT_EQ(region.charArea(0, 1), code);
    EXPECT_EQ(region.area(), code);
}

/// The images every region is tried on: single pels, lines, odd sizes, and one longer than any SIMD block.
inline std::vector<Image> StatisticsImages() {
    std::vector<Image> images;
    std::uint32_t seed = 1;
    for (const auto& [cols, rows] : {std::pair{1, 1}, {9, 1}, {1, 8}, {17, 13}, {300, 200}}) {
        images.push_back(RandomImageWithHoles(cols, rows, seed++));
    }
    return images;
}

}  // namespace tqtest
