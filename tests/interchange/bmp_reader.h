#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace tqtest {

/// An 8-bit BMP file read independently of the library: the published layout, every field that a reader
/// relies on checked, rows turned so that row 0 is the top one.
struct BmpFile {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::array<int, 4>> colours;  ///< blue, green, red, 0
    std::vector<std::vector<std::uint8_t>> rows;
};

inline std::vector<std::uint8_t> ReadBytes(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline BmpFile ReadBmp(const std::string& name) {
    const std::vector<std::uint8_t> bytes = ReadBytes(name);
    const auto number = [&](std::size_t at, int size) {
        std::uint32_t value = 0;
        for (int i = size; i-- > 0;)
            value = value << 8 | bytes.at(at + static_cast<std::size_t>(i));
        return value;
    };
    const auto expect = [](bool holds, const char* what) {
        if (!holds) throw std::runtime_error(what);
    };
    expect(bytes.size() > 54 && bytes[0] == 'B' && bytes[1] == 'M', "signature");
    expect(number(2, 4) == bytes.size(), "file size");
    expect(number(6, 4) == 0, "reserved words");
    expect(number(14, 4) == 40, "size of the info header");
    expect(number(26, 2) == 1 && number(28, 2) == 8, "planes and bits");
    expect(number(30, 4) == 0, "compression");
    const std::uint32_t entries = number(46, 4) == 0 ? 256 : number(46, 4);

    BmpFile bmp;
    bmp.width = static_cast<std::int32_t>(number(18, 4));
    bmp.height = static_cast<std::int32_t>(number(22, 4));
    expect(bmp.width > 0 && bmp.height > 0, "sides");
    const std::size_t start = number(10, 4);
    const std::size_t line = (static_cast<std::size_t>(bmp.width) + 3) / 4 * 4;
    expect(start == 54 + 4 * entries, "start of the pixels");
    expect(bytes.size() == start + line * static_cast<std::size_t>(bmp.height), "pixel bytes");
    expect(number(34, 4) == 0 || number(34, 4) == bytes.size() - start, "size of the pixels");
    for (std::size_t i = 0; i < entries; ++i) {
        const std::uint8_t* entry = bytes.data() + 54 + 4 * i;
        bmp.colours.push_back({entry[0], entry[1], entry[2], entry[3]});
    }
    for (std::size_t row = static_cast<std::size_t>(bmp.height); row-- > 0;) {
        const std::uint8_t* first = bytes.data() + start + row * line;
        bmp.rows.emplace_back(first, first + bmp.width);
    }
    return bmp;
}

}  // namespace tqtest
