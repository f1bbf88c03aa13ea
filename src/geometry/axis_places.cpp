#include "geometry/axis_places.h"

#include "kernels/bilinear.h"

namespace tq {

void ResampleImage(const ConstImageView& source, const AxisPlaces& cols, const AxisPlaces& rows,
                   PelRounding rounding, const ImageView& out) {
    const kernels::RowPlaces places{cols.cells.data(), cols.weights.data(), cols.cells.size(),
                                    source.cols == 1 ? 0 : 1};
    const std::ptrdiff_t below = source.rows == 1 ? 0 : source.cols;
    const double bias = rounding == PelRounding::kNearest ? 0.5 : 0.0;
    for (std::int32_t row = 0; row < out.rows; ++row) {
        Pel* pels = out.Row(row);
        if (places.count == 0 || !rows.Contains(row)) {
            std::fill_n(pels, out.cols, Pel{0});
            continue;
        }
        const auto at = static_cast<std::size_t>(row - rows.first);
        const Pel* near = source.Row(rows.cells[at]);
        std::fill_n(pels, cols.first, Pel{0});
        kernels::BlendRow(near, near + below, places, rows.weights[at], bias, pels + cols.first);
        std::fill(pels + cols.End(), pels + out.cols, Pel{0});
    }
}

}  // namespace tq
