#include "options.h"

#include <CLI/CLI.hpp>
#include <limits>

#include "image_file.h"

namespace cli {
namespace {

constexpr char kRegionHelp[] =
    "A region, any number of times: [NAME=]rect:LEFT,TOP,RIGHT,BOTTOM (inclusive; RIGHT or BOTTOM 0 is the "
    "last), "
    "ellipse:COLUMN,ROW,WIDTH,HEIGHT or poly:COLUMN,ROW;COLUMN,ROW;... Default: the whole image";

}  // namespace

const char kLensHelp[] =
    "k1,k2[,k3]: a corrected pel at offset v from the centre lies in the capture at v (1 + k1 q + k2 q^2 + "
    "k3 q^3), "
    "q = |v|^2 in units of the half diagonal sqrt(cols^2 + rows^2) / 2";

void AddRegions(CLI::App& command, std::vector<std::string>& regions) {
    // One argument each, or the image's name behind it would be taken for another region.
    command.add_option("--region", regions, kRegionHelp)->allow_extra_args(false);
}

void AddImage(CLI::App& command, std::string& image) {
    command.add_option("IMAGE", image, "8-bit or 16-bit grey image; its values are taken as they are")
        ->required();
}

void AddHeader(CLI::App& command, HeaderOptions& options) {
    const char* const group = "Header (else from --header, else from IMAGE.json when there is one)";
    command.add_option("--pels-per-meter", options.pelsPerMeter, "X[,Y]: pels per metre on the target")
        ->group(group);
    command.add_option("--center", options.center, "C,R: where the axis meets the image (the middle)")
        ->group(group);
    command.add_option("--lux-per-grey", options.luxPerGrey, "Illuminance of a grey level")->group(group);
    command.add_option("--distance", options.distance, "Source to target, metres")->group(group);
    command.add_option("--bin", options.bin, "X[,Y]: sensor pels that one pel stands for (1)")->group(group);
    command.add_option("--header", options.file, "JSON file with the header")->group(group);
}

const char kOutput[] = "Output (the table goes to stdout unless another form does)";

void AddProgress(CLI::App& command, bool& progress, const char* group) {
    command.add_flag("--progress", progress, "Tell the progress even when stderr is no terminal")
        ->group(group);
}

void AddReports(CLI::App& command, std::string& json, std::string& csv, bool& progress) {
    command.add_flag("--json{-}", json, "JSON to stdout, or to FILE with --json=FILE")->group(kOutput);
    command.add_flag("--csv{-}", csv, "CSV to stdout, or to FILE with --csv=FILE")->group(kOutput);
    AddProgress(command, progress, kOutput);
}

std::array<std::int32_t, 2> ParsePair(const char* option, const std::string& text, std::int32_t least) {
    const auto values = ParseInts(text, 1, 2);
    if (!values || values->front() < least || values->back() < least) {
        const bool any = least == std::numeric_limits<std::int32_t>::min();
        FailUsage(std::string(option) + " takes one or two whole numbers" +
                  (any ? "" : Format(", %d at least", least)) + ", not " + text);
    }
    return {values->front(), values->back()};
}

std::array<std::int32_t, 2> ParseSize(const char* option, const std::string& text) {
    const auto size = ParsePair(option, text, 1);
    if (size[0] > kLargestSide || size[1] > kLargestSide) {
        FailUsage(std::string(option) + ": an image has 8000 columns and rows at most");
    }
    return size;
}

std::array<double, 2> ParseRange(const char* option, const std::string& text, std::array<double, 2> values) {
    const auto range = ParseNumbers<2>(option, text, values);
    if (!(range[0] < range[1])) {
        FailUsage(std::string(option) + " takes LOW,HIGH, HIGH the larger, not " + text);
    }
    return range;
}

std::int32_t ParseChoice(const char* option, const std::string& word,
                         std::initializer_list<const char*> choices) {
    std::string known;
    std::int32_t place = 0;
    for (const char* const choice : choices) {
        if (word == choice) return place;
        const bool last = static_cast<std::size_t>(++place) == choices.size();
        known += std::string(known.empty() ? "" : last ? " or " : ", ") + choice;
    }
    FailUsage(std::string(option) + " is " + known + ", not " + word);
}

std::vector<Region> ParseRegions(const std::vector<std::string>& arguments) {
    std::vector<Region> regions;
    regions.reserve(arguments.size());
    for (const std::string& argument : arguments)
        regions.push_back(ParseRegion(argument));
    if (regions.empty()) regions.push_back(ParseRegion("image=rect:0,0,0,0"));
    CheckNames(regions);
    return regions;
}

Region ParseArea(const std::string& argument) {
    Region region = ParseRegion(argument);
    if (region.shape != Shape::kRectangle) FailUsage("--region takes a rectangle here, not " + argument);
    return region;
}

}  // namespace cli
