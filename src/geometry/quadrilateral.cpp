#include "geometry/quadrilateral.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace tq {
namespace {

/// Twice the signed area of a triangle, positive when it is clockwise as displayed.
double Turning(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c) noexcept {
    return (b.col - a.col) * (c.row - b.row) - (b.row - a.row) * (c.col - b.col);
}

/// The longest bright run along a row or a column: specks beside the screen are shorter than it.
class BrightRun {
  public:
    /// `pels[i * stride]` for i below count.
    BrightRun(const Pel* pels, std::ptrdiff_t stride, std::int32_t count, double level) noexcept
        : pels_(pels), stride_(stride), twice_(2.0 * level) {
        // Of pairs of pels, which belong half-way between them. A pel that a border cuts holds the share it
        // covers, and between the sums of neighbours such a border moves linearly: single pels would put it
        // wrong by up to a tenth of a pel.
        std::int32_t start = -1;
        for (std::int32_t i = 0; i < count; ++i) {
            const bool bright = i + 1 < count && Pair(i) >= twice_;
            if (bright && start < 0) start = i;
            if (bright || start < 0) continue;
            if (i - start > last_ - first_ + 1) {
                first_ = start;
                last_ = i - 1;
            }
            start = -1;
        }
        hasStart_ = first_ > 0;
        hasEnd_ = last_ >= first_ && last_ + 2 < count;
    }
    std::int32_t Length() const noexcept { return last_ - first_ + 1; }
    /// False when the run touches the border of the image, where no edge is to be seen.
    bool HasStart() const noexcept { return hasStart_; }
    bool HasEnd() const noexcept { return hasEnd_; }
    double Start() const noexcept { return Crossing(first_ - 1); }
    double End() const noexcept { return Crossing(last_); }

  private:
    double Pair(std::int32_t i) const noexcept {
        return static_cast<double>(pels_[i * stride_]) + pels_[(i + 1) * stride_];
    }
    /// Between the pairs i and i + 1, of which one is bright.
    double Crossing(std::int32_t i) const noexcept {
        return i + 0.5 + (twice_ - Pair(i)) / (Pair(i + 1) - Pair(i));
    }

    const Pel* pels_;
    std::ptrdiff_t stride_;
    double twice_;
    std::int32_t first_ = 0;
    std::int32_t last_ = -1;
    bool hasStart_ = false;
    bool hasEnd_ = false;
};

struct Crossings {
    std::vector<PlanePoint> alongRows;
    std::vector<PlanePoint> alongCols;
};

/// The ends of runs, as (place along the run, number of the line). Lines that only cross a speck, of a pel or
/// two or of less than a fiftieth of the screen, are left out.
template <class MakeRun>
std::vector<PlanePoint> RunEnds(std::int32_t lines, MakeRun&& makeRun) {
    std::vector<BrightRun> runs;
    runs.reserve(static_cast<std::size_t>(lines));
    std::int32_t longest = 0;
    for (std::int32_t line = 0; line < lines; ++line) {
        runs.push_back(makeRun(line));
        longest = std::max(longest, runs.back().Length());
    }
    const std::int32_t shortest = std::max(3, longest / 50);
    std::vector<PlanePoint> ends;
    for (std::size_t line = 0; line < runs.size(); ++line) {
        const BrightRun& run = runs[line];
        if (run.Length() < shortest) continue;
        if (run.HasStart()) ends.push_back({run.Start(), static_cast<double>(line)});
        if (run.HasEnd()) ends.push_back({run.End(), static_cast<double>(line)});
    }
    return ends;
}

Crossings FindCrossings(const ConstImageView& image, double level) {
    Crossings found;
    found.alongRows = RunEnds(
        image.rows, [&](std::int32_t row) { return BrightRun(image.Row(row), 1, image.cols, level); });
    found.alongCols = RunEnds(image.cols, [&](std::int32_t col) {
        return BrightRun(image.pels + col, image.cols, image.rows, level);
    });
    for (PlanePoint& p : found.alongCols)
        std::swap(p.col, p.row);
    return found;
}

/// The crossings farthest toward the four corners. Turned by less than 45 degrees, a convex quadrilateral has
/// a corner there.
Quadrilateral RoughCorners(const Crossings& crossings) noexcept {
    constexpr std::array<PlanePoint, 4> kToward = {{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}};
    Quadrilateral corners{};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const auto reach = [&](const PlanePoint& p) {
            return p.col * kToward[i].col + p.row * kToward[i].row;
        };
        bool first = true;
        for (const auto* points : {&crossings.alongRows, &crossings.alongCols}) {
            for (const PlanePoint& p : *points) {
                if (!first && reach(p) <= reach(corners[i])) continue;
                corners[i] = p;
                first = false;
            }
        }
    }
    return corners;
}

/// Points at which normal * (point - through) is 0.
struct Line {
    PlanePoint through;
    PlanePoint normal;

    double Distance(const PlanePoint& p) const noexcept {
        return (p.col - through.col) * normal.col + (p.row - through.row) * normal.row;
    }
};

