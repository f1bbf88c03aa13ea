#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tq {

/// All bytes of a file; none when it cannot be read or is longer than `most`. Throws std::bad_alloc.
std::optional<std::vector<std::uint8_t>> ReadFile(const char* fileName, std::size_t most);

}  // namespace tq
