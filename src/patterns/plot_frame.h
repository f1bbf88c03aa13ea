#pragma once

#include <cmath>
#include <cstdint>

#include "core/image_block.h"
#include "core/numerics.h"

namespace tq {

/// A new plot with the header that every generated image has.
inline OwnedImage MakePlot(std::int32_t cols, std::int32_t rows, NewPels fill) {
    OwnedImage plot(cols, rows, fill);
    TqImageHeader& header = plot.Header();
    header.CenterCol = (static_cast<float>(cols) - 1.0f) * 0.5f;
    header.CenterRow = (static_cast<float>(rows) - 1.0f) * 0.5f;
    header.PelsPerMeterX = header.PelsPerMeterY = 1000.0f;
    header.MaxPelValue = static_cast<float>(kLargestPel);
    return plot;
}

/// The pel that a place lies in, halves to the even one.
inline std::int32_t NearestPel(double place) noexcept {
    return TruncToInt32(std::nearbyint(place));
}

}  // namespace tq
