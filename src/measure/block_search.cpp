#include "measure/block_search.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "core/guard.h"
#include "kernels/window_sums.h"
#include "measure/rectangle_region.h"
#include "platform/message_queue.h"
#include "tqimage/region_rectangle.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoPosition = -3;

BlockPosition PositionOf(double mean, const std::vector<double>& means, std::int32_t firstCol,
                         std::int32_t centerRow) {
    const auto at = std::find(means.begin(), means.end(), mean) - means.begin();
    return {mean, firstCol + static_cast<std::int32_t>(at), centerRow};
}

}  // namespace

std::optional<FittingBlocks> BlocksThatFit(const Rect& rect, std::int32_t width, std::int32_t height) {
    width = std::max(width, 1);
    height = std::max(height, 1);
    if (rect.Empty() || width > rect.Width() || height > rect.Height()) return std::nullopt;
    return FittingBlocks{
        {rect.left, rect.top, rect.right - width + 1, rect.bottom - height + 1}, width, height};
}

BlockExtremes FindBlockExtremes(const ConstImageView& view, BlockShape shape, const FittingBlocks& blocks) {
    std::vector<double> means(static_cast<std::size_t>(blocks.origins.Width()));
    BlockExtremes found;
    SweepBlocks(view, shape, blocks, [&](std::int32_t centerRow, const BlockSweep& sweep) {
        kernels::Quotients(sweep.Sums().data(), sweep.Counts().data(), means.size(), means.data());
        const kernels::DoubleRange range = kernels::FindRange(means.data(), means.size());
        const std::int32_t firstCol = blocks.FirstCenterCol();
        if (range.min < found.least.mean) found.least = PositionOf(range.min, means, firstCol, centerRow);
        if (range.max > found.most.mean) found.most = PositionOf(range.max, means, firstCol, centerRow);
        PumpMessages();
    });
    return found;
}

BlockPosition FindLeastLitBlock(const ConstImageView& view, BlockShape shape, const FittingBlocks& blocks) {
    std::vector<double> means(static_cast<std::size_t>(blocks.origins.Width()));
    constexpr double kNoMean = std::numeric_limits<double>::infinity();
    BlockPosition least{kNoMean};
    SweepLitBlocks(view, shape, blocks, [&](std::int32_t centerRow, const LitBlockSweep& sweep) {
        kernels::Quotients(sweep.Sums().data(), sweep.Counts().data(), means.size(), means.data());
        for (std::size_t i = 0; i < means.size(); ++i)
            means[i] = sweep.Counts()[i] > 0.0 ? means[i] : kNoMean;
        const double smallest = kernels::FindRange(means.data(), means.size()).min;
        if (smallest < least.mean) least = PositionOf(smallest, means, blocks.FirstCenterCol(), centerRow);
        PumpMessages();
    });
    return least;
}

}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqFindMinMaxInRegion(const TqImage* image, double* min, double* max,
                                          std::int32_t* minCol, std::int32_t* minRow, std::int32_t* maxCol,
                                          std::int32_t* maxRow, std::int32_t left, std::int32_t top,
                                          std::int32_t right, std::int32_t bottom, std::int32_t blockKind,
                                          std::int32_t blockWidth, std::int32_t blockHeight) {
    *minCol = *minRow = *maxCol = *maxRow = -1;
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    const auto blocks = BlocksThatFit(region.rect, blockWidth, blockHeight);
    if (!blocks) return kNoPosition;
    return Guarded(kInvalidImage, [&] {
        const BlockExtremes found = FindBlockExtremes(region.view, BlockShapeOf(blockKind), *blocks);
        *min = found.least.mean;
        *minCol = found.least.col;
        *minRow = found.least.row;
        *max = found.most.mean;
        *maxCol = found.most.col;
        *maxRow = found.most.row;
        return 0;
    });
}
