#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "photometric_header.h"

namespace cli {

/// One of the thirteen measuring points of a projected field.
struct FieldPoint {
    const char* name;
    std::int32_t col = 0;
    std::int32_t row = 0;
    double grey = 0.0;
    double deviationPercent = 0.0;  ///< from the mean of the first nine
};

/// A figure of the whole field, ready for every form of report.
struct FieldFigure {
    const char* key;    ///< in JSON and CSV
    const char* title;  ///< in the table
    const char* unit;
    const char* pattern;  ///< of the table's figure
    double value;
};

struct UniformityReport {
    std::string file;
    std::int32_t cols = 0;
    std::int32_t rows = 0;
    int bitsPerPel = 16;
    PhotometricHeader header;
    std::array<std::int32_t, 2> spot{};
    bool ellipses = false;
    std::string region;
    double thresholdPercent = 0.0;
    std::vector<FieldPoint> points;
    /// Those that the header allows: no lumens without scale and lux, no visibility without scale.
    std::vector<FieldFigure> figures;
};

std::string FormatUniformityTable(const UniformityReport& report);
std::string FormatUniformityJson(const UniformityReport& report);
std::string FormatUniformityCsv(const UniformityReport& report);

}  // namespace cli
