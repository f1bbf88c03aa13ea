#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/numerics.h"

/// Cells moved to other places of a raster.
namespace tq::kernels {

/// out[c * outStride + r] = in[r * inStride + c] for all c < cols, r < rows. Strides are in cells and may be
/// negative: rows are then taken or laid down upward.
template <class Cell>
void TransposeTile(const Cell* in, std::ptrdiff_t inStride, std::ptrdiff_t cols, std::ptrdiff_t rows,
                   Cell* out, std::ptrdiff_t outStride) noexcept {
    for (std::ptrdiff_t c = 0; c < cols; ++c) {
        for (std::ptrdiff_t r = 0; r < rows; ++r)
            out[c * outStride + r] = in[r * inStride + c];
    }
}

/// The same for pels, in vectors.
void TransposeTile(const Pel* in, std::ptrdiff_t inStride, std::ptrdiff_t cols, std::ptrdiff_t rows, Pel* out,
                   std::ptrdiff_t outStride) noexcept;

/// The same for whole rasters, whose rows do not fit into the cache together.
template <class Cell>
void Transpose(const Cell* in, std::ptrdiff_t inStride, std::ptrdiff_t cols, std::ptrdiff_t rows, Cell* out,
               std::ptrdiff_t outStride) noexcept {
    // Square tiles: the lines of both sides that a tile touches stay in the first cache until they are full.
    constexpr std::ptrdiff_t kTile = 128 / sizeof(Cell);
    for (std::ptrdiff_t top = 0; top < rows; top += kTile) {
        for (std::ptrdiff_t left = 0; left < cols; left += kTile) {
            TransposeTile(in + top * inStride + left, inStride, std::min(kTile, cols - left),
                          std::min(kTile, rows - top), out + left * outStride + top, outStride);
        }
    }
}

/// out[i] = in[count - 1 - i]
template <class Cell>
void ReverseRow(const Cell* in, std::ptrdiff_t count, Cell* out) noexcept {
    std::reverse_copy(in, in + count, out);
}

/// The same for pels, in vectors.
void ReverseRow(const Pel* in, std::ptrdiff_t count, Pel* out) noexcept;

}  // namespace tq::kernels
