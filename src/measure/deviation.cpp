#include "tqimage/deviation.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/level_table.h"
#include "core/numerics.h"
#include "core/population_deviation.h"
#include "core/replaced_image.h"
#include "kernels/span_statistics.h"
#include "measure/image_values.h"
#include "measure/mura.h"
#include "measure/rectangle_region.h"
#include "measure/span_consumers.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNotCreated = -3;
constexpr std::int32_t kNothingLit = -99;

/// From this pel on the square does not fit into a signed 32-bit integer.
constexpr Pel kFirstWrappingPel = 46341;

/// Count, sum and squares of the pels that are not 0.
struct LitMoments {
    std::int64_t count = 0;
    std::int64_t sum = 0;
    std::int64_t squares = 0;

    void operator()(const Pel* pels, std::size_t run) {
        const kernels::Totals totals = kernels::FindTotals(pels, run);
        count += static_cast<std::int64_t>(totals.nonZero);
        sum += static_cast<std::int64_t>(totals.sum);
        squares += static_cast<std::int64_t>(totals.squares);
    }
};

/// The same with each square read as a signed 32-bit integer: those that do not fit have lost 2^32.
struct WrappedLitMoments : LitMoments {
    void operator()(const Pel* pels, std::size_t run) {
        LitMoments::operator()(pels, run);
        constexpr std::int64_t kWrap = std::int64_t{1} << 32;
        squares -= kWrap * static_cast<std::int64_t>(kernels::CountAtLeast(pels, run, kFirstWrappingPel));
    }
};

double DeviationOf(const LitMoments& moments) noexcept {
    return PopulationDeviation(moments.count, moments.sum, moments.squares);
}

double MeanOf(const LitMoments& moments) {
    return static_cast<double>(moments.sum) / static_cast<double>(moments.count);
}

/// Mean and extremes of the pels that are not 0; `min` is 0 when there are none.
struct LitExtremes {
    TotalAtLeast lit{1};
    Pel min = 0;
    Pel max = 0;

    void operator()(const Pel* pels, std::size_t count) {
        lit(pels, count);
        const Pel smallest = kernels::FindSmallestNonZero(pels, count);
        if (smallest != 0 && (min == 0 || smallest < min)) min = smallest;
        max = std::max(max, kernels::FindMinMax(pels, count).max);
    }
};

/// Mura pels of every grey level, as if none exceeded `largest`: there are more pels than levels. 0 stays 0,
/// "no data", so a pel that has data is at least 1.
std::vector<Pel> MuraLevels(Pel largest, double mean) {
    std::vector<Pel> levels(std::size_t{largest} + 1);
    for (std::size_t level = 1; level < levels.size(); ++level) {
        const double deviation = double{kMuraZero} * static_cast<double>(level) / mean;
        levels[level] = std::max<Pel>(ClampToPel(TruncToInt32(deviation + 0.5)), 1);
    }
    CoverEveryLevel(levels);
    return levels;
}

OwnedImage MakeMura(const Region& region, const LitExtremes& found) {
    const std::vector<Pel> levels = MuraLevels(found.max, found.lit.Mean());
    OwnedImage mura(region.view, NewPels::kZero);
    const ImageView out = mura.View();
    VisitRectangle(region.rect, [&](std::int32_t row, std::int32_t first, std::int32_t last) {
        const Pel* const from = region.view.Row(row);
        std::transform(from + first, from + last + 1, out.Row(row) + first,
                       [&](Pel pel) { return levels[pel]; });
    });
    mura.Header().LuxPerGrey = static_cast<float>(1.0 / kMuraZero);
    RefreshImageValues(out);
    return mura;
}

}  // namespace

double TQ_CALL tqCalcStdDev(const TqImage* image, double* mean) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    // Squares have always been 32-bit here, and limits that hosts set are limits of that figure.
    WrappedLitMoments moments;
    VisitRectangle({0, 0, view.cols - 1, view.rows - 1}, OnPelsOf(view, moments));
    *mean = MeanOf(moments);
    return DeviationOf(moments);
}

double TQ_CALL tqCalcStdDevInRegion(const TqImage* image, double* mean, std::int32_t left, std::int32_t top,
                                    std::int32_t right, std::int32_t bottom) {
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    LitMoments moments;
    region.Feed(moments);
    *mean = MeanOf(moments);
    return DeviationOf(moments);
}

std::int32_t TQ_CALL tqCalcDevInRegion(const TqImage* image, double* mean, double* plusPercent,
                                       double* minusPercent, std::int32_t left, std::int32_t top,
                                       std::int32_t right, std::int32_t bottom) {
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    LitExtremes found;
    region.Feed(found);
    if (found.max == 0) return kNothingLit;
    *mean = found.lit.Mean();
    *plusPercent = (found.max - *mean) * 100.0 / *mean;
    *minusPercent = (found.min - *mean) * 100.0 / *mean;
    return 0;
}

std::int32_t TQ_CALL tqCalcImageDevInRegion(TqImage** out, const TqImage* image, std::int32_t left,
                                            std::int32_t top, std::int32_t right, std::int32_t bottom) {
    const Region region(image, {left, top, right, bottom});
    if (out == nullptr || !region) return kInvalidImage;
    LitExtremes found;
    region.Feed(found);
    if (found.max == 0) return kNothingLit;
    return ReplaceImage(out, kNotCreated, [&] { return MakeMura(region, found); });
}
