#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <numeric>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/rectangle.h"
#include "kernels/intensity.h"
#include "kernels/window_sums.h"
#include "measure/block_sweep.h"
#include "measure/fitting_blocks.h"
#include "measure/intensity_scan.h"
#include "measure/photometric_frame.h"
#include "platform/message_queue.h"
#include "tqimage/photometry.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNoScaleOrDistance = -2;
constexpr std::int32_t kNoPosition = -3;

constexpr double kInvalidSearchImage = -2.0;
constexpr double kNoScale = -3.0;
constexpr double kRejected = -4.0;

/// Ranks blocks of a whole image by R^2 * sum / cos(theta). Position, squared distance from the axis and rank
/// are held in single precision: the brightest direction has always been told apart with 24 bits, and among
/// equals the first wins.
struct SinglePrecisionRanking {
    kernels::SinglePrecisionAxis axis;

    static constexpr double kBoundSlack = 1e-6;

    double operator()(double sum, std::int32_t col, std::int32_t row) const noexcept {
        const float x = (static_cast<float>(col) - axis.centerCol) / axis.pelsPerMeterX;
        const float y = (axis.centerRow - static_cast<float>(row)) / axis.pelsPerMeterY;
        const float squaredRho = x * x + y * y;
        const double squaredRange = axis.distance * axis.distance + static_cast<double>(squaredRho);
        return static_cast<float>(squaredRange * sum / (axis.distance / std::sqrt(squaredRange)));
    }
    bool RisesWithGrey() const noexcept { return true; }
    double CenterCol() const noexcept { return axis.centerCol; }
};

kernels::SinglePrecisionAxis AxisOf(const TqImageHeader& header) {
    return {header.CenterCol, header.CenterRow, header.PelsPerMeterX, header.PelsPerMeterY,
            header.SourceDistance};
}

/// All positions of a block in an image but the last of each axis, which these searches never visited; empty
/// when the block leaves no other.
FittingBlocks AllButLastPositions(const ConstImageView& view, std::int32_t width, std::int32_t height) {
    return {{0, 0, view.cols - width - 1, view.rows - height - 1}, width, height};
}

}  // namespace

std::int32_t TQ_CALL tqCalcMaxCandela(const TqImage* image, std::int32_t* column, std::int32_t* row,
                                      std::int32_t blockWidth, std::int32_t blockHeight) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    if (!PhotometricFrame(*view.header).HasScaleAndDistance()) return kNoScaleOrDistance;
    const FittingBlocks blocks = AllButLastPositions(view, std::clamp(blockWidth, 1, view.cols),
                                                     std::clamp(blockHeight, 1, view.rows));
    if (blocks.origins.Empty()) return kNoPosition;
    return Guarded(kInvalidImage, [&] {
        IntensityScan<Extreme::kLargest, SinglePrecisionRanking> scan({AxisOf(*view.header)}, -1.0);
        SweepBlocks(
            view, BlockShape::kRectangle, blocks, [&](std::int32_t centerRow, const BlockSweep& sweep) {
                scan.Offer(centerRow, blocks.FirstCenterCol(), sweep.Sums().data(), sweep.Sums().size());
            });
        if (scan.Found()) {
            *column = scan.Col();
            *row = scan.Row();
        }
        return 0;
    });
}

std::int32_t TQ_CALL tqCalcAvgCandela(const TqImage* image, double* average, std::int32_t blockWidth,
                                      std::int32_t blockHeight) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const TqImageHeader& header = *view.header;
    if (!PhotometricFrame(header).HasScaleAndDistance()) return kNoScaleOrDistance;
    const std::int32_t width = std::max(MeasuringBlock(blockWidth, header.PelsPerMeterX, view.cols), 1);
    const std::int32_t height = std::max(MeasuringBlock(blockHeight, header.PelsPerMeterY, view.rows), 1);
    const FittingBlocks blocks = AllButLastPositions(view, width, height);
    if (blocks.origins.Empty()) return kNoPosition;
    return Guarded(kInvalidImage, [&] {
        kernels::IntensitySums sums;
        SweepBlocks(
            view, BlockShape::kRectangle, blocks, [&](std::int32_t centerRow, const BlockSweep& sweep) {
                kernels::AddBlockIntensities(sweep.Sums().data(), sweep.Sums().size(), AxisOf(header),
                                             centerRow, blocks.FirstCenterCol(),
                                             static_cast<double>(width) * height, header.LuxPerGrey, sums);
            });
        const double sum = std::accumulate(std::begin(sums.lanes), std::end(sums.lanes), 0.0);
        *average = sum / static_cast<double>(blocks.origins.Area());
        return 0;
    });
}

double TQ_CALL tqFindMaxCandelaInRegion(const TqImage* image, std::int32_t* column, std::int32_t* row,
                                        std::int32_t left, std::int32_t top, std::int32_t right,
                                        std::int32_t bottom, std::int32_t blockKind, std::int32_t blockWidth,
                                        std::int32_t blockHeight) {
    *column = -1;
    *row = -1;
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidSearchImage;
    const PhotometricFrame frame(*view.header);
    if (!frame.HasPositiveScale()) return kNoScale;
    const Rect rect = CutToImage({left, top, right, bottom}, view.cols, view.rows);
    const bool fits = !rect.Empty() && blockWidth >= 0 && blockWidth <= rect.Width() && blockHeight >= 0 &&
                      blockHeight <= rect.Height();
    if (!fits) return kRejected;

    // Single pels are all visited; blocks leave out the last position of each axis.
    const bool singlePels = blockWidth < 2 && blockHeight < 2;
    const std::int32_t width = std::max(blockWidth, 1);
    const std::int32_t height = std::max(blockHeight, 1);
    const FittingBlocks blocks{
        singlePels ? rect : Rect{rect.left, rect.top, rect.right - width, rect.bottom - height}, width,
        height};
    if (blocks.origins.Empty()) return 0.0;
    return Guarded(kInvalidSearchImage, [&] {
        IntensityScan<Extreme::kLargest, CandelaRanking> scan({frame});
        std::vector<double> means(static_cast<std::size_t>(blocks.origins.Width()));
        SweepBlocks(view, BlockShapeOf(singlePels ? 0 : blockKind), blocks,
                    [&](std::int32_t centerRow, const BlockSweep& sweep) {
                        kernels::Quotients(sweep.Sums().data(), sweep.Counts().data(), means.size(),
                                           means.data());
                        scan.Offer(centerRow, blocks.FirstCenterCol(), means.data(), means.size());
                        PumpMessages();
                    });
        *column = scan.Col();
        *row = scan.Row();
        return scan.Best();
    });
}
