#include <algorithm>

#include "report.h"
#include "text.h"
#include "text_table.h"

namespace cli {
namespace {

/// The figures first … last of every region, but those that no region has.
std::string FigureTable(const Report& report, const char* head, Quantity first, Quantity last) {
    std::vector<Quantity> shown;
    ForEachQuantity([&](Quantity quantity) {
        const bool known = std::any_of(
            report.measurements.begin(), report.measurements.end(),
            [&](const Measurement& measurement) { return measurement.figures[quantity].has_value(); });
        if (first <= quantity && quantity <= last && known) shown.push_back(quantity);
    });
    if (shown.empty()) return "";

    TextTable table;
    std::vector<std::string> titles{head};
    std::vector<std::string> units{""};
    for (const Quantity quantity : shown) {
        titles.emplace_back(FormOf(quantity).title);
        units.emplace_back(FormOf(quantity).unit);
    }
    table.AddLine(std::move(titles));
    table.AddLine(std::move(units));
    for (const Measurement& measurement : report.measurements) {
        std::vector<std::string> cells{measurement.region.name};
        for (const Quantity quantity : shown) {
            const auto& value = measurement.figures[quantity];
            cells.push_back(value ? FormatFigure(FormOf(quantity).pattern, *value) : "-");
        }
        table.AddLine(std::move(cells));
    }
    return "\n" + table.Text();
}

std::string Head(const Report& report) {
    std::string text = Format("%s: %d x %d pels, %d bits\n", report.file.c_str(), report.used.PelCols,
                              report.used.PelRows, report.bitsPerPel);
    const auto& header = report.header;
    if (header.pelsPerMeter) {
        text += Format(
            "scale %g x %g pels/m, axis at column %g, row %g", static_cast<double>(report.used.PelsPerMeterX),
            static_cast<double>(report.used.PelsPerMeterY), static_cast<double>(report.used.CenterCol),
            static_cast<double>(report.used.CenterRow));
        text += header.center ? "\n" : " (the middle)\n";
    }
    if (header.distance) text += Format("distance %g m\n", static_cast<double>(*header.distance));
    if (header.luxPerGrey) text += Format("%g lx a grey level\n", static_cast<double>(*header.luxPerGrey));
    for (const std::string& correction : report.corrections)
        text += correction + "\n";
    if (header.HasFrame()) {
        const auto names = AngleNames(report.options.angleMode);
        text += Format("angle 1: %s; angle 2: %s\n", names[0], names[1]);
    }
    return text;
}

std::string ComparisonTable(const Report& report) {
    if (report.comparisons.empty()) return "";
    TextTable table;
    table.AddLine({"region", "figure", "measured", "expected", "difference %", "tolerance %", ""});
    for (const Comparison& comparison : report.comparisons) {
        const Expectation& expected = comparison.expected;
        table.AddLine({comparison.region, FormOf(expected.quantity).key,
                       comparison.measured ? Format("%.6g", *comparison.measured) : "-",
                       Format("%.6g", expected.value),
                       comparison.measured ? Format("%+.4f", comparison.differencePercent) : "-",
                       Format("%.4f", expected.tolerancePercent), comparison.within ? "ok" : "OUTSIDE"});
    }
    const auto outside = std::count_if(report.comparisons.begin(), report.comparisons.end(),
                                       [](const Comparison& comparison) { return !comparison.within; });
    return "\n" + table.Text() +
           Format("\n%s: %td of %zu figures within their tolerance\n", outside == 0 ? "PASSED" : "FAILED",
                  static_cast<std::ptrdiff_t>(report.comparisons.size()) - outside,
                  report.comparisons.size());
}

}  // namespace

std::string FormatTable(const Report& report) {
    return Head(report) + FigureTable(report, "grey levels", Quantity::kPels, Quantity::kMaxRow) +
           FigureTable(report, "on the target", Quantity::kAreaMm2, Quantity::kFluxLm) +
           FigureTable(report, "intensity", Quantity::kCandela, Quantity::kOffAxis) +
           FigureTable(report, "brightest", Quantity::kPeakCandela, Quantity::kPeakOffAxis) +
           ComparisonTable(report);
}

}  // namespace cli
