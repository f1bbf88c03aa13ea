#include "geometry/distortion_map.h"

#include <limits>
#include <new>

#include "core/guard.h"
#include "tqimage/distortion.h"

namespace tq {
namespace {

constexpr std::int32_t kRefused = -1;

template <class View, class Head, class Entry>
View Locate(Head* map) noexcept {
    if (map == nullptr) return {};
    return {map, reinterpret_cast<Entry*>(map + 1), map->Cols, map->Rows};
}

/// Throws std::bad_alloc for what a host's signed 32-bit size could not express, negative sizes included.
std::size_t MapBytes(std::int32_t cols, std::int32_t rows) {
    constexpr std::int64_t kEntries =
        (std::numeric_limits<std::int32_t>::max() - static_cast<std::int64_t>(sizeof(TqDistortionMap))) /
        static_cast<std::int64_t>(sizeof(MapEntry));
    const std::int64_t entries = static_cast<std::int64_t>(cols) * rows;
    if (cols < 0 || rows < 0 || entries > kEntries) throw std::bad_alloc();
    return sizeof(TqDistortionMap) + static_cast<std::size_t>(entries) * sizeof(MapEntry);
}

/// Maps are released with the function that releases images, hence an array of bytes.
void FreeHostMap(TqDistortionMap** map) noexcept {
    delete[] reinterpret_cast<std::uint8_t*>(*map);
    *map = nullptr;
}

float Middle(std::uint16_t pels) noexcept {
    return static_cast<float>(pels - 1) * 0.5f;
}

}  // namespace

MapView LocateMap(TqDistortionMap* map) noexcept {
    return Locate<MapView, TqDistortionMap, MapEntry>(map);
}

ConstMapView LocateMap(const TqDistortionMap* map) noexcept {
    return Locate<ConstMapView, const TqDistortionMap, const MapEntry>(map);
}

}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCreateDistortionImage(TqDistortionMap** map, const TqImageHeader* info) {
    if (map == nullptr || info == nullptr) return kRefused;
    return Guarded(kRefused, [&] {
        const std::int32_t cols = info->PelCols;
        const std::int32_t rows = info->PelRows;
        FreeHostMap(map);
        auto* head = reinterpret_cast<TqDistortionMap*>(new std::uint8_t[MapBytes(cols, rows)]);
        head->Cols = static_cast<std::uint16_t>(cols);
        head->Rows = static_cast<std::uint16_t>(rows);
        head->CenterCol = Middle(head->Cols);
        head->CenterRow = Middle(head->Rows);
        *map = head;
        return 0;
    });
}

std::int32_t TQ_CALL tqPutDistortionPel(TqDistortionMap* map, const TqImageHeader* info, std::int32_t col,
                                        std::int32_t row, float sourceCol, float sourceRow) {
    const MapView view = LocateMap(map);
    if (!view || info == nullptr) return kRefused;
    // The stride is the header's, not the map's: hosts fill maps in the raster of the image they have. For
    // the same reason a column beyond the row runs on into the next one.
    const std::int64_t index = static_cast<std::int64_t>(info->PelCols) * row + col;
    if (index < 0 || index >= view.Count()) return kRefused;
    view.entries[index] = {sourceCol, sourceRow};
    return 0;
}
