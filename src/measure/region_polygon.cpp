#include "tqimage/region_polygon.h"

#include <cstdint>

#include "core/guard.h"
#include "core/image_view.h"
#include "measure/polygon_scan.h"
#include "measure/span_consumers.h"
#include "measure/vertex_array.h"

using namespace tq;

namespace {

/// The frame of every polygon member: codes in the order image, vertices; then what the consumer makes of the
/// pels inside.
template <class Result, class Consumer, class Finish>
Result MeasurePolygon(const TqImage* image, SAFEARRAY** array, Consumer&& consumer, Finish&& finish) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidPolygonImage;
    return Guarded(static_cast<Result>(kInvalidPolygonImage), [&]() -> Result {
        const auto vertices = ReadVertices(array);
        if (!vertices) return kUnreadableVertex;
        VisitPolygon(view, *vertices, OnPelsOf(view, consumer));
        return static_cast<Result>(finish(consumer));
    });
}

}  // namespace

std::int32_t TQ_CALL tqGetMaxPelValueInPoly(const TqImage* image, SAFEARRAY** vertices) {
    return MeasurePolygon<std::int32_t>(image, vertices, Extremes{},
                                        [](const Extremes& extremes) { return extremes.found.max; });
}

std::int32_t TQ_CALL tqGetMinPelValueInPoly(const TqImage* image, SAFEARRAY** vertices) {
    return MeasurePolygon<std::int32_t>(image, vertices, Extremes{}, [](const Extremes& extremes) {
        return extremes.any ? extremes.found.min : Pel{0};
    });
}

double TQ_CALL tqGetTotalPelValueInPoly(const TqImage* image, std::int32_t* count, SAFEARRAY** vertices,
                                        std::int32_t threshold) {
    *count = 0;
    return MeasurePolygon<double>(image, vertices, TotalAtLeast(threshold), [&](const TotalAtLeast& total) {
        *count = static_cast<std::int32_t>(total.Count());
        return total.Sum();
    });
}

double TQ_CALL tqGetWeightedPelValueInPoly(const TqImage* image, SAFEARRAY** vertices, std::int32_t low,
                                           std::int32_t high) {
    return MeasurePolygon<double>(image, vertices, WeightedMean(low, high),
                                  [](const WeightedMean& mean) { return mean.Result(); });
}

double TQ_CALL tqCalcCharAreaInPoly(const TqImage* image, SAFEARRAY** vertices, std::int32_t full,
                                    std::int32_t none) {
    return MeasurePolygon<double>(image, vertices, CharacteristicArea(full, none),
                                  [](const CharacteristicArea& area) { return area.Result(); });
}

double TQ_CALL tqCalcAreaInPoly(const TqImage* image, SAFEARRAY** vertices) {
    return MeasurePolygon<double>(image, vertices, PelCount{},
                                  [](const PelCount& pels) { return pels.count; });
}

double TQ_CALL tqGetPelBlockAvgPoly(const TqImage* image, SAFEARRAY** vertices) {
    return MeasurePolygon<double>(image, vertices, TotalAtLeast(0),
                                  [](const TotalAtLeast& total) { return total.Mean(); });
}
