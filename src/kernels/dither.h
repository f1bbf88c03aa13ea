#pragma once

#include <cstddef>
#include <cstdint>

#include "core/numerics.h"

namespace tq::kernels {

/// out[i] = pels[i] * factor + r / 32768 in double, truncated and limited to 0..255, NaN being 0. r is the
/// i-th number, 0..32767, that the generator of the Windows C runtime gives after `seed`: pictures made on
/// other systems have the grain of those made there.
void DitherToBytes(const Pel* pels, double factor, std::uint32_t seed, Pel* out, std::size_t count);

}  // namespace tq::kernels
