#include "colour_report.h"

#include "json_file.h"
#include "text.h"
#include "text_table.h"

namespace cli {
namespace {

std::array<std::string, 2> Shown(const std::optional<Chromaticity>& at) {
    if (!at) return {"-", "-"};
    return {Format("%.4f", (*at)[0]), Format("%.4f", (*at)[1])};
}

template <class Value>
Json OrNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json(nullptr);
}

}  // namespace

std::string FormatColourTable(const ColourReport& report) {
    std::string text = Format("%s, %s, %s: %d x %d pels; X, Y, Z in %s\n\n", report.files[0].c_str(),
                              report.files[1].c_str(), report.files[2].c_str(), report.cols, report.rows,
                              report.inLux ? "lx" : "grey levels");
    TextTable table;
    table.AddLine({"region", "X", "Y", "Z", "x", "y", "u'", "v'", "CCT K"});
    for (const RegionColour& it : report.colours) {
        const auto [x, y] = Shown(it.xy);
        const auto [u, v] = Shown(it.uv);
        table.AddLine({it.region.name, Format("%.6g", it.colour[0]), Format("%.6g", it.colour[1]),
                       Format("%.6g", it.colour[2]), x, y, u, v,
                       it.kelvin ? Format("%.0f", *it.kelvin) : "-"});
    }
    text += table.Text();
    if (report.largest) {
        text += Format("\nlargest difference %.5f in u'v': %s, %s\n", report.largest->distance,
                       report.largest->first.c_str(), report.largest->second.c_str());
    }
    for (const ColourMap& map : report.maps)
        text += Format("%s: %s from %.5g to %.5g\n", map.file.c_str(), map.quantity, map.low, map.high);
    return text;
}

std::string FormatColourJson(const ColourReport& report) {
    Json json{{"files", report.files},
              {"columns", report.cols},
              {"rows", report.rows},
              {"matrix", report.matrix},
              {"unit", report.inLux ? "lx" : "grey"}};
    json["regions"] = Json::array();
    for (const RegionColour& it : report.colours) {
        json["regions"].push_back({{"name", it.region.name},
                                   {"region", it.region.text},
                                   {"XYZ", it.colour},
                                   {"xy", OrNull(it.xy)},
                                   {"uv", OrNull(it.uv)},
                                   {"kelvin", OrNull(it.kelvin)}});
    }
    if (report.largest) {
        json["largestDifference"] = {{"regions", {report.largest->first, report.largest->second}},
                                     {"uv", report.largest->distance}};
    }
    for (const ColourMap& map : report.maps) {
        json["maps"].push_back(
            {{"file", map.file}, {"quantity", map.quantity}, {"low", map.low}, {"high", map.high}});
    }
    return JsonText(json);
}

std::string FormatColourCsv(const ColourReport& report) {
    std::string text = "name,region,X,Y,Z,x,y,u,v,kelvin\n";
    for (const RegionColour& it : report.colours) {
        text += QuoteCsv(it.region.name) + "," + QuoteCsv(it.region.text);
        for (const double value : it.colour)
            text += Format(",%.9g", value);
        for (const auto* at : {&it.xy, &it.uv})
            text += *at ? Format(",%.9g,%.9g", (**at)[0], (**at)[1]) : ",,";
        text += it.kelvin ? Format(",%.9g\n", *it.kelvin) : ",\n";
    }
    return text;
}

}  // namespace cli
