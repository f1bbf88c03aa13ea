#pragma once

#include <string>
#include <vector>

#include "expectation.h"
#include "measurement.h"
#include "photometric_header.h"

namespace cli {

/// Everything that one measurement tells.
struct Report {
    std::string file;
    int bitsPerPel = 16;
    PhotometricHeader header;
    TqImageHeader used{};  ///< the header with what was taken where nothing was known
    std::vector<std::string> corrections;
    MeasuringOptions options;
    std::vector<Measurement> measurements;
    std::vector<Comparison> comparisons;
};

std::string FormatTable(const Report& report);
std::string FormatJson(const Report& report);
std::string FormatCsv(const Report& report);

}  // namespace cli
