#include "patterns/shapes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "core/numerics.h"
#include "measure/region_shapes.h"

namespace tq {
namespace {

Run CutToAxis(Run run, std::int32_t pels) noexcept {
    return {std::max<std::int64_t>(run.first, 0), std::min<std::int64_t>(run.last, pels - 1)};
}

void DrawRow(const ImageView& view, std::int64_t row, Run cols) noexcept {
    Pel* const pels = view.Row(static_cast<std::int32_t>(row));
    std::fill(pels + cols.first, pels + cols.last + 1, static_cast<Pel>(kLargestPel));
}

/// Calls visit(run) for the pels from `before` in front of to `after` behind each position, cut to the axis.
/// Runs that overlap or touch come as one.
template <class Visit>
void VisitAround(const Positions& positions, std::int64_t before, std::int64_t after, std::int32_t pels,
                 Visit&& visit) {
    Run open{0, -1};
    for (const std::int64_t position : positions) {
        const Run run = CutToAxis({position - before, position + after}, pels);
        if (run.first > run.last) continue;
        if (open.first > open.last) {
            open = run;
        } else if (run.first <= open.last + 1) {
            open.last = run.last;
        } else {
            visit(open);
            open = run;
        }
    }
    if (open.first <= open.last) visit(open);
}

/// Columns that a disc reaches to either side of its centre, so many rows away from it.
std::int64_t DiscReach(std::int64_t radius, std::int64_t rowsAway) noexcept {
    const std::int64_t squared = radius * radius - rowsAway * rowsAway;
    return FindStretch(0.0, std::sqrt(static_cast<double>(squared)),
                       [squared](std::int64_t col) { return col * col <= squared; })
        .second;
}

}  // namespace

void DrawRectangle(const ImageView& view, Run cols, Run rows) noexcept {
    const Run across = CutToAxis(cols, view.cols);
    const Run down = CutToAxis(rows, view.rows);
    if (across.first > across.last) return;
    for (std::int64_t row = down.first; row <= down.last; ++row)
        DrawRow(view, row, across);
}

void DrawDiscs(const ImageView& view, const Positions& cols, const Positions& rows, std::int32_t radius) {
    // All discs of a row of them reach equally far in an image row, so the nearest disc row decides.
    auto nearest = rows.begin();
    for (std::int64_t row = 0; row < view.rows && nearest != rows.end(); ++row) {
        const auto away = [row](std::int64_t centre) { return std::abs(centre - row); };
        while (nearest + 1 != rows.end() && away(*(nearest + 1)) <= away(*nearest))
            ++nearest;
        if (away(*nearest) > radius) continue;
        const std::int64_t reach = DiscReach(radius, away(*nearest));
        VisitAround(cols, reach, reach, view.cols, [&](Run run) { DrawRow(view, row, run); });
    }
}

void DrawRowLines(const ImageView& view, const Positions& starts, std::int32_t width, Run along) {
    VisitAround(starts, 0, std::int64_t{width} - 1, view.rows,
                [&](Run rows) { DrawRectangle(view, along, rows); });
}

void DrawColumnLines(const ImageView& view, const Positions& starts, std::int32_t width, Run along) {
    // Row by row, as the pels lie in memory.
    const Run rows = CutToAxis(along, view.rows);
    for (std::int64_t row = rows.first; row <= rows.last; ++row) {
        VisitAround(starts, 0, std::int64_t{width} - 1, view.cols,
                    [&](Run cols) { DrawRow(view, row, cols); });
    }
}

void FillRows(const ImageView& view, Run rows, std::span<const Pel> pels) noexcept {
    for (std::int64_t row = rows.first; row <= rows.last; ++row)
        std::copy(pels.begin(), pels.end(), view.Row(static_cast<std::int32_t>(row)));
}

}  // namespace tq
