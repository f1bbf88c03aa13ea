#pragma once

#include <cstring>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/rectangle.h"

/// What the filters that replace a host's image have in common.
namespace tq {

inline Rect WholeImage(const ConstImageView& view) noexcept {
    return {0, 0, view.cols - 1, view.rows - 1};
}

/// A new image for a filter that writes every pel of a rectangle: a copy of the source, unless nothing of it
/// would be left.
inline OwnedImage CopyAround(const ConstImageView& source, const Rect& written) {
    OwnedImage copy(source, NewPels::kUnwritten);
    if (written.Area() < WholeImage(source).Area())
        std::memcpy(copy.View().pels, source.pels, source.Count() * sizeof(Pel));
    return copy;
}

}  // namespace tq
