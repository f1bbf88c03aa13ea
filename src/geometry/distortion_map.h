#pragma once

#include <cstddef>
#include <cstdint>

#include "tqimage/base.h"

namespace tq {

/// One entry of a distortion map: the place in the measured image that a pel is taken from.
struct MapEntry {
    float col;
    float row;

    /// False also for an entry that is not a number.
    bool HasSource() const noexcept { return col >= 0.0f && row >= 0.0f; }
};
static_assert(sizeof(MapEntry) == 8, "hosts store the entries as pairs of float without gaps");

/// A map block: its head and its entries with their extent. Empty for a null map; every other block is valid,
/// because the head's 16-bit sizes cannot be wrong by themselves.
template <class Head, class Entry>
struct BasicMapView {
    Head* head = nullptr;
    Entry* entries = nullptr;
    std::int32_t cols = 0;
    std::int32_t rows = 0;

    explicit operator bool() const noexcept { return head != nullptr; }
    Entry* Row(std::int64_t row) const noexcept { return entries + static_cast<std::ptrdiff_t>(row) * cols; }
    std::int64_t Count() const noexcept { return static_cast<std::int64_t>(cols) * rows; }
};

using MapView = BasicMapView<TqDistortionMap, MapEntry>;
using ConstMapView = BasicMapView<const TqDistortionMap, const MapEntry>;

MapView LocateMap(TqDistortionMap* map) noexcept;
ConstMapView LocateMap(const TqDistortionMap* map) noexcept;

}  // namespace tq
