#include "tqimage/whole_image.h"

#include <cstdint>

#include "core/image_view.h"
#include "core/out_value.h"
#include "kernels/span_statistics.h"
#include "measure/image_values.h"
#include "measure/span_consumers.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -1;
// Of the functions that came later; hosts know each function by its own code.
constexpr std::int32_t kInvalidImage2 = -2;
constexpr std::int32_t kTooSmall = -1;

/// 64 million pels at most, so every count fits.
std::int32_t CountFrom(const ConstImageView& view, Pel level) {
    return static_cast<std::int32_t>(kernels::CountAtLeast(view.pels, view.Count(), level));
}

TotalAtLeast TotalFrom(const ConstImageView& view, Pel level) {
    TotalAtLeast total(level);
    total(view.pels, view.Count());
    return total;
}

}  // namespace

std::int32_t TQ_CALL tqCountAllPels(const TqImage* image, std::int32_t* count, std::uint16_t level) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    *count = CountFrom(view, level);
    return 0;
}

std::int32_t TQ_CALL tqCountPixels(const TqImage* image, std::uint16_t level) {
    const ConstImageView view = LocateImage(image);
    return view ? CountFrom(view, level) : kInvalidImage;
}

std::int32_t TQ_CALL tqCountNonZeroPels(const TqImage* image) {
    const ConstImageView view = LocateImage(image);
    return view ? CountFrom(view, 1) : kInvalidImage2;
}

std::int32_t TQ_CALL tqNonZeroPixelCount(const TqImage* image, std::int32_t* count) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    *count = CountFrom(view, 1);
    return 0;
}

double TQ_CALL tqSumAllPels(const TqImage* image, double* mean, std::uint16_t level) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const TotalAtLeast total = TotalFrom(view, level);
    *mean = total.Mean();
    return total.Sum();
}

double TQ_CALL tqSumAllPels2(const TqImage* image, double* mean, float* maximum) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const kernels::SumAndMax pels = SumAndLargestPel(view);
    const auto sum = static_cast<double>(pels.sum);
    StoreIfAsked(mean, sum / static_cast<double>(view.Count()));
    *maximum = pels.max;
    return sum;
}

double TQ_CALL tqSumNonZeroPels(const TqImage* image, std::int32_t* count) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const TotalAtLeast total = TotalFrom(view, 1);
    *count = static_cast<std::int32_t>(total.Count());
    return total.Sum();
}

std::int32_t TQ_CALL tqMaxAvgPels(TqImage* image) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    return StoreLargestNeighbourhoodMean(view) ? 0 : kTooSmall;
}

std::int32_t TQ_CALL tqGetMaxPelValue2(const TqImage* image, float* maximum) {
    // Before the image is looked at: hosts that ignore the status read a 0.
    *maximum = 0.0f;
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage2;
    *maximum = kernels::FindMinMax(view.pels, view.Count()).max;
    return 0;
}

std::int32_t TQ_CALL tqGetMinPelValue2(const TqImage* image, float* minimum) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage2;
    // The last pel is never looked at, and the search starts from the largest number there is. Hosts rely on
    // both.
    *minimum = kernels::FindMinMax(view.pels, view.Count() - 1).min;
    return 0;
}

std::int32_t TQ_CALL tqCalcImageValues(TqImage* image) {
    const ImageView view = LocateImage(image);
    if (!view) return kInvalidImage2;
    RefreshImageValues(view);
    return 0;
}
