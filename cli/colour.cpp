#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "chromaticity.h"
#include "colour_report.h"
#include "commands.h"
#include "delivery.h"
#include "failure.h"
#include "files.h"
#include "image_file.h"
#include "input.h"
#include "library.h"
#include "options.h"
#include "picture_file.h"
#include "region_query.h"
#include "text.h"
#include "tqimage/bitmap.h"
#include "tqimage/colour_difference.h"
#include "tqimage/colour_transforms.h"

namespace cli {
namespace {

/// `tqimage colour` as it was typed; empty texts were not given.
struct ColourOptions {
    std::array<std::string, 3> images;
    std::string matrix;
    HeaderOptions header;
    std::vector<std::string> regions;
    std::string uMap, vMap, differenceMap;
    std::string reference, range, block;
    std::string json, csv;
    bool progress = false;
};

/// The grey level of the upper end of a map, and the library's of the largest difference.
constexpr std::int32_t kMapLevels = 65000;

using Matrix = std::array<double, 9>;

/// The three channels, and what turns their grey levels into X, Y and Z.
class Channels {
  public:
    Channels(const ColourOptions& options, const Matrix& matrix, const Progress& progress)
        : images_{Read(options, 0, progress), Read(options, 1, progress), Read(options, 2, progress)},
          matrix_(matrix) {
        int known = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            const TqImageHeader header = images_[k].image.Header();
            if (header.PelCols != Header().PelCols || header.PelRows != Header().PelRows) {
                FailMeasurement(options.images[k], "has another size than " + options.images[0]);
            }
            const auto& luxPerGrey = images_[k].known.luxPerGrey;
            known += luxPerGrey ? 1 : 0;
            for (std::size_t row = 0; row < 3; ++row)
                matrix_[3 * row + k] *= static_cast<double>(luxPerGrey.value_or(1.0f));
        }
        if (known != 0 && known != 3) {
            FailMeasurement(options.images[0], "the lux of a grey level is known of some images only");
        }
        inLux_ = known == 3;
    }

    bool InLux() const { return inLux_; }
    TqImageHeader Header() const { return images_[0].image.Header(); }

    Tristimulus MeanOf(const Region& region, HostImage& scratch) const {
        Tristimulus mean{};
        for (std::size_t k = 0; k < 3; ++k) {
            std::int32_t count = 0;
            const double total = RegionQuery(images_[k].image, region, scratch).Total(0, count);
            if (count < 1) FailMeasurement(region.text, "no pel of the image lies in it");
            for (std::size_t row = 0; row < 3; ++row)
                mean[row] += matrix_[3 * row + k] * (total / count);
        }
        return mean;
    }

    /// call(first, second, third, m0, ..., m8) of a function of the library.
    template <class Call>
    std::int32_t Pass(Call&& call) const {
        std::array<float, 9> m;
        std::transform(matrix_.begin(), matrix_.end(), m.begin(),
                       [](double value) { return static_cast<float>(value); });
        return call(images_[0].image.Get(), images_[1].image.Get(), images_[2].image.Get(), m[0], m[1], m[2],
                    m[3], m[4], m[5], m[6], m[7], m[8]);
    }

  private:
    static Input Read(const ColourOptions& options, std::size_t k, const Progress& progress) {
        return ReadInput(options.images[k], options.header, progress);
    }

    std::array<Input, 3> images_;
    Matrix matrix_;
    bool inLux_ = false;
};

std::vector<RegionColour> MeasureColours(const Channels& channels, std::vector<Region> regions) {
    const TqImageHeader header = channels.Header();
    HostImage scratch(header.PelCols, header.PelRows);
    std::vector<RegionColour> colours;
    for (Region& region : regions) {
        FitRegion(region, header.PelCols, header.PelRows);
        const Tristimulus colour = channels.MeanOf(region, scratch);
        colours.push_back({region, colour, ToXy(colour), ToUv(colour), ColourTemperature(colour)});
    }
    return colours;
}

std::optional<LargestDifference> FindLargest(const std::vector<RegionColour>& colours) {
    std::optional<LargestDifference> largest;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        for (std::size_t j = i + 1; j < colours.size(); ++j) {
            if (!colours[i].uv || !colours[j].uv) continue;
            const double distance = Distance(*colours[i].uv, *colours[j].uv);
            if (largest && distance <= largest->distance) continue;
            largest = {colours[i].region.name, colours[j].region.name, distance};
        }
    }
    return largest;
}

/// The false-colour palette that starts dark, without a tone curve: byte 1 is the lower end, 255 the upper.
void WriteFalseColours(const std::string& name, const std::string& file, HostImage& map) {
    constexpr double kLinear = -1.0;
    TqLeadBitmap bitmap{};
    Require(
        tqImageToLeadBmpScale(&bitmap, nullptr, map.Get(), nullptr, kFalseColours, 0, kMapLevels, 0, kLinear),
        name, "the false colours");
    WriteLeadBitmap(name, file, bitmap);
}

void WriteMap(const std::string& name, const char* quantity, const std::array<double, 2>& range,
              HostImage& map, ColourReport& report, OutputFiles& files) {
    const std::string& file = files.Add(name).WorkingPath();
    if (HasExtension(name, {".bmp"})) {
        WriteFalseColours(name, file, map);
    } else {
        WriteImage(name, file, ToGreyImage(map));
    }
    report.maps.push_back({name, quantity, range[0], range[1]});
}

