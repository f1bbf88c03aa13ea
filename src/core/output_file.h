#pragma once

#include <cstddef>
#include <cstdio>

namespace tq {

/// The C libraries' own buffer holds hardly one row.
inline constexpr std::size_t kOutputBuffer = 1 << 18;

/// Removes what a failed write has created. A device that took the first bytes stays where it is.
void RemoveRegularFile(const char* fileName) noexcept;

/// Opens a file, which replaces an existing one, and lets write(FILE*) fill it. False, and no file left
/// behind, when it cannot be opened, `write` returns false, or the last bytes do not reach it.
template <class Write>
bool WriteFile(const char* fileName, const char* mode, Write&& write) {
    std::FILE* file = fileName == nullptr ? nullptr : std::fopen(fileName, mode);
    if (file == nullptr) return false;
    std::setvbuf(file, nullptr, _IOFBF, kOutputBuffer);
    const bool written = write(file);
    // Closing writes what is still buffered and may fail as well.
    const bool closed = std::fclose(file) == 0;
    if (!written || !closed) RemoveRegularFile(fileName);
    return written && closed;
}

}  // namespace tq
