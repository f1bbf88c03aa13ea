#pragma once

#include <algorithm>
#include <cstdint>

namespace tq {

/// Pel indices, all four inclusive. Empty when left > right or top > bottom.
struct Rect {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;

    constexpr bool Empty() const noexcept { return left > right || top > bottom; }
    constexpr std::int64_t Width() const noexcept { return static_cast<std::int64_t>(right) - left + 1; }
    constexpr std::int64_t Height() const noexcept { return static_cast<std::int64_t>(bottom) - top + 1; }
    constexpr std::int64_t Area() const noexcept { return Empty() ? 0 : Width() * Height(); }
};

/// The rule of region rectangles: every side is clamped into the image, and a right or bottom of 0 then
/// means the last column or row. Hosts pass 0, 0, 0, 0 for the whole image.
constexpr Rect ClampRegion(const Rect& asked, std::int32_t cols, std::int32_t rows) noexcept {
    Rect region{std::clamp(asked.left, 0, cols - 1), std::clamp(asked.top, 0, rows - 1),
                std::clamp(asked.right, 0, cols - 1), std::clamp(asked.bottom, 0, rows - 1)};
    if (region.right == 0) region.right = cols - 1;
    if (region.bottom == 0) region.bottom = rows - 1;
    return region;
}

/// The rule of block sums and flux: the rectangle is cut to the image and may come out empty; a 0 is a 0.
constexpr Rect CutToImage(const Rect& asked, std::int32_t cols, std::int32_t rows) noexcept {
    return {std::max(asked.left, 0), std::max(asked.top, 0), std::min(asked.right, cols - 1),
            std::min(asked.bottom, rows - 1)};
}

}  // namespace tq
