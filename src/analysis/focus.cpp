#include "tqimage/focus.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "core/image_view.h"
#include "core/out_value.h"
#include "core/rectangle.h"
#include "measure/region_shapes.h"
#include "measure/span_consumers.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNotMeasured = -3;

/// Where the smallest quotient starts: above every quotient of pels.
constexpr double kNoQuotient = 1e7;

/// First and last place of the regions along each axis, percent of the way from the first pel to the last:
/// two margins and the middle.
struct Share {
    std::int32_t first;
    std::int32_t last;
};
constexpr std::array<Share, 3> kShares{{{1, 9}, {46, 54}, {91, 99}}};

/// To the nearest pel, half-way cases to the even one.
std::int32_t PelAt(std::int32_t percent, std::int32_t pels) noexcept {
    const std::int32_t hundredths = percent * (pels - 1);
    const std::int32_t whole = hundredths / 100;
    const std::int32_t rest = hundredths % 100;
    return rest > 50 || (rest == 50 && whole % 2 == 1) ? whole + 1 : whole;
}

/// Square of the steepest Sobel gradient among the pels whose eight neighbours lie in the region too. Each
/// component is below 2^18, so the sum of the squares is an exact integer.
std::int64_t SteepestSquared(const ConstImageView& view, const Rect& region) noexcept {
    std::int64_t steepest = 0;
    for (std::int32_t row = region.top + 1; row < region.bottom; ++row) {
        const Pel* top = view.Row(row - 1);
        const Pel* middle = view.Row(row);
        const Pel* bottom = view.Row(row + 1);
        for (std::int32_t col = region.left + 1; col < region.right; ++col) {
            const auto column = [&](std::int32_t at) { return top[at] + 2 * middle[at] + bottom[at]; };
            const auto line = [&](const Pel* at) { return at[col - 1] + 2 * at[col] + at[col + 1]; };
            const std::int64_t x = column(col + 1) - column(col - 1);
            const std::int64_t y = line(bottom) - line(top);
            steepest = std::max(steepest, x * x + y * y);
        }
    }
    return steepest;
}

/// The steepest slope as a share of the contrast: exposure and contrast of the target cancel. The Sobel
/// weights add up to 8 for a slope of one grey level a pel.
double FocusQuotient(const ConstImageView& view, const Rect& region) {
    constexpr double kSobelGain = 8.0;
    Extremes extremes;
    VisitRectangle(region, OnPelsOf(view, extremes));
    const double contrast = extremes.found.max - extremes.found.min;
    if (contrast == 0.0) return 0.0;
    return std::sqrt(static_cast<double>(SteepestSquared(view, region))) / kSobelGain / contrast;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqAnalyzeFocusImage(const TqImage* image, double* first, double* second, double* mean) {
    StoreIfAsked(first, kNoQuotient);
    StoreIfAsked(second, 0.0);
    StoreIfAsked(mean, 0.0);
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;

    double smallest = kNoQuotient;
    double largest = 0.0;
    double sum = 0.0;
    for (const Share& rows : kShares) {
        for (const Share& cols : kShares) {
            const Rect region{PelAt(cols.first, view.cols), PelAt(rows.first, view.rows),
                              PelAt(cols.last, view.cols), PelAt(rows.last, view.rows)};
            if (region.Width() < 3 || region.Height() < 3) return kNotMeasured;
            const double quotient = FocusQuotient(view, region);
            smallest = std::min(smallest, quotient);
            largest = std::max(largest, quotient);
            sum += quotient;
        }
    }
    StoreIfAsked(first, smallest);
    StoreIfAsked(second, largest);
    StoreIfAsked(mean, sum / static_cast<double>(kShares.size() * kShares.size()));
    return 0;
}
