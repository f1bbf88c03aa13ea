#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "commands.h"
#include "delivery.h"
#include "failure.h"
#include "files.h"
#include "image_file.h"
#include "json_file.h"
#include "library.h"
#include "options.h"
#include "text.h"
#include "tqimage/mtf.h"

namespace cli {
namespace {

/// `tqimage mtf` as it was typed.
struct MtfOptions {
    std::string image;
    std::vector<std::string> regions;
    std::int32_t points = 51;
    std::string json;  ///< "-" for stdout
};

/// What one edge tells.
struct Curve {
    Region region;
    std::vector<double> modulation;
    double mtf50 = 0.0;
    double angle = 0.0;
};

/// Cycles a pel of entry k of a curve.
double Frequency(std::size_t k, std::size_t count) {
    return 0.5 * static_cast<double>(k) / static_cast<double>(count - 1);
}

const char* ReasonOf(std::int32_t status) {
    switch (status) {
        case -3:
            return "too small, or the edge is too close to its border";
        case -4:
            return "no edge";
        case -5:
            return "the edge is not between 1 and 44 degrees from the columns or rows";
        default:
            return "the library refuses it";
    }
}

Curve MeasureCurve(const HostImage& image, const Region& region, std::int32_t count) {
    Curve curve{region, std::vector<double>(static_cast<std::size_t>(count)), 0.0, 0.0};
    const auto& [left, top, right, bottom] = region.box;
    const std::int32_t status = tqCalcMTF(image.Get(), left, top, right, bottom, count,
                                          curve.modulation.data(), &curve.mtf50, &curve.angle);
    if (status != 0) FailMeasurement("region " + region.name, ReasonOf(status));
    return curve;
}

std::string FormatCurves(const std::string& file, const std::vector<Curve>& curves) {
    std::string text = file + "\n";
    for (const Curve& curve : curves) {
        text += "\n" + curve.region.name + "\n";
        text += Format("edge angle  %.3f degrees\n", curve.angle);
        text += curve.mtf50 > 0.0 ? Format("mtf50       %.4f cycles/pel\n", curve.mtf50)
                                  : std::string("mtf50       above 0.5 cycles/pel\n");
        text += "cycles/pel  modulation\n";
        for (std::size_t k = 0; k < curve.modulation.size(); ++k) {
            text += Format("%10.4f  %10.4f\n", Frequency(k, curve.modulation.size()), curve.modulation[k]);
        }
    }
    return text;
}

std::string FormatCurvesJson(const std::string& file, const std::vector<Curve>& curves) {
    Json json{{"file", file}, {"regions", Json::array()}};
    for (const Curve& curve : curves) {
        Json entry{
            {"name", curve.region.name},   {"region", curve.region.text},
            {"angleDegrees", curve.angle}, {"mtf50", curve.mtf50 > 0.0 ? Json(curve.mtf50) : Json(nullptr)},
            {"frequency", Json::array()},  {"modulation", curve.modulation}};
        for (std::size_t k = 0; k < curve.modulation.size(); ++k)
            entry["frequency"].push_back(Frequency(k, curve.modulation.size()));
        json["regions"].push_back(entry);
    }
    return JsonText(json);
}

void Run(const MtfOptions& options) {
    constexpr std::int32_t kMostPoints = 10'000;
    if (options.points < 2 || options.points > kMostPoints) {
        FailUsage(Format("--points is 2 to %d", kMostPoints));
    }
    std::vector<Region> regions = ParseRegions(options.regions);
    for (const Region& region : regions) {
        if (region.shape != Shape::kRectangle)
            FailUsage("region " + region.text + ": an edge takes a rectangle");
    }
    const GreyImage pels = ReadImage(options.image);
    const HostImage image(pels, MakeHeader({}, pels.cols, pels.rows));
    std::vector<Curve> curves;
    for (Region& region : regions) {
        FitRegion(region, pels.cols, pels.rows);
        curves.push_back(MeasureCurve(image, region, options.points));
    }

    OutputFiles files;
    const std::string shown = PlaceReport(
        {options.json, ""},
        {FormatCurves(options.image, curves), FormatCurvesJson(options.image, curves), ""}, files);
    files.Commit();
    Show(shown);
}

}  // namespace

void AddMtf(CLI::App& app) {
    const auto typed = std::make_shared<MtfOptions>();
    MtfOptions& options = *typed;
    CLI::App& command = *app.add_subcommand(
        "mtf", "Modulation transfer from the slanted edge in each region of an image (rectangles only)");
    command.add_option("IMAGE", options.image, "8-bit or 16-bit grey PNG, TIFF or PGM image")->required();
    AddRegions(command, options.regions);
    command.add_option("--points", options.points, "Points of the curve from 0 to 0.5 cycles a pel")
        ->capture_default_str();
    command.add_flag("--json{-}", options.json, "JSON to stdout, or to FILE with --json=FILE");
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli
