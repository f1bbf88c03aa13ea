#include "measure/block_average.h"

#include <algorithm>

#include "core/pel_access.h"
#include "kernels/window_sums.h"
#include "measure/region_shapes.h"
#include "measure/span_consumers.h"

namespace tq {

double BlockAverage(const ConstImageView& view, std::int32_t centerCol, std::int32_t centerRow,
                    std::int32_t width, std::int32_t height) {
    const Reach cols =
        PlaceBlock(std::clamp(centerCol, 0, view.cols - 1), std::max(width, 1), view.cols);
    const Reach rows =
        PlaceBlock(std::clamp(centerRow, 0, view.rows - 1), std::max(height, 1), view.rows);
    TotalAtLeast total(0);
    VisitRectangle({cols.first, rows.first, cols.last, rows.last}, OnPelsOf(view, total));
    return total.Mean();
}

double EllipseAverage(const ConstImageView& view, std::int32_t centerCol, std::int32_t centerRow,
                      std::int32_t width, std::int32_t height) {
    const Ellipse ellipse{centerCol, centerRow, width, height};
    if (ellipse.IsPoint()) return ClampedPel(view, centerCol, centerRow);
    TotalAtLeast total(0);
    VisitEllipse(view, ellipse, EllipseBox::kAroundClampedCentre, OnPelsOf(view, total));
    // With nothing inside hosts get the pel at the centre taken as a 1-based position, one up and left of it.
    return total.Count() > 0 ? total.Mean() : ClampedPel1(view, centerCol, centerRow);
}

void FillBlockAverages(const ConstImageView& view, BlockShape shape, std::int32_t width, std::int32_t height,
                       double* out) {
    if (width == 1 && height == 1) {
        std::copy_n(view.pels, view.Count(), out);
        return;
    }
    const auto sweep = MakeBlockSweep(view, shape, width, height, 0, view.cols - 1);
    for (std::int32_t row = 0; row < view.rows; ++row, out += view.cols) {
        sweep->MoveTo(row);
        kernels::Quotients(sweep->Sums().data(), sweep->Counts().data(), sweep->Sums().size(), out);
    }
}

}  // namespace tq
