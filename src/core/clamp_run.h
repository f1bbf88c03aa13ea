#pragma once

#include <algorithm>
#include <cstdint>

#include "core/numerics.h"
#include "platform/int32_table.h"

namespace tq {

/// Makes pels of the first `wanted` elements of a run. False when it has fewer; those that there are have
/// then been written.
inline bool ClampRun(const Int32Table::Run& run, std::int64_t wanted, Pel* pels) noexcept {
    const std::int64_t count = std::min(run.count, wanted);
    for (std::int64_t i = 0; i < count; ++i)
        pels[i] = ClampToPel(run[i]);
    return count >= wanted;
}

}  // namespace tq
