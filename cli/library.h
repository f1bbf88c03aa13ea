#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "image_file.h"
#include "tqimage/automation.h"
#include "tqimage/base.h"

namespace cli {

/// A library image that frees itself.
class HostImage {
  public:
    HostImage(const GreyImage& pels, const TqImageHeader& header);
    /// An image of zeros.
    HostImage(std::int32_t cols, std::int32_t rows);
    ~HostImage();
    HostImage(const HostImage&) = delete;
    HostImage& operator=(const HostImage&) = delete;

    TqImage* Get() noexcept { return block_; }
    const TqImage* Get() const noexcept { return block_; }
    /// For functions that replace the image.
    TqImage** Address() noexcept { return &block_; }

    TqImageHeader Header() const;
    void SetHeader(const TqImageHeader& header);
    /// The pels follow the header in the block.
    const std::uint16_t* Row(std::int32_t row) const noexcept;
    std::uint16_t* Row(std::int32_t row) noexcept;

  private:
    TqImage* block_ = nullptr;
};

/// A copy of the pels, for a file.
GreyImage ToGreyImage(const HostImage& image);

/// A two-dimensional array of numbers as the library takes lists, released with its owner.
template <class Number>
class HostArray {
  public:
    HostArray(std::size_t first, std::size_t second);
    ~HostArray();
    HostArray(const HostArray&) = delete;
    HostArray& operator=(const HostArray&) = delete;

    void Put(std::size_t first, std::size_t second, Number value);
    SAFEARRAY** Address() noexcept { return &array_; }

  private:
    SAFEARRAY* array_ = nullptr;
};

using Int32Array = HostArray<std::int32_t>;
using DoubleArray = HostArray<double>;
extern template class HostArray<std::int32_t>;
extern template class HostArray<double>;

/// Ends the measurement when a call returned anything but 0.
void Require(std::int32_t status, const std::string& subject, const char* what);
/// The same for calls that report failures as negative results.
double RequirePositive(double result, const std::string& subject, const char* what);

}  // namespace cli
