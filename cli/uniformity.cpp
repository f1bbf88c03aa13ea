#include "tqimage/uniformity.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <memory>

#include "commands.h"
#include "delivery.h"
#include "failure.h"
#include "input.h"
#include "options.h"
#include "region_argument.h"
#include "text.h"
#include "tqimage/deviation.h"
#include "tqimage/pel_block.h"
#include "uniformity.h"

namespace cli {
namespace {

/// `tqimage uniformity` as it was typed.
struct UniformityOptions {
    std::string image;
    HeaderOptions header;
    std::string spot;
    bool ellipses = false;
    std::string region = "rect:0,0,0,0";
    double threshold = 1.0;
    std::string json, csv;  ///< "-" for stdout
    bool progress = false;
};

struct PlannedPoint {
    const char* name;
    double xPercent;
    double yPercent;
};

/// The library's points: percentages of the way from the first pel to the last. The corners come last.
constexpr PlannedPoint kPoints[] = {
    {"1", 16.7, 16.7},           {"2", 50.0, 16.7},      {"3", 83.3, 16.7},        {"4", 16.7, 50.0},
    {"5", 50.0, 50.0},           {"6", 83.3, 50.0},      {"7", 16.7, 83.3},        {"8", 50.0, 83.3},
    {"9", 83.3, 83.3},           {"top left", 5.0, 5.0}, {"top right", 95.0, 5.0}, {"bottom left", 5.0, 95.0},
    {"bottom right", 95.0, 95.0}};
constexpr int kGridPoints = 9;

/// A grey level of a mura image is this share of the mean.
constexpr double kPercentPerMuraGrey = 100.0 / 32000.0;

double MichelsonPercent(double low, double high) {
    return (high - low) / (high + low) * 100.0;
}

class Uniformity {
  public:
    Uniformity(const HostImage& image, const Region& region, UniformityReport& report)
        : image_(image), region_(region), report_(report) {}

    void Measure() {
        Points();
        Field();
        Pels();
        Mura();
    }

  private:
    void Add(const char* key, const char* title, const char* unit, const char* pattern, double value) {
        report_.figures.push_back({key, title, unit, pattern, value});
    }
    std::int32_t Shape() const { return report_.ellipses ? 1 : 0; }

    void Points() {
        const auto [width, height] = report_.spot;
        const auto average = report_.ellipses ? tqGetPelBlockAvgEllipse : tqGetPelBlockAvg;
        double sum = 0.0;
        for (const PlannedPoint& planned : kPoints) {
            FieldPoint point{planned.name};
            point.col = static_cast<std::int32_t>((report_.cols - 1) * planned.xPercent / 100.0);
            point.row = static_cast<std::int32_t>((report_.rows - 1) * planned.yPercent / 100.0);
            point.grey = RequirePositive(average(image_.Get(), point.col, point.row, width, height),
                                         report_.file, "a spot's mean");
            if (report_.points.size() < kGridPoints) sum += point.grey;
            report_.points.push_back(point);
        }
        mean_ = sum / kGridPoints;
        if (!(mean_ > 0.0)) FailMeasurement(report_.file, "the nine points are dark");
        for (FieldPoint& point : report_.points)
            point.deviationPercent = (point.grey - mean_) * 100.0 / mean_;
    }

    void Field() {
        const auto [width, height] = report_.spot;
        const PhotometricHeader& header = report_.header;
        Add("meanGrey", "mean of points 1 to 9", "grey", "%.3f", mean_);
        if (header.luxPerGrey) {
            Add("meanLux", "mean of points 1 to 9", "lx", "%.6g",
                mean_ * static_cast<double>(*header.luxPerGrey));
        }
        if (header.luxPerGrey && header.HasScale()) {
            const double lumens = tqCalcANSILumens(image_.Get(), Shape(), width, height);
            Add("ansiLumens", "ANSI lumens", "lm", "%.6g", RequirePositive(lumens, report_.file, "its flux"));
        }
        double above = 0.0, below = 0.0;
        Require(tqCalcANSIUniformity(image_.Get(), &above, &below, Shape(), width, height), report_.file,
                "its uniformity");
        Add("maximumDeviationPercent", "ANSI uniformity, brightest spot", "%", "%+.3f", above);
        Add("minimumDeviationPercent", "ANSI uniformity, darkest spot", "%", "%+.3f", below);
        const auto [low, high] =
            std::minmax_element(report_.points.begin(), report_.points.end(),
                                [](const FieldPoint& a, const FieldPoint& b) { return a.grey < b.grey; });
        Add("spotContrastPercent", "Michelson contrast of the spots", "%", "%.3f",
            MichelsonPercent(low->grey, high->grey));
    }

    void Pels() {
        const auto& box = region_.box;
        double mean = 0.0, plus = 0.0, minus = 0.0;
        Require(tqCalcDevInRegion(image_.Get(), &mean, &plus, &minus, box[0], box[1], box[2], box[3]),
                report_.file, "the mean of its lit pels");
        Add("pelContrastPercent", "Michelson contrast of the lit pels", "%", "%.3f",
            MichelsonPercent(100.0 + minus, 100.0 + plus));
    }

