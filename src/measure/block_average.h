#pragma once

#include <cstdint>

#include "core/image_view.h"
#include "measure/block_sweep.h"

/// Averages of pel blocks. One position is measured directly; whole images go through the sweep, and both
/// give the same figures.
namespace tq {

/// Mean of the rectangular block around a centre, placed as PlaceBlock says; sizes below 1 count as 1.
double BlockAverage(const ConstImageView& view, std::int32_t centerCol, std::int32_t centerRow,
                    std::int32_t width, std::int32_t height);

/// Mean of the pels of an ellipse cut to the image; without extent the pel at the centre.
double EllipseAverage(const ConstImageView& view, std::int32_t centerCol, std::int32_t centerRow,
                      std::int32_t width, std::int32_t height);

/// Averages around every pel, row by row, width and height at least 1. `out` takes cols x rows values.
void FillBlockAverages(const ConstImageView& view, BlockShape shape, std::int32_t width, std::int32_t height,
                       double* out);

}  // namespace tq
