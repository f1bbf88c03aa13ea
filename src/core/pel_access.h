#pragma once

#include <algorithm>
#include <cstdint>

#include "core/image_view.h"

namespace tq {

/// Pel access never fails on co-ordinates: whatever lies outside means the nearest pel of the border.
/// `View` is ImageView or ConstImageView, so one rule serves reads and writes.
template <class View>
auto& ClampedPel(const View& view, std::int32_t col, std::int32_t row) noexcept {
    return view.At(std::clamp(col, 0, view.cols - 1), std::clamp(row, 0, view.rows - 1));
}

/// The same with co-ordinates that start at 1; clamped before the 1 is taken off, so INT32_MIN is safe.
template <class View>
auto& ClampedPel1(const View& view, std::int32_t col, std::int32_t row) noexcept {
    return view.At(std::clamp(col, 1, view.cols) - 1, std::clamp(row, 1, view.rows) - 1);
}

}  // namespace tq
