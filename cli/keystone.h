#pragma once

#include <string>

#include "library.h"

namespace cli {

/// What the file holds, for the help.
extern const char kKeystoneForm[];

/// Makes the screen that a JSON file describes rectangular; returns what was done, for the report.
std::string RemoveKeystone(const std::string& path, HostImage& image);

}  // namespace cli
