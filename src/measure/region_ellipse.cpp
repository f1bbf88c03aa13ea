#include "tqimage/region_ellipse.h"

#include <cstdint>

#include "core/image_view.h"
#include "core/pel_access.h"
#include "measure/region_shapes.h"
#include "measure/span_consumers.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -1;

/// The frame of every ellipse member: a bad image gives the code, an ellipse without extent the pel at its
/// centre whatever the member measures, and the rest what the consumer makes of the pels inside.
template <class Result, class Consumer, class Finish>
Result MeasureEllipse(const TqImage* image, const Ellipse& ellipse, Consumer&& consumer, Finish&& finish) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    if (ellipse.IsPoint()) return ClampedPel(view, ellipse.centerCol, ellipse.centerRow);
    VisitEllipse(view, ellipse, EllipseBox::kAroundClampedCentre, OnPelsOf(view, consumer));
    return static_cast<Result>(finish(consumer));
}

}  // namespace

std::int32_t TQ_CALL tqGetMaxPelValueInEllipse(const TqImage* image, std::int32_t centerCol,
                                               std::int32_t centerRow, std::int32_t width,
                                               std::int32_t height) {
    return MeasureEllipse<std::int32_t>(image, {centerCol, centerRow, width, height}, Extremes{},
                                        [](const Extremes& extremes) { return extremes.found.max; });
}

std::int32_t TQ_CALL tqGetMinPelValueInEllipse(const TqImage* image, std::int32_t centerCol,
                                               std::int32_t centerRow, std::int32_t width,
                                               std::int32_t height) {
    return MeasureEllipse<std::int32_t>(
        image, {centerCol, centerRow, width, height}, Extremes{},
        [](const Extremes& extremes) { return extremes.any ? extremes.found.min : Pel{0}; });
}

double TQ_CALL tqGetTotalPelValueInEllipse(const TqImage* image, std::int32_t* count, std::int32_t centerCol,
                                           std::int32_t centerRow, std::int32_t width, std::int32_t height,
                                           std::int32_t threshold) {
    *count = 0;
    return MeasureEllipse<double>(image, {centerCol, centerRow, width, height}, TotalAtLeast(threshold),
                                  [&](const TotalAtLeast& total) {
                                      *count = static_cast<std::int32_t>(total.Count());
                                      return total.Sum();
                                  });
}

double TQ_CALL tqGetWeightedPelValueInEllipse(const TqImage* image, std::int32_t centerCol,
                                              std::int32_t centerRow, std::int32_t width, std::int32_t height,
                                              std::int32_t low, std::int32_t high) {
    return MeasureEllipse<double>(image, {centerCol, centerRow, width, height}, WeightedMean(low, high),
                                  [](const WeightedMean& mean) { return mean.Result(); });
}

double TQ_CALL tqCalcCharAreaInEllipse(const TqImage* image, std::int32_t centerCol, std::int32_t centerRow,
                                       std::int32_t width, std::int32_t height, std::int32_t full,
                                       std::int32_t none) {
    return MeasureEllipse<double>(image, {centerCol, centerRow, width, height},
                                  CharacteristicArea(full, none),
                                  [](const CharacteristicArea& area) { return area.Result(); });
}

double TQ_CALL tqCalcAreaInEllipse(const TqImage* image, std::int32_t centerCol, std::int32_t centerRow,
                                   std::int32_t width, std::int32_t height) {
    return MeasureEllipse<double>(image, {centerCol, centerRow, width, height}, PelCount{},
                                  [](const PelCount& pels) { return pels.count; });
}
