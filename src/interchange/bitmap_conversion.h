#pragma once

#include <optional>

#include "core/image_block.h"
#include "core/image_view.h"
#include "interchange/bitmap_object.h"
#include "interchange/palette.h"

/// Images into bitmaps and back, for the functions that hand them on as files, DIBs or streams. All throw
/// std::bad_alloc.
namespace tq {

/// 8 bits a pixel through the tone curve. An image that tells no scale gets one: its header is written.
OwnedBitmap BitmapOf(const ImageView& image, const std::optional<Palette>& palette, double gamma);

/// The bytes of a readable bitmap as pels; `info` as below.
OwnedImage ImageOf(const TqLeadBitmap& bitmap, const TqImageHeader* info);

/// The header of an image made from a bitmap: what the host says of it, or, when that is null, neither scale
/// nor place; sizes and maximum as given.
TqImageHeader BitmapImageHeader(const TqImageHeader* info, std::int32_t cols, std::int32_t rows,
                                Pel largest) noexcept;

}  // namespace tq
