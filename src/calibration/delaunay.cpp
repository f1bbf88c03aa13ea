#include "calibration/delaunay.h"

#include <cstdint>
#include <utility>

namespace tq {
namespace {

struct PlanePlace {
    double x;
    double y;
};

/// Twice the area of a triangle, positive when it turns left. Exact: places are whole numbers below 2^24.
double Turn(const PlanePlace& a, const PlanePlace& b, const PlanePlace& c) noexcept {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// True when d lies inside the circle through a, b, c, which turn left. The products reach 2^104, and 113
/// bits hold them exactly.
bool InCircle(const PlanePlace& a, const PlanePlace& b, const PlanePlace& c, const PlanePlace& d) noexcept {
    using Wide = __float128;
    const auto lifted = [&](const PlanePlace& p) {
        const double x = p.x - d.x;
        const double y = p.y - d.y;
        return Wide{x * x + y * y};
    };
    return lifted(a) * Turn(d, b, c) - lifted(b) * Turn(d, a, c) + lifted(c) * Turn(d, a, b) > 0;
}

/// Divide and conquer on the quad-edge structure (Guibas and Stolfi 1985). An edge is four numbers: itself,
/// its dual, its reverse and the reverse of its dual.
class QuadEdges {
  public:
    using Edge = std::size_t;

    explicit QuadEdges(const SurfacePoints& points) {
        places_.reserve(points.Count());
        // Rows first, the order in which the points are sorted.
        for (std::size_t i = 0; i < points.Count(); ++i)
            places_.push_back({points.row[i] / points.quantum, points.col[i] / points.quantum});
    }

    Triangulation Run() {
        Triangulation result;
        if (places_.empty()) return result;
        if (places_.size() == 1) {
            result.hull.push_back({0, 0});
            return result;
        }
        const Edge outer = Divide(0, places_.size()).first;
        Edge edge = outer;
        do {
            result.hull.push_back({Origin(edge), Destination(edge)});
            edge = next_[Reverse(edge)];
        } while (edge != outer);
        for (Edge first = 0; first < next_.size(); first += 2)
            AddTriangle(first, result);
        return result;
    }

  private:
    static Edge Dual(Edge e) noexcept { return (e & ~Edge{3}) | ((e + 1) & 3); }
    static Edge Reverse(Edge e) noexcept { return e ^ 2; }
    static Edge ReverseDual(Edge e) noexcept { return (e & ~Edge{3}) | ((e + 3) & 3); }
    Edge PreviousAtOrigin(Edge e) const noexcept { return Dual(next_[Dual(e)]); }
    Edge NextAroundLeft(Edge e) const noexcept { return Dual(next_[ReverseDual(e)]); }
    std::size_t Origin(Edge e) const noexcept { return origin_[e]; }
    std::size_t Destination(Edge e) const noexcept { return origin_[Reverse(e)]; }
    double TurnOf(std::size_t a, std::size_t b, std::size_t c) const noexcept {
        return Turn(places_[a], places_[b], places_[c]);
    }
    bool LiesLeft(std::size_t point, Edge e) const noexcept {
        return TurnOf(point, Origin(e), Destination(e)) > 0.0;
    }
    bool LiesRight(std::size_t point, Edge e) const noexcept {
        return TurnOf(point, Destination(e), Origin(e)) > 0.0;
    }
    bool Encircled(std::size_t a, std::size_t b, std::size_t c, std::size_t d) const noexcept {
        return InCircle(places_[a], places_[b], places_[c], places_[d]);
    }

    void Splice(Edge a, Edge b) noexcept {
        const Edge alpha = Dual(next_[a]);
        const Edge beta = Dual(next_[b]);
        std::swap(next_[a], next_[b]);
        std::swap(next_[alpha], next_[beta]);
    }
    Edge Make(std::size_t from, std::size_t to) {
        const Edge e = next_.size();
        next_.insert(next_.end(), {e, e + 3, e + 2, e + 1});
        origin_.insert(origin_.end(), {from, kNowhere, to, kNowhere});
        return e;
    }
    Edge Connect(Edge a, Edge b) {
        const Edge e = Make(Destination(a), Origin(b));
        Splice(e, NextAroundLeft(a));
        Splice(Reverse(e), b);
        return e;
    }
    void Delete(Edge e) noexcept {
        Splice(e, PreviousAtOrigin(e));
        Splice(Reverse(e), PreviousAtOrigin(Reverse(e)));
        origin_[e] = origin_[Reverse(e)] = kNowhere;
    }

    /// The edges of the hull out of the first point, turning left, and out of the last one, turning right.
    using Ends = std::pair<Edge, Edge>;

    Ends Divide(std::size_t begin, std::size_t end) {
        const std::size_t count = end - begin;
        if (count <= 3) return Smallest(begin, count);
        auto [leftOuter, leftInner] = Divide(begin, begin + count / 2);
        auto [rightInner, rightOuter] = Divide(begin + count / 2, end);
        const Edge base = LowerTangent(leftInner, rightInner);
        if (Origin(leftInner) == Origin(leftOuter)) leftOuter = Reverse(base);
        if (Origin(rightInner) == Origin(rightOuter)) rightOuter = base;
        Merge(base);
        return {leftOuter, rightOuter};
    }

    Ends Smallest(std::size_t first, std::size_t count) {
        const Edge a = Make(first, first + 1);
        if (count == 2) return {a, Reverse(a)};
        const Edge b = Make(first + 1, first + 2);
        Splice(Reverse(a), b);
        const double turn = TurnOf(first, first + 1, first + 2);
        if (turn == 0.0) return {a, Reverse(b)};
        const Edge c = Connect(b, a);
        if (turn > 0.0) return {a, Reverse(b)};
        return {Reverse(c), c};
    }

    Edge LowerTangent(Edge& left, Edge& right) {
        while (true) {
            if (LiesLeft(Origin(right), left)) {
                left = NextAroundLeft(left);
            } else if (LiesRight(Origin(left), right)) {
                right = next_[Reverse(right)];
            } else {
                return Connect(Reverse(right), left);
            }
        }
    }

    void Merge(Edge base) {
        const auto isAbove = [&](Edge e) { return LiesRight(Destination(e), base); };
        while (true) {
            Edge left = next_[Reverse(base)];
            while (isAbove(left) &&
                   Encircled(Destination(base), Origin(base), Destination(left), Destination(next_[left])))
                Delete(std::exchange(left, next_[left]));
            Edge right = PreviousAtOrigin(base);
            while (isAbove(right) && Encircled(Destination(base), Origin(base), Destination(right),
                                               Destination(PreviousAtOrigin(right))))
                Delete(std::exchange(right, PreviousAtOrigin(right)));
            if (!isAbove(left) && !isAbove(right)) return;
            const bool fromRight =
                !isAbove(left) || (isAbove(right) && Encircled(Destination(left), Origin(left), Origin(right),
                                                               Destination(right)));
            base = fromRight ? Connect(right, Reverse(base)) : Connect(Reverse(base), Reverse(left));
        }
    }

    /// The triangle to the left of an edge, once: by the first of its edges.
    void AddTriangle(Edge first, Triangulation& result) const {
        if (origin_[first] == kNowhere) return;
        const Edge second = NextAroundLeft(first);
        const Edge third = NextAroundLeft(second);
        if (first > second || first > third || NextAroundLeft(third) != first) return;
        if (TurnOf(Origin(first), Origin(second), Origin(third)) <= 0.0) return;
        result.triangles.push_back({Origin(first), Origin(second), Origin(third)});
    }

    static constexpr std::size_t kNowhere = ~std::size_t{0};

    std::vector<PlanePlace> places_;
    std::vector<Edge> next_;
    std::vector<std::size_t> origin_;
};

}  // namespace

Triangulation Triangulate(const SurfacePoints& points) {
    return QuadEdges(points).Run();
}

}  // namespace tq
