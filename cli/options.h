#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "failure.h"
#include "photometric_header.h"
#include "region_argument.h"
#include "text.h"

namespace CLI {
class App;
}

namespace cli {

/// --region, as often as wanted.
void AddRegions(CLI::App& command, std::vector<std::string>& regions);

/// IMAGE, the one that is measured.
void AddImage(CLI::App& command, std::string& image);

/// The photometric header, typed or in a file.
void AddHeader(CLI::App& command, HeaderOptions& options);

/// --progress, among the options of a group.
void AddProgress(CLI::App& command, bool& progress, const char* group);

/// --json, --csv and --progress.
void AddReports(CLI::App& command, std::string& json, std::string& csv, bool& progress);

/// What --lens-radial takes.
extern const char kLensHelp[];

/// The group of the options that say where results go.
extern const char kOutput[];

/// One or two whole numbers, the one standing for both, none below least; anything else is a usage error.
std::array<std::int32_t, 2> ParsePair(const char* option, const std::string& text, std::int32_t least);

/// Columns and rows of an image to make, the one number standing for both.
std::array<std::int32_t, 2> ParseSize(const char* option, const std::string& text);

/// As many numbers as the option takes, or what is meant without it.
template <std::size_t kCount>
std::array<double, kCount> ParseNumbers(const char* option, const std::string& text,
                                        std::array<double, kCount> values) {
    if (text.empty()) return values;
    const auto typed = ParseReals(text, kCount, kCount);
    if (!typed) FailUsage(Format("%s takes %zu numbers, not %s", option, kCount, text.c_str()));
    std::copy(typed->begin(), typed->end(), values.begin());
    return values;
}

/// LOW,HIGH, or what is meant without it.
std::array<double, 2> ParseRange(const char* option, const std::string& text, std::array<double, 2> values);

/// The place of a word among the choices; any other word is a usage error.
std::int32_t ParseChoice(const char* option, const std::string& word,
                         std::initializer_list<const char*> choices);

/// The regions as typed; the whole image when there are none.
std::vector<Region> ParseRegions(const std::vector<std::string>& arguments);

/// The value of a --region that can only be a rectangle.
Region ParseArea(const std::string& argument);

}  // namespace cli
