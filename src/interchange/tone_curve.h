#pragma once

#include <cstdint>
#include <vector>

#include "core/numerics.h"
#include "tqimage/base.h"

namespace tq {

/// The largest displayed byte.
inline constexpr float kByteScale = 255.0f;

/// An image that tells no scale is shown as if it were one of bytes, and says so from then on: a host that
/// converts it twice must see the same picture.
inline void EnsureScale(TqImageHeader& header) noexcept {
    if (header.MaxPelValue <= 0.0f) header.MaxPelValue = kByteScale;
}

/// The displayed byte of every pel from 0 to `largest` at this full scale. A gamma of 0 counts as 1, a
/// negative one leaves the grey levels linear.
std::vector<std::uint8_t> MakeToneTable(double gamma, double fullScale, Pel largest);

}  // namespace tq
