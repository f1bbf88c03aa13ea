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

constexpr double kNever = std::numeric_limits<double>::infinity();

/// Means are compared with the best ones through products, sum < best * count: a row that cannot win needs no
/// division. The factor keeps a product that was rounded down from hiding a winner.
constexpr double kSlack = 1e-14;

BlockPosition PositionOf(double mean, const std::vector<double>& means, std::int32_t firstCol,
                         std::int32_t centerRow) {
    const auto at = std::find(means.begin(), means.end(), mean) - means.begin();
    return {mean, firstCol + static_cast<std::int32_t>(at), centerRow};
}

/// The means of a row of blocks when any of them may be below `least` or above `most`.
template <class Sweep>
bool MeansThatMayWin(const Sweep& sweep, double least, double most, std::vector<double>& means) {
    const double* const sums = sweep.Sums().data();
    const double* const counts = sweep.Counts().data();
    const double low = least * (1.0 + kSlack);
    const double high = most * (1.0 - kSlack);
    if (!kernels::AnyOutside(sums, counts, means.size(), low, high)) return false;
    kernels::Quotients(sums, counts, means.size(), means.data());
    return true;
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
        PumpMessages();
        if (!MeansThatMayWin(sweep, found.least.mean, found.most.mean, means)) return;
        const kernels::DoubleRange range = kernels::FindRange(means.data(), means.size());
        const std::int32_t firstCol = blocks.FirstCenterCol();
        if (range.min < found.least.mean) found.least = PositionOf(range.min, means, firstCol, centerRow);
        if (range.max > found.most.mean) found.most = PositionOf(range.max, means, firstCol, centerRow);
    });
    return found;
}

BlockPosition FindLeastLitBlock(const ConstImageView& view, BlockShape shape, const FittingBlocks& blocks) {
    std::vector<double> means(static_cast<std::size_t>(blocks.origins.Width()));
    BlockPosition least{kNever};
    SweepLitBlocks(view, shape, blocks, [&](std::int32_t centerRow, const LitBlockSweep& sweep) {
        PumpMessages();
        if (!MeansThatMayWin(sweep, least.mean, kNever, means)) return;
        for (std::size_t i = 0; i < means.size(); ++i) {
            if (sweep.Counts()[i] == 0.0) means[i] = kNever;
        }
        const double smallest = kernels::FindRange(means.data(), means.size()).min;
        if (smallest < least.mean) least = PositionOf(smallest, means, blocks.FirstCenterCol(), centerRow);
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
