#pragma once

#include <cstdint>
#include <vector>

#include "core/image_view.h"

namespace tq {

/// Number of pels of each grey level from 0 to the largest pel of the image: its length depends on the image.
std::vector<std::uint32_t> Histogram(const ConstImageView& view);

}  // namespace tq
