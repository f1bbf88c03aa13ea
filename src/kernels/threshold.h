#pragma once

#include <cstddef>
#include <cstdint>

#include "core/numerics.h"

namespace tq::kernels {

/// Grey levels low..high, both inclusive; none when low > high.
struct Band {
    Pel low;
    Pel high;
};

/// out[i] = pels[i] where that lies in the band, else 0. `out` may be `pels`, here and below.
void KeepBand(const Pel* pels, Band band, Pel* out, std::size_t count);

/// out[i] = value where pels[i] lies in the band, else 0.
void MarkBand(const Pel* pels, Band band, Pel value, Pel* out, std::size_t count);

/// Pels outside the band become `replacement`, but a 0 stays 0. Returns the number of those replaced.
std::uint64_t ReplaceOutside(const Pel* pels, Band band, Pel replacement, Pel* out, std::size_t count);

}  // namespace tq::kernels
