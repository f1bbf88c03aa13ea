#include "tqimage/region_rectangle.h"

#include <algorithm>
#include <cstdint>

#include "core/image_view.h"
#include "core/out_value.h"
#include "core/rectangle.h"
#include "kernels/span_statistics.h"
#include "measure/rectangle_region.h"
#include "measure/region_shapes.h"
#include "measure/span_consumers.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kInvalidRoiImage = -1;
constexpr std::int32_t kEmptyRoi = -2;

/// Everything that one pass over a region tells.
struct RegionTotals {
    kernels::Totals found;
    std::uint64_t pels = 0;

    void operator()(const Pel* run, std::size_t count) {
        const kernels::Totals more = kernels::FindTotals(run, count);
        found.sum += more.sum;
        found.squares += more.squares;
        found.nonZero += more.nonZero;
        found.extremes = {std::min(found.extremes.min, more.extremes.min),
                          std::max(found.extremes.max, more.extremes.max)};
        pels += count;
    }
};

}  // namespace

std::int32_t TQ_CALL tqGetMaxPelValueInRegion(const TqImage* image, std::int32_t left, std::int32_t top,
                                              std::int32_t right, std::int32_t bottom) {
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    Extremes extremes;
    region.Feed(extremes);
    return extremes.found.max;
}

std::int32_t TQ_CALL tqGetMinPelValueInRegion(const TqImage* image, std::int32_t left, std::int32_t top,
                                              std::int32_t right, std::int32_t bottom) {
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    Extremes extremes;
    region.Feed(extremes);
    // Hosts know an empty region by the column behind its right edge.
    return extremes.any ? extremes.found.min : region.rect.right + 1;
}

std::int32_t TQ_CALL tqGetMinMaxPelValueInRegion(const TqImage* image, std::int32_t* min, std::int32_t* max,
                                                 std::int32_t left, std::int32_t top, std::int32_t right,
                                                 std::int32_t bottom) {
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    // The corner pel seeds both, so that a region without pels still gives a pel of the image.
    Extremes extremes;
    extremes(&region.view.At(region.rect.left, region.rect.top), 1);
    region.Feed(extremes);
    *min = extremes.found.min;
    *max = extremes.found.max;
    return 0;
}

double TQ_CALL tqGetTotalPelValueInRegion(const TqImage* image, std::int32_t* count, std::int32_t left,
                                          std::int32_t top, std::int32_t right, std::int32_t bottom,
                                          std::int32_t threshold) {
    *count = 0;
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    TotalAtLeast total(threshold);
    region.Feed(total);
    *count = static_cast<std::int32_t>(total.Count());
    return total.Sum();
}

std::int32_t TQ_CALL tqGetTotalPelValuesInRegion(const TqImage* image, std::int32_t* min, std::int32_t* max,
                                                 float* mean, std::int32_t* count, double* total,
                                                 double* totalSquares, std::int32_t* nonZero,
                                                 std::int32_t left, std::int32_t top, std::int32_t right,
                                                 std::int32_t bottom) {
    StoreIfAsked(count, 0);
    StoreIfAsked(nonZero, 0);
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    RegionTotals totals;
    region.Feed(totals);
    const kernels::MinMax extremes = totals.pels > 0 ? totals.found.extremes : kernels::MinMax{0, 0};
    const auto sum = static_cast<double>(totals.found.sum);
    const double average = totals.pels > 0 ? sum / static_cast<double>(totals.pels) : 0.0;
    StoreIfAsked<std::int32_t>(min, extremes.min);
    StoreIfAsked<std::int32_t>(max, extremes.max);
    StoreIfAsked(mean, static_cast<float>(average));
    StoreIfAsked(count, static_cast<std::int32_t>(totals.pels));
    StoreIfAsked(total, sum);
    StoreIfAsked(totalSquares, static_cast<double>(totals.found.squares));
    StoreIfAsked(nonZero, static_cast<std::int32_t>(totals.found.nonZero));
    return 0;
}

double TQ_CALL tqGetAvgPelValueInRegion(const TqImage* image, std::int32_t left, std::int32_t top,
                                        std::int32_t right, std::int32_t bottom) {
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    TotalAtLeast lit(1);
    region.Feed(lit);
    return lit.Mean();
}

double TQ_CALL tqGetWeightedPelValueInRegion(const TqImage* image, std::int32_t left, std::int32_t top,
                                             std::int32_t right, std::int32_t bottom, std::int32_t low,
                                             std::int32_t high) {
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    WeightedMean mean(low, high);
    region.Feed(mean);
    return mean.Result();
}

double TQ_CALL tqCalcCharAreaInRegion(const TqImage* image, std::int32_t left, std::int32_t top,
                                      std::int32_t right, std::int32_t bottom, std::int32_t full,
                                      std::int32_t none) {
    const Region region(image, {left, top, right, bottom});
    if (!region) return kInvalidImage;
    CharacteristicArea area(full, none);
    region.Feed(area);
    return area.Result();
}

double TQ_CALL tqCalcAreaInRegion(const TqImage* image, std::int32_t left, std::int32_t top,
                                  std::int32_t right, std::int32_t bottom) {
    const Region region(image, {left, top, right, bottom});
    return region ? static_cast<double>(region.rect.Area()) : kInvalidImage;
}

double TQ_CALL tqGetROIPelAvg(const TqImage* image, std::int32_t left, std::int32_t top, std::int32_t right,
                              std::int32_t bottom) {
    if (right < left || bottom < top) return kEmptyRoi;
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidRoiImage;
    // A rectangle beside the image has a negative side here. Its sum is then the code for an empty block, and
    // the quotient, infinite for a side of 0, is what hosts have always received.
    const Rect rect = CutToImage({left, top, right, bottom}, view.cols, view.rows);
    const std::int64_t pels = rect.Width() * rect.Height();
    if (pels < 0) return 0.0;
    TotalAtLeast total(0);
    VisitRectangle(rect, OnPelsOf(view, total));
    return (rect.Empty() ? kEmptyRoi : total.Sum()) / static_cast<double>(pels);
}
