#pragma once

#include <cstdint>

namespace tq {

/// A mura image holds a signed signal: this grey is its zero.
inline constexpr std::int32_t kMuraZero = 32000;

}  // namespace tq
