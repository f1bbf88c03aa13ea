#include "measure/polygon_scan.h"

#include <algorithm>
#include <numeric>

namespace tq {

PolygonScan::PolygonScan(std::span<const Vertex> vertices, std::int32_t cols, std::int32_t rows)
    : cols_(cols) {
    if (vertices.empty()) return;
    edges_.reserve(vertices.size());
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const Vertex& from = vertices[i];
        const Vertex& to = vertices[(i + 1) % vertices.size()];
        edges_.push_back({from.col, from.row, to.col, to.row});
    }
    const auto byRow = [](const Vertex& a, const Vertex& b) { return a.row < b.row; };
    const auto [topmost, lowest] = std::minmax_element(vertices.begin(), vertices.end(), byRow);
    row_ = std::max<std::int64_t>(topmost->row, 0) - 1;
    lastRow_ = std::min<std::int64_t>(lowest->row, std::int64_t{rows} - 1);

    byTop_.resize(edges_.size());
    std::iota(byTop_.begin(), byTop_.end(), std::size_t{0});
    std::sort(byTop_.begin(), byTop_.end(),
              [&](std::size_t a, std::size_t b) { return edges_[a].Top() < edges_[b].Top(); });
}

bool PolygonScan::NextRow() {
    if (row_ >= lastRow_) return false;
    ++row_;
    spans_.clear();
    UpdateActiveEdges();
    const bool horizontal =
        std::any_of(active_.begin(), active_.end(), [&](std::size_t e) { return edges_[e].Horizontal(); });
    if (horizontal) {
        UniteAroundHorizontalEdges();
    } else {
        WalkCrossings();
    }
    return true;
}

void PolygonScan::UpdateActiveEdges() {
    std::erase_if(active_, [&](std::size_t e) { return edges_[e].Bottom() < row_; });
    const std::size_t kept = active_.size();
    for (; nextByTop_ < byTop_.size() && edges_[byTop_[nextByTop_]].Top() <= row_; ++nextByTop_) {
        if (edges_[byTop_[nextByTop_]].Bottom() >= row_) active_.push_back(byTop_[nextByTop_]);
    }
    // Crossings in one column keep the polygon's edge order, so the active edges do.
    if (active_.size() > kept) std::sort(active_.begin(), active_.end());
}

std::int64_t PolygonScan::Edge::ColumnAt(std::int64_t row) const noexcept {
    if (col1 == col2) return col1;
    // The slope is held in single precision, the rest in double: figures of polygons measured before depend
    // on which pel a slanted edge falls on.
    const auto slope =
        static_cast<float>(static_cast<double>(row2 - row1) / static_cast<double>(col2 - col1));
    const double col =
        static_cast<double>(row - row1) / static_cast<double>(slope) + static_cast<double>(col1);
    return static_cast<std::int64_t>(col + 0.5);  // |col| stays near the edge's ends: 64 bits always hold it
}

/// Rows that no horizontal edge touches. Pairs of crossings span the inside; where the outline passes
/// straight through a vertex its two edges both cross there, one with its lower and one with its upper end,
/// and count once.
void PolygonScan::WalkCrossings() {
    crossings_.clear();
    for (const std::size_t e : active_) {
        const Edge& edge = edges_[e];
        const Meets kind = row_ == edge.Bottom() ? Meets::kAtLowerEnd
                           : row_ == edge.Top()  ? Meets::kAtUpperEnd
                                                 : Meets::kInside;
        crossings_.push_back({edge.ColumnAt(row_), e, kind});
    }
    // A stable sort would ask for memory in every row.
    std::sort(crossings_.begin(), crossings_.end(), [](const Crossing& a, const Crossing& b) {
        return a.col != b.col ? a.col < b.col : a.edge < b.edge;
    });

    const auto coincide = [&](std::size_t a, std::size_t b) {
        return crossings_[a].col == crossings_[b].col && crossings_[a].kind != crossings_[b].kind;
    };
    const std::size_t count = crossings_.size();
    std::size_t start = 0;
    while (start + 1 < count) {
        // Where the previous span ended in this column, the outline has either gone on through the same
        // vertex, or the inside goes on behind the column: then the pair is taken as it stands.
        bool behindPrevious = start > 0 && crossings_[start].col == crossings_[start - 1].col;
        if (behindPrevious && coincide(start, start - 1)) {
            ++start;
            behindPrevious = false;
        }
        std::size_t end = start + 1;
        if (end >= count) break;
        if (!behindPrevious && end + 1 < count && coincide(start, end)) ++end;
        AddSpan(crossings_[start].col, crossings_[end].col);
        start = end + 1;
    }
}

/// Rows with horizontal edges: the inside just above the row, the inside just below it, and the edges
/// themselves.
void PolygonScan::UniteAroundHorizontalEdges() {
    pieces_.clear();
    AddPairs(true);
    AddPairs(false);
    for (const std::size_t e : active_) {
        const Edge& edge = edges_[e];
        if (!edge.Horizontal()) continue;
        pieces_.push_back({std::min(edge.col1, edge.col2), std::max(edge.col1, edge.col2)});
    }
    std::sort(pieces_.begin(), pieces_.end(), [](const Span& a, const Span& b) { return a.first < b.first; });
    for (const Span& piece : pieces_)
        AddSpan(piece.first, piece.last);
}

/// Pairs of crossings of the edges that reach the row from above (`withLowerEnd`) or from below. A horizontal
/// edge does neither; of the others every closed outline has an even number.
void PolygonScan::AddPairs(bool withLowerEnd) {
    columns_.clear();
    for (const std::size_t e : active_) {
        const Edge& edge = edges_[e];
        const bool reaches = withLowerEnd ? edge.Top() < row_ : row_ < edge.Bottom();
        if (reaches) columns_.push_back(edge.ColumnAt(row_));
    }
    std::sort(columns_.begin(), columns_.end());
    for (std::size_t i = 0; i + 1 < columns_.size(); i += 2)
        pieces_.push_back({columns_[i], columns_[i + 1]});
}

/// Clips a span to the image and to what the row has visited already.
void PolygonScan::AddSpan(std::int64_t first, std::int64_t last) {
    first = std::max<std::int64_t>(first, spans_.empty() ? 0 : spans_.back().last + 1);
    last = std::min<std::int64_t>(last, std::int64_t{cols_} - 1);
    if (first <= last) spans_.push_back({first, last});
}

}  // namespace tq
