#include "json_file.h"
#include "report.h"

namespace cli {
namespace {

/// What is known, with the centre and the binning that were taken where nothing was.
Json HeaderJson(const Report& report) {
    PhotometricHeader header = report.header;
    header.center = {report.used.CenterCol, report.used.CenterRow};
    header.bin = {report.used.BinCols, report.used.BinRows};
    return Json::parse(FormatSidecar(header));
}

Json RegionJson(const Measurement& measurement) {
    Json json{{"name", measurement.region.name}, {"region", measurement.region.text}};
    ForEachQuantity([&](Quantity quantity) {
        const auto& value = measurement.figures[quantity];
        if (!value) return;
        const QuantityForm& form = FormOf(quantity);
        if (form.whole) {
            json[form.key] = static_cast<std::int64_t>(*value);
        } else {
            json[form.key] = *value;
        }
    });
    return json;
}

Json ComparisonJson(const Comparison& comparison) {
    Json json{{"region", comparison.region}, {"figure", FormOf(comparison.expected.quantity).key}};
    json["measured"] = comparison.measured ? Json(*comparison.measured) : Json(nullptr);
    json["expected"] = comparison.expected.value;
    if (comparison.measured) json["differencePercent"] = comparison.differencePercent;
    json["tolerancePercent"] = comparison.expected.tolerancePercent;
    json["within"] = comparison.within;
    return json;
}

}  // namespace

std::string FormatJson(const Report& report) {
    Json json{{"file", report.file},
              {"columns", report.used.PelCols},
              {"rows", report.used.PelRows},
              {"bitsPerPel", report.bitsPerPel},
              {"header", HeaderJson(report)},
              {"corrections", report.corrections},
              {"angleMode", report.options.angleMode},
              {"spot", report.options.spot}};
    json["regions"] = Json::array();
    for (const Measurement& measurement : report.measurements)
        json["regions"].push_back(RegionJson(measurement));
    if (!report.comparisons.empty()) {
        json["comparisons"] = Json::array();
        for (const Comparison& comparison : report.comparisons) {
            json["comparisons"].push_back(ComparisonJson(comparison));
        }
    }
    return JsonText(json);
}

}  // namespace cli
