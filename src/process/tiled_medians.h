#pragma once

#include <cstddef>
#include <cstdint>

#include "core/numerics.h"
#include "kernels/median_ranks.h"

namespace tq {

/// Windows of one size, side by side and row under row.
struct MedianWindows {
    const Pel* first;            ///< pel of the first window
    std::int32_t stride;         ///< pels from row to row
    std::int32_t cols, rows;     ///< windows
    std::int32_t width, height;  ///< pels of each
    bool lit;                    ///< whether pels of 0, "no data", are left out
};

/// Windows to each side that share one ranking of their pels.
std::int32_t MedianTileSide(std::int32_t width, std::int32_t height) noexcept;

/// The medians of windows of any size, one below the other `outStride` pels apart.
void TiledMedians(const MedianWindows& windows, Pel* out, std::int32_t outStride,
                  kernels::RankBuffers& buffers);

}  // namespace tq
