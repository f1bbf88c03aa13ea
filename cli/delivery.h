#pragma once

#include <string>

#include "files.h"

namespace cli {

/// Where --json and --csv lead: a file, "-" for stdout, empty for nowhere.
struct Destinations {
    std::string json;
    std::string csv;
};

struct ReportTexts {
    std::string table;
    std::string json;
    std::string csv;
};

/// Two forms on stdout at once are a usage error.
void CheckDestinations(const Destinations& destinations);

/// Adds the texts that go to files and returns the one for stdout: the table, unless another form goes there.
std::string PlaceReport(const Destinations& destinations, const ReportTexts& texts, OutputFiles& files);

/// Writes to stdout; what cannot be written there is a failure, too.
void Show(const std::string& text);

}  // namespace cli
