#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace tqtest {

using Bytes = std::vector<std::uint8_t>;

/// A BMP file put together field by field, so that any field may be wrong.
struct BmpParts {
    std::uint32_t headerBytes = 40;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint32_t bits = 8;
    std::uint32_t compression = 0;
    std::uint32_t colours = 0;           ///< number stated in the header
    std::vector<std::uint32_t> masks{};  ///< red, green, blue: behind the first 40 bytes of the header
    Bytes table{};
    Bytes pixels{};
    std::uint32_t planes = 1;
    std::int32_t offsetError = 0;
};

inline Bytes MakeBmp(const BmpParts& parts) {
    Bytes file{'B', 'M'};
    const auto put = [&](std::uint64_t value, int bytes) {
        for (int i = 0; i < bytes; ++i, value >>= 8)
            file.push_back(static_cast<std::uint8_t>(value));
    };
    put(0, 12);
    put(parts.headerBytes, 4);
    const bool core = parts.headerBytes == 12;
    put(static_cast<std::uint32_t>(parts.width), core ? 2 : 4);
    put(static_cast<std::uint32_t>(parts.height), core ? 2 : 4);
    put(parts.planes, 2);
    put(parts.bits, 2);
    if (!core) {
        put(parts.compression, 4);
        put(0, 12);
        put(parts.colours, 4);
        put(0, 4);
    }
    for (const std::uint32_t mask : parts.masks)
        put(mask, 4);
    if (file.size() < 14 + parts.headerBytes) file.resize(14 + parts.headerBytes);
    file.insert(file.end(), parts.table.begin(), parts.table.end());
    const std::size_t offset = file.size() + static_cast<std::size_t>(parts.offsetError);
    for (std::size_t i = 0; i < 4; ++i)
        file[10 + i] = static_cast<std::uint8_t>(offset >> (8 * i));
    file.insert(file.end(), parts.pixels.begin(), parts.pixels.end());
    return file;
}

inline void WriteBytes(const std::string& name, const Bytes& bytes) {
    // A new file: what overwrites another one goes to the disk at once on some systems.
    std::remove(name.c_str());
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace tqtest
