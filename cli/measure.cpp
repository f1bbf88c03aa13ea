#include <algorithm>
#include <limits>

#include "delivery.h"
#include "expectation.h"
#include "failure.h"
#include "files.h"
#include "options.h"
#include "radial_lens.h"
#include "report.h"
#include "tqimage/bitmap_files.h"

namespace cli {
namespace {

constexpr std::int32_t kAnyNumber = std::numeric_limits<std::int32_t>::min();
// The library's code of the false-colour palette that starts dark.
constexpr std::int32_t kFalseColours = -1;

CorrectionOptions ParseCorrection(const MeasureOptions& options) {
    CorrectionOptions correction = options.correction;
    if (!correction.lensMap.empty() && !correction.lensRadial.empty()) {
        FailUsage("--lens and --lens-radial exclude each other");
    }
    if (!correction.lensRadial.empty()) ParseRadialCoefficients(correction.lensRadial);
    if (!options.defectWindow.empty()) {
        correction.defectWindow = ParsePair("--defect-window", options.defectWindow, 1);
    }
    if (!options.defectOrigin.empty()) {
        correction.defectOrigin = ParsePair("--defect-origin", options.defectOrigin, kAnyNumber);
    }
    return correction;
}

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

}  // namespace

void RunMeasure(const MeasureOptions& options) {
    CheckOutputs(options);
    const Progress progress(options.progress);
    const CorrectionOptions correction = ParseCorrection(options);
    Report report;
    if (!options.spot.empty()) report.options.spot = ParsePair("--spot", options.spot, 1);
    report.options.angleMode = options.angleMode;
    report.header = FindHeader(options.image, options.headerFile, options.header);
    std::vector<ExpectedRegion> expected;
    if (!options.expect.empty()) expected = ReadExpectations(options.expect);
    std::vector<Region> regions = ChooseRegions(options, expected);

    progress.Stage("reading " + options.image);
    const GreyImage pels = ReadImage(options.image);
    report.file = options.image;
    report.cols = pels.cols;
    report.rows = pels.rows;
    report.bitsPerPel = pels.bitsPerPel;
    report.used = MakeHeader(report.header, pels.cols, pels.rows);
    for (Region& region : regions)
        FitRegion(region, pels.cols, pels.rows);

    HostImage image(pels, report.used);
    report.corrections = Correct(options.image, pels.bitsPerPel, correction, progress, image);
    RefreshHeader(image);
    report.measurements = MeasureRegions(image, report.header, regions, report.options, progress);
    report.comparisons = Compare(expected, report.measurements);
    Deliver(options, report, image);
    if (!AllWithin(report.comparisons)) {
        throw Failure(Exit::kOutsideExpectation, options.image + ": figures outside their tolerance");
    }
}

}  // namespace cli
