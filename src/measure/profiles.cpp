#include "tqimage/profiles.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/rectangle.h"
#include "kernels/span_statistics.h"
#include "kernels/window_sums.h"
#include "measure/rectangle_region.h"
#include "platform/new_array.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNothingOnLine = -99;

std::size_t Length(std::int64_t lines) {
    return static_cast<std::size_t>(std::max<std::int64_t>(lines, 0));
}

/// One mean a column; 0 where the rectangle has no rows.
std::vector<double> ColumnMeans(const Region& region) {
    const Rect& rect = region.rect;
    std::vector<std::uint32_t> sums(Length(rect.Width()));
    for (std::int32_t row = rect.top; row <= rect.bottom; ++row)
        kernels::AddRow(sums.data(), region.view.Row(row) + rect.left, sums.size());
    const double rows = static_cast<double>(std::max<std::int64_t>(rect.Height(), 1));
    std::vector<double> means(sums.size());
    std::transform(sums.begin(), sums.end(), means.begin(), [rows](std::uint32_t sum) { return sum / rows; });
    return means;
}

/// One mean a row; 0 where the rectangle has no columns.
std::vector<double> RowMeans(const Region& region) {
    const Rect& rect = region.rect;
    std::vector<double> means(Length(rect.Height()));
    const std::size_t cols = Length(rect.Width());
    if (cols == 0) return means;
    std::int32_t row = rect.top;
    for (double& mean : means) {
        const Pel* const pels = region.view.Row(row++) + rect.left;
        mean = static_cast<double>(kernels::SumPels(pels, cols)) / static_cast<double>(cols);
    }
    return means;
}

template <class Means>
std::int32_t StoreMeans(const TqImage* image, const Rect& asked, SAFEARRAY** array, Means&& means) {
    const Region region(image, asked);
    if (!region || array == nullptr) return kInvalidImage;
    return Guarded(kArrayCodes.notCreated, [&] { return ReplaceArray<double>(array, VT_R8, means(region)); });
}

/// A line of pels between two points, stepped along its longer axis. Along the other axis it is rounded to
/// the nearest pel, halves to the even one, so that a line is the same from either end. The ends may lie
/// anywhere in int32: the arithmetic is exact and only the part inside the image is walked.
struct Line {
    std::int64_t from, to;              ///< along the longer axis
    std::int64_t acrossFrom, acrossTo;  ///< along the other

    std::int64_t Across(std::int64_t along) const noexcept {
        const auto length = static_cast<std::uint64_t>(std::abs(to - from));
        if (length == 0) return acrossFrom;
        // Both factors are below 2^32.
        const auto step = static_cast<std::uint64_t>(std::abs(along - from));
        const std::uint64_t product = step * static_cast<std::uint64_t>(std::abs(acrossTo - acrossFrom));
        const std::int64_t direction = acrossTo < acrossFrom ? -1 : 1;
        const std::int64_t before = acrossFrom + direction * static_cast<std::int64_t>(product / length);
        const std::uint64_t twiceRest = 2 * (product % length);
        const bool onward = twiceRest > length || (twiceRest == length && before % 2 != 0);
        return onward ? before + direction : before;
    }

    /// visit(along, across) for the steps whose place on the longer axis is in 0 .. size - 1.
    template <class Visit>
    void Walk(std::int32_t size, Visit&& visit) const {
        const std::int64_t first = std::max<std::int64_t>(std::min(from, to), 0);
        const std::int64_t last = std::min<std::int64_t>(std::max(from, to), size - 1);
        for (std::int64_t along = first; along <= last; ++along)
            visit(along, Across(along));
    }
};

}  // namespace

std::int32_t TQ_CALL tqGetColAvg(const TqImage* image, std::int32_t left, std::int32_t top,
                                 std::int32_t right, std::int32_t bottom, SAFEARRAY** array) {
    return StoreMeans(image, {left, top, right, bottom}, array, ColumnMeans);
}

std::int32_t TQ_CALL tqGetRowAvg(const TqImage* image, std::int32_t left, std::int32_t top,
                                 std::int32_t right, std::int32_t bottom, SAFEARRAY** array) {
    return StoreMeans(image, {left, top, right, bottom}, array, RowMeans);
}

std::int32_t TQ_CALL tqGetXSectionMinMax(const TqImage* image, std::int32_t col1, std::int32_t row1,
                                         std::int32_t col2, std::int32_t row2, std::int32_t* min,
                                         std::int32_t* max) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    Extremes extremes;
    const auto take = [&](std::int64_t col, std::int64_t row) {
        if (!view.Contains(col, row)) return;
        extremes(&view.At(static_cast<std::int32_t>(col), static_cast<std::int32_t>(row)), 1);
    };
    const std::int64_t cols = std::abs(std::int64_t{col2} - col1);
    const std::int64_t rows = std::abs(std::int64_t{row2} - row1);
    if (cols >= rows) {
        Line{col1, col2, row1, row2}.Walk(view.cols, take);
    } else {
        const auto turned = [&](std::int64_t row, std::int64_t col) { take(col, row); };
        Line{row1, row2, col1, col2}.Walk(view.rows, turned);
    }
    if (!extremes.any) return kNothingOnLine;
    *min = extremes.found.min;
    *max = extremes.found.max;
    return 0;
}
