#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "tqimage/base.h"

namespace tq {

/// One entry of a distortion map: the place in the measured image that a pel is taken from.
struct MapEntry {
    float col;
    float row;

    /// False also for an entry that is not a number.
    bool HasSource() const noexcept { return col >= 0.0f && row >= 0.0f; }
    bool LiesIn(std::int32_t cols, std::int32_t rows) const noexcept {
        return HasSource() && col <= static_cast<float>(cols - 1) && row <= static_cast<float>(rows - 1);
    }
};
static_assert(sizeof(MapEntry) == 8, "hosts store the entries as pairs of float without gaps");

inline constexpr MapEntry kNoSource{-1.0f, -1.0f};

/// The entry for a computed place; kNoSource when it lies outside an image of cols x rows or is no number.
inline MapEntry EntryInside(double col, double row, std::int32_t cols, std::int32_t rows) noexcept {
    const bool inside = col >= 0.0 && row >= 0.0 && col <= cols - 1 && row <= rows - 1;
    return inside ? MapEntry{static_cast<float>(col), static_cast<float>(row)} : kNoSource;
}

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

/// A map block until it is handed to the host. Its centre is in the middle; its entries are unset.
class OwnedMap {
  public:
    /// Throws std::bad_alloc when no block of this size can be had.
    OwnedMap(std::int32_t cols, std::int32_t rows);

    MapView View() const noexcept { return LocateMap(reinterpret_cast<TqDistortionMap*>(block_.get())); }
    TqDistortionMap* Release() noexcept { return reinterpret_cast<TqDistortionMap*>(block_.release()); }

  private:
    std::unique_ptr<std::uint8_t[]> block_;
};

/// Hands a finished map to the host: only now the one it replaces goes.
void CommitMap(TqDistortionMap** host, OwnedMap map) noexcept;

}  // namespace tq
