#include "core/input_file.h"

#include <cstdio>
#include <memory>

namespace tq {
namespace {

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

constexpr std::size_t kChunk = std::size_t{1} << 16;

}  // namespace

std::optional<std::vector<std::uint8_t>> ReadFile(const char* fileName, std::size_t most) {
    const std::unique_ptr<std::FILE, CloseFile> file(fileName == nullptr ? nullptr
                                                                         : std::fopen(fileName, "rb"));
    if (!file) return std::nullopt;
    std::vector<std::uint8_t> bytes;
    // Chunk by chunk instead of asking for the size: what is not a regular file has none.
    while (bytes.size() <= most) {
        const std::size_t before = bytes.size();
        bytes.resize(before + kChunk);
        const std::size_t read = std::fread(bytes.data() + before, 1, kChunk, file.get());
        bytes.resize(before + read);
        if (read < kChunk) break;
    }
    if (std::ferror(file.get()) != 0 || bytes.size() > most) return std::nullopt;
    return bytes;
}

}  // namespace tq
