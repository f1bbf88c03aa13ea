#include "process/tiled_medians.h"

#include <algorithm>

namespace tq {

// Small enough that neighbouring ranks stay close together, large enough that what neighbouring tiles share
// is little of either.
std::int32_t MedianTileSide(std::int32_t width, std::int32_t height) noexcept {
    constexpr std::int32_t kSmallTile = 64;
    constexpr std::int32_t kLargeTile = 128;
    constexpr std::int64_t kLargeWindow = 200;
    const bool small = std::int64_t{width} * height < kLargeWindow;
    return small ? kSmallTile : std::max({kLargeTile, width / 2, height / 2});
}

void TiledMedians(const MedianWindows& windows, Pel* out, std::int32_t outStride,
                  kernels::RankBuffers& buffers) {
    const std::int32_t side = MedianTileSide(windows.width, windows.height);
    for (std::int32_t row = 0; row < windows.rows; row += side) {
        const std::int32_t rows = std::min(side, windows.rows - row);
        for (std::int32_t col = 0; col < windows.cols; col += side) {
            const std::int32_t cols = std::min(side, windows.cols - col);
            const kernels::MedianTile tile{
                windows.first + static_cast<std::ptrdiff_t>(row) * windows.stride + col,
                static_cast<std::size_t>(windows.stride),
                static_cast<std::size_t>(cols + windows.width - 1),
                static_cast<std::size_t>(rows + windows.height - 1),
                static_cast<std::size_t>(windows.width),
                static_cast<std::size_t>(windows.height),
                windows.lit};
            kernels::RankMedians(tile, out + static_cast<std::ptrdiff_t>(row) * outStride + col,
                                 static_cast<std::size_t>(outStride), buffers);
        }
    }
}

}  // namespace tq
