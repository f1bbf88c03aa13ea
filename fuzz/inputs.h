#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "tqimage/image.h"

namespace fuzz {

/// Reads every pel of what a function has restored, so that a block smaller than it says is found, and frees
/// it.
inline void UseAndFree(TqImage* image) {
    std::int32_t left = 0;
    if (image != nullptr) {
        const auto* header = reinterpret_cast<const TqImageHeader*>(image);
        const auto* pels = reinterpret_cast<const std::uint16_t*>(header + 1);
        const std::int64_t count = std::int64_t{header->PelCols} * header->PelRows;
        for (std::int64_t i = 0; i < count; ++i)
            left ^= pels[i];
    }
    // Never true: it keeps the reads.
    if (left > 65535) std::abort();
    tqImageFree(&image);
}

/// The input's bytes one after the other; zeros behind its end.
class Bytes {
  public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    template <class Value>
    Value Take() {
        Value value{};
        const std::size_t count = std::min(size_, sizeof value);
        std::memcpy(&value, data_, count);
        data_ += count;
        size_ -= count;
        return value;
    }
    const std::uint8_t* Data() const { return data_; }
    std::size_t Size() const { return size_; }

  private:
    const std::uint8_t* data_;
    std::size_t size_;
};

}  // namespace fuzz
