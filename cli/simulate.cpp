#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>

#include "commands.h"
#include "failure.h"
#include "files.h"
#include "json_file.h"
#include "lens_map.h"
#include "options.h"
#include "progress.h"
#include "scene.h"
#include "sensor.h"
#include "text.h"
#include "truth.h"

namespace cli {
namespace {

/// `tqimage simulate` as it was typed.
struct SimulateOptions {
    std::string output;
    std::string size = "1600,1200";
    std::string pelsPerMeter = "1000";
    std::string center;
    double distance = 3.0;
    double candela = 1000.0;
    double exponent = 2.0;
    std::string tilt = "0,0";
    double luxPerGrey = 0.0;
    double darkLevel = 200.0;
    double electronsPerGrey = 1.0;
    double readNoise = 2.0;
    std::int32_t darkFrames = 16;
    std::int32_t hotPixels = 0;
    std::int32_t deadColumns = 0;
    std::string lensRadial;
    std::uint64_t seed = 1;
    std::vector<std::string> regions;
    std::string spot;
    bool progress = false;
};

constexpr double kRadians = std::numbers::pi / 180.0;

Target ParseTarget(const SimulateOptions& options, PhotometricHeader& header) {
    const auto [cols, rows] = ParseSize("--size", options.size);
    HeaderOptions typed;
    typed.pelsPerMeter = options.pelsPerMeter;
    typed.center = options.center;
    typed.distance = Format("%.9g", options.distance);
    header = ParseHeaderOptions(typed);
    // The scene uses the header's single-precision numbers, so that a measurement sees the very same ones.
    const TqImageHeader used = MakeHeader(header, cols, rows);
    header.center = {used.CenterCol, used.CenterRow};
    header.bin = {1, 1};
    return {cols,
            rows,
            {used.PelsPerMeterX, used.PelsPerMeterY},
            {used.CenterCol, used.CenterRow},
            used.SourceDistance};
}

std::array<double, 2> ParseTilt(const SimulateOptions& options) {
    return ParseNumbers<2>("--tilt", options.tilt, {});
}

Lamp ParseLamp(const SimulateOptions& options) {
    const auto tilt = ParseTilt(options);
    if (std::fabs(tilt[0]) >= 90.0 || std::fabs(tilt[1]) >= 90.0) {
        FailUsage("--tilt takes two angles below 90 degrees, not " + options.tilt);
    }
    if (!(options.candela > 0.0) || !std::isfinite(options.candela)) FailUsage("--candela is above 0");
    if (!(options.exponent >= 0.0) || !std::isfinite(options.exponent))
        FailUsage("--exponent is not negative");
    return {options.candela, options.exponent, tilt[0] * kRadians, tilt[1] * kRadians};
}

/// The scale that puts the brightest pel at three quarters of the range.
double ChooseLuxPerGrey(const Scene& scene) {
    constexpr double kBrightestGrey = 49152.0;
    double brightest = 0.0;
    for (std::int32_t row = 0; row < scene.GetTarget().rows; ++row) {
        for (std::int32_t col = 0; col < scene.GetTarget().cols; ++col) {
            brightest = std::max(brightest, scene.Illuminance(col, row));
        }
    }
    if (!(brightest > 0.0)) FailUsage("the lamp does not light the target");
    return brightest / kBrightestGrey;
}

Sensor ParseSensor(const SimulateOptions& options, const Scene& scene) {
    if (!(options.darkLevel >= 0.0) || !(options.darkLevel <= 60000.0))
        FailUsage("--dark-level is 0 to 60000");
    // Beyond these bounds the noise of a pel is no number.
    if (!(options.electronsPerGrey >= 1e-9)) FailUsage("--electrons-per-grey is above 0");
    if (!(options.readNoise >= 0.0) || options.readNoise > 65535.0) FailUsage("--read-noise is 0 to 65535");
    if (options.darkFrames < 1) FailUsage("--dark-frames is 1 at least");
    if (options.hotPixels < 0 || options.deadColumns < 0) FailUsage("the number of defects is not negative");
    Sensor sensor;
    const double lux = options.luxPerGrey == 0.0 ? ChooseLuxPerGrey(scene) : options.luxPerGrey;
    constexpr auto kLeast = std::numeric_limits<float>::min(), kMost = std::numeric_limits<float>::max();
    if (!(lux >= double{kLeast} && lux <= double{kMost})) {
        FailUsage("no header holds the lux of a grey level (--lux-per-grey)");
    }
    // In single precision, as headers hold it.
    sensor.luxPerGrey = static_cast<double>(static_cast<float>(lux));
    sensor.darkLevel = options.darkLevel;
    sensor.electronsPerGrey = options.electronsPerGrey;
    sensor.readNoise = options.readNoise;
    sensor.darkFrames = options.darkFrames;
    sensor.hotPixels = options.hotPixels;
    sensor.deadColumns = options.deadColumns;
    sensor.seed = options.seed;
    return sensor;
}

std::optional<RadialLens> ParseLens(const SimulateOptions& options, const Target& target) {
    if (options.lensRadial.empty()) return std::nullopt;
    const RadialLens lens(ParseRadialCoefficients(options.lensRadial), target.center, target.cols,
                          target.rows);
    if (!lens.IsInvertible())
        FailUsage("--lens-radial " + options.lensRadial + ": no lens folds its image over");
    return lens;
}

std::string FormatTruth(const SimulateOptions& options, const Scene& scene, const Sensor& sensor,
                        std::vector<Region> regions) {
    const auto spot =
        options.spot.empty() ? std::array<std::int32_t, 2>{1, 1} : ParsePair("--spot", options.spot, 1);
    Json truth;
    truth["lamp"] = {
        {"candela", options.candela}, {"exponent", options.exponent}, {"tiltDeg", ParseTilt(options)}};
    truth["sensor"] = {{"luxPerGrey", sensor.luxPerGrey},
                       {"darkLevel", sensor.darkLevel},
                       {"electronsPerGrey", sensor.electronsPerGrey},
                       {"readNoise", sensor.readNoise},
                       {"darkFrames", sensor.darkFrames},
                       {"seed", sensor.seed}};
    truth["spot"] = spot;
    truth["regions"] = Json::array();
    const auto [cols, rows] = std::pair(scene.GetTarget().cols, scene.GetTarget().rows);
    for (Region& region : regions) {
        FitRegion(region, cols, rows);
        // A measurement ends at the border, the integral over the shape does not.
        const auto bounds = BoundsOf(region);
        if (bounds[0] < 0 || bounds[1] < 0 || bounds[2] >= cols || bounds[3] >= rows) {
            FailUsage("region " + region.text + ": true figures need a region that lies inside the image");
        }
        truth["regions"].push_back(RegionTruth(scene, sensor, region, spot));
    }
    return JsonText(truth);
}

/// The files beside the image are called after it: lamp.png gives lamp.dark.png, lamp.defects.csv …
std::string Beside(const std::string& output, const std::string& what) {
    return output.substr(0, output.find_last_of('.')) + "." + what;
}

void Run(const SimulateOptions& options) {
    CheckImageName(options.output);
    const Progress progress(options.progress);
    PhotometricHeader header;
    const Target target = ParseTarget(options, header);
    const Scene scene(ParseLamp(options), target);
    const std::optional<RadialLens> lens = ParseLens(options, target);
    const std::vector<Region> regions = ParseRegions(options.regions);
    const Sensor sensor = ParseSensor(options, scene);
    header.luxPerGrey = static_cast<float>(sensor.luxPerGrey);

    progress.Stage("exposing the scene");
    const Capture capture = TakeCapture(scene, sensor, lens);
    progress.Stage("integrating the true figures");
    const std::string truth = FormatTruth(options, scene, sensor, regions);

    progress.Stage("writing " + options.output);
    OutputFiles files;
    const auto writeImage = [&](const std::string& path, const GreyImage& image) {
        WriteImage(path, files.Add(path).WorkingPath(), image);
    };
    const std::string extension = options.output.substr(options.output.find_last_of('.') + 1);
    writeImage(options.output, capture.image);
    writeImage(Beside(options.output, "dark." + extension), capture.dark);
    files.Add(options.output + ".json").Write(FormatSidecar(header));
    files.Add(Beside(options.output, "defects.csv")).Write(FormatDefects(capture.defects));
    if (lens) {
        const LensMap map = LensMap::FromRadial(*lens, target.center, target.cols, target.rows);
        files.Add(Beside(options.output, "lens.map")).Write(map.Bytes());
    }
    files.Add(Beside(options.output, "truth.json")).Write(truth);
    files.Commit();
}

}  // namespace

void AddSimulate(CLI::App& app) {
    const auto typed = std::make_shared<SimulateOptions>();
    SimulateOptions& options = *typed;
    CLI::App& command = *app.add_subcommand(
        "simulate", "Render the capture of a known lamp, with the files to measure it and the true figures");
    command
        .add_option("-o,--output", options.output,
                    "Image to write: .png, .tif or .pgm; the others go beside it")
        ->required();
    const auto add = [&](const char* group, const char* name, auto& value, const char* help) {
        command.add_option(name, value, help)->capture_default_str()->group(group);
    };
    const char* const scene = "Scene";
    add(scene, "--size", options.size, "COLUMNS[,ROWS]");
    add(scene, "--pels-per-meter", options.pelsPerMeter, "X[,Y] on the target");
    add(scene, "--center", options.center, "C,R: where the axis meets the image (the middle)");
    add(scene, "--distance", options.distance, "Lamp to target, metres");
    add(scene, "--candela", options.candela, "Intensity along the lamp's axis");
    add(scene, "--exponent", options.exponent, "n of cos^n, the lamp's distribution");
    add(scene, "--tilt", options.tilt, "RIGHT,UP: the lamp's axis, degrees");

    const char* const camera = "Camera";
    command.add_option("--lux-per-grey", options.luxPerGrey, "(default: fills three quarters of the range)")
        ->group(camera);
    add(camera, "--dark-level", options.darkLevel, "Grey without light");
    add(camera, "--electrons-per-grey", options.electronsPerGrey, "Sets the shot noise");
    add(camera, "--read-noise", options.readNoise, "Standard deviation, grey");
    add(camera, "--dark-frames", options.darkFrames, "Exposures averaged in the dark image");
    add(camera, "--hot-pixels", options.hotPixels, "Pels stuck at full scale");
    add(camera, "--dead-columns", options.deadColumns, "Columns stuck at 0");
    add(camera, "--lens-radial", options.lensRadial, kLensHelp);
    add(camera, "--seed", options.seed, "Of noise and defects");

    const char* const truth = "True figures";
    AddRegions(command, options.regions);
    command.get_option("--region")->group(truth);
    command
        .add_option("--spot", options.spot, "W[,H]: spot the brightest direction will be measured with (1,1)")
        ->group(truth);
    AddProgress(command, options.progress, "Output");
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli
