#include "tqimage/sub_pixel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "analysis/centroid_sums.h"
#include "analysis/paraboloid.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "core/portable_math.h"
#include "core/rectangle.h"
#include "kernels/span_statistics.h"
#include "measure/region_shapes.h"
#include "measure/span_consumers.h"

namespace tq {
namespace {

constexpr std::int32_t kWholePelOnly = 1;
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kEmptyRectangle = -2;
constexpr std::int32_t kBadMode = -4;
constexpr std::int32_t kNothingFound = -99;

enum Mode : std::int32_t { kGaussian = 0, kParaboloid = 1, kCentroid = 2 };

struct Peak {
    double col = 0.0;
    double row = 0.0;
    double grey = 0.0;
};

/// The brightest pel in row order; of equal ones the first.
struct BrightestPel {
    ConstImageView view;
    std::int32_t grey = -1;
    std::int32_t col = 0;
    std::int32_t row = 0;

    void operator()(std::int32_t at, std::int32_t first, std::int32_t last) {
        const Pel* run = view.Row(at) + first;
        const auto count = static_cast<std::size_t>(last - first + 1);
        const Pel largest = kernels::FindMinMax(run, count).max;
        if (largest <= grey) return;
        grey = largest;
        col = first + static_cast<std::int32_t>(std::find(run, run + count, largest) - run);
        row = at;
    }
};

/// A Gaussian spot is a paraboloid once the logarithm is taken of what it stands above its background. Where
/// quantisation leaves nothing above it, half a grey level is what may hide there.
double LogOverBackground(double grey, double background) {
    constexpr double kHidden = 0.5;
    return portable::Log(std::max(grey - background, kHidden));
}

/// False when the neighbours do not form a peak within a pel of the brightest one.
bool FitPeak(const ConstImageView& view, const BrightestPel& brightest, bool gaussian, double background,
             Peak& peak) {
    if (brightest.col < 1 || brightest.row < 1 || brightest.col > view.cols - 2 ||
        brightest.row > view.rows - 2) {
        return false;
    }
    std::array<double, 9> values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto offset = static_cast<std::int32_t>(i);
        const double grey = view.At(brightest.col + offset % 3 - 1, brightest.row + offset / 3 - 1);
        values[i] = gaussian ? LogOverBackground(grey, background) : grey;
    }
    const Paraboloid surface(values);
    const auto summit = surface.FindSummit();
    if (!summit.exists || std::abs(summit.x) > 1.0 || std::abs(summit.y) > 1.0) return false;
    peak.col = brightest.col + summit.x;
    peak.row = brightest.row + summit.y;
    peak.grey = gaussian ? background + portable::Exp(summit.value) : summit.value;
    return true;
}

/// Centroid of what the pels stand above the threshold.
void FindCentroid(const ConstImageView& view, const Rect& rect, std::int32_t threshold, Peak& peak) {
    CentroidOfSpans greys(view, threshold, CentroidWeight::kGrey);
    CentroidOfSpans counts(view, threshold, CentroidWeight::kOne);
    VisitRectangle(rect, greys);
    VisitRectangle(rect, counts);
    // In double, because a threshold far below 0 times the sum of the columns does not fit 64 bits.
    const auto excess = [&](std::uint64_t ofGreys, std::uint64_t ofCounts) {
        return static_cast<double>(ofGreys) - static_cast<double>(threshold) * static_cast<double>(ofCounts);
    };
    const CentroidSums& grey = greys.Sums();
    const CentroidSums& one = counts.Sums();
    const double weight = excess(grey.weight, one.weight);
    peak.col = excess(grey.colMoment, one.colMoment) / weight;
    peak.row = excess(grey.rowMoment, one.rowMoment) / weight;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqFindSubPixelInRegion(const TqImage* image, double* column, double* row, double* peak,
                                            std::int32_t threshold, std::int32_t left, std::int32_t top,
                                            std::int32_t right, std::int32_t bottom, std::int32_t mode) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const Rect rect = CutToImage({left, top, right, bottom}, view.cols, view.rows);
    if (rect.Empty()) return kEmptyRectangle;
    if (mode < kGaussian || mode > kCentroid) return kBadMode;
    BrightestPel brightest{view};
    VisitRectangle(rect, brightest);
    if (brightest.grey <= threshold) return kNothingFound;

    Peak found{static_cast<double>(brightest.col), static_cast<double>(brightest.row),
               static_cast<double>(brightest.grey)};
    std::int32_t status = 0;
    if (mode == kCentroid) {
        FindCentroid(view, rect, threshold, found);
    } else {
        Extremes background;
        if (mode == kGaussian) VisitRectangle(rect, OnPelsOf(view, background));
        if (!FitPeak(view, brightest, mode == kGaussian, background.found.min, found)) status = kWholePelOnly;
    }
    StoreIfAsked(column, found.col);
    StoreIfAsked(row, found.row);
    StoreIfAsked(peak, found.grey);
    return status;
}
