#pragma once

#include <optional>

#include "core/image_view.h"
#include "kernels/span_statistics.h"

/// The figures of a whole image that its header carries. Whoever makes an image refreshes them through here.
namespace tq {

/// Sum of all pels and the largest pel, in one pass.
kernels::SumAndMax SumAndLargestPel(const ConstImageView& view);

/// Largest mean of a 3 x 3 neighbourhood that lies inside the image; nothing below 3 columns or 3 rows.
std::optional<double> LargestNeighbourhoodMean(const ConstImageView& view);

/// Puts the largest 3 x 3 mean into MaxPelValue. False, and the header unchanged, below 3 columns or 3 rows.
bool StoreLargestNeighbourhoodMean(const ImageView& view);

/// TotalPelValue and MaxPelValue from a sum and a largest pel that a producer has at hand, and CenterPelValue
/// from the pels around the centre.
void StoreImageValues(const ImageView& view, const kernels::SumAndMax& pels);

/// The same from a pass over the image: what every function that changes pels does at its end.
void RefreshImageValues(const ImageView& view);

}  // namespace tq
