#include "kernels/rotate_row.h"

#include <algorithm>
#include <cstddef>

#include "kernels/bilinear.h"

namespace tq::kernels {
namespace {

struct Place {
    float col;
    float row;
};

/// The steps in the order that every target follows.
Place PlaceOf(const RotationBack& back, float y, std::int32_t col) noexcept {
    const float dx = (static_cast<float>(col) + back.left) - back.centreCol;
    const float dy = y + back.centreRow;
    return {(back.cosine * dx - back.sine * dy) + back.centreCol,
            -((back.sine * dx + back.cosine * dy) - back.centreRow)};
}

/// The pels of a row whose places lie inside. A place's co-ordinates only grow or only fall along the row,
/// for rounding keeps the order of what it rounds: so the pels are a run.
struct Run {
    std::int32_t first;
    std::int32_t end;
};

/// First index in 0 .. count for which `holds` is true, false before it and true behind.
template <class Holds>
std::int32_t FirstThat(std::int32_t count, Holds&& holds) noexcept {
    std::int32_t low = 0;
    while (low < count) {
        const std::int32_t middle = low + (count - low) / 2;
        if (holds(middle)) {
            count = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

template <class At>
Run RunInside(std::int32_t count, float limit, bool falls, At&& at) noexcept {
    if (falls) {
        return {FirstThat(count, [&](std::int32_t i) { return at(i) < limit; }),
                FirstThat(count, [&](std::int32_t i) { return !(at(i) >= 0.0f); })};
    }
    return {FirstThat(count, [&](std::int32_t i) { return at(i) >= 0.0f; }),
            FirstThat(count, [&](std::int32_t i) { return !(at(i) < limit); })};
}

Run RunInside(const SourcePels& source, const RotationBack& back, float y, std::int32_t cols) noexcept {
    const Run byCol = RunInside(cols, static_cast<float>(source.cols), back.cosine < 0.0f,
                                [&](std::int32_t i) { return PlaceOf(back, y, i).col; });
    const Run byRow = RunInside(cols, static_cast<float>(source.rows), back.sine > 0.0f,
                                [&](std::int32_t i) { return PlaceOf(back, y, i).row; });
    const std::int32_t first = std::max(byCol.first, byRow.first);
    return {first, std::max(first, std::min(byCol.end, byRow.end))};
}

}  // namespace

void RotateRow(const SourcePels& source, const RotationBack& back, float y, Pel* out, std::int32_t cols) {
    const Run run = RunInside(source, back, y, cols);
    // The last column and row belong to the cell before them; an axis of one pel has that pel only.
    const std::int32_t lastCol = std::max(source.cols - 2, 0);
    const std::int32_t lastRow = std::max(source.rows - 2, 0);
    const std::ptrdiff_t next = source.cols == 1 ? 0 : 1;
    const std::ptrdiff_t below = source.rows == 1 ? 0 : source.cols;
    std::fill_n(out, run.first, Pel{0});
    for (std::int32_t i = run.first; i < run.end; ++i) {
        const Place place = PlaceOf(back, y, i);
        const std::int32_t col = std::min(TruncToInt32(place.col), lastCol);
        const std::int32_t row = std::min(TruncToInt32(place.row), lastRow);
        const double fx = next == 0 ? 0.0 : static_cast<double>(place.col) - col;
        const double fy = below == 0 ? 0.0 : static_cast<double>(place.row) - row;
        const Pel* near = source.pels + static_cast<std::ptrdiff_t>(row) * source.cols + col;
        out[i] = WrapToPel(TruncToInt32(Blend(near, near + below, next, fx, fy)));
    }
    std::fill(out + run.end, out + cols, Pel{0});
}

}  // namespace tq::kernels
