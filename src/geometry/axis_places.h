#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/image_view.h"
#include "core/numerics.h"

namespace tq {

/// Where the columns, or the rows, of a result lie in the source: a run of them has places there, the others
/// are black. The places of a run go one way, so nothing black lies between them.
struct AxisPlaces {
    std::int32_t first = 0;
    std::vector<std::int32_t> cells;  ///< the pel before the place, one that has a pel after it
    std::vector<double> weights;      ///< the distance from that pel

    std::int32_t End() const noexcept { return first + static_cast<std::int32_t>(cells.size()); }
    bool Contains(std::int32_t at) const noexcept { return at >= first && at < End(); }
};

/// What place(i) gives for a column or row without a place.
inline constexpr double kNoPlace = -1.0;

/// The places place(0) .. place(count - 1) on an axis of `pels` pels, by the rule of BilinearSampler: those
/// whose truncated value is a pel of the axis, the last pel belonging to the cell before it.
template <class Place>
AxisPlaces MakeAxisPlaces(std::int32_t count, std::int32_t pels, Place&& place) {
    AxisPlaces places;
    places.cells.reserve(static_cast<std::size_t>(count));
    places.weights.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) {
        const double at = place(i);
        const std::int32_t pel = TruncToInt32(at);
        if (pel < 0 || pel >= pels) {
            if (!places.cells.empty()) break;
            places.first = i + 1;
            continue;
        }
        const std::int32_t cell = std::min(pel, std::max(pels - 2, 0));
        places.cells.push_back(cell);
        places.weights.push_back(pels == 1 ? 0.0 : at - cell);
    }
    return places;
}

enum class PelRounding { kTruncate, kNearest };

/// Samples the source at every crossing of `cols` and `rows` into all pels of `out`.
void ResampleImage(const ConstImageView& source, const AxisPlaces& cols, const AxisPlaces& rows,
                   PelRounding rounding, const ImageView& out);

}  // namespace tq
