#pragma once

#include <cstddef>

#include "core/numerics.h"

namespace tq {

/// Sorts ascending by Shell's method with the gaps 1, 4, 13, 40 ...: for a handful of pels nothing is faster.
inline void ShellSort(Pel* pels, std::size_t count) noexcept {
    std::size_t gap = 1;
    while (gap <= count)
        gap = 3 * gap + 1;
    for (gap /= 3; gap > 0; gap /= 3) {
        for (std::size_t i = gap; i < count; ++i) {
            const Pel pel = pels[i];
            std::size_t at = i;
            for (; at >= gap && pels[at - gap] > pel; at -= gap)
                pels[at] = pels[at - gap];
            pels[at] = pel;
        }
    }
}

}  // namespace tq
