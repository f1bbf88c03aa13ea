#pragma once

#include <vector>

#include "core/numerics.h"

namespace tq {

/// Lengthens a table of the grey levels that were found in an image to all there are, by its last entry. A
/// thread of the host may write pels that another thread's call reads: which of them it sees is the host's
/// affair, but none may lead out of a table.
template <class T>
void CoverEveryLevel(std::vector<T>& table) {
    table.resize(kGreyLevels, table.back());
}

}  // namespace tq
