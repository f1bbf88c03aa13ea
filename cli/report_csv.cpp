#include "report.h"
#include "text.h"

namespace cli {
namespace {

std::string Quote(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char letter : text) {
        if (letter == '"') quoted += '"';
        quoted += letter;
    }
    return quoted + '"';
}

}  // namespace

std::string FormatCsv(const Report& report) {
    // The same columns whatever is known: files of several measurements can be put under each other.
    std::string text = "name,region";
    ForEachQuantity([&](Quantity quantity) { text += std::string(",") + FormOf(quantity).key; });
    text += '\n';
    for (const Measurement& measurement : report.measurements) {
        text += Quote(measurement.region.name) + "," + Quote(measurement.region.text);
        ForEachQuantity([&](Quantity quantity) {
            const auto& value = measurement.figures[quantity];
            text += ',';
            if (value) text += Format(FormOf(quantity).whole ? "%.0f" : "%.9g", *value);
        });
        text += '\n';
    }
    return text;
}

}  // namespace cli
