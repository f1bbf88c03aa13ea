#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/level_table.h"
#include "core/numerics.h"
#include "kernels/single_precision_sum.h"
#include "kernels/span_statistics.h"
#include "measure/photometric_frame.h"
#include "tqimage/uniformity.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoScale = -3;
constexpr std::int32_t kNoMemory = -5;

/// The mean as it has always been: a single precision sum, pel after pel, over the number of pels.
double SinglePrecisionMean(const ConstImageView& view) {
    return kernels::SinglePrecisionSum(view.pels, view.Count()) / static_cast<float>(view.Count());
}

double MichelsonContrast(double value, double mean) noexcept {
    return std::abs((value - mean) / (mean + value));
}

/// Output pels by input pel. A contrast depends on nothing else, so the divisions are done once for each grey
/// level from the smallest of the image to the largest.
std::vector<Pel> ContrastTable(double mean, kernels::MinMax range) {
    const double strongest = std::max(MichelsonContrast(range.max, mean), MichelsonContrast(range.min, mean));
    std::vector<Pel> table(std::size_t{range.max} + 1);
    for (std::size_t level = range.min; level < table.size(); ++level) {
        const double contrast = MichelsonContrast(static_cast<double>(level), mean);
        table[level] = ClampToPel(TruncToInt32(std::nearbyint(contrast / strongest * kLargestPel)));
    }
    CoverEveryLevel(table);
    return table;
}

void FillContrastMap(const ConstImageView& source, const ImageView& out) {
    const kernels::MinMax range = kernels::FindMinMax(source.pels, source.Count());
    // Without contrast there is nothing to scale to. The rounded mean of equal pels may differ from them, so
    // they are told by their range.
    if (range.min == range.max) {
        std::fill_n(out.pels, source.Count(), Pel{0});
        return;
    }
    const std::vector<Pel> table = ContrastTable(SinglePrecisionMean(source), range);
    std::transform(source.pels, source.pels + source.Count(), out.pels,
                   [&table](Pel pel) { return table[pel]; });
}

}  // namespace

std::int32_t TQ_CALL tqCalcAbsContrast(TqImage** out, const TqImage* source) {
    const ConstImageView view = LocateImage(source);
    if (!view || out == nullptr) return kInvalidImage;
    return Guarded(kNoMemory, [&] {
        const bool hasScale = PhotometricFrame(*view.header).HasPositiveScale();
        OwnedImage map(view, hasScale ? NewPels::kUnwritten : NewPels::kZero);
        if (hasScale) FillContrastMap(view, map.View());
        CommitImage(out, std::move(map));
        // Hosts without a scale still get the image it was meant for.
        return hasScale ? 0 : kNoScale;
    });
}
