#include <algorithm>

#include "calibration/linear_algebra.h"
#include "calibration/thin_plate.h"
#include "platform/message_queue.h"

namespace tq {

std::vector<double> LogRadialMatrix(const kernels::Places& points) {
    std::vector<double> matrix(points.count * points.count);
    const double one = 1.0;
    for (std::size_t p = 0; p < points.count; ++p)
        kernels::LogRadialSums({points.x + p, points.y + p, &one, 1}, points, &matrix[p * points.count]);
    return matrix;
}

std::vector<double> LogRadialSumsAtPoints(const SurfacePoints& points, std::span<const double> weights) {
    constexpr std::size_t kBetweenMessages = 1024;
    std::vector<double> sums(points.Count());
    for (std::size_t first = 0; first < sums.size(); first += kBetweenMessages) {
        const std::size_t count = std::min(kBetweenMessages, sums.size() - first);
        kernels::LogRadialSums(points.Weighted(weights), {&points.x[first], &points.y[first], count},
                               &sums[first]);
        PumpMessages();
    }
    return sums;
}

std::vector<double> ThinPlateWeights(const SurfacePoints& points, std::span<const double> values) {
    // Up to here the matrix takes 8 MB and its factors a fraction of a second.
    constexpr std::size_t kMostForMatrix = 1000;
    if (points.Count() == 0) return {};
    if (points.Count() > kMostForMatrix) return ThinPlateWeightsOfMany(points, values);
    std::vector<double> linear(points.Count(), 1.0);
    linear.insert(linear.end(), points.x.begin(), points.x.end());
    linear.insert(linear.end(), points.y.begin(), points.y.end());
    return SplineEquations(LogRadialMatrix(points.Places()), linear).Weights(values);
}

}  // namespace tq
