#pragma once

#include <cstdint>
#include <limits>
#include <optional>

#include "core/image_view.h"
#include "core/rectangle.h"
#include "measure/block_sweep.h"
#include "measure/fitting_blocks.h"

/// The searches for the darkest and brightest block of an image. They let the host's windows work once a row.
namespace tq {

/// A block mean and the reference pel of the first block, in row order, that has it.
struct BlockPosition {
    double mean;
    std::int32_t col = -1;
    std::int32_t row = -1;

    bool Found() const noexcept { return col >= 0; }
};

struct BlockExtremes {
    BlockPosition least{std::numeric_limits<double>::infinity()};
    BlockPosition most{-1.0};
};

/// Every position of a block inside a rectangle, the last of each axis included; sizes below 1 count as 1.
/// Nothing when no block fits.
std::optional<FittingBlocks> BlocksThatFit(const Rect& rect, std::int32_t width, std::int32_t height);

/// Both ends among the block means; at least one position is tried.
BlockExtremes FindBlockExtremes(const ConstImageView& view, BlockShape shape, const FittingBlocks& blocks);

/// The least mean of the pels that are not 0, over the blocks that have any. Not found when none has.
BlockPosition FindLeastLitBlock(const ConstImageView& view, BlockShape shape, const FittingBlocks& blocks);

}  // namespace tq
