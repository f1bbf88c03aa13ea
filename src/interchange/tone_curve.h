#pragma once

#include <cstdint>
#include <vector>

#include "core/numerics.h"

namespace tq {

/// The displayed byte of every pel from 0 to `largest` at this full scale. A gamma of 0 counts as 1, a
/// negative one leaves the grey levels linear.
std::vector<std::uint8_t> MakeToneTable(double gamma, double fullScale, Pel largest);

}  // namespace tq
