#pragma once

#include <cstddef>
#include <cstdint>

#include "core/image_view.h"
#include "core/rectangle.h"

namespace tq {

/// Calls visit(first, count) for the runs of an image outside a rectangle, where `first` counts from the
/// image's first pel: with the runs of the rectangle they are all pels, each once. The rectangle lies inside
/// the image or is empty.
template <class Visit>
void VisitOutside(const ConstImageView& view, const Rect& rect, Visit&& visit) {
    if (rect.Empty()) return visit(std::size_t{0}, view.Count());
    const auto cols = static_cast<std::size_t>(view.cols);
    const auto left = static_cast<std::size_t>(rect.left);
    const auto right = static_cast<std::size_t>(rect.right) + 1;
    // The right end of a row and the left end of the next one are neighbours in memory: one run.
    std::size_t first = 0;
    for (auto row = static_cast<std::size_t>(rect.top); row <= static_cast<std::size_t>(rect.bottom); ++row) {
        const std::size_t start = row * cols + left;
        if (start > first) visit(first, start - first);
        first = row * cols + right;
    }
    if (first < view.Count()) visit(first, view.Count() - first);
}

}  // namespace tq
