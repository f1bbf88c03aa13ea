#pragma once

#include <cstdint>
#include <utility>

#include "core/image_view.h"
#include "core/rectangle.h"
#include "measure/block_sweep.h"

namespace tq {

/// The blocks that a search moves over a rectangle: where their first pels may lie, and their size. The
/// reference pel of the block at (x0, y0) is (x0 + width / 2, y0 + height / 2), from which PlaceBlock leads
/// back to the same block.
struct FittingBlocks {
    Rect origins;
    std::int32_t width;
    std::int32_t height;

    std::int32_t FirstCenterCol() const noexcept { return origins.left + width / 2; }
    std::int32_t LastCenterCol() const noexcept { return origins.right + width / 2; }
};

/// Moves a sweep over the rows of positions and calls visit(centerRow) for each.
template <class Sweep, class Visit>
void SweepRows(Sweep& sweep, const FittingBlocks& blocks, Visit&& visit) {
    for (std::int32_t row = blocks.origins.top; row <= blocks.origins.bottom; ++row) {
        const std::int32_t centerRow = row + blocks.height / 2;
        sweep.MoveTo(centerRow);
        visit(centerRow);
    }
}

/// Calls visit(centerRow, sweep) for each row of positions; entry i of the sweep is centre FirstCenterCol() +
/// i.
template <class Visit>
void SweepBlocks(const ConstImageView& view, BlockShape shape, const FittingBlocks& blocks, Visit&& visit) {
    const auto sweep = MakeBlockSweep(view, shape, blocks.width, blocks.height, blocks.FirstCenterCol(),
                                      blocks.LastCenterCol());
    SweepRows(*sweep, blocks, [&](std::int32_t centerRow) { visit(centerRow, std::as_const(*sweep)); });
}

/// The same with sums and counts of the pels that are not 0.
template <class Visit>
void SweepLitBlocks(const ConstImageView& view, BlockShape shape, const FittingBlocks& blocks,
                    Visit&& visit) {
    LitBlockSweep sweep(view, shape, blocks.width, blocks.height, blocks.FirstCenterCol(),
                        blocks.LastCenterCol());
    SweepRows(sweep, blocks, [&](std::int32_t centerRow) { visit(centerRow, std::as_const(sweep)); });
}

}  // namespace tq
