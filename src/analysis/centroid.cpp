#include "tqimage/centroid.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "analysis/centroid_sums.h"
#include "core/guard.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "core/rectangle.h"
#include "kernels/first_moments.h"
#include "kernels/window_sums.h"
#include "measure/block_sweep.h"
#include "measure/region_shapes.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kEmptyRectangle = -2;
constexpr std::int32_t kInvalidEllipseImage = -1;
constexpr std::int32_t kNothingFound = -99;

/// Outputs that a host may leave out.
struct Position {
    double* col;
    double* row;

    void Store(double atCol, double atRow) const noexcept {
        StoreIfAsked(col, atCol);
        StoreIfAsked(row, atRow);
    }
};

/// A block size below 2 is a single pel.
bool SinglePels(std::int32_t width, std::int32_t height) noexcept {
    return width < 2 && height < 2;
}

/// Calls visit(row, averages) with the block averages around every pel of a row, row by row.
template <class Visit>
void VisitBlockAverages(const ConstImageView& view, std::int32_t width, std::int32_t height, Visit&& visit) {
    const auto sweep = MakeBlockSweep(view, BlockShape::kRectangle, std::max(width, 1), std::max(height, 1),
                                      0, view.cols - 1);
    std::vector<double> averages(static_cast<std::size_t>(view.cols));
    for (std::int32_t row = 0; row < view.rows; ++row) {
        sweep->MoveTo(row);
        kernels::Quotients(sweep->Sums().data(), sweep->Counts().data(), averages.size(), averages.data());
        visit(row, averages);
    }
}

/// The integer threshold above which a pel satisfies a real bound: v >= bound when and only when v > result.
/// Nothing is at least NaN.
std::int32_t BelowBound(double atLeast) noexcept {
    if (!(atLeast <= kLargestPel)) return kLargestPel;
    return atLeast > 0.0 ? TruncToInt32(std::ceil(atLeast)) - 1 : -1;
}

/// v > bound when and only when v > result.
std::int32_t WholeBound(double above) noexcept {
    if (!(above < kLargestPel)) return kLargestPel;
    return above >= 0.0 ? TruncToInt32(above) : -1;
}

CentroidSums SumsOfRectangle(const ConstImageView& view, const Rect& rect, std::int32_t threshold,
                             CentroidWeight weight) noexcept {
    CentroidOfSpans sums(view, threshold, weight);
    VisitRectangle(rect, sums);
    return sums.Sums();
}

CentroidSums SumsOfImage(const ConstImageView& view, std::int32_t threshold, CentroidWeight weight) noexcept {
    return SumsOfRectangle(view, {0, 0, view.cols - 1, view.rows - 1}, threshold, weight);
}

std::int32_t FindCenterInRegion(const TqImage* image, const Position& position, std::int32_t threshold,
                                const Rect& asked, CentroidWeight weight) noexcept {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const Rect rect = CutToImage(asked, view.cols, view.rows);
    if (rect.Empty()) return kEmptyRectangle;
    const CentroidSums sums = SumsOfRectangle(view, rect, threshold, weight);
    if (sums.weight == 0) return kNothingFound;
    position.Store(sums.Col(), sums.Row());
    return 0;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqFindCentroid(const TqImage* image, double* column, double* row, double threshold,
                                    std::int32_t blockWidth, std::int32_t blockHeight) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const Position position{column, row};
    if (SinglePels(blockWidth, blockHeight)) {
        const CentroidSums sums = SumsOfImage(view, BelowBound(threshold), CentroidWeight::kGrey);
        position.Store(sums.Col(), sums.Row());
        return 0;
    }
    return Guarded(kInvalidImage, [&] {
        double weight = 0.0, colMoment = 0.0, rowMoment = 0.0;
        VisitBlockAverages(
            view, blockWidth, blockHeight, [&](std::int32_t at, const std::vector<double>& averages) {
                const auto run = kernels::ValueMomentsOf(averages.data(), averages.size(), threshold);
                weight += run.weight;
                colMoment += run.moment;
                rowMoment += run.weight * at;
            });
        // Nothing found is 0 / 0, which hosts test for as not-a-number.
        position.Store(colMoment / weight, rowMoment / weight);
        return 0;
    });
}

std::int32_t TQ_CALL tqFindGeometricCenter(const TqImage* image, double* column, double* row,
                                           double threshold, std::int32_t blockWidth,
                                           std::int32_t blockHeight) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const Position position{column, row};
    // Above and not at the threshold, unlike the centroid: hosts rely on both.
    const double above = threshold + 0.00001;
    if (SinglePels(blockWidth, blockHeight)) {
        const CentroidSums sums = SumsOfImage(view, WholeBound(above), CentroidWeight::kOne);
        position.Store(sums.Col(), sums.Row());
        return 0;
    }
    return Guarded(kInvalidImage, [&] {
        CentroidSums sums;
        VisitBlockAverages(
            view, blockWidth, blockHeight, [&](std::int32_t at, const std::vector<double>& averages) {
                sums.Add(kernels::CountMoments(averages.data(), averages.size(), above), 0, at);
            });
        position.Store(sums.Col(), sums.Row());
        return 0;
    });
}

std::int32_t TQ_CALL tqFindCentroidInRegion(const TqImage* image, double* column, double* row,
                                            std::int32_t threshold, std::int32_t left, std::int32_t top,
                                            std::int32_t right, std::int32_t bottom) {
    return FindCenterInRegion(image, {column, row}, threshold, {left, top, right, bottom},
                              CentroidWeight::kGrey);
}

std::int32_t TQ_CALL tqFindGeometricCenterInRegion(const TqImage* image, double* column, double* row,
                                                   std::int32_t threshold, std::int32_t left,
                                                   std::int32_t top, std::int32_t right,
                                                   std::int32_t bottom) {
    return FindCenterInRegion(image, {column, row}, threshold, {left, top, right, bottom},
                              CentroidWeight::kOne);
}

std::int32_t TQ_CALL tqFindCentroidInEllipse(const TqImage* image, double* column, double* row,
                                             std::int32_t threshold, std::int32_t centerCol,
                                             std::int32_t centerRow, std::int32_t width,
                                             std::int32_t height) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidEllipseImage;
    const Position position{column, row};
    const Ellipse ellipse{centerCol, centerRow, std::max(width, 1), std::max(height, 1)};
    if (ellipse.width == 1 && ellipse.height == 1) {
        position.Store(centerCol, centerRow);
        return 0;
    }
    CentroidOfSpans found(view, threshold, CentroidWeight::kGrey);
    VisitEllipse(view, ellipse, EllipseBox::kAroundClampedCentre, found);
    if (found.Sums().weight == 0) {
        position.Store(-1.0, -1.0);
        return kNothingFound;
    }
    position.Store(found.Sums().Col(), found.Sums().Row());
    return 0;
}
