#include "tqimage/pel_block.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/rectangle.h"
#include "kernels/window_sums.h"
#include "measure/block_average.h"
#include "measure/block_sweep.h"
#include "measure/region_shapes.h"
#include "measure/span_consumers.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kEmptyBlock = -2;
constexpr std::int32_t kInvalidCountedImage = -2;

/// Smallest block sum whose average over `count` pels reaches `threshold`, or exceeds it; one more than any
/// sum when none does. Averages rise with their sums, so one comparison of integers then replaces a division
/// a block.
double FirstSum(double threshold, bool exceeding, double count) {
    const auto counts = [&](double sum) {
        return exceeding ? sum / count > threshold : sum / count >= threshold;
    };
    const double beyond = count * kLargestPel + 1.0;
    double sum = std::clamp(std::floor(threshold * count), 0.0, beyond);
    while (sum > 0.0 && counts(sum - 1.0))
        --sum;
    while (sum < beyond && !counts(sum))
        ++sum;
    return sum;
}

std::uint64_t CountPels(const ConstImageView& view, double bound) {
    if (bound > kLargestPel) return 0;
    TotalAtLeast total(static_cast<std::int64_t>(bound));
    total(view.pels, view.Count());
    return total.Count();
}

/// Positions whose block average is at least, or exceeds, the threshold.
std::uint64_t CountBlocks(const ConstImageView& view, BlockShape shape, std::int32_t width,
                          std::int32_t height, double threshold, bool exceeding) {
    if (width == 1 && height == 1) return CountPels(view, FirstSum(threshold, exceeding, 1.0));
    const auto sweep = MakeBlockSweep(view, shape, width, height, 0, view.cols - 1);
    std::vector<double> bounds(sweep->Sums().size());
    int boundsVersion = -1;
    std::uint64_t hits = 0;
    for (std::int32_t row = 0; row < view.rows; ++row) {
        sweep->MoveTo(row);
        if (boundsVersion != sweep->CountsVersion()) {
            boundsVersion = sweep->CountsVersion();
            const auto counts = sweep->Counts();
            for (std::size_t i = 0; i < bounds.size(); ++i) {
                const bool same = i > 0 && counts[i] == counts[i - 1];
                bounds[i] = same ? bounds[i - 1] : FirstSum(threshold, exceeding, counts[i]);
            }
        }
        hits += kernels::CountAtLeast(sweep->Sums().data(), bounds.data(), bounds.size());
    }
    return hits;
}

enum class Wanted { kAtLeast, kAtMost };

std::int32_t CountAllBlocks(const TqImage* image, std::uint32_t* count, double threshold, std::int32_t width,
                            std::int32_t height, BlockShape shape, Wanted wanted) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidCountedImage;
    return Guarded(kInvalidCountedImage, [&] {
        const std::int32_t blockCols = std::min(std::max(width, 1), view.cols);
        const std::int32_t blockRows = std::min(std::max(height, 1), view.rows);
        std::uint64_t found = 0;
        if (!std::isnan(threshold)) {
            const bool atMost = wanted == Wanted::kAtMost;
            const std::uint64_t hits = CountBlocks(view, shape, blockCols, blockRows, threshold, atMost);
            found = atMost ? view.Count() - hits : hits;
        }
        *count = static_cast<std::uint32_t>(found);
        return 0;
    });
}

/// Empty, and so refused, once cut to the image. A value, not a code, when there are pels.
template <class Measure>
double MeasureBlock(const TqImage* image, const Rect& block, Measure&& measure) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const Rect rect = CutToImage(block, view.cols, view.rows);
    return rect.Empty() ? kEmptyBlock : measure(view, rect);
}

/// Hosts pass the threshold as an integer of which the low 16 bits count.
TotalAtLeast TotalFromPel(std::int32_t threshold) {
    return TotalAtLeast(WrapToPel(threshold));
}

}  // namespace

