#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "commands.h"
#include "correction_options.h"
#include "delivery.h"
#include "expectation.h"
#include "failure.h"
#include "files.h"
#include "options.h"
#include "picture_file.h"
#include "report.h"
#include "tqimage/bitmap_files.h"

namespace cli {
namespace {

/// `tqimage measure` as it was typed; empty texts were not given.
struct MeasureOptions {
    std::string image;
    HeaderOptions header;
    TypedCorrections corrections;
    std::vector<std::string> regions;
    std::uint32_t angleMode = 0;
    std::string spot;
    std::string expect;
    std::string json, csv, bitmap;  ///< "-" for stdout
    bool progress = false;
};

/// The regions as typed; those of the expectations when none were.
std::vector<Region> ChooseRegions(const MeasureOptions& options,
                                  const std::vector<ExpectedRegion>& expected) {
    if (!options.regions.empty() || expected.empty()) return ParseRegions(options.regions);
    std::vector<Region> regions;
    regions.reserve(expected.size());
    for (const ExpectedRegion& region : expected)
        regions.push_back(region.region);
    CheckNames(regions);
    return regions;
}

/// Stores what a correction changes in the header: displays scale to the largest pel.
void RefreshHeader(HostImage& image) {
    TqImageHeader header = image.Header();
    double total = 0.0;
    std::uint16_t largest = 0;
    for (std::int32_t row = 0; row < header.PelRows; ++row) {
        const std::uint16_t* const pels = image.Row(row);
        for (std::int32_t col = 0; col < header.PelCols; ++col) {
            total += pels[col];
            largest = std::max(largest, pels[col]);
        }
    }
    header.TotalPelValue = total;
    header.MaxPelValue = largest;
    const std::int32_t middleCol = header.PelCols / 2;
    const std::int32_t middleRow = header.PelRows / 2;
    header.CenterPelValue = image.Row(middleRow)[middleCol];
    image.SetHeader(header);
}

void CheckOutputs(const MeasureOptions& options) {
    CheckDestinations({options.json, options.csv});
    if (options.angleMode > 3) FailUsage("--angle-mode is 0, 1, 2 or 3");
}

void Deliver(const MeasureOptions& options, const Report& report, HostImage& image) {
    OutputFiles files;
    const std::string shown = PlaceReport(
        {options.json, options.csv}, {FormatTable(report), FormatJson(report), FormatCsv(report)}, files);
    if (!options.bitmap.empty()) {
        const OutputFile& file = files.Add(options.bitmap);
        if (tqImageToDiskBmp(file.WorkingPath().c_str(), image.Get(), kFalseColours) != 0) {
            FailFile(options.bitmap, "the bitmap cannot be written");
        }
    }
    files.Commit();
    Show(shown);
}

void Run(const MeasureOptions& options) {
    CheckOutputs(options);
    const Progress progress(options.progress);
    const CorrectionOptions correction = ParseCorrections(options.corrections);
    Report report;
    if (!options.spot.empty()) report.options.spot = ParsePair("--spot", options.spot, 1);
    report.options.angleMode = options.angleMode;
    std::vector<ExpectedRegion> expected;
    if (!options.expect.empty()) expected = ReadExpectations(options.expect);
    std::vector<Region> regions = ChooseRegions(options, expected);

    Input input = ReadInput(options.image, options.header, progress);
    report.file = options.image;
    report.bitsPerPel = input.bitsPerPel;
    report.header = input.known;
    report.used = input.image.Header();
    for (Region& region : regions)
        FitRegion(region, report.used.PelCols, report.used.PelRows);

    report.corrections = Correct(options.image, input, correction, progress);
    RefreshHeader(input.image);
    report.measurements = MeasureRegions(input.image, report.header, regions, report.options, progress);
    report.comparisons = Compare(expected, report.measurements);
    Deliver(options, report, input.image);
    if (!AllWithin(report.comparisons)) {
        throw Failure(Exit::kOutsideExpectation, options.image + ": figures outside their tolerance");
    }
}

}  // namespace

void AddMeasure(CLI::App& app) {
    const auto typed = std::make_shared<MeasureOptions>();
    MeasureOptions& options = *typed;
    CLI::App& command = *app.add_subcommand("measure", "Measure regions of a grey PNG, TIFF or PGM image");
    AddImage(command, options.image);
    AddHeader(command, options.header);

    AddCorrections(command, options.corrections);
    const char* const measuring = "Measuring";
    AddRegions(command, options.regions);
    command.get_option("--region")->group(measuring);
    command.add_option("--angle-mode", options.angleMode, "0..3: the two angles of a direction (0)")
        ->group(measuring);
    command.add_option("--spot", options.spot, "W[,H]: spot of the brightest direction in rectangles (1,1)")
        ->group(measuring);
    command.add_option("--expect", options.expect, "JSON file of figures to hold the measurement against")
        ->group(measuring);

    AddReports(command, options.json, options.csv, options.progress);
    command.add_option("--bitmap", options.bitmap, "BMP file of the corrected image in false colours")
        ->group(kOutput);
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli
