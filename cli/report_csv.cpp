#include "report.h"
#include "text.h"

namespace cli {

std::string FormatCsv(const Report& report) {
    // The same columns whatever is known: files of several measurements can be put under each other.
    std::string text = "name,region";
    ForEachQuantity([&](Quantity quantity) { text += std::string(",") + FormOf(quantity).key; });
    text += '\n';
    for (const Measurement& measurement : report.measurements) {
        text += QuoteCsv(measurement.region.name) + "," + QuoteCsv(measurement.region.text);
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
