#pragma once

#include <cstdint>
#include <utility>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"

namespace tq {

/// A new image with the header of everything the library draws: the axis in the middle, 1000 pels a metre,
/// white as the largest pel.
OwnedImage MakeDrawnImage(std::int32_t cols, std::int32_t rows, NewPels fill);

inline constexpr std::int32_t kPatternNotCreated = -2;

/// The frame of the generators of one image: draw(view) sets the pels of a new image, which then replaces
/// the host's. It is not called for an image without pels, which hosts may ask for.
template <class Draw>
std::int32_t CreatePattern(TqImage** image, std::int32_t cols, std::int32_t rows, NewPels fill, Draw&& draw) {
    if (image == nullptr) return kPatternNotCreated;
    return ReplaceImage(image, kPatternNotCreated, [&] {
        OwnedImage made = MakeDrawnImage(cols, rows, fill);
        const ImageView view = made.View();
        if (view.Count() != 0) std::forward<Draw>(draw)(view);
        return made;
    });
}

}  // namespace tq
