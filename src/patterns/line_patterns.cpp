#include <algorithm>
#include <cstdint>
#include <utility>

#include "patterns/pattern_image.h"
#include "patterns/positions.h"
#include "patterns/shapes.h"
#include "tqimage/test_patterns.h"

using namespace tq;

namespace {

constexpr Run WholeAxis(std::int32_t pels) noexcept {
    return {0, std::int64_t{pels} - 1};
}

/// One axis of a grid: where its lines start, and how far the lines across it reach.
struct GridAxis {
    Positions starts;
    Run reach;

    GridAxis(std::int32_t first, std::int32_t step, std::int32_t count, std::int32_t width, std::int32_t pels)
        : starts(SteppedPositions(first, step, count, pels)) {
        // A line that would start before the image is moved to its edge, not cut: hosts count the lines.
        for (std::int64_t& start : starts)
            start = std::max<std::int64_t>(start, 0);
        // With an even width the far ends stop a pel short of the last line's edge; hosts compare with grids
        // that do.
        const std::int64_t half = (std::int64_t{width} - 1) / 2;
        const std::int64_t lastLine = first + (std::max<std::int64_t>(count, 2) - 1) * step;
        reach = {first, lastLine + 2 * half};
    }
};

/// The middles of the lines moved to their first pels.
Positions StartsOfLines(Positions middles, std::int32_t width) {
    for (std::int64_t& middle : middles)
        middle -= width / 2;
    return middles;
}

/// Five lines in the middles of five equal parts.
Positions FiveLines(std::int32_t pels, std::int32_t width) {
    Positions middles;
    for (const double percent : {10.0, 30.0, 50.0, 70.0, 90.0})
        middles.push_back(NearestPel(PercentOfAxis(percent, pels)));
    return StartsOfLines(std::move(middles), width);
}

}  // namespace

std::int32_t TQ_CALL tqCreateGridPattern(TqImage** image, std::int32_t cols, std::int32_t rows,
                                         std::int32_t left, std::int32_t top, std::int32_t countX,
                                         std::int32_t countY, std::int32_t stepX, std::int32_t stepY,
                                         std::int32_t lineWidth) {
    return CreatePattern(image, cols, rows, NewPels::kZero, [=](const ImageView& view) {
        const GridAxis across(left, stepX, countX, lineWidth, cols);
        const GridAxis down(top, stepY, countY, lineWidth, rows);
        DrawRowLines(view, down.starts, lineWidth, across.reach);
        DrawColumnLines(view, across.starts, lineWidth, down.reach);
    });
}

std::int32_t TQ_CALL tqCreateConvergencePattern(TqImage** image, std::int32_t cols, std::int32_t rows,
                                                std::int32_t countX, std::int32_t countY,
                                                std::int32_t lineWidth) {
    return CreatePattern(image, cols, rows, NewPels::kZero, [=](const ImageView& view) {
        DrawRowLines(view, StartsOfLines(CentredPositions(countY, rows), lineWidth), lineWidth,
                     WholeAxis(cols));
        DrawColumnLines(view, StartsOfLines(CentredPositions(countX, cols), lineWidth), lineWidth,
                        WholeAxis(rows));
    });
}

std::int32_t TQ_CALL tqCreateVESAConvergencePattern(TqImage** image, std::int32_t cols, std::int32_t rows,
                                                    std::int32_t horizontal, std::int32_t lineWidth) {
    return CreatePattern(image, cols, rows, NewPels::kZero, [=](const ImageView& view) {
        const std::int32_t width = std::max(lineWidth, 1);
        if (horizontal != 0) {
            DrawRowLines(view, FiveLines(rows, width), width, WholeAxis(cols));
        } else {
            DrawColumnLines(view, FiveLines(cols, width), width, WholeAxis(rows));
        }
    });
}
