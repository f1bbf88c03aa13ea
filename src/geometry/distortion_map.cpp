#include "geometry/distortion_map.h"

#include "core/guard.h"
#include "core/image_block.h"
#include "tqimage/distortion.h"

namespace tq {
namespace {

constexpr std::int32_t kRefused = -1;

template <class View, class Head, class Entry>
View Locate(Head* map) noexcept {
    if (map == nullptr) return {};
    return {map, reinterpret_cast<Entry*>(map + 1), map->Cols, map->Rows};
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

OwnedMap::OwnedMap(std::int32_t cols, std::int32_t rows)
    : block_(new std::uint8_t[GridBytes(sizeof(TqDistortionMap), sizeof(MapEntry), cols, rows)]) {
    auto& head = *reinterpret_cast<TqDistortionMap*>(block_.get());
    head.Cols = static_cast<std::uint16_t>(cols);
    head.Rows = static_cast<std::uint16_t>(rows);
    head.CenterCol = Middle(head.Cols);
    head.CenterRow = Middle(head.Rows);
}

void CommitMap(TqDistortionMap** host, OwnedMap map) noexcept {
    FreeHostBlock(host);
    *host = map.Release();
}

}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCreateDistortionImage(TqDistortionMap** map, const TqImageHeader* info) {
    if (map == nullptr || info == nullptr) return kRefused;
    return Guarded(kRefused, [&] {
        const std::int32_t cols = info->PelCols;
        const std::int32_t rows = info->PelRows;
        FreeHostBlock(map);
        *map = OwnedMap(cols, rows).Release();
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
