#pragma once

#include <string>

#include "library.h"

namespace CLI {
class App;
}

namespace cli {

/// -o, and --progress.
void AddImageOutput(CLI::App& command, std::string& output, bool& progress);

/// Writes an image and, as OUTPUT.json, where every command looks for it, what its header tells.
void WriteWithHeader(const std::string& output, const HostImage& image);

}  // namespace cli
