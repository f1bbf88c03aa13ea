#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "core/image_block.h"
#include "core/image_view.h"

namespace tq {

/// A baseline JPEG of the bytes that `tones` gives the pels; it has an entry for each of them. Quality is a
/// host's: 2 (finest) to 255 (smallest), 0 and 1 as 2, or one of the presets -1 (finest) to -9. Empty when it
/// cannot be made. The same image gives the same bytes on every build.
std::vector<std::uint8_t> EncodeJpeg(const ConstImageView& image, const std::vector<std::uint8_t>& tones,
                                     std::int32_t quality);

/// The image of a complete grey JPEG with sides of 1..8000, its header as a new one; nothing for anything
/// else. Throws std::bad_alloc when there is no memory for the image.
std::optional<OwnedImage> DecodeJpeg(std::span<const std::uint8_t> file);

}  // namespace tq
