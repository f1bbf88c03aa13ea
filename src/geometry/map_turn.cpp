#include <cstdint>
#include <optional>
#include <utility>

#include "core/guard.h"
#include "geometry/distortion_map.h"
#include "geometry/turn.h"
#include "tqimage/keystone.h"

namespace tq {
namespace {

constexpr std::int32_t kNoMap = -2;  // also when there is no memory for the new one

constexpr bool ReversesColumns(Turn turn) noexcept {
    return turn == Turn::kRight || turn == Turn::kMirror || turn == Turn::kHalf ||
           turn == Turn::kAntiDiagonal;
}

constexpr bool ReversesRows(Turn turn) noexcept {
    return turn == Turn::kLeft || turn == Turn::kFlip || turn == Turn::kHalf || turn == Turn::kAntiDiagonal;
}

/// Sources outside the raster stay as they are: that is how hosts mark pels without one.
void Reverse(float& source, float last) noexcept {
    if (source >= 0.0f && source <= last) source = last - source;
}

/// The image turns with its map, so a turned entry has to point to where its source has gone.
void TurnSources(Turn turn, const MapView& map) noexcept {
    const bool exchange = ExchangesAxes(turn);
    const bool columns = ReversesColumns(turn);
    const bool rows = ReversesRows(turn);
    const auto lastCol = static_cast<float>(map.cols - 1);
    const auto lastRow = static_cast<float>(map.rows - 1);
    for (std::int64_t i = 0; i < map.Count(); ++i) {
        MapEntry& entry = map.entries[i];
        if (exchange) std::swap(entry.col, entry.row);
        if (columns) Reverse(entry.col, lastCol);
        if (rows) Reverse(entry.row, lastRow);
    }
}

std::int32_t TurnMap(TqDistortionMap** map, Turn turn) noexcept {
    const TqDistortionMap* held = map == nullptr ? nullptr : *map;
    const ConstMapView source = LocateMap(held);
    if (!source) return kNoMap;
    return Guarded(kNoMap, [&] {
        const bool exchange = ExchangesAxes(turn);
        OwnedMap turned(exchange ? source.rows : source.cols, exchange ? source.cols : source.rows);
        const MapView view = turned.View();
        const RasterPlace center =
            TurnPlace(turn, {source.head->CenterCol, source.head->CenterRow}, source.cols, source.rows);
        view.head->CenterCol = center.col;
        view.head->CenterRow = center.row;
        if (source.Count() != 0) TurnCells(turn, source.entries, source.cols, source.rows, view.entries);
        TurnSources(turn, view);
        CommitMap(map, std::move(turned));
        return 0;
    });
}

/// Without a turn even a missing map is left alone.
std::int32_t TurnIfAny(TqDistortionMap** map, std::optional<Turn> turn) noexcept {
    return turn ? TurnMap(map, *turn) : 0;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqMirrorKeystone(TqDistortionMap** map) {
    return TurnMap(map, Turn::kMirror);
}

std::int32_t TQ_CALL tqTransposeKeystone(TqDistortionMap** map, std::int32_t mode) {
    return TurnIfAny(map, TurnOfMode(mode, false));
}

std::int32_t TQ_CALL tqMirrorTransposeKeystone(TqDistortionMap** map, std::int32_t mirror,
                                               std::int32_t mode) {
    if (mode == 0 && mirror != 0) return TurnMap(map, Turn::kMirror);
    return TurnIfAny(map, TurnOfMode(mode, mirror != 0));
}
