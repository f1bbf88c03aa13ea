#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/rectangle.h"
#include "kernels/window_sums.h"
#include "measure/fitting_blocks.h"
#include "platform/message_queue.h"
#include "tqimage/region_rectangle.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoPosition = -3;

/// A block mean and the reference pel of the first block, in row order, that has it.
struct Best {
    double mean;
    std::int32_t col = -1;
    std::int32_t row = -1;

    void Take(double value, const std::vector<double>& means, std::int32_t firstCol, std::int32_t centerRow) {
        mean = value;
        col = firstCol +
              static_cast<std::int32_t>(std::find(means.begin(), means.end(), value) - means.begin());
        row = centerRow;
    }
};

}  // namespace

std::int32_t TQ_CALL tqFindMinMaxInRegion(const TqImage* image, double* min, double* max,
                                          std::int32_t* minCol, std::int32_t* minRow, std::int32_t* maxCol,
                                          std::int32_t* maxRow, std::int32_t left, std::int32_t top,
                                          std::int32_t right, std::int32_t bottom, std::int32_t blockKind,
                                          std::int32_t blockWidth, std::int32_t blockHeight) {
    *minCol = *minRow = *maxCol = *maxRow = -1;
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const Rect rect = ClampRegion({left, top, right, bottom}, view.cols, view.rows);
    const std::int32_t width = std::max(blockWidth, 1);
    const std::int32_t height = std::max(blockHeight, 1);
    if (rect.Empty() || width > rect.Width() || height > rect.Height()) return kNoPosition;
    return Guarded(kInvalidImage, [&] {
        const FittingBlocks blocks{
            {rect.left, rect.top, rect.right - width + 1, rect.bottom - height + 1}, width, height};
        std::vector<double> means(static_cast<std::size_t>(blocks.origins.Width()));
        Best least{std::numeric_limits<double>::infinity()};
        Best most{-1.0};
        SweepBlocks(
            view, BlockShapeOf(blockKind), blocks, [&](std::int32_t centerRow, const BlockSweep& sweep) {
                kernels::Quotients(sweep.Sums().data(), sweep.Counts().data(), means.size(), means.data());
                const kernels::DoubleRange range = kernels::FindRange(means.data(), means.size());
                if (range.min < least.mean) least.Take(range.min, means, blocks.FirstCenterCol(), centerRow);
                if (range.max > most.mean) most.Take(range.max, means, blocks.FirstCenterCol(), centerRow);
                PumpMessages();
            });
        *min = least.mean;
        *minCol = least.col;
        *minRow = least.row;
        *max = most.mean;
        *maxCol = most.col;
        *maxRow = most.row;
        return 0;
    });
}
