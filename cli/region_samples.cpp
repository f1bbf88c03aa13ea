#include "region_samples.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace cli {
namespace {

// Places across a region: the midpoint rule's error falls with their square, so that for a light as smooth
// as a lamp's it lies below one part in a million.
constexpr int kPlaces = 500;

void SampleEllipse(const Region& region, double outward, const Visit& visit) {
    const double across = 0.5 * region.box[2] + outward;
    const double down = 0.5 * region.box[3] + outward;
    for (int ring = 0; ring < kPlaces; ++ring) {
        const double radius = (ring + 0.5) / kPlaces;
        const double area = across * down * radius / kPlaces * 2.0 * std::numbers::pi / kPlaces;
        for (int turn = 0; turn < kPlaces; ++turn) {
            const double angle = 2.0 * std::numbers::pi * (turn + 0.5) / kPlaces;
            visit({region.box[0] + across * radius * std::cos(angle),
                   region.box[1] + down * radius * std::sin(angle), area});
        }
    }
}

using Vertex = std::array<double, 2>;

/// The polygon, grown about the mean of its vertices by so many pels all round.
std::vector<Vertex> Outline(const Region& region, double outward) {
    std::vector<Vertex> vertices;
    vertices.reserve(region.vertices.size());
    Vertex middle{};
    for (const auto& [col, row] : region.vertices) {
        vertices.push_back({static_cast<double>(col), static_cast<double>(row)});
        middle[0] += col / static_cast<double>(region.vertices.size());
        middle[1] += row / static_cast<double>(region.vertices.size());
    }
    double perimeter = 0.0;
    double twiceArea = 0.0;
    for (std::size_t index = 0; index < vertices.size(); ++index) {
        const Vertex& from = vertices[index];
        const Vertex& to = vertices[(index + 1) % vertices.size()];
        perimeter += std::hypot(to[0] - from[0], to[1] - from[1]);
        twiceArea += from[0] * to[1] - to[0] * from[1];
    }
    // To first order this scale adds the area of a strip along the whole outline.
    const double growth = twiceArea == 0.0 ? 1.0 : 1.0 + outward * perimeter / std::fabs(twiceArea);
    for (Vertex& vertex : vertices) {
        vertex = {middle[0] + growth * (vertex[0] - middle[0]), middle[1] + growth * (vertex[1] - middle[1])};
    }
    return vertices;
}

void SamplePolygon(const Region& region, double outward, const Visit& visit) {
    const std::vector<Vertex> vertices = Outline(region, outward);
    const auto [top, bottom] = std::minmax_element(vertices.begin(), vertices.end(),
                                                   [](const auto& a, const auto& b) { return a[1] < b[1]; });
    const double height = ((*bottom)[1] - (*top)[1]) / kPlaces;
    for (int down = 0; down < kPlaces; ++down) {
        const double row = (*top)[1] + (down + 0.5) * height;
        std::vector<double> crossings;
        for (std::size_t index = 0; index < vertices.size(); ++index) {
            const auto& from = vertices[index];
            const auto& to = vertices[(index + 1) % vertices.size()];
            if ((from[1] < row) == (to[1] < row)) continue;
            const double part = (row - from[1]) / (to[1] - from[1]);
            crossings.push_back(from[0] + part * (to[0] - from[0]));
        }
        std::sort(crossings.begin(), crossings.end());
        for (std::size_t pair = 0; pair + 1 < crossings.size(); pair += 2) {
            const double width = (crossings[pair + 1] - crossings[pair]) / kPlaces;
            for (int across = 0; across < kPlaces; ++across) {
                visit({crossings[pair] + (across + 0.5) * width, row, width * height});
            }
        }
    }
}

}  // namespace

void SampleRectangle(const std::array<double, 4>& box, const Visit& visit) {
    // Pels are squares around their centres: the outermost reach half a pel further.
    const double width = (box[2] - box[0] + 1.0) / kPlaces;
    const double height = (box[3] - box[1] + 1.0) / kPlaces;
    for (int down = 0; down < kPlaces; ++down) {
        for (int across = 0; across < kPlaces; ++across) {
            visit({box[0] - 0.5 + (across + 0.5) * width, box[1] - 0.5 + (down + 0.5) * height,
                   width * height});
        }
    }
}

void SampleRegion(const Region& region, double outward, const Visit& visit) {
    if (region.shape == Shape::kEllipse) return SampleEllipse(region, outward, visit);
    if (region.shape == Shape::kPolygon) return SamplePolygon(region, outward, visit);
    SampleRectangle({static_cast<double>(region.box[0]), static_cast<double>(region.box[1]),
                     static_cast<double>(region.box[2]), static_cast<double>(region.box[3])},
                    visit);
}

}  // namespace cli
