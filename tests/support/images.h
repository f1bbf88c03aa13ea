#pragma once

#include <gtest/gtest.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tqimage/image.h"

namespace tqtest {

/// What a generator would have stored for an image of this size: 1000 pels a metre, the axis in the middle,
/// one lux a grey level, one metre from the source. Tests change the one field they are about.
inline TqImageHeader DefaultHeader(std::int32_t cols, std::int32_t rows) {
    TqImageHeader header{};
    header.PelCols = cols;
    header.PelRows = rows;
    header.PelsPerMeterX = 1000.0f;
    header.PelsPerMeterY = 1000.0f;
    header.CenterCol = (static_cast<float>(cols) - 1.0f) * 0.5f;
    header.CenterRow = (static_cast<float>(rows) - 1.0f) * 0.5f;
    header.LuxPerGrey = 1.0f;
    header.MaxPelValue = 65535.0f;
    header.SourceDistance = 1.0f;
    header.BinCols = 1;
    header.BinRows = 1;
    return header;
}

/// A host's image: a block pointer that is released with the scope. Pass it where a function takes an image,
/// and `image.Address()` where it takes the address of the host's pointer. Blocks live in the library's heap,
/// so only the library creates and frees them.
class Image {
  public:
    Image() = default;
    /// All pels 0. Sides of 0 and above 8000 are possible: the block is then an invalid image.
    explicit Image(const TqImageHeader& header) {
        if (tqCreateImage(&header, &block_) != 0) throw std::runtime_error("no memory for a test image");
        std::memset(Pels(), 0, Count() * sizeof(std::uint16_t));
    }
    Image(std::int32_t cols, std::int32_t rows) : Image(DefaultHeader(cols, rows)) {}
    Image(const Image& other) : block_(nullptr) {
        if (other.block_ == nullptr) return;
        Image copy(other.Header());
        if (other.Count() != 0) {
            std::memcpy(copy.Pels(), other.Pels(), other.Count() * sizeof(std::uint16_t));
        }
        std::swap(block_, copy.block_);
    }
    Image(Image&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    Image& operator=(Image other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }
    ~Image() {
        if (block_ != nullptr) tqImageFree(&block_);
    }

    operator TqImage*() noexcept { return block_; }
    operator const TqImage*() const noexcept { return block_; }
    TqImage* Get() const noexcept { return block_; }
    TqImage** Address() noexcept { return &block_; }
    /// Forgets the block without freeing it.
    TqImage* Release() noexcept { return std::exchange(block_, nullptr); }

    TqImageHeader& Header() const noexcept { return *reinterpret_cast<TqImageHeader*>(block_); }
    std::uint16_t* Pels() const noexcept { return reinterpret_cast<std::uint16_t*>(&Header() + 1); }
    std::int32_t Cols() const noexcept { return Header().PelCols; }
    std::int32_t Rows() const noexcept { return Header().PelRows; }
    std::size_t Count() const noexcept {
        return static_cast<std::size_t>(Cols()) * static_cast<std::size_t>(Rows());
    }
    std::uint16_t& operator()(std::int32_t col, std::int32_t row) const noexcept {
        return Pels()[static_cast<std::ptrdiff_t>(row) * Cols() + col];
    }
    std::vector<std::uint16_t> Values() const { return {Pels(), Pels() + Count()}; }

  private:
    TqImage* block_ = nullptr;
};

/// An image whose pel at (col, row) is the low 16 bits of fn(col, row).
template <std::invocable<std::int32_t, std::int32_t> Fn>
Image MakeImage(std::int32_t cols, std::int32_t rows, Fn&& fn) {
    Image image(cols, rows);
    for (std::int32_t row = 0; row < rows; ++row) {
        for (std::int32_t col = 0; col < cols; ++col) {
            image(col, row) = static_cast<std::uint16_t>(fn(col, row));
        }
    }
    return image;
}

/// An image written down row by row, for cases small enough to read.
inline Image MakeImage(std::int32_t cols, std::int32_t rows, const std::vector<int>& values) {
    return MakeImage(cols, rows, [&](std::int32_t col, std::int32_t row) {
        return values.at(static_cast<std::size_t>(row) * static_cast<std::size_t>(cols) +
                         static_cast<std::size_t>(col));
    });
}

/// Uniform noise in low..high; the same pels for the same seed on every platform, so the standard library's
/// distributions, which differ, are not used.
inline Image RandomImage(std::int32_t cols, std::int32_t rows, std::uint32_t seed, std::uint32_t low = 0,
                         std::uint32_t high = 65535) {
    std::mt19937 engine(seed);
    return MakeImage(cols, rows,
                     [&](std::int32_t, std::int32_t) { return low + engine() % (high - low + 1); });
}

/// Noise in which about one pel in `oneIn` is 0, the pel without data.
inline Image RandomImageWithHoles(std::int32_t cols, std::int32_t rows, std::uint32_t seed,
                                  std::uint32_t oneIn = 5) {
    std::mt19937 engine(seed);
    return MakeImage(cols, rows, [&](std::int32_t, std::int32_t) {
        const bool hole = engine() % oneIn == 0;
        const auto value = static_cast<std::uint32_t>(1 + engine() % 65535);
        return hole ? 0u : value;
    });
}

/// Byte-wise equality of two headers, so that NaN and the spare word count.
inline bool SameHeader(const TqImageHeader& a, const TqImageHeader& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/// Equality of size and pels; a failure names the first pel that differs.
inline testing::AssertionResult SamePels(const Image& expected, const Image& actual) {
    if (expected.Get() == nullptr || actual.Get() == nullptr) {
        return testing::AssertionFailure() << "there is no image to compare";
    }
    if (expected.Cols() != actual.Cols() || expected.Rows() != actual.Rows()) {
        return testing::AssertionFailure() << "expected " << expected.Cols() << " x " << expected.Rows()
                                           << " pels, got " << actual.Cols() << " x " << actual.Rows();
    }
    for (std::int32_t row = 0; row < expected.Rows(); ++row) {
        for (std::int32_t col = 0; col < expected.Cols(); ++col) {
            if (expected(col, row) == actual(col, row)) continue;
            return testing::AssertionFailure() << "pel (" << col << ", " << row << "): expected "
                                               << expected(col, row) << ", got " << actual(col, row);
        }
    }
    return testing::AssertionSuccess();
}

}  // namespace tqtest
