#include <CLI/CLI.hpp>
#include <cmath>
#include <limits>
#include <memory>

#include "commands.h"
#include "defect_csv.h"
#include "delivery.h"
#include "failure.h"
#include "files.h"
#include "input.h"
#include "options.h"
#include "text.h"
#include "tqimage/defect_detection.h"
#include "tqimage/whole_image.h"

namespace cli {
namespace {

/// `tqimage defects` as it was typed.
struct DefectOptions {
    std::string image;
    HeaderOptions header;  ///< of which only the binning counts
    std::string kind = "both";
    std::string reference = "median";
    std::int32_t size = 5;
    double percent = 20.0;
    double floorPercent = 0.0;
    std::int32_t clearRadius = 0;
    bool zeros = false;
    double lineShare = 50.0;
    std::string origin;
    std::string output, map;
    bool progress = false;
};

constexpr std::int32_t kAnyNumber = std::numeric_limits<std::int32_t>::min();

void CheckRanges(const DefectOptions& options) {
    if (options.size < 2) FailUsage("--size is 2 at least");
    if (!(options.percent >= 0.0) || !std::isfinite(options.percent)) FailUsage("--percent is not negative");
    if (!(options.floorPercent >= 0.0)) FailUsage("--floor is not negative");
    if (options.clearRadius < 0) FailUsage("--clear-radius is not negative");
    if (options.clearRadius > 0 && options.floorPercent > 0.0) {
        FailUsage("--clear-radius and --floor exclude each other");
    }
    if (!(options.lineShare >= 0.0)) FailUsage("--line-share is not negative");
    if (!options.map.empty()) CheckImageName(options.map);
}

/// Leaves in `found` the values of the defects and 0 everywhere else.
void Find(const DefectOptions& options, const HostImage& image, HostImage& found) {
    const std::int32_t kind = ParseChoice("--kind", options.kind, {"dark", "bright", "both"});
    const std::int32_t reference = ParseChoice("--reference", options.reference, {"mean", "median"});
    const auto find = [&] {
        if (options.clearRadius > 0) {
            return tqFindPixelDefects2(found.Address(), image.Get(), kind, reference, options.size,
                                       options.percent, options.clearRadius, nullptr, nullptr);
        }
        return tqFindPixelDefects3(found.Address(), image.Get(), kind, reference, options.size,
                                   options.percent, options.floorPercent, nullptr, nullptr);
    };
    Require(find(), options.image, "the search for defects");
}

/// The columns and rows of the image that are mostly defect, then the other pels that are. Columns come
/// first: what repairs them lies beside them, and the pels are repaired from what has been mended.
std::vector<Defect> ListDefects(const HostImage& image, const HostImage& found, bool zeros,
                                double lineShare) {
    const TqImageHeader header = image.Header();
    const auto cols = static_cast<std::size_t>(header.PelCols),
               rows = static_cast<std::size_t>(header.PelRows);
    const auto visit = [&](auto&& use) {
        for (std::size_t row = 0; row < rows; ++row) {
            const std::uint16_t* const pels = image.Row(static_cast<std::int32_t>(row));
            const std::uint16_t* const marks = found.Row(static_cast<std::int32_t>(row));
            for (std::size_t col = 0; col < cols; ++col)
                if (marks[col] != 0 || (zeros && pels[col] == 0)) use(col, row);
        }
    };
    std::vector<std::int32_t> inCol(cols), inRow(rows);
    visit([&](std::size_t col, std::size_t row) { ++inCol[col], ++inRow[row]; });
    const auto isWhole = [&](std::int32_t count, std::size_t length) {
        return count * 100.0 > lineShare * static_cast<double>(length);
    };
    std::vector<Defect> list;
    for (std::size_t col = 0; col < cols; ++col) {
        if (isWhole(inCol[col], rows))
            list.push_back({kDefectColumn, static_cast<std::int32_t>(col), 0, 0, 0});
    }
    for (std::size_t row = 0; row < rows; ++row)
        if (isWhole(inRow[row], cols)) list.push_back({kDefectRow, 0, static_cast<std::int32_t>(row), 0, 0});
    visit([&](std::size_t col, std::size_t row) {
        if (isWhole(inCol[col], rows) || isWhole(inRow[row], cols)) return;
        list.push_back({kDefectPel, static_cast<std::int32_t>(col), static_cast<std::int32_t>(row), 0, 0});
    });
    return list;
}

/// Lists are in sensor co-ordinates, so that they serve images of every binning and part of the sensor.
void MoveToSensor(std::vector<Defect>& list, const DefectOptions& options, const TqImageHeader& header) {
    std::array<std::int32_t, 2> origin{};
    if (!options.origin.empty()) origin = ParsePair("--defect-origin", options.origin, kAnyNumber);
    const std::array<std::int16_t, 2> bin{header.BinCols, header.BinRows};
    for (Defect& defect : list) {
        for (std::size_t axis = 0; axis < 2; ++axis) {
            const std::int64_t sensor = origin[axis] + std::int64_t{defect[axis + 1]} * bin[axis];
            if (sensor != static_cast<std::int32_t>(sensor)) {
                FailUsage("--defect-origin " + options.origin + ": no sensor reaches that far");
            }
            defect[axis + 1] = static_cast<std::int32_t>(sensor);
        }
    }
}

void Run(const DefectOptions& options) {
    CheckRanges(options);
    const Progress progress(options.progress);
    Input input = ReadInput(options.image, options.header, progress);
    HostImage& image = input.image;
    Require(tqCalcImageValues(image.Get()), options.image, "the image's mean");

    progress.Stage("looking for defects");
    HostImage found(1, 1);
    Find(options, image, found);
    std::vector<Defect> list = ListDefects(image, found, options.zeros, options.lineShare);
    MoveToSensor(list, options, image.Header());

    progress.Stage(Format("writing %zu defects", list.size()));
    OutputFiles files;
    if (!options.map.empty())
        WriteImage(options.map, files.Add(options.map).WorkingPath(), ToGreyImage(found));
    const std::string text = FormatDefects(list);
    if (!options.output.empty()) files.Add(options.output).Write(text);
    files.Commit();
    if (options.output.empty()) Show(text);
}

}  // namespace

void AddDefects(CLI::App& app) {
    const auto typed = std::make_shared<DefectOptions>();
    DefectOptions& options = *typed;
    CLI::App& command = *app.add_subcommand(
        "defects", "Find the defects of a sensor and write the list that measure --defects takes");
    command.add_option("IMAGE", options.image, "8-bit or 16-bit grey image, evenly lit or dark")->required();
    const auto add = [&](const char* group, const char* name, auto& value, const char* help) {
        return command.add_option(name, value, help)->group(group);
    };
    const char* const search = "Search";
    add(search, "--kind", options.kind, "dark, bright or both")->capture_default_str();
    add(search, "--reference", options.reference, "mean or median of the neighbourhood")
        ->capture_default_str();
    add(search, "--size", options.size, "Side of the neighbourhood, pels")->capture_default_str();
    add(search, "--percent", options.percent, "Tolerance, percent of the reference")->capture_default_str();
    add(search, "--floor", options.floorPercent,
        "Neighbours up to so many percent of the image's mean are no reference (0: none)");
    add(search, "--clear-radius", options.clearRadius,
        "Test only pels without a 0 so many pels around (0: all)");
    command.add_flag("--zeros", options.zeros, "Pels of 0 are defects, not pels without data")->group(search);

    const char* const list = "List";
    add(list, "--line-share", options.lineShare,
        "A column or row with more than so many percent of its pels defect is listed whole")
        ->capture_default_str();
    add(list, "--defect-origin", options.origin, "C[,R]: sensor position of the first pel (0,0)");
    add(list, "--bin", options.header.bin, "X[,Y]: sensor pels that one pel stands for (1)");
    add(list, "--header", options.header.file,
        "JSON file with the binning (else IMAGE.json when there is one)");
    const char* const output = "Output";
    add(output, "-o,--output", options.output, "CSV file to write (stdout)");
    add(output, "--map", options.map, "Image to write, .png, .tif or .pgm: the defects' values, else 0");
    AddProgress(command, options.progress, output);
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli
