#include "expectation.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "json_file.h"

namespace cli {
namespace {

const Json& Member(const std::string& path, const Json& object, const char* name) {
    if (!object.is_object() || !object.contains(name)) {
        FailFile(path, std::string("not a file of expectations (no \"") + name + "\")");
    }
    return object[name];
}

double Number(const std::string& path, const Json& object, const char* name) {
    const Json& value = Member(path, object, name);
    if (!value.is_number()) FailFile(path, std::string("\"") + name + "\" is not a number");
    return value.get<double>();
}

std::string Text(const std::string& path, const Json& object, const char* name) {
    const Json& value = Member(path, object, name);
    if (!value.is_string()) FailFile(path, std::string("\"") + name + "\" is not a text");
    return value.get<std::string>();
}

ExpectedRegion ReadRegion(const std::string& path, const Json& json) {
    ExpectedRegion expected;
    const std::string name = Text(path, json, "name");
    const std::string shape = Text(path, json, "region");
    try {
        expected.region = ParseRegion(name + "=" + shape);
    } catch (const Failure& failure) {
        FailFile(path, failure.what());
    }
    const Json& figures = Member(path, json, "expect");
    if (!figures.is_object()) FailFile(path, "\"expect\" is not an object");
    for (const auto& [key, figure] : figures.items()) {
        const auto quantity = FindQuantity(key.c_str());
        if (!quantity) FailFile(path, "unknown figure " + key);
        expected.figures.push_back(
            {*quantity, Number(path, figure, "value"), Number(path, figure, "tolerancePercent")});
    }
    return expected;
}

Comparison CompareFigure(const Region& region, const Expectation& expectation,
                         const std::optional<double>& measured) {
    Comparison comparison{region.name, expectation, measured};
    if (!measured) return comparison;
    // Against an expected 0 only 0 is within: a percentage of it says nothing.
    const double difference = *measured - expectation.value;
    comparison.differencePercent =
        difference == 0.0 ? 0.0 : 100.0 * difference / std::fabs(expectation.value);
    comparison.within = std::fabs(comparison.differencePercent) <= expectation.tolerancePercent;
    return comparison;
}

}  // namespace

std::vector<ExpectedRegion> ReadExpectations(const std::string& path) {
    const Json json = ReadJsonObject(path);
    const Json& regions = Member(path, json, "regions");
    if (!regions.is_array()) FailFile(path, "\"regions\" is not an array");
    std::vector<ExpectedRegion> expected;
    for (const Json& region : regions)
        expected.push_back(ReadRegion(path, region));
    return expected;
}

std::vector<Comparison> Compare(const std::vector<ExpectedRegion>& expected,
                                const std::vector<Measurement>& measurements) {
    std::vector<Comparison> comparisons;
    for (const ExpectedRegion& region : expected) {
        const auto measured = std::find_if(
            measurements.begin(), measurements.end(),
            [&](const Measurement& measurement) { return measurement.region.name == region.region.name; });
        const Figures figures = measured == measurements.end() ? Figures{} : measured->figures;
        for (const Expectation& figure : region.figures) {
            comparisons.push_back(CompareFigure(region.region, figure, figures[figure.quantity]));
        }
    }
    return comparisons;
}

bool AllWithin(const std::vector<Comparison>& comparisons) {
    return std::all_of(comparisons.begin(), comparisons.end(),
                       [](const Comparison& comparison) { return comparison.within; });
}

}  // namespace cli
