#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/image_view.h"
#include "core/rectangle.h"
#include "kernels/span_statistics.h"
#include "measure/region_shapes.h"

/// How point operations walk an image: a kernel call a run, never a pel at a time.
namespace tq {

/// Calls visit(first, count) for the runs of a rectangle, where `first` counts from the image's first pel.
template <class Visit>
void VisitRuns(const ConstImageView& view, const Rect& rect, Visit&& visit) {
    if (rect.Area() == static_cast<std::int64_t>(view.Count())) return visit(std::size_t{0}, view.Count());
    VisitRectangle(rect, [&](std::int32_t row, std::int32_t left, std::int32_t right) {
        visit(static_cast<std::size_t>(view.Row(row) + left - view.pels),
              static_cast<std::size_t>(right - left + 1));
    });
}

/// Exact: 8000 x 8000 pels of 65535 stay far below 2^64.
inline std::uint64_t SumPels(const ConstImageView& view, const Rect& rect) {
    std::uint64_t sum = 0;
    VisitRuns(view, rect, [&](std::size_t first, std::size_t count) {
        sum += kernels::SumPels(view.pels + first, count);
    });
    return sum;
}

/// Cuts a run into shorter ones, visit(first, count), after each of which its pels are still in the cache.
template <class Visit>
void VisitCached(std::size_t first, std::size_t count, Visit&& visit) {
    constexpr std::size_t kShort = 4096;  // of three images: 24 KB of a first-level cache of 32 or more
    for (const std::size_t end = first + count; first < end; first += kShort)
        visit(first, std::min(kShort, end - first));
}

/// Produces the pels of a rectangle with produce(first, count) and takes their sum and largest pel on the
/// way.
template <class Produce>
kernels::SumAndMax ProduceMeasured(const ConstImageView& out, const Rect& rect, Produce&& produce) {
    kernels::SumAndMax total;
    VisitRuns(out, rect, [&](std::size_t start, std::size_t length) {
        VisitCached(start, length, [&](std::size_t first, std::size_t count) {
            produce(first, count);
            const kernels::SumAndMax part = kernels::FindSumAndMax(out.pels + first, count);
            total.sum += part.sum;
            total.max = std::max(total.max, part.max);
        });
    });
    return total;
}

/// The same for a whole image.
template <class Produce>
kernels::SumAndMax ProduceMeasured(const ConstImageView& out, Produce&& produce) {
    return ProduceMeasured(out, {0, 0, out.cols - 1, out.rows - 1}, produce);
}

}  // namespace tq
