#pragma once

#include <cstddef>

#include "core/numerics.h"
#include "kernels/rotate_row.h"

/// Rows of polar images: samples of an image around circles.
namespace tq::kernels {

/// A circle of `radius` about a centre; a radius is so many columns and so many rows long.
struct RingPlaces {
    double radius;
    double centreCol;
    double centreRow;
    double colsPerLength;
    double rowsPerLength;  ///< rows count downward, sines upward
};

/// greys[i] = Blend at the direction (cosines[i], sines[i]), and 0 outside 0 .. cols - 1 and 0 .. rows - 1.
/// The image has two columns and two rows at least.
void SampleRing(const SourcePels& source, const RingPlaces& ring, const double* cosines, const double* sines,
                std::size_t count, double* greys);

/// The largest greys[i] * factor that exceeds `start`, else `start`.
double LargestProduct(const double* greys, double factor, std::size_t count, double start);

/// out[i] = greys[i] * factor * scale + 0.5, truncated and clamped.
void StoreProducts(const double* greys, double factor, double scale, std::size_t count, Pel* out);

}  // namespace tq::kernels