/// The maps that were asked for, into the report and the files.
void MakeMaps(const ColourOptions& options, const Channels& channels, ColourReport& report,
              OutputFiles& files) {
    // Above all colours that there are: u' reaches 0.623 and v' 0.587.
    const auto range = ParseRange("--range", options.range, {0.0, 0.65});
    std::array<std::int32_t, 2> block{1, 1};
    if (!options.block.empty()) block = ParsePair("--block", options.block, 1);
    HostImage map(1, 1);
    const auto chromaticity = [&](const std::string& name, const char* what, std::int32_t quantity) {
        if (name.empty()) return;
        Require(channels.Pass([&](auto* first, auto* second, auto* third, auto... m) {
            return tqTransformToColorSpace(map.Address(), first, second, third, quantity, kMapLevels,
                                           static_cast<float>(range[0]), static_cast<float>(range[1]),
                                           block[0], block[1], m...);
        }),
                options.images[0], what);
        WriteMap(name, what, range, map, report, files);
    };
    chromaticity(options.uMap, "u'", 2);
    chromaticity(options.vMap, "v'", 3);
    if (options.differenceMap.empty()) return;
    const Chromaticity usual = report.colours.front().uv.value_or(Chromaticity{});
    const Chromaticity from = ParseNumbers<2>("--reference", options.reference, usual);
    Require(channels.Pass([&](auto* first, auto* second, auto* third, auto... m) {
        constexpr float kNoLuminance = 1.0f, kLuminanceWeight = 0.0f, kColourWeight = 1.0f;
        return tqCalcColorLumDiff(map.Address(), first, second, third, static_cast<float>(from[0]),
                                  static_cast<float>(from[1]), kNoLuminance, kLuminanceWeight, kColourWeight,
                                  block[0], block[1], m...);
    }),
            options.images[0], "the difference");
    const double largest = double{map.Header().LuxPerGrey} * kMapLevels;
    WriteMap(options.differenceMap, "difference in u'v'", {0.0, largest}, map, report, files);
}

/// What can be wrong with the words alone is told before an image is read.
void CheckOptions(const ColourOptions& options) {
    CheckDestinations({options.json, options.csv});
    for (const std::string* map : {&options.uMap, &options.vMap, &options.differenceMap})
        if (!map->empty()) CheckPictureName(*map, false);
    ParseRange("--range", options.range, {0.0, 1.0});
    ParseNumbers<2>("--reference", options.reference, {});
}

void Run(const ColourOptions& options) {
    CheckOptions(options);
    const Progress progress(options.progress);
    ColourReport report;
    report.files = options.images;
    report.matrix = ParseNumbers<9>("--matrix", options.matrix, {1, 0, 0, 0, 1, 0, 0, 0, 1});
    std::vector<Region> regions = ParseRegions(options.regions);
    const Channels channels(options, report.matrix, progress);
    report.cols = channels.Header().PelCols;
    report.rows = channels.Header().PelRows;
    report.inLux = channels.InLux();
    progress.Stage("measuring");
    report.colours = MeasureColours(channels, std::move(regions));
    report.largest = FindLargest(report.colours);

    OutputFiles files;
    MakeMaps(options, channels, report, files);
    const std::string shown =
        PlaceReport({options.json, options.csv},
                    {FormatColourTable(report), FormatColourJson(report), FormatColourCsv(report)}, files);
    files.Commit();
    Show(shown);
}

}  // namespace

void AddColour(CLI::App& app) {
    const auto typed = std::make_shared<ColourOptions>();
    ColourOptions& options = *typed;
    CLI::App& command = *app.add_subcommand(
        "colour", "Measure the colours of regions in three images of X, Y and Z, or of colour filters");
    const char* const names[] = {"X", "Y", "Z"};
    for (std::size_t k = 0; k < 3; ++k) {
        command.add_option(names[k], options.images[k], Format("Grey image of %s, or of a filter", names[k]))
            ->required();
    }
    command.add_option("--matrix", options.matrix,
                       "Nine numbers, row by row: from the images to X, Y and Z (the images are X, Y and Z)");
    const char* const header = "Header (else from --header, else from IMAGE.json of each image)";
    command.add_option("--lux-per-grey", options.header.luxPerGrey, "Illuminance of a grey level")
        ->group(header);
    command.add_option("--header", options.header.file, "JSON file with the header")->group(header);
    AddRegions(command, options.regions);

    const char* const maps = "Maps: .bmp in false colours; .png, .tif or .pgm with 65000 at the upper end";
    command.add_option("--u-map", options.uMap, "Picture of u'")->group(maps);
    command.add_option("--v-map", options.vMap, "Picture of v'")->group(maps);
    command.add_option("--range", options.range, "LOW,HIGH: u' and v' at the ends (0,0.65)")->group(maps);
    command.add_option("--difference-map", options.differenceMap, "Picture of the distance in u'v'")
        ->group(maps);
    command
        .add_option("--reference", options.reference, "U,V: distance from this colour (the first region's)")
        ->group(maps);
    command.add_option("--block", options.block, "W[,H]: pels whose mean is mapped (1)")->group(maps);
    AddReports(command, options.json, options.csv, options.progress);
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli
