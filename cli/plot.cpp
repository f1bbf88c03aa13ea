#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <numbers>

#include "commands.h"
#include "delivery.h"
#include "failure.h"
#include "files.h"
#include "input.h"
#include "library.h"
#include "options.h"
#include "picture_file.h"
#include "plot_values.h"
#include "text.h"
#include "tqimage/plots.h"

namespace cli {
namespace {

enum class Kind { kPolar, kRadar, kAround, kColumns, kRows, kHistogram };
enum class Style { kPoints, kLine, kBars, kSteps, kFilled, kPolarCurve };

/// `tqimage plot` as it was typed.
struct PlotOptions {
    Kind kind = Kind::kRadar;
    std::string image;
    HeaderOptions header;
    std::string output;
    std::string size;
    double angle = 0.0;
    LensProjection lens = LensProjection::kFlat;
    bool grey = false;
    bool nearest = false;
    std::int32_t rings = 0, spokes = 0, margin = 0;
    std::string region = "rect:0,0,0,0";
    Style style = Style::kLine;
    std::string range;

    bool IsGraph() const { return kind != Kind::kPolar && kind != Kind::kRadar; }
    bool NeedsAngles() const { return kind <= Kind::kAround; }
};

std::array<std::int32_t, 2> SizeOf(const PlotOptions& options) {
    if (!options.size.empty()) return ParseSize("--size", options.size);
    switch (options.kind) {
        case Kind::kPolar:
            return {360, 91};  // a column a degree, and a row a degree of the half-space
        case Kind::kRadar:
        case Kind::kAround:
            return {801, 801};
        default:
            return {800, 400};
    }
}

/// The angle off the axis of the farthest corner, degrees; what lies behind the source is none.
double FarthestAngle(const TqImageHeader& header, LensProjection lens) {
    double farthest = 0.0;
    for (const float col : {0.0f, static_cast<float>(header.PelCols - 1)}) {
        for (const float row : {0.0f, static_cast<float>(header.PelRows - 1)}) {
            farthest = std::max(farthest, std::hypot(double{col - header.CenterCol} / header.PelsPerMeterX,
                                                     double{row - header.CenterRow} / header.PelsPerMeterY));
        }
    }
    const double radius = farthest / header.SourceDistance;
    const double angle = lens == LensProjection::kFlat   ? std::atan(radius)
                         : lens == LensProjection::kSine ? std::asin(std::min(radius, 1.0))
                                                         : radius;
    return std::min(angle * 180.0 / std::numbers::pi, lens == LensProjection::kAngle ? 180.0 : 90.0);
}

PolarForm FormOf(const PlotOptions& options, const TqImageHeader& header) {
    const double limit = options.lens == LensProjection::kAngle ? 180.0 : 90.0;
    if (options.angle < 0.0 || options.angle > limit) {
        FailUsage(Format("--angle is above 0 and at most %g degrees", limit));
    }
    if (header.PelsPerMeterX <= 0.0f || header.SourceDistance <= 0.0f) {
        FailMeasurement(options.image, "angles need --pels-per-meter and --distance");
    }
    if (!options.grey && header.LuxPerGrey <= 0.0f) {
        FailMeasurement(options.image, "intensities need --lux-per-grey; --grey shows the grey levels");
    }
    const double angle = options.angle > 0.0 ? options.angle : FarthestAngle(header, options.lens);
    if (!(static_cast<float>(angle) > 0.0f)) FailMeasurement(options.image, "there is nothing off the axis");
    return {angle, options.lens, options.grey};
}

/// The pels of the finished picture and what they mean.
std::string DrawPolar(const PlotOptions& options, const HostImage& image, HostImage& picture) {
    const std::array<std::int32_t, 2> size = SizeOf(options);
    const PolarForm form = FormOf(options, image.Header());
    MakePolar(image, options.image, options.kind == Kind::kPolar ? size : std::array{720, 361}, form,
              picture);
    if (options.kind == Kind::kRadar) {
        if (size[0] != size[1]) FailUsage("--size of a radar plot is one number");
        const auto create = options.nearest ? tqCreateRadarPlotNoInterp : tqCreateRadarPlot;
        Require(create(picture.Address(), picture.Get(), size[0]), options.image, "the radar plot");
        constexpr std::int32_t kWhite = 65535;
        if (options.rings != 0 || options.spokes != 0 || options.margin != 0) {
            Require(
                tqPadRadarPlot(picture.Address(), options.margin, options.rings, options.spokes, kWhite, 0),
                options.image, "the graticule");
        }
    }
    const char* const edge = options.kind == Kind::kPolar ? "last row" : "rim";
    std::string text = Format("%s %.4g degrees off the axis\n", edge, form.maxAngle);
    const double scale = static_cast<double>(picture.Header().LuxPerGrey);
    if (!form.grey) text += Format("65000 is %.6g cd\n", scale * 65000.0);
    return text;
}

std::vector<double> ValuesOf(const PlotOptions& options, const HostImage& image) {
    const TqImageHeader header = image.Header();
    Region area = ParseArea(options.region);
    FitRegion(area, header.PelCols, header.PelRows);
    switch (options.kind) {
        case Kind::kColumns:
            return ColumnMeans(image, options.image, area);
        case Kind::kRows:
            return RowMeans(image, options.image, area);
        case Kind::kHistogram:
            return Histogram(image, options.image);
        default:
            return AroundTheAxis(image, options.image, FormOf(options, header));
    }
}

std::string DrawGraph(const PlotOptions& options, const HostImage& image, HostImage& picture) {
    const std::array<std::int32_t, 2> size = SizeOf(options);
    std::array<double, 2> range{0.0, 0.0};  // for the library: up to the largest value
    if (!options.range.empty()) range = ParseRange("--range", options.range, range);
    const std::vector<double> values = ValuesOf(options, image);
    const Style style = options.kind == Kind::kAround ? Style::kPolarCurve : options.style;
    Require(tqCreateGraphType(picture.Address(), values.data(), static_cast<std::int32_t>(values.size()),
                              size[0], size[1], static_cast<std::int32_t>(style), range[0], range[1]),
            options.image, "the graph");
    const TqImageHeader header = picture.Header();
    if (style == Style::kPolarCurve) {
        return Format("value = %g + pels from the middle / %g\n", range[0], double{header.PelsPerMeterX});
    }
    return Format("sample = (column - %g) / %g\nvalue = (%g - row) / %g\n", double{header.CenterCol},
                  double{header.PelsPerMeterX}, double{header.CenterRow}, double{header.PelsPerMeterY});
}

void Run(const PlotOptions& options) {
    CheckPictureName(options.output, false);
    const Input input = ReadInput(options.image, options.header, Progress(false));
    HostImage picture(1, 1);
    const std::string text = options.IsGraph() ? DrawGraph(options, input.image, picture)
                                               : DrawPolar(options, input.image, picture);
    OutputFiles files;
    WritePicture(options.output, files.Add(options.output).WorkingPath(), picture);
    files.Commit();
    Show(text);
}

}  // namespace

void AddPlot(CLI::App& app) {
    const auto typed = std::make_shared<PlotOptions>();
    PlotOptions& options = *typed;
    CLI::App& command =
        *app.add_subcommand("plot", "Draw intensities over angles, or a graph, from an image");
    const std::map<std::string, Kind> kinds{{"polar", Kind::kPolar},   {"radar", Kind::kRadar},
                                            {"around", Kind::kAround}, {"columns", Kind::kColumns},
                                            {"rows", Kind::kRows},     {"histogram", Kind::kHistogram}};
    command
        .add_option(
            "KIND", options.kind,
            "polar: columns are azimuths, rows angles off the axis; radar: the same as a disc; around: "
            "a curve around the axis; columns, rows: their means; histogram")
        ->transform(CLI::CheckedTransformer(kinds).description(""))
        ->required();
    AddImage(command, options.image);
    AddHeader(command, options.header);

    const char* const angles = "Angles (polar, radar, around)";
    command
        .add_option("--angle", options.angle, "Largest angle, or that of the curve, degrees (the corners')")
        ->group(angles);
    const std::map<std::string, LensProjection> lenses{
        {"flat", LensProjection::kFlat}, {"angle", LensProjection::kAngle}, {"sine", LensProjection::kSine}};
    command
        .add_option("--lens", options.lens,
                    "What distances in the image grow with: flat (target: the tangent), angle or sine (flat)")
        ->transform(CLI::CheckedTransformer(lenses).description(""))
        ->group(angles);
    command.add_flag("--grey", options.grey, "Grey levels instead of intensities")->group(angles);
    command.add_flag("--nearest", options.nearest, "Radar: the nearest pel, not the mean of four")
        ->group(angles);
    command.add_option("--rings", options.rings, "Radar: rings to draw, 0..360 (0)")
        ->check(CLI::Range(0, 360))
        ->group(angles);
    command.add_option("--spokes", options.spokes, "Radar: spokes to draw, 0..360 (0)")
        ->check(CLI::Range(0, 360))
        ->group(angles);
    command.add_option("--margin", options.margin, "Radar: pels around it (0)")
        ->check(CLI::Range(0, 3999))
        ->group(angles);

    const char* const graphs = "Graphs";
    command
        .add_option("--region", options.region, "rect:LEFT,TOP,RIGHT,BOTTOM: what columns and rows measure")
        ->group(graphs);
    const std::map<std::string, Style> styles{{"points", Style::kPoints},
                                              {"line", Style::kLine},
                                              {"bars", Style::kBars},
                                              {"steps", Style::kSteps},
                                              {"filled", Style::kFilled}};
    command.add_option("--style", options.style, "points, line, bars, steps or filled (line)")
        ->transform(CLI::CheckedTransformer(styles).description(""))
        ->group(graphs);
    command.add_option("--range", options.range, "LOW,HIGH: the values at bottom and top (0 to the largest)")
        ->group(graphs);

    command.add_option("--size", options.size, "COLUMNS[,ROWS] of the plot")->group("Output");
    command.add_option("-o,--output", options.output, "Picture to write: .png, .tif, .pgm or .bmp")
        ->required()
        ->group("Output");
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli
