#include "measure/image_values.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/numerics.h"
#include "core/rectangle.h"
#include "core/window.h"
#include "kernels/neighbourhood.h"
#include "measure/region_shapes.h"
#include "measure/span_consumers.h"

namespace tq {
namespace {

/// What CenterPelValue says when the centre lies outside the image: hosts divide by the field.
constexpr float kNoCenterPel = 1.0f;

/// The pels of one axis that count as the centre: about a hundredth of the image, at least one. Near the far
/// end of a small image rounding leads past the last pel; the stretch is then empty.
Reach CenterReach(float center, std::int32_t pels) noexcept {
    const std::int32_t half = TruncToInt32((pels + 49) * 0.005);
    return {std::max(TruncToInt32(static_cast<double>(center) - half + 0.5), 0),
            std::min(TruncToInt32(static_cast<double>(center) + half + 0.5), pels - 1)};
}

float CenterPelValue(const ConstImageView& view) {
    const TqImageHeader& header = *view.header;
    const bool inside = header.CenterCol >= 0.0f && header.CenterCol < static_cast<float>(view.cols) &&
                        header.CenterRow >= 0.0f && header.CenterRow < static_cast<float>(view.rows);
    if (!inside) return kNoCenterPel;
    const Reach cols = CenterReach(header.CenterCol, view.cols);
    const Reach rows = CenterReach(header.CenterRow, view.rows);
    TotalAtLeast total(0);
    VisitRectangle({cols.first, rows.first, cols.last, rows.last}, OnPelsOf(view, total));
    return static_cast<float>(total.Mean());
}

}  // namespace

kernels::SumAndMax SumAndLargestPel(const ConstImageView& view) {
    return kernels::FindSumAndMax(view.pels, view.Count());
}

std::optional<double> LargestNeighbourhoodMean(const ConstImageView& view) {
    if (view.cols < 3 || view.rows < 3) return std::nullopt;
    std::uint32_t largest = 0;
    for (std::int32_t row = 1; row < view.rows - 1; ++row) {
        largest = std::max(
            largest, kernels::LargestNeighbourhoodSum(view.Row(row - 1), view.Row(row), view.Row(row + 1),
                                                      static_cast<std::size_t>(view.cols)));
    }
    return largest / 9.0;
}

bool StoreLargestNeighbourhoodMean(const ImageView& view) {
    const std::optional<double> mean = LargestNeighbourhoodMean(view);
    if (mean) view.header->MaxPelValue = static_cast<float>(*mean);
    return mean.has_value();
}

void StoreImageValues(const ImageView& view, const kernels::SumAndMax& pels) {
    view.header->TotalPelValue = static_cast<double>(pels.sum);
    view.header->MaxPelValue = pels.max;
    view.header->CenterPelValue = CenterPelValue(view);
}

// MaxPelValue ends as the largest pel, not as the largest 3 x 3 mean that other functions leave there: hosts
// scale displays by it and rely on no pel being above it.
void RefreshImageValues(const ImageView& view) {
    StoreImageValues(view, SumAndLargestPel(view));
}

}  // namespace tq
