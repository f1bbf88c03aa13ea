#include "calibration/surface_points.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace tq {
namespace {

bool IsFinite(const CalibrationPoint& point) noexcept {
    return std::isfinite(point.col) && std::isfinite(point.row) && std::isfinite(point.value);
}

double QuantumOf(std::span<const CalibrationPoint> points) noexcept {
    float largest = 0.0f;
    for (const CalibrationPoint& point : points)
        largest = std::max({largest, std::abs(point.col), std::abs(point.row)});
    double quantum = 1.0 / 1024;
    while (largest / quantum >= 0x1p24 - 1.0)
        quantum *= 2.0;
    return quantum;
}

SurfaceFrame FrameOf(const SurfacePoints& points) noexcept {
    if (points.Count() == 0) return {};
    const auto [left, right] = std::minmax_element(points.col.begin(), points.col.end());
    const double width = *right - *left;
    const double height = points.row.back() - points.row.front();
    const double extent = std::max(width, height);
    return {*left + width / 2.0, points.row.front() + height / 2.0, extent > 0.0 ? 2.0 / extent : 1.0};
}

struct RoundedPoint {
    double row;
    double col;
    double value;

    bool operator<(const RoundedPoint& other) const noexcept {
        return std::tie(row, col, value) < std::tie(other.row, other.col, other.value);
    }
};

}  // namespace

double SurfacePoints::LargestValue() const noexcept {
    double largest = 0.0;
    for (const double v : value)
        largest = std::max(largest, std::abs(v));
    return largest;
}

SurfacePoints PrepareSurfacePoints(std::vector<CalibrationPoint> points) {
    std::erase_if(points, [](const CalibrationPoint& point) { return !IsFinite(point); });
    SurfacePoints surface;
    surface.quantum = QuantumOf(points);
    const auto round = [&](float place) { return std::nearbyint(place / surface.quantum) * surface.quantum; };
    std::vector<RoundedPoint> rounded;
    rounded.reserve(points.size());
    for (const CalibrationPoint& point : points)
        rounded.push_back({round(point.row), round(point.col), point.value});
    // By value as well, so that a mean does not depend on the order in which a host lists its points.
    std::sort(rounded.begin(), rounded.end());

    for (std::size_t first = 0, end = 0; first < rounded.size(); first = end) {
        const auto& [row, col, value] = rounded[first];
        double sum = 0.0;
        for (end = first; end < rounded.size() && rounded[end].row == row && rounded[end].col == col; ++end)
            sum += rounded[end].value;
        surface.col.push_back(col);
        surface.row.push_back(row);
        surface.value.push_back(sum / static_cast<double>(end - first));
    }
    surface.x.resize(surface.col.size());
    surface.frame = FrameOf(surface);
    std::transform(surface.col.begin(), surface.col.end(), surface.x.begin(),
                   [&](double col) { return surface.frame.X(col); });
    surface.y.resize(surface.row.size());
    std::transform(surface.row.begin(), surface.row.end(), surface.y.begin(),
                   [&](double row) { return surface.frame.Y(row); });
    return surface;
}

}  // namespace tq
