#include <CLI/CLI.hpp>
#include <cmath>
#include <limits>
#include <memory>

#include "commands.h"
#include "defect_csv.h"
#include "delivery.h"
#include "failure.h"
#include "files.h"
#include "library.h"
#include "options.h"
#include "progress.h"
#include "text.h"
#include "tqimage/defect_detection.h"
#include "tqimage/whole_image.h"

namespace cli {
namespace {

/// `tqimage defects` as it was typed.
struct DefectOptions {
    std::string image;
    HeaderOptions header;  ///< of which only the binning counts
    std::string headerFile;
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

/// Which pels are defect, and what of it goes into the list.
class DefectMarks {
  public:
    DefectMarks(const HostImage& found, const HostImage& image, bool zeros)
        : cols_(image.Header().PelCols), rows_(image.Header().PelRows) {
        for (std::int32_t row = 0; row < rows_; ++row) {
            for (std::int32_t col = 0; col < cols_; ++col) {
                marks_.push_back(found.Row(row)[col] != 0 || (zeros && image.Row(row)[col] == 0));
            }
        }
    }

    /// Columns and rows that are mostly defect, then the other pels. Columns come first: what repairs them
    /// lies beside them, and the pels are repaired from what has been mended.
    std::vector<Defect> List(double lineShare) const {
        std::vector<bool> wholeCols, wholeRows;
        for (std::int32_t col = 0; col < cols_; ++col) {
            std::int64_t count = 0;
            for (std::int32_t row = 0; row < rows_; ++row)
                count += At(col, row) ? 1 : 0;
            wholeCols.push_back(static_cast<double>(count) * 100.0 > lineShare * rows_);
        }
        for (std::int32_t row = 0; row < rows_; ++row) {
            std::int64_t count = 0;
            for (std::int32_t col = 0; col < cols_; ++col)
                count += At(col, row) ? 1 : 0;
            wholeRows.push_back(static_cast<double>(count) * 100.0 > lineShare * cols_);
        }
        std::vector<Defect> list;
        for (std::int32_t col = 0; col < cols_; ++col) {
            if (wholeCols[Index(col)]) list.push_back({kDefectColumn, col, 0, 0, 0});
        }
        for (std::int32_t row = 0; row < rows_; ++row) {
            if (wholeRows[Index(row)]) list.push_back({kDefectRow, 0, row, 0, 0});
        }
        for (std::int32_t row = 0; row < rows_; ++row) {
            for (std::int32_t col = 0; col < cols_; ++col) {
                if (At(col, row) && !wholeCols[Index(col)] && !wholeRows[Index(row)]) {
                    list.push_back({kDefectPel, col, row, 0, 0});
                }
            }
        }
        return list;
    }

  private:
    static std::size_t Index(std::int32_t at) { return static_cast<std::size_t>(at); }
    bool At(std::int32_t col, std::int32_t row) const {
        return marks_[Index(row) * Index(cols_) + Index(col)];
    }

    std::int32_t cols_;
    std::int32_t rows_;
    std::vector<bool> marks_;
};

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
    const PhotometricHeader header = FindHeader(options.image, options.headerFile, options.header);
    progress.Stage("reading " + options.image);
    const GreyImage pels = ReadImage(options.image);
    HostImage image(pels, MakeHeader(header, pels.cols, pels.rows));
    Require(tqCalcImageValues(image.Get()), options.image, "the image's mean");

    progress.Stage("looking for defects");
    HostImage found(1, 1);
    Find(options, image, found);
    std::vector<Defect> list = DefectMarks(found, image, options.zeros).List(options.lineShare);
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
    const char* const search = "Search";
    command.add_option("--kind", options.kind, "dark, bright or both")->capture_default_str()->group(search);
    command.add_option("--reference", options.reference, "mean or median of the neighbourhood")
        ->capture_default_str()
        ->group(search);
    command.add_option("--size", options.size, "Side of the neighbourhood, pels")
        ->capture_default_str()
        ->group(search);
    command.add_option("--percent", options.percent, "Tolerance, percent of the reference")
        ->capture_default_str()
        ->group(search);
    command
        .add_option("--floor", options.floorPercent,
                    "Neighbours up to so many percent of the image's mean are no reference (0: none)")
        ->group(search);
    command
        .add_option("--clear-radius", options.clearRadius,
                    "Test only pels without a 0 so many pels around (0: all)")
        ->group(search);
    command.add_flag("--zeros", options.zeros, "Pels of 0 are defects, not pels without data")->group(search);

    const char* const list = "List";
    command
        .add_option("--line-share", options.lineShare,
                    "A column or row with more than so many percent of its pels defect is listed whole")
        ->capture_default_str()
        ->group(list);
    command.add_option("--defect-origin", options.origin, "C[,R]: sensor position of the first pel (0,0)")
        ->group(list);
    command.add_option("--bin", options.header.bin, "X[,Y]: sensor pels that one pel stands for (1)")
        ->group(list);
    command
        .add_option("--header", options.headerFile,
                    "JSON file with the binning (else IMAGE.json when there is one)")
        ->group(list);
    const char* const output = "Output";
    command.add_option("-o,--output", options.output, "CSV file to write (stdout)")->group(output);
    command
        .add_option("--map", options.map, "Image to write, .png, .tif or .pgm: the defects' values, else 0")
        ->group(output);
    command.add_flag("--progress", options.progress, "Tell the progress even when stderr is no terminal")
        ->group(output);
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli
