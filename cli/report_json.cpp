#include "json_file.h"
#include "report.h"

namespace cli {
namespace {

Json HeaderJson(const Report& report) {
    const auto& header = report.header;
    Json json = Json::object();
    if (header.pelsPerMeter) json["pelsPerMeter"] = {(*header.pelsPerMeter)[0], (*header.pelsPerMeter)[1]};
    json["center"] = {report.used.CenterCol, report.used.CenterRow};
    if (header.luxPerGrey) json["luxPerGrey"] = *header.luxPerGrey;
    if (header.distance) json["distance"] = *header.distance;
    json["bin"] = {report.used.BinCols, report.used.BinRows};
    return json;
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
              {"columns", report.cols},
              {"rows", report.rows},
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
    // File names may be any bytes; what is not text in them is replaced rather than refused.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace cli
