#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "library.h"
#include "region_argument.h"

namespace cli {

/// A grey level and the first pel, in row order, that holds it.
struct Extreme {
    std::int32_t grey = 0;
    std::int32_t col = 0;
    std::int32_t row = 0;
};

/// Asks the library about one region of one image, whatever the region's shape.
class RegionQuery {
  public:
    /// scratch is an image of the same size, all 0, and is left so.
    RegionQuery(const HostImage& image, const Region& region, HostImage& scratch);

    /// Sum of the pels at or above the threshold, and how many they are.
    double Total(std::int32_t threshold, std::int32_t& count) const;
    struct Range {
        Extreme lowest;
        Extreme highest;
    };
    Range Extremes() const;

    /// The polygon's vertices as the library takes them; none for other shapes.
    SAFEARRAY** Vertices() const { return vertices_ ? vertices_->Address() : nullptr; }

  private:
    std::int32_t Largest(const HostImage& image) const;
    std::int32_t Smallest(const HostImage& image) const;
    Extreme Locate(std::int32_t grey) const;

    const HostImage& image_;
    const Region& region_;
    HostImage& scratch_;
    mutable std::optional<Int32Array> vertices_;  ///< the library takes its address, and only reads it
    std::array<std::int32_t, 4> bounds_{};        ///< of the region inside the image, inclusive
};

}  // namespace cli
