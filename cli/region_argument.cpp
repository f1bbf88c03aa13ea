#include "region_argument.h"

#include <algorithm>
#include <set>

#include "failure.h"
#include "text.h"

namespace cli {
namespace {

std::array<std::int32_t, 4> ParseBox(const std::string& argument, std::string_view numbers,
                                     const char* form) {
    const auto values = ParseInts(numbers, 4, 4);
    if (!values) FailUsage("region " + argument + ": " + form + " are four whole numbers");
    return {(*values)[0], (*values)[1], (*values)[2], (*values)[3]};
}

void ParseRectangle(Region& region, const std::string& argument, std::string_view numbers) {
    region.shape = Shape::kRectangle;
    region.box = ParseBox(argument, numbers, "left, top, right, bottom");
}

void ParseEllipse(Region& region, const std::string& argument, std::string_view numbers) {
    region.shape = Shape::kEllipse;
    region.box = ParseBox(argument, numbers, "centre column, centre row, width, height");
    if (region.box[2] < 1 || region.box[3] < 1) {
        FailUsage("region " + argument + ": width and height are 1 at least");
    }
}

void ParsePolygon(Region& region, const std::string& argument, std::string_view numbers) {
    region.shape = Shape::kPolygon;
    for (const std::string_view vertex : Split(numbers, ';')) {
        const auto values = ParseInts(vertex, 2, 2);
        if (!values) FailUsage("region " + argument + ": vertices are column,row pairs separated by ;");
        region.vertices.push_back({(*values)[0], (*values)[1]});
    }
    if (region.vertices.size() < 3) FailUsage("region " + argument + ": a polygon has 3 vertices at least");
}

}  // namespace

Region ParseRegion(const std::string& argument) {
    Region region;
    const std::size_t equals = argument.find('=');
    region.text = equals == std::string::npos ? argument : argument.substr(equals + 1);
    region.name = equals == std::string::npos ? argument : argument.substr(0, equals);
    if (region.name.empty()) FailUsage("region " + argument + ": the name before = is missing");

    const std::size_t colon = region.text.find(':');
    const std::string shape = region.text.substr(0, colon);
    const std::string_view numbers =
        colon == std::string::npos ? "" : std::string_view(region.text).substr(colon + 1);
    if (shape == "rect") {
        ParseRectangle(region, argument, numbers);
    } else if (shape == "ellipse") {
        ParseEllipse(region, argument, numbers);
    } else if (shape == "poly") {
        ParsePolygon(region, argument, numbers);
    } else {
        FailUsage("region " + argument + ": a shape is rect:l,t,r,b, ellipse:c,r,w,h or poly:c,r;c,r;c,r...");
    }
    return region;
}

void CheckNames(const std::vector<Region>& regions) {
    std::set<std::string> names;
    for (const Region& region : regions) {
        if (!names.insert(region.name).second) FailUsage("two regions are called " + region.name);
    }
}

void FitRegion(Region& region, std::int32_t cols, std::int32_t rows) {
    auto& [left, top, right, bottom] = region.box;
    if (region.shape == Shape::kEllipse) {
        // The measuring spot of an intensity is never larger than the image, so neither is the region.
        if (right > cols || bottom > rows) {
            FailMeasurement("region " + region.name, "the ellipse is larger than the image");
        }
    } else if (region.shape == Shape::kRectangle) {
        if (right == 0) right = cols - 1;
        if (bottom == 0) bottom = rows - 1;
        left = std::max(left, 0);
        top = std::max(top, 0);
        right = std::min(right, cols - 1);
        bottom = std::min(bottom, rows - 1);
        if (left > right || top > bottom) {
            FailMeasurement("region " + region.name, "it lies outside the image");
        }
    }
}

std::array<std::int64_t, 4> BoundsOf(const Region& region) {
    const auto& box = region.box;
    if (region.shape == Shape::kRectangle) return {box[0], box[1], box[2], box[3]};
    if (region.shape == Shape::kEllipse) {
        const std::int64_t col = box[0];
        const std::int64_t row = box[1];
        return {col - box[2] / 2, row - box[3] / 2, col + box[2] / 2, row + box[3] / 2};
    }
    const auto [left, right] = std::minmax_element(region.vertices.begin(), region.vertices.end());
    const auto [top, bottom] = std::minmax_element(region.vertices.begin(), region.vertices.end(),
                                                   [](const auto& a, const auto& b) { return a[1] < b[1]; });
    return {(*left)[0], (*top)[1], (*right)[0], (*bottom)[1]};
}

}  // namespace cli
