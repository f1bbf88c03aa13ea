#pragma once

#include <cstdint>
#include <new>

#include "core/image_block.h"
#include "core/image_view.h"

namespace tq {

/// A new block of another size with a copy of the source's header but for the sizes. Sizes come in 64 bits;
/// one that no valid image has counts as memory that cannot be had.
inline OwnedImage MakeSized(const ConstImageView& source, std::int64_t cols, std::int64_t rows,
                            NewPels fill) {
    if (cols < 1 || cols > kMaxSide || rows < 1 || rows > kMaxSide) throw std::bad_alloc();
    OwnedImage result(static_cast<std::int32_t>(cols), static_cast<std::int32_t>(rows), fill);
    TqImageHeader& header = result.Header();
    header = *source.header;
    header.PelCols = static_cast<std::int32_t>(cols);
    header.PelRows = static_cast<std::int32_t>(rows);
    return result;
}

}  // namespace tq
