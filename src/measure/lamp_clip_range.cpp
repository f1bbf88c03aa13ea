#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/image_view.h"
#include "kernels/span_statistics.h"
#include "tqimage/uniformity.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -1;

/// Level of a cell of four pels: the truncated mean of those that neither a hot nor a dark neighbour
/// explains. A quarter of the sum is exact in single precision, so the bounds v < 2 m and v > trunc(m / 2)
/// are integers.
std::int32_t CellLevel(const Pel* upper, const Pel* lower) {
    const std::int32_t pels[] = {upper[0], upper[1], lower[0], lower[1]};
    const std::int32_t sum = pels[0] + pels[1] + pels[2] + pels[3];
    std::int32_t qualified = 0, count = 0;
    for (const std::int32_t pel : pels) {
        if (2 * pel >= sum || pel <= sum / 8) continue;
        qualified += pel;
        ++count;
    }
    return count > 0 ? qualified / count : sum / 4;
}

/// The cells of an image and which of them are lit.
struct Cells {
    const ConstImageView& view;
    std::int32_t threshold;

    std::int32_t LastCol() const noexcept { return view.cols - 2; }
    std::int32_t LastRow() const noexcept { return view.rows - 2; }

    bool Lit(std::int32_t col, std::int32_t row) const {
        return CellLevel(view.Row(row) + col, view.Row(row + 1) + col) > threshold;
    }
    /// False when no cell of the row can be lit: a level is a mean, no larger than the largest pel.
    bool MayBeLit(std::int32_t row) const {
        return kernels::FindMinMax(view.Row(row), 2 * static_cast<std::size_t>(view.cols)).max > threshold;
    }

    /// First lit column of a row from `from` on that lies before `end`, else `end`.
    std::int32_t FirstLit(std::int32_t row, std::int32_t from, std::int32_t end) const {
        std::int32_t col = from;
        while (col < end && !Lit(col, row))
            ++col;
        return col;
    }
    /// Last lit column of a row behind `end`, else `end`.
    std::int32_t LastLit(std::int32_t row, std::int32_t end) const {
        std::int32_t col = LastCol();
        while (col > end && !Lit(col, row))
            --col;
        return col;
    }
};

/// Columns and rows of cells between which all lit ones lie; firstCol is past the last when there is none.
struct LitCells {
    std::int32_t firstCol;
    std::int32_t firstRow;
    std::int32_t lastCol = -1;
    std::int32_t lastRow = -1;
};

/// Row by row, so that the image is read once in the order of memory: each row is searched only outside of
/// what is known to be lit.
LitCells FindLitCells(const Cells& cells) {
    const std::int32_t end = cells.LastCol() + 1;
    LitCells lit{end, cells.LastRow() + 1};
    for (std::int32_t row = 0; row <= cells.LastRow(); ++row) {
        if (!cells.MayBeLit(row)) continue;
        const std::int32_t first = cells.FirstLit(row, 0, lit.firstCol);
        const std::int32_t last = cells.LastLit(row, lit.lastCol);
        const bool extended = first < lit.firstCol || last > lit.lastCol;
        lit.firstCol = first;
        lit.lastCol = last;
        if (!extended && cells.FirstLit(row, first, last + 1) > last) continue;
        lit.firstRow = std::min(lit.firstRow, row);
        lit.lastRow = row;
    }
    return lit;
}

}  // namespace

std::int32_t TQ_CALL tqCalcLampClipRange(const TqImage* image, std::int32_t threshold, std::int32_t* left,
                                         std::int32_t* top, std::int32_t* right, std::int32_t* bottom) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    // Cells that begin in the last column wrap to the next row, but a field that begins there is none: hosts
    // get the same middle whether they are lit or not, so they are not looked at.
    // A column of cells with a lit one has that one in some row, so a field has columns and rows or neither.
    const LitCells lit = FindLitCells({view, threshold});
    if (lit.lastRow < 0) {
        *left = view.cols / 2 - 1;
        *right = view.cols / 2;
        *top = view.rows / 2 - 1;
        *bottom = view.rows / 2;
        return 0;
    }
    *left = lit.firstCol;
    *top = lit.firstRow;
    *right = lit.lastCol + 1;
    *bottom = lit.lastRow + 1;
    return 0;
}
