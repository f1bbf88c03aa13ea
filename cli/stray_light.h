#pragma once

#include <string>

#include "library.h"

namespace cli {

/// What the file holds, for the help.
extern const char kStrayLightForm[];

/// Subtracts the stray light that a JSON file describes; returns what was done, for the report.
std::string RemoveStrayLight(const std::string& path, HostImage& image);

}  // namespace cli
