#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "images.h"
#include "tqimage/plots.h"

namespace tqtest {
namespace {

constexpr double kGap = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

enum Type { kPoints, kLine, kBars, kSteps, kFilled, kPolarCurve };

Image Graph(const std::vector<double>& values, int cols, int rows, Type type, double low = 0,
            double high = 0) {
    Image graph;
    EXPECT_EQ(tqCreateGraphType(graph.Address(), values.data(), static_cast<std::int32_t>(values.size()),
                                cols, rows, type, low, high),
              0);
    return graph;
}

/// One picture a line, '#' lit.
std::vector<std::string> Picture(const Image& graph) {
    std::vector<std::string> lines;
    for (int row = 0; row < graph.Rows(); ++row) {
        lines.emplace_back();
        for (int col = 0; col < graph.Cols(); ++col)
            lines.back() += graph(col, row) == 65535 ? '#' : graph(col, row) == 0 ? '.' : '?';
    }
    return lines;
}

TEST(Graph, ItsHeaderMapsPelsToSamplesAndUnits) {
    const struct {
        Type type;
        double low, high;
        float originCol, originRow, colsPerSample, rowsPerUnit;
    } cases[] = {{kPoints, 0, 0, 0, 8, 5, 2},  // up to the largest value, 4
                 {kLine, -1, 15, 0, 7.5f, 5, 0.5f},
                 {kFilled, 2, 3, 0, 24, 5, 8},
                 {kBars, -2, 2, 1.5f, 4, 4, 2},
                 {kSteps, -4, 0, 1.5f, 0, 4, 2}};
    for (const auto& it : cases) {
        const Image graph =
            Graph({1, 4, kGap, 2, kInfinity}, it.colsPerSample > 4 ? 21 : 20, 9, it.type, it.low, it.high);
        TqImageHeader expected = DefaultHeader(graph.Cols(), 9);
        expected.LuxPerGrey = expected.SourceDistance = 0;
        expected.CenterCol = it.originCol;
        expected.CenterRow = it.originRow;
        expected.PelsPerMeterX = it.colsPerSample;
        expected.PelsPerMeterY = it.rowsPerUnit;
        EXPECT_TRUE(SameHeader(expected, graph.Header())) << "type " << it.type;
    }
}

TEST(Graph, DrawsEachType) {
    const std::vector<double> values{0, 4, kGap, 2, 3};
    using Lines = std::vector<std::string>;
    EXPECT_EQ(Picture(Graph(values, 9, 5, kPoints)),
              (Lines{"..#......", "........#", "......#..", ".........", "#........"}));
    EXPECT_EQ(Picture(Graph(values, 9, 5, kLine)),
              (Lines{"..#......", ".##....##", ".#....##.", "##.......", "#........"}));
    EXPECT_EQ(Picture(Graph(values, 10, 5, kSteps)),
              (Lines{"..##......", "..#.....##", "..#...###.", "..#.......", "###......."}));
    EXPECT_EQ(Picture(Graph(values, 9, 5, kFilled)),
              (Lines{"..#......", "..#.....#", ".##...###", ".##...###", "###...###"}));
    EXPECT_EQ(Picture(Graph({-2, 2, 1}, 12, 5, kBars, -2, 2)),
              (Lines{"....###.....", "....###.###.", "###.###.###.", "###.........", "###........."}));
    // Beyond the range, infinite, more samples than columns, a range without a value.
    EXPECT_EQ(Picture(Graph({9, -9, kInfinity, -kInfinity}, 4, 3, kPoints, 0, 1)),
              (Lines{"#.#.", "....", ".#.#"}));
    EXPECT_EQ(Picture(Graph({1, 0, 1, 0.5, 0.5, 0.5}, 2, 3, kLine)), (Lines{"##", "##", "#."}));
    EXPECT_EQ(Picture(Graph({kGap, -kInfinity}, 2, 2, kFilled)), (Lines{"..", ".#"}));
    EXPECT_EQ(Picture(Graph({5}, 3, 2, kLine)), (Lines{".#.", "..."}));
}

TEST(Graph, PolarCurveGoesAroundFromTheRight) {
    // Four samples of the full radius: a square on its tip. With a gap, the sides on it are missing.
    const Image square = Graph({7, 7, 7, 7}, 21, 31, kPolarCurve, 2, 7);
    const Image open = Graph({7, 7, kGap, 7}, 21, 31, kPolarCurve, 2, 7);
    for (int d = 0; d <= 10; ++d) {
        EXPECT_EQ(square(20 - d, 15 - d), 65535) << d;
        EXPECT_EQ(square(20 - d, 15 + d), 65535) << d;
        EXPECT_EQ(square(d, 15 - d), 65535) << d;
        EXPECT_EQ(open(20 - d, 15 - d), 65535) << d;
        EXPECT_EQ(open(d, 15 - d), d == 10 ? 65535 : 0) << d;
    }
    EXPECT_EQ(square.Header().PelsPerMeterX, 2.0f) << "ten pels for five units";
    // Many samples of one value are a circle, and of the bottom of the range its middle.
    const Image circle = Graph(std::vector<double>(5000, 3.0), 201, 201, kPolarCurve, 0, 4);
    int lit = 0;
    for (int row = 0; row < 201; ++row) {
        for (int col = 0; col < 201; ++col) {
            if (circle(col, row) == 0) continue;
            ++lit;
            EXPECT_NEAR(std::hypot(col - 100, row - 100), 75, 0.72);
        }
    }
    EXPECT_GT(lit, 75 * 4 * std::numbers::sqrt2);
    EXPECT_EQ(Graph({-1, -2}, 5, 5, kPolarCurve, 0, 1)(2, 2), 65535);
}

}  // namespace
}  // namespace tqtest
