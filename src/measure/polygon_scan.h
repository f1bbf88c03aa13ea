#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "core/image_view.h"

namespace tq {

struct Vertex {
    std::int32_t col;
    std::int32_t row;
};

/// Turns a closed polygon into row spans, one row at a time. Vertices may lie anywhere; only rows of the
/// image are walked and only columns of the image come out, each at most once a row.
class PolygonScan {
  public:
    struct Span {
        std::int64_t first;
        std::int64_t last;
    };

    PolygonScan(std::span<const Vertex> vertices, std::int32_t cols, std::int32_t rows);

    /// Moves to the next row of the polygon; false past its last.
    bool NextRow();
    std::int32_t Row() const noexcept { return static_cast<std::int32_t>(row_); }
    /// Left to right, not overlapping.
    std::span<const Span> Spans() const noexcept { return spans_; }

  private:
    struct Edge {
        std::int64_t col1, row1, col2, row2;

        bool Horizontal() const noexcept { return row1 == row2; }
        std::int64_t Top() const noexcept { return row1 < row2 ? row1 : row2; }
        std::int64_t Bottom() const noexcept { return row1 < row2 ? row2 : row1; }
        std::int64_t ColumnAt(std::int64_t row) const noexcept;
    };
    /// Where an edge meets a row: between its ends, or at the end that is the greater row, or the lesser.
    enum class Meets { kInside, kAtLowerEnd, kAtUpperEnd };
    struct Crossing {
        std::int64_t col;
        std::size_t edge;
        Meets kind;
    };

    void UpdateActiveEdges();
    void WalkCrossings();
    void UniteAroundHorizontalEdges();
    void AddPairs(bool withLowerEnd);
    void AddSpan(std::int64_t first, std::int64_t last);

    std::vector<Edge> edges_;
    std::vector<std::size_t> byTop_;  ///< edge numbers in order of their first row
    std::size_t nextByTop_ = 0;
    std::vector<std::size_t> active_;  ///< edges that touch the row, in the polygon's order
    std::vector<Crossing> crossings_;
    std::vector<std::int64_t> columns_;
    std::vector<Span> pieces_;
    std::vector<Span> spans_;
    std::int32_t cols_;
    std::int64_t row_ = 0;
    std::int64_t lastRow_ = -1;
};

template <class Visit>
void VisitPolygon(const ConstImageView& view, std::span<const Vertex> vertices, Visit&& visit) {
    PolygonScan scan(vertices, view.cols, view.rows);
    while (scan.NextRow()) {
        for (const auto& span : scan.Spans()) {
            visit(scan.Row(), static_cast<std::int32_t>(span.first), static_cast<std::int32_t>(span.last));
        }
    }
}

}  // namespace tq
