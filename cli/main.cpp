#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>

#include "failure.h"
#include "options.h"

namespace cli {
namespace {

constexpr char kRegionHelp[] =
    "A region, any number of times: [NAME=]rect:LEFT,TOP,RIGHT,BOTTOM (inclusive; RIGHT or BOTTOM 0 is the "
    "last), "
    "ellipse:COLUMN,ROW,WIDTH,HEIGHT or poly:COLUMN,ROW;COLUMN,ROW;... Default: the whole image";
constexpr char kLensHelp[] =
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

void AddHeader(CLI::App& command, HeaderOptions& options, std::string& headerFile) {
    const char* const group = "Header (else from --header, else from IMAGE.json when there is one)";
    command.add_option("--pels-per-meter", options.pelsPerMeter, "X[,Y]: pels per metre on the target")
        ->group(group);
    command.add_option("--center", options.center, "C,R: where the axis meets the image (the middle)")
        ->group(group);
    command.add_option("--lux-per-grey", options.luxPerGrey, "Illuminance of a grey level")->group(group);
    command.add_option("--distance", options.distance, "Source to target, metres")->group(group);
    command.add_option("--bin", options.bin, "X[,Y]: sensor pels that one pel stands for (1)")->group(group);
    command.add_option("--header", headerFile, "JSON file with the header")->group(group);
}

constexpr char kOutput[] = "Output (the table goes to stdout unless another form does)";

void AddReports(CLI::App& command, std::string& json, std::string& csv, bool& progress) {
    command.add_flag("--json{-}", json, "JSON to stdout, or to FILE with --json=FILE")->group(kOutput);
    command.add_flag("--csv{-}", csv, "CSV to stdout, or to FILE with --csv=FILE")->group(kOutput);
    command.add_flag("--progress", progress, "Tell the progress even when stderr is no terminal")
        ->group(kOutput);
}

void AddMeasure(CLI::App& app, MeasureOptions& options) {
    CLI::App& command = *app.add_subcommand("measure", "Measure regions of a grey PNG, TIFF or PGM image");
    AddImage(command, options.image);
    AddHeader(command, options.header, options.headerFile);

    const char* const corrections = "Corrections, in this order";
    command.add_option("--dark", options.correction.dark, "Image to subtract")->group(corrections);
    command.add_option("--defects", options.correction.defects, "CSV file: type,x,y,start,end")
        ->group(corrections);
    command.add_option("--defect-window", options.defectWindow, "W[,H]: neighbourhood of a repair (3,3)")
        ->group(corrections);
    command
        .add_option("--defect-origin", options.defectOrigin, "C[,R]: sensor position of the first pel (0,0)")
        ->group(corrections);
    command.add_option("--lens", options.correction.lensMap, "Distortion map file")->group(corrections);
    command.add_option("--lens-radial", options.correction.lensRadial, kLensHelp)->group(corrections);

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
}

void AddUniformity(CLI::App& app, UniformityOptions& options) {
    CLI::App& command = *app.add_subcommand(
        "uniformity", "Rate the uniformity of a display or projector that shows a white field");
    AddImage(command, options.image);
    AddHeader(command, options.header, options.headerFile);
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
}

void AddSimulate(CLI::App& app, SimulateOptions& options) {
    CLI::App& command = *app.add_subcommand(
        "simulate", "Render the capture of a known lamp, with the files to measure it and the true figures");
    command
        .add_option("-o,--output", options.output,
                    "Image to write: .png, .tif or .pgm; the others go beside it")
        ->required();
    const char* const scene = "Scene";
    command.add_option("--size", options.size, "COLUMNS[,ROWS]")->capture_default_str()->group(scene);
    command.add_option("--pels-per-meter", options.pelsPerMeter, "X[,Y] on the target")
        ->capture_default_str()
        ->group(scene);
    command.add_option("--center", options.center, "C,R: where the axis meets the image (the middle)")
        ->group(scene);
    command.add_option("--distance", options.distance, "Lamp to target, metres")
        ->capture_default_str()
        ->group(scene);
    command.add_option("--candela", options.candela, "Intensity along the lamp's axis")
        ->capture_default_str()
        ->group(scene);
    command.add_option("--exponent", options.exponent, "n of cos^n, the lamp's distribution")
        ->capture_default_str()
        ->group(scene);
    command.add_option("--tilt", options.tilt, "RIGHT,UP: the lamp's axis, degrees")
        ->capture_default_str()
        ->group(scene);

    const char* const camera = "Camera";
    command.add_option("--lux-per-grey", options.luxPerGrey, "(default: fills three quarters of the range)")
        ->group(camera);
    command.add_option("--dark-level", options.darkLevel, "Grey without light")
        ->capture_default_str()
        ->group(camera);
    command.add_option("--electrons-per-grey", options.electronsPerGrey, "Sets the shot noise")
        ->capture_default_str()
        ->group(camera);
    command.add_option("--read-noise", options.readNoise, "Standard deviation, grey")
        ->capture_default_str()
        ->group(camera);
    command.add_option("--dark-frames", options.darkFrames, "Exposures averaged in the dark image")
        ->capture_default_str()
        ->group(camera);
    command.add_option("--hot-pixels", options.hotPixels, "Pels stuck at full scale")
        ->capture_default_str()
        ->group(camera);
    command.add_option("--dead-columns", options.deadColumns, "Columns stuck at 0")
        ->capture_default_str()
        ->group(camera);
    command.add_option("--lens-radial", options.lensRadial, kLensHelp)->group(camera);
    command.add_option("--seed", options.seed, "Of noise and defects")->capture_default_str()->group(camera);

    const char* const truth = "True figures";
    AddRegions(command, options.regions);
    command.get_option("--region")->group(truth);
    command
        .add_option("--spot", options.spot, "W[,H]: spot the brightest direction will be measured with (1,1)")
        ->group(truth);
    command.add_flag("--progress", options.progress, "Tell the progress even when stderr is no terminal");
}

void AddMtf(CLI::App& app, MtfOptions& options) {
    CLI::App& command = *app.add_subcommand(
        "mtf", "Modulation transfer from the slanted edge in each region of an image (rectangles only)");
    command.add_option("IMAGE", options.image, "8-bit or 16-bit grey PNG, TIFF or PGM image")->required();
    AddRegions(command, options.regions);
    command.add_option("--points", options.points, "Points of the curve from 0 to 0.5 cycles a pel")
        ->capture_default_str();
    command.add_flag("--json{-}", options.json, "JSON to stdout, or to FILE with --json=FILE");
}

int Run(int count, char** arguments) {
    CLI::App app("Photometric measurements in images of an imaging photometer.", "tqimage");
    app.set_version_flag("--version", TQIMAGE_VERSION);
    app.require_subcommand(1);
    app.footer(
        "Exit codes: 0 done, 1 measurement impossible, 2 usage, 3 file, 4 outside the expectations of "
        "--expect.");
    MeasureOptions measure;
    UniformityOptions uniformity;
    SimulateOptions simulate;
    AddMeasure(app, measure);
    AddUniformity(app, uniformity);
    AddSimulate(app, simulate);
    MtfOptions mtf;
    AddMtf(app, mtf);
    try {
        app.parse(count, arguments);
    } catch (const CLI::Success& shown) {
        return app.exit(shown);
    } catch (const CLI::ParseError& error) {
        FailUsage(std::string(error.what()) + " (see tqimage --help)");
    }
    if (app.got_subcommand("measure")) {
        RunMeasure(measure);
    } else if (app.got_subcommand("uniformity")) {
        RunUniformity(uniformity);
    } else if (app.got_subcommand("mtf")) {
        RunMtf(mtf);
    } else {
        RunSimulate(simulate);
    }
    return 0;
}

}  // namespace
}  // namespace cli

int main(int count, char** arguments) {
    try {
        return cli::Run(count, arguments);
    } catch (const cli::Failure& failure) {
        std::fprintf(stderr, "tqimage: %s\n", failure.what());
        return static_cast<int>(failure.Code());
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "tqimage: out of memory\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tqimage: %s\n", error.what());
    }
    return static_cast<int>(cli::Exit::kCannotMeasure);
}
