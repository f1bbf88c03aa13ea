#include <algorithm>
#include <cstdint>
#include <span>

#include "patterns/pattern_image.h"
#include "patterns/positions.h"
#include "patterns/shapes.h"
#include "tqimage/test_patterns.h"

using namespace tq;

namespace {

/// The share of the extent from 0 to a point of the layout for measuring projectors, percent: the middles of
/// three equal parts, and 5 % from either edge.
constexpr double kThirds[] = {100.0 / 6.0, 300.0 / 6.0, 500.0 / 6.0};
constexpr double kNearEdges[] = {5.0, 95.0};
constexpr double kFivePoints[] = {kNearEdges[0], kThirds[0], kThirds[1], kThirds[2], kNearEdges[1]};

Positions PercentPositions(std::span<const double> percents, std::int32_t pels) {
    Positions positions;
    for (const double percent : percents)
        positions.push_back(NearestPel(PercentOfAxis(percent, pels) + 0.5));
    return positions;
}

void DrawPoints(const ImageView& view, std::span<const double> percents, std::int32_t radius) {
    DrawDiscs(view, PercentPositions(percents, view.cols), PercentPositions(percents, view.rows), radius);
}

}  // namespace

std::int32_t TQ_CALL tqCreateDotPattern(TqImage** image, std::int32_t cols, std::int32_t rows,
                                        std::int32_t firstCol, std::int32_t firstRow, std::int32_t countX,
                                        std::int32_t countY, std::int32_t stepX, std::int32_t stepY,
                                        std::int32_t radius) {
    return CreatePattern(image, cols, rows, NewPels::kZero, [=](const ImageView& view) {
        DrawDiscs(view, SteppedPositions(firstCol, stepX, countX, cols),
                  SteppedPositions(firstRow, stepY, countY, rows), radius);
    });
}

std::int32_t TQ_CALL tqCreateANSI13Pattern(TqImage** image, std::int32_t cols, std::int32_t rows,
                                           std::int32_t radius, std::int32_t extended) {
    return CreatePattern(image, cols, rows, NewPels::kZero, [=](const ImageView& view) {
        if (extended != 0) {
            DrawPoints(view, kFivePoints, radius);
            return;
        }
        DrawPoints(view, kThirds, radius);
        DrawPoints(view, kNearEdges, radius);
    });
}

std::int32_t TQ_CALL tqCreateDistortionPattern(TqImage** image, std::int32_t cols, std::int32_t rows,
                                               std::int32_t countX, std::int32_t countY,
                                               std::int32_t radius) {
    return CreatePattern(image, cols, rows, NewPels::kZero, [=](const ImageView& view) {
        const auto centres = [](std::int32_t count, std::int32_t pels) {
            return CentredPositions(std::max(count, 2), pels);
        };
        DrawDiscs(view, centres(countX, cols), centres(countY, rows), radius);
    });
}
