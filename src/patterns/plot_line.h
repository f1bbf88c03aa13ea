#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/image_view.h"
#include "patterns/positions.h"

namespace tq {

/// A place between pels, both within the image.
struct PlotPlace {
    double col;
    double row;
};

/// A line one pel wide: one pel a step of its longer axis, the other axis rounded to the nearest pel.
inline void DrawLine(const ImageView& image, const PlotPlace& from, const PlotPlace& to, Pel grey) noexcept {
    const bool steep = std::abs(to.row - from.row) > std::abs(to.col - from.col);
    const auto along = [steep](const PlotPlace& place) { return steep ? place.row : place.col; };
    const auto across = [steep](const PlotPlace& place) { return steep ? place.col : place.row; };
    const PlotPlace& first = along(to) < along(from) ? to : from;
    const PlotPlace& last = along(to) < along(from) ? from : to;
    const double length = along(last) - along(first);
    const double slope = length > 0.0 ? (across(last) - across(first)) / length : 0.0;
    const std::int32_t end = NearestPel(along(last));
    for (std::int32_t step = NearestPel(along(first)); step <= end; ++step) {
        // The middle of an end's pel may lie up to half a pel beyond the end.
        const double part = std::clamp(step - along(first), 0.0, length);
        const std::int32_t other = NearestPel(across(first) + part * slope);
        (steep ? image.At(other, step) : image.At(step, other)) = grey;
    }
}

}  // namespace tq
