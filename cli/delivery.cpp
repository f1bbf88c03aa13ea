#include "delivery.h"

#include <cstdio>

#include "failure.h"

namespace cli {

void CheckDestinations(const Destinations& destinations) {
    if (destinations.json == "-" && destinations.csv == "-") {
        FailUsage("--json and --csv cannot both go to stdout");
    }
}

std::string PlaceReport(const Destinations& destinations, const ReportTexts& texts, OutputFiles& files) {
    std::string shown = texts.table;
    const auto place = [&](const std::string& destination, const std::string& text) {
        if (destination == "-") {
            shown = text;
        } else if (!destination.empty()) {
            files.Add(destination).Write(text);
        }
    };
    place(destinations.json, texts.json);
    place(destinations.csv, texts.csv);
    return shown;
}

void Show(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        FailFile("stdout", "cannot be written");
    }
}

}  // namespace cli
