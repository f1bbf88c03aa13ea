#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "radial_lens.h"
#include "tqimage/base.h"

namespace cli {

/// A distortion map that releases itself. In a file it is its 12-byte head and its entries, pairs of 32-bit
/// floats, row by row, low byte first.
class LensMap {
  public:
    static LensMap Read(const std::string& path);
    /// An entry a pel of the full sensor. Pels whose source lies outside the captured image get none.
    static LensMap FromRadial(const RadialLens& lens, std::array<double, 2> center, std::int32_t cols,
                              std::int32_t rows);

    /// Takes over a map that the library made.
    explicit LensMap(TqDistortionMap* map) noexcept : map_(map) {}

    const TqDistortionMap* Get() const noexcept { return map_.get(); }
    std::string Bytes() const;

  private:
    struct Free {
        void operator()(TqDistortionMap* map) const noexcept;
    };
    LensMap(std::int32_t cols, std::int32_t rows);
    std::size_t Size() const noexcept;

    std::unique_ptr<TqDistortionMap, Free> map_;
};

}  // namespace cli
