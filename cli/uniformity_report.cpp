#include "json_file.h"
#include "text.h"
#include "text_table.h"
#include "uniformity.h"

namespace cli {
namespace {

TextTable PointTable(const UniformityReport& report) {
    const auto& luxPerGrey = report.header.luxPerGrey;
    TextTable table;
    table.AddLine({"point", "col", "row", "mean", "deviation", luxPerGrey ? "mean" : ""});
    table.AddLine({"", "", "", "grey", "%", luxPerGrey ? "lx" : ""});
    for (const FieldPoint& point : report.points) {
        table.AddLine({point.name, Format("%d", point.col), Format("%d", point.row),
                       Format("%.3f", point.grey), Format("%+.3f", point.deviationPercent),
                       luxPerGrey ? Format("%.6g", point.grey * static_cast<double>(*luxPerGrey)) : ""});
    }
    return table;
}

}  // namespace

std::string FormatUniformityTable(const UniformityReport& report) {
    std::string text = Format("%s: %d x %d pels, %d bits\n", report.file.c_str(), report.cols, report.rows,
                              report.bitsPerPel);
    text += Format("spots: %s of %d x %d pels; mura: %s, blemishes from %g %% on\n\n",
                   report.ellipses ? "ellipses" : "rectangles", report.spot[0], report.spot[1],
                   report.region.c_str(), report.thresholdPercent);
    TextTable figures;
    for (const FieldFigure& figure : report.figures)
        figures.AddLine({figure.title, FormatFigure(figure.pattern, figure.value), figure.unit});
    return text + PointTable(report).Text() + "\n" + figures.Text();
}

std::string FormatUniformityJson(const UniformityReport& report) {
    Json json{{"file", report.file},
              {"columns", report.cols},
              {"rows", report.rows},
              {"bitsPerPel", report.bitsPerPel},
              {"header", Json::parse(FormatSidecar(report.header))},
              {"spot", report.spot},
              {"spotShape", report.ellipses ? "ellipse" : "rectangle"},
              {"region", report.region},
              {"muraThresholdPercent", report.thresholdPercent}};
    json["points"] = Json::array();
    for (const FieldPoint& point : report.points) {
        Json entry{{"name", point.name},
                   {"column", point.col},
                   {"row", point.row},
                   {"meanGrey", point.grey},
                   {"deviationPercent", point.deviationPercent}};
        if (report.header.luxPerGrey) {
            entry["meanLux"] = point.grey * static_cast<double>(*report.header.luxPerGrey);
        }
        json["points"].push_back(std::move(entry));
    }
    for (const FieldFigure& figure : report.figures)
        json["figures"][figure.key] = figure.value;
    return JsonText(json);
}

std::string FormatUniformityCsv(const UniformityReport& report) {
    std::string text = "figure,column,row,value,unit\n";
    for (const FieldPoint& point : report.points)
        text += Format("point %s,%d,%d,%.9g,grey\n", point.name, point.col, point.row, point.grey);
    for (const FieldFigure& figure : report.figures)
        text += Format("%s,,,%.9g,%s\n", figure.key, figure.value, figure.unit);
    return text;
}

}  // namespace cli
