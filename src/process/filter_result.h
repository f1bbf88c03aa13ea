#pragma once

#include <cstdint>
#include <cstring>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/rectangle.h"

/// What the filters that replace a host's image have in common.
namespace tq {

/// The image behind a host's pointer; empty for a null address, too.
inline ConstImageView LocateHostImage(TqImage* const* host) noexcept {
    return host == nullptr ? ConstImageView{} : LocateImage(*host);
}

/// A copy of the source that a filter of a rectangle goes on to write into. Copying what will be written
/// costs less than finding out what will not.
inline OwnedImage CopyImage(const ConstImageView& source) {
    OwnedImage copy(source, NewPels::kUnwritten);
    std::memcpy(copy.View().pels, source.pels, source.Count() * sizeof(Pel));
    return copy;
}

inline Rect WholeImage(const ConstImageView& view) noexcept {
    return {0, 0, view.cols - 1, view.rows - 1};
}

/// Replaces the host's image by make(), which throws when there is no memory.
template <class Make>
std::int32_t ReplaceImage(TqImage** host, std::int32_t noMemory, Make&& make) noexcept {
    return Guarded(noMemory, [&] {
        CommitImage(host, make());
        return 0;
    });
}

}  // namespace tq
