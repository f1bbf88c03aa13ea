#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference.h"

/// Which pels of a row a polygon visits, by the walk over its crossings as written down for hosts.
namespace tqtest {

using Polygon = std::vector<Position>;

namespace polygon_detail {

/// Kind 0: the edge passes through the row; 1: its lower end lies on the row; 2: its upper end.
struct Crossing {
    std::int64_t col;
    int kind;
};

inline std::int64_t CrossingColumn(const Position& from, const Position& to, std::int32_t row) {
    if (from.col == to.col) return from.col;
    const double rise = static_cast<double>(to.row) - from.row;
    const double run = static_cast<double>(to.col) - from.col;
    const float slope = static_cast<float>(rise / run);
    return static_cast<std::int64_t>((static_cast<double>(row) - from.row) / slope + from.col + 0.5);
}

inline int KindOf(const Position& from, const Position& to, std::int32_t row) {
    if (row == from.row) return from.row > to.row ? 1 : 2;
    if (row == to.row) return to.row > from.row ? 1 : 2;
    return 0;
}

template <class Fn>
void ForEachEdge(const Polygon& polygon, Fn&& fn) {
    for (std::size_t i = 0; i < polygon.size(); ++i)
        fn(polygon[i], polygon[(i + 1) % polygon.size()]);
}

inline void Mark(std::vector<bool>& row, std::int64_t first, std::int64_t last) {
    const std::int64_t end = std::min<std::int64_t>(last, static_cast<std::int64_t>(row.size()) - 1);
    for (std::int64_t col = std::max<std::int64_t>(first, 0); col <= end; ++col) {
        row[static_cast<std::size_t>(col)] = true;
    }
}

/// A row without a horizontal edge: crossings pair up from the left; a chain that runs on through a vertex
/// on the row appears as two crossings of different kinds and counts once.
inline void WalkCrossings(const Polygon& polygon, std::int32_t row, std::vector<bool>& marks) {
    std::vector<Crossing> found;
    ForEachEdge(polygon, [&](const Position& from, const Position& to) {
        if (row < std::min(from.row, to.row) || row > std::max(from.row, to.row)) return;
        found.push_back({CrossingColumn(from, to, row), KindOf(from, to, row)});
    });
    std::stable_sort(found.begin(), found.end(),
                     [](const Crossing& a, const Crossing& b) { return a.col < b.col; });
    const Crossing* previous = nullptr;
    for (std::size_t i = 0; i + 1 < found.size(); i += 2) {
        std::int64_t start = found[i].col;
        if (previous != nullptr && start == previous->col) {
            if (found[i].kind != previous->kind) {
                if (++i + 1 >= found.size()) break;
                start = found[i].col;
            } else {
                ++start;
            }
        }
        // Two crossings merge when they share a column, not when a start moved right reaches the next one.
        const bool runsOn =
            start == found[i].col && start == found[i + 1].col && found[i].kind != found[i + 1].kind;
        if (runsOn && i + 2 < found.size()) ++i;
        Mark(marks, start, found[i + 1].col);
        previous = &found[i + 1];
    }
}

/// A row with a horizontal edge: the edge, the filling that reaches it from above and the one from below.
inline void UniteRow(const Polygon& polygon, std::int32_t row, std::vector<bool>& marks) {
    std::vector<std::int64_t> above;
    std::vector<std::int64_t> below;
    ForEachEdge(polygon, [&](const Position& from, const Position& to) {
        const auto [first, last] = std::minmax(from.row, to.row);
        if (first == last) {
            if (row == first) Mark(marks, std::min(from.col, to.col), std::max(from.col, to.col));
            return;
        }
        if (first < row && row <= last) above.push_back(CrossingColumn(from, to, row));
        if (first <= row && row < last) below.push_back(CrossingColumn(from, to, row));
    });
    for (std::vector<std::int64_t>* side : {&above, &below}) {
        std::sort(side->begin(), side->end());
        for (std::size_t i = 0; i + 1 < side->size(); i += 2)
            Mark(marks, (*side)[i], (*side)[i + 1]);
    }
}

}  // namespace polygon_detail

inline Visited PolygonReference(const Image& image, const Polygon& polygon) {
    Visited visited;
    for (std::int32_t row = 0; row < image.Rows(); ++row) {
        bool horizontal = false;
        polygon_detail::ForEachEdge(polygon, [&](const Position& from, const Position& to) {
            horizontal = horizontal || (from.row == row && to.row == row);
        });
        std::vector<bool> marks(static_cast<std::size_t>(image.Cols()));
        if (horizontal) {
            polygon_detail::UniteRow(polygon, row, marks);
        } else {
            polygon_detail::WalkCrossings(polygon, row, marks);
        }
        for (std::int32_t col = 0; col < image.Cols(); ++col) {
            if (marks[static_cast<std::size_t>(col)]) visited.push_back({col, row});
        }
    }
    return visited;
}

}  // namespace tqtest
