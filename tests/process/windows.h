#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "images.h"

/// The windows of filters, pel by pel, as references for what the library computes by sliding.
namespace tqtest {

struct Span {
    std::int32_t first, last;
};

inline Span Shifted(std::int32_t at, std::int32_t size, std::int32_t pels) {
    std::int32_t first = std::max(0, at - size / 2);
    std::int32_t last = first + size - 1;
    if (last >= pels) {
        last = pels - 1;
        first = last - (size - 1);
    }
    return {first, last};
}

inline Span Clipped(std::int32_t at, std::int32_t size, std::int32_t pels) {
    return {std::max(0, at - size / 2), std::min(pels - 1, at + size / 2)};
}

inline std::vector<std::uint16_t> WindowPels(const Image& image, Span cols, Span rows) {
    std::vector<std::uint16_t> pels;
    for (std::int32_t row = rows.first; row <= rows.last; ++row)
        for (std::int32_t col = cols.first; col <= cols.last; ++col)
            pels.push_back(image(col, row));
    return pels;
}

inline std::vector<std::uint16_t> ShiftedPels(const Image& image, std::int32_t col, std::int32_t row,
                                              std::int32_t width, std::int32_t height) {
    return WindowPels(image, Shifted(col, width, image.Cols()), Shifted(row, height, image.Rows()));
}

inline std::vector<std::uint16_t> ClippedPels(const Image& image, std::int32_t col, std::int32_t row,
                                              std::int32_t width, std::int32_t height) {
    return WindowPels(image, Clipped(col, width, image.Cols()), Clipped(row, height, image.Rows()));
}

struct Total {
    std::uint64_t sum = 0;
    std::uint64_t count = 0;
};

inline Total AllOf(const std::vector<std::uint16_t>& pels) {
    Total total;
    for (const std::uint16_t pel : pels)
        total = {total.sum + pel, total.count + 1};
    return total;
}

inline Total LitOf(const std::vector<std::uint16_t>& pels) {
    Total total;
    for (const std::uint16_t pel : pels)
        if (pel != 0) total = {total.sum + pel, total.count + 1};
    return total;
}

/// What a size that was asked for means, restated.
inline std::int32_t OddSize(std::int32_t asked, std::int32_t pels) {
    if (asked < 2) asked = 1;
    if (asked > pels) asked = pels;
    return asked - (asked % 2 == 0 ? 1 : 0);
}

}  // namespace tqtest
