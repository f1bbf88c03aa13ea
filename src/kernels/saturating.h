#pragma once

#include <cstddef>

#include "core/numerics.h"

namespace tq::kernels {

/// out[i] = max(0, a[i] - b[i]). `out` may be `a` or `b`.
void SubtractSaturated(const Pel* a, const Pel* b, Pel* out, std::size_t count);

}  // namespace tq::kernels