Line Through(const PlanePoint& a, const PlanePoint& b) noexcept {
    const double cols = b.col - a.col;
    const double rows = b.row - a.row;
    const double length = std::sqrt(cols * cols + rows * rows);
    return {a, {-rows / length, cols / length}};
}

/// Total least squares over the points near a first line, away from the ends, where another border begins.
std::optional<Line> Fit(const std::vector<PlanePoint>& points, const PlanePoint& from, const PlanePoint& to,
                        const Line& near, double reach) noexcept {
    const double cols = to.col - from.col;
    const double rows = to.row - from.row;
    const double squared = cols * cols + rows * rows;
    // Sums relative to one end: their squares stay small against a double's last bits.
    double n = 0.0, x = 0.0, y = 0.0, xx = 0.0, xy = 0.0, yy = 0.0;
    for (const PlanePoint& p : points) {
        const double c = p.col - from.col;
        const double r = p.row - from.row;
        const double share = (c * cols + r * rows) / squared;
        // A tenth at either end is left out.
        if (!(share >= 0.1 && share <= 0.9 && std::abs(near.Distance(p)) <= reach)) continue;
        n += 1.0;
        x += c;
        y += r;
        xx += c * c;
        xy += c * r;
        yy += r * r;
    }
    if (n < 3.0) return std::nullopt;
    x /= n;
    y /= n;
    xx = xx / n - x * x;
    xy = xy / n - x * y;
    yy = yy / n - y * y;
    // The eigenvector of the larger eigenvalue, by the row of the matrix that is farther from 0.
    const double half = 0.5 * (xx - yy);
    const double root = std::sqrt(half * half + xy * xy);
    const PlanePoint along = half >= 0.0 ? PlanePoint{half + root, xy} : PlanePoint{xy, root - half};
    const PlanePoint middle{from.col + x, from.row + y};
    if (!(root > 0.0)) return std::nullopt;
    return Through(middle, {middle.col + along.col, middle.row + along.row});
}

std::optional<PlanePoint> Intersection(const Line& a, const Line& b) noexcept {
    const double determinant = a.normal.col * b.normal.row - a.normal.row * b.normal.col;
    if (!(std::abs(determinant) > 1e-6)) return std::nullopt;  // parallel within any measurement
    // Along the first line as far as the second one is away.
    const double step = b.Distance(a.through) / determinant;
    return PlanePoint{a.through.col + a.normal.row * step, a.through.row - a.normal.col * step};
}

std::optional<Line> FitBorder(const Crossings& crossings, const PlanePoint& from, const PlanePoint& to) {
    const double cols = std::abs(to.col - from.col);
    const double rows = std::abs(to.row - from.row);
    const auto& points = rows > cols ? crossings.alongRows : crossings.alongCols;
    // The rough corners lie within a few pels of the true ones; then only what a line's own noise explains.
    std::optional<Line> line = Through(from, to);
    for (const double reach : {3.0 + 0.02 * (cols + rows), 2.0, 1.0}) {
        line = Fit(points, from, to, *line, reach);
        if (!line) break;
    }
    return line;
}

}  // namespace

bool IsConvex(const Quadrilateral& corners) noexcept {
    constexpr double kFar = 1e6;  // beyond any image, and far from where squares lose their last bits
    for (std::size_t i = 0; i < 4; ++i) {
        const PlanePoint& corner = corners[i];
        // Written so that NaN fails.
        if (!(std::abs(corner.col) < kFar && std::abs(corner.row) < kFar)) return false;
        if (!(Turning(corner, corners[(i + 1) % 4], corners[(i + 2) % 4]) >= 1.0)) return false;
    }
    return true;
}

std::optional<double> HalfLevel(const ConstImageView& image, std::int32_t threshold) noexcept {
    std::int64_t bright = 0, brightCount = 0, total = 0;
    for (std::size_t i = 0; i < image.Count(); ++i) {
        const Pel pel = image.pels[i];
        total += pel;
        bright += pel > threshold ? pel : 0;
        brightCount += pel > threshold;
    }
    if (brightCount == 0) return std::nullopt;
    const std::int64_t darkCount = static_cast<std::int64_t>(image.Count()) - brightCount;
    const double dark =
        darkCount == 0 ? 0.0 : static_cast<double>(total - bright) / static_cast<double>(darkCount);
    return 0.5 * (static_cast<double>(bright) / static_cast<double>(brightCount) + dark);
}

std::optional<Quadrilateral> FindCorners(const ConstImageView& image, double level) {
    const Crossings crossings = FindCrossings(image, level);
    if (crossings.alongRows.empty() || crossings.alongCols.empty()) return std::nullopt;
    const Quadrilateral rough = RoughCorners(crossings);
    std::array<Line, 4> borders{};
    for (std::size_t i = 0; i < 4; ++i) {
        const auto border = FitBorder(crossings, rough[i], rough[(i + 1) % 4]);
        if (!border) return std::nullopt;
        borders[i] = *border;
    }
    Quadrilateral corners{};
    for (std::size_t i = 0; i < 4; ++i) {
        const auto corner = Intersection(borders[(i + 3) % 4], borders[i]);
        if (!corner) return std::nullopt;
        corners[i] = *corner;
    }
    return corners;
}

}  // namespace tq
