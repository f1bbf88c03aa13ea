#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "chromaticity.h"
#include "region_argument.h"

namespace cli {

struct RegionColour {
    Region region;
    Tristimulus colour;
    std::optional<Chromaticity> xy;
    std::optional<Chromaticity> uv;
    std::optional<double> kelvin;
};

/// The two regions whose colours differ most.
struct LargestDifference {
    std::string first;
    std::string second;
    double distance = 0.0;
};

/// A picture of a quantity: pel 0 is `low` or below and 65000 `high`.
struct ColourMap {
    std::string file;
    const char* quantity;
    double low;
    double high;
};

struct ColourReport {
    std::array<std::string, 3> files;
    std::int32_t cols = 0;
    std::int32_t rows = 0;
    std::array<double, 9> matrix{};
    bool inLux = false;  ///< X, Y and Z count lux and not grey levels
    std::vector<RegionColour> colours;
    std::optional<LargestDifference> largest;  ///< of two or more regions with light
    std::vector<ColourMap> maps;
};

std::string FormatColourTable(const ColourReport& report);
std::string FormatColourJson(const ColourReport& report);
std::string FormatColourCsv(const ColourReport& report);

}  // namespace cli