double TQ_CALL tqSumPelBlock(const TqImage* image, std::int32_t threshold, std::int32_t left,
                             std::int32_t top, std::int32_t right, std::int32_t bottom) {
    return MeasureBlock(image, {left, top, right, bottom}, [&](const ConstImageView& view, const Rect& rect) {
        TotalAtLeast total = TotalFromPel(threshold);
        VisitRectangle(rect, OnPelsOf(view, total));
        return total.Sum();
    });
}

double TQ_CALL tqSumPelBlockCircle(const TqImage* image, std::int32_t threshold, std::int32_t left,
                                   std::int32_t top, std::int32_t right, std::int32_t bottom) {
    const CircleBlock circle({left, top, right, bottom});
    return MeasureBlock(image, {left, top, right, bottom}, [&](const ConstImageView& view, const Rect& rect) {
        TotalAtLeast total = TotalFromPel(threshold);
        const auto consume = OnPelsOf(view, total);
        for (std::int32_t row = rect.top; row <= rect.bottom; ++row) {
            const auto [first, last] = circle.Row(row);
            const auto from = std::max<std::int64_t>(first, rect.left);
            const auto to = std::min<std::int64_t>(last, rect.right);
            if (from <= to) consume(row, static_cast<std::int32_t>(from), static_cast<std::int32_t>(to));
        }
        return total.Sum();
    });
}

std::int32_t TQ_CALL tqSumPelBlockCirclePels(std::int32_t left, std::int32_t top, std::int32_t right,
                                             std::int32_t bottom) {
    const Rect rect{left, top, right, bottom};
    if (rect.Empty()) return kEmptyBlock;
    // Walked along the shorter side, so that the widest rectangles end soon: each step then adds many pels.
    const CircleBlock circle(rect);
    const bool byRow = rect.Height() <= rect.Width();
    const std::int64_t from = byRow ? rect.left : rect.top;
    const std::int64_t to = byRow ? rect.right : rect.bottom;
    std::int64_t count = 0;
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    for (std::int64_t line = byRow ? top : left; line <= (byRow ? bottom : right) && count < kMost; ++line) {
        const auto [first, last] = byRow ? circle.Row(line) : circle.Column(line);
        count += std::max<std::int64_t>(std::min(last, to) - std::max(first, from) + 1, 0);
    }
    return static_cast<std::int32_t>(std::min(count, kMost));
}

double TQ_CALL tqGetPelBlockAvg(const TqImage* image, std::int32_t centerCol, std::int32_t centerRow,
                                std::int32_t width, std::int32_t height) {
    const ConstImageView view = LocateImage(image);
    return view ? BlockAverage(view, centerCol, centerRow, width, height) : kInvalidImage;
}

double TQ_CALL tqGetPelBlockAvgEllipse(const TqImage* image, std::int32_t centerCol, std::int32_t centerRow,
                                       std::int32_t width, std::int32_t height) {
    const ConstImageView view = LocateImage(image);
    return view ? EllipseAverage(view, centerCol, centerRow, width, height) : kInvalidImage;
}

std::int32_t TQ_CALL tqCountAllPelBlocks(const TqImage* image, std::uint32_t* count, double threshold,
                                         std::int32_t width, std::int32_t height) {
    return CountAllBlocks(image, count, threshold, width, height, BlockShape::kRectangle, Wanted::kAtLeast);
}

std::int32_t TQ_CALL tqCountAllPelBlocksLess(const TqImage* image, std::uint32_t* count, double threshold,
                                             std::int32_t width, std::int32_t height) {
    return CountAllBlocks(image, count, threshold, width, height, BlockShape::kRectangle, Wanted::kAtMost);
}

std::int32_t TQ_CALL tqCountAllPelBlocksEllipse(const TqImage* image, std::uint32_t* count, double threshold,
                                                std::int32_t width, std::int32_t height) {
    return CountAllBlocks(image, count, threshold, width, height, BlockShape::kEllipse, Wanted::kAtLeast);
}

std::int32_t TQ_CALL tqCountAllPelBlocksEllipseLess(const TqImage* image, std::uint32_t* count,
                                                    double threshold, std::int32_t width,
                                                    std::int32_t height) {
    return CountAllBlocks(image, count, threshold, width, height, BlockShape::kEllipse, Wanted::kAtMost);
}
