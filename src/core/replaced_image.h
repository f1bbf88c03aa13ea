#pragma once

#include <cstdint>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"

/// How functions end that give a host a new image.
namespace tq {

/// The image behind the pointer that a function is about to replace; empty for a null address, too.
inline ConstImageView LocateHeld(TqImage* const* host) noexcept {
    return host == nullptr ? ConstImageView{} : LocateImage(static_cast<const TqImage*>(*host));
}

/// Hands make() to the host in place of what its pointer holds. When there is no memory for it that stays,
/// and `noMemory` is returned.
template <class Make>
std::int32_t ReplaceImage(TqImage** host, std::int32_t noMemory, Make&& make) noexcept {
    return Guarded(noMemory, [&] {
        CommitImage(host, make());
        return 0;
    });
}

/// The same for an image that is made from the one it replaces, make(source); `invalid` without that one.
template <class Make>
std::int32_t ReplaceImage(TqImage** host, std::int32_t invalid, std::int32_t noMemory, Make&& make) noexcept {
    const ConstImageView source = LocateHeld(host);
    if (!source) return invalid;
    return ReplaceImage(host, noMemory, [&] { return make(source); });
}

}  // namespace tq
