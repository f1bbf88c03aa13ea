#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tq::kernels {

/// A piece of an image and the windows of one size inside it.
struct MedianTile {
    const std::uint16_t* pels;
    std::size_t stride;
    std::size_t cols, rows;     ///< of the piece
    std::size_t width, height;  ///< of the windows
    bool lit;                   ///< pels of 0, "no data", are left out
};

/// Working memory, reused from tile to tile.
struct RankBuffers {
    std::vector<std::uint32_t> order;
    std::vector<std::uint32_t> sorted;
    std::vector<std::uint16_t> levels;
    std::vector<std::uint32_t> ranks;
    std::vector<std::uint64_t> present;
};

/// Medians of windows of any size: out[y * outStride + x] is that of the window whose first pel is (x, y) of
/// the piece, the upper middle one of an even number of pels and 0 of none. Pels are ranked once a piece; a
/// window is a set of ranks, and its middle is found by counting bits. What a step costs grows with the
/// shorter side of the window.
void RankMedians(const MedianTile& tile, std::uint16_t* out, std::size_t outStride, RankBuffers& buffers);

}  // namespace tq::kernels