    void Mura() {
        const auto& box = region_.box;
        HostImage mura(1, 1);
        Require(tqCalcImageDevInRegion(mura.Address(), image_.Get(), box[0], box[1], box[2], box[3]),
                report_.file, "its mura image");
        // From 1 on: pels of 0 hold no data.
        std::int32_t pels = 0, others = 0;
        const double total = tqGetTotalMuraInRegion(mura.Get(), &pels, 0, 0, 0, 0, 1);
        const double rms = tqGetRMSMuraInRegion(mura.Get(), &others, 0, 0, 0, 0, 1);
        RequirePositive(total, report_.file, "its mura total");
        Add("muraPels", "mura, lit pels", "", "%.0f", pels);
        Add("muraPelsOffMean", "mura, pels off the mean", "", "%.0f", others);
        Add("muraTotalPercent", "mura, total of all amounts", "%", "%.6g", total * kPercentPerMuraGrey);
        Add("muraMeanPercent", "mura, mean amount", "%", "%.4f", total / pels * kPercentPerMuraGrey);
        Add("muraRmsPercent", "mura, root mean square", "%", "%.4f",
            RequirePositive(rms, report_.file, "its mura") * kPercentPerMuraGrey);
        if (!report_.header.HasScale()) return;
        const auto threshold =
            static_cast<std::int32_t>(std::lround(report_.thresholdPercent / kPercentPerMuraGrey));
        double contrast = 0.0, area = 0.0;
        const double semu = tqCalcSemu(mura.Get(), threshold, &contrast, &area);
        Add("semu", "most visible blemish", "SEMU", "%.4f",
            RequirePositive(semu, report_.file, "the search for blemishes"));
        Add("semuContrastPercent", "its contrast", "%", "%+.3f", contrast);
        Add("semuAreaMm2", "its area", "mm2", "%.4g", area);
    }

    const HostImage& image_;
    const Region& region_;
    UniformityReport& report_;
    double mean_ = 0.0;
};

void Run(const UniformityOptions& options) {
    const Destinations destinations{options.json, options.csv};
    CheckDestinations(destinations);
    // The range that a deviation from the mean can have in a mura image: 32000 grey levels down.
    if (!(options.threshold >= 0.0 && options.threshold <= 100.0)) {
        FailUsage("--mura-threshold is a percentage from 0 to 100");
    }
    const Progress progress(options.progress);
    UniformityReport report;
    if (!options.spot.empty()) report.spot = ParsePair("--spot", options.spot, 1);
    Region region = ParseArea(options.region);
    Input input = ReadInput(options.image, options.header, progress);
    TqImageHeader header = input.image.Header();
    report.file = options.image;
    report.header = input.known;
    report.cols = header.PelCols;
    report.rows = header.PelRows;
    report.bitsPerPel = input.bitsPerPel;
    report.ellipses = options.ellipses;
    report.thresholdPercent = options.threshold;
    if (options.spot.empty()) report.spot = {std::max(report.cols / 20, 1), std::max(report.rows / 20, 1)};
    FitRegion(region, report.cols, report.rows);
    const auto& box = region.box;
    report.region = Format("rect:%d,%d,%d,%d", box[0], box[1], box[2], box[3]);

    // Deviations in percent do not depend on the scale, but the library asks for one.
    if (!report.header.HasScale()) header.PelsPerMeterX = header.PelsPerMeterY = 1.0f;
    input.image.SetHeader(header);
    progress.Stage("measuring");
    Uniformity(input.image, region, report).Measure();

    OutputFiles files;
    const std::string shown = PlaceReport(
        destinations,
        {FormatUniformityTable(report), FormatUniformityJson(report), FormatUniformityCsv(report)}, files);
    files.Commit();
    Show(shown);
}

}  // namespace

void AddUniformity(CLI::App& app) {
    const auto typed = std::make_shared<UniformityOptions>();
    UniformityOptions& options = *typed;
    CLI::App& command = *app.add_subcommand(
        "uniformity", "Rate the uniformity of a display or projector that shows a white field");
    AddImage(command, options.image);
    AddHeader(command, options.header);
    const char* const measuring = "Measuring";
    command
        .add_option("--spot", options.spot, "W[,H]: size of the thirteen spots (a twentieth of the image)")
        ->group(measuring);
    command.add_flag("--ellipses", options.ellipses, "Elliptical spots instead of rectangles")
        ->group(measuring);
    command
        .add_option("--region", options.region,
                    "rect:LEFT,TOP,RIGHT,BOTTOM: the active area, where mura is searched (the whole image)")
        ->group(measuring);
    command
        .add_option("--mura-threshold", options.threshold,
                    "Smallest deviation of a blemish from the mean, percent")
        ->capture_default_str()
        ->group(measuring);
    AddReports(command, options.json, options.csv, options.progress);
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli
