#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// Cells moved to other places of a raster.
namespace tq::kernels {

/// out[c * outStride + r] = in[r * inStride + c] for all c < cols, r < rows. Strides are in cells and may be
/// negative: rows are then taken or laid down upward.
template <class Cell>
void Transpose(const Cell* in, std::ptrdiff_t inStride, std::ptrdiff_t cols, std::ptrdiff_t rows, Cell* out,
               std::ptrdiff_t outStride) noexcept {
    // Square tiles: the lines of both sides that a tile touches stay in the first cache until they are full.
    constexpr std::ptrdiff_t kTile = 128 / sizeof(Cell);
    for (std::ptrdiff_t top = 0; top < rows; top += kTile) {
        const std::ptrdiff_t bottom = std::min(top + kTile, rows);
        for (std::ptrdiff_t left = 0; left < cols; left += kTile) {
            const std::ptrdiff_t right = std::min(left + kTile, cols);
            for (std::ptrdiff_t c = left; c < right; ++c) {
                for (std::ptrdiff_t r = top; r < bottom; ++r)
                    out[c * outStride + r] = in[r * inStride + c];
            }
        }
    }
}

/// out[i] = in[count - 1 - i]
template <class Cell>
void ReverseRow(const Cell* in, std::ptrdiff_t count, Cell* out) noexcept {
    std::reverse_copy(in, in + count, out);
}

}  // namespace tq::kernels
