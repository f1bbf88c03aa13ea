#pragma once

#include <cstdint>

#include "core/image_view.h"
#include "core/numerics.h"

namespace tq {

/// Writes the equalised pels of `view`, and the figures that follow from them, into `result`, an image of the
/// same size. Returns the largest pel of `view`; when that is 0 there is nothing to equalise and nothing is
/// written. Throws std::bad_alloc.
Pel EqualiseInto(const ImageView& result, const ConstImageView& view, std::int32_t levels);

}  // namespace tq
