#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "failure.h"
#include "files.h"
#include "image_file.h"
#include "library.h"
#include "options.h"
#include "picture_file.h"
#include "text.h"
#include "tqimage/test_patterns.h"

namespace cli {
namespace {

/// `tqimage pattern NAME` as it was typed; each pattern takes some of it.
struct PatternOptions {
    std::string size, output;
    std::string count, first, step, frame, values, whitePlane;
    std::int32_t radius = 0;  ///< 0: chosen by the size
    std::int32_t lineWidth = 1;
    std::int32_t zones = 0;
    std::int32_t interior = 0;
    bool extended = false, vertical = false, blackFirst = false;
};

using Pair = std::array<std::int32_t, 2>;

struct Size {
    std::int32_t cols;
    std::int32_t rows;
    std::int32_t Shorter() const noexcept { return std::min(cols, rows); }
};

Size ParseSize(const std::string& text) {
    std::string pair = text;
    std::replace(pair.begin(), pair.end(), 'x', ',');
    const auto [cols, rows] = cli::ParseSize("SIZE", pair);
    return {cols, rows};
}

/// A lattice of features of one width; what is not typed is chosen so that it lies centred in the image.
struct Lattice {
    Pair count, step, first;

    /// chooseStep(pels, count) is the step when none was typed.
    template <class ChooseStep>
    Lattice(const PatternOptions& options, const Size& size, std::int64_t width, ChooseStep&& chooseStep)
        : count(ParsePair("--count", options.count, 2)),
          step{chooseStep(size.cols, count[0]), chooseStep(size.rows, count[1])} {
        if (!options.step.empty()) step = ParsePair("--step", options.step, 0);
        const auto centred = [width](std::int64_t pels, std::int64_t n, std::int64_t gap) {
            return static_cast<std::int32_t>(std::max<std::int64_t>((pels - width - (n - 1) * gap) / 2, 0));
        };
        first = {centred(size.cols, count[0], step[0]), centred(size.rows, count[1], step[1])};
        if (!options.first.empty()) first = ParsePair("--first", options.first, 0);
    }
};

std::int32_t DrawDots(TqImage** image, const Size& size, const PatternOptions& options) {
    const Lattice at(options, size, 1,
                     [](std::int32_t pels, std::int32_t count) { return std::max(pels / count, 1); });
    const std::int32_t radius =
        options.radius > 0 ? options.radius : std::max(std::min(at.step[0], at.step[1]) / 8, 1);
    return tqCreateDotPattern(image, size.cols, size.rows, at.first[0], at.first[1], at.count[0], at.count[1],
                              at.step[0], at.step[1], radius);
}

std::int32_t DrawGrid(TqImage** image, const Size& size, const PatternOptions& options) {
    const std::int32_t width = options.lineWidth;
    if (width < 1 || width > kLargestSide) FailUsage("--line-width is 1 to 8000 pels");
    const Lattice at(options, size, width, [width](std::int32_t pels, std::int32_t count) {
        return std::max((pels - width) / (count - 1), 1);
    });
    return tqCreateGridPattern(image, size.cols, size.rows, at.first[0], at.first[1], at.count[0],
                               at.count[1], at.step[0], at.step[1], width);
}

std::int32_t DrawDistortion(TqImage** image, const Size& size, const PatternOptions& options) {
    const auto [countX, countY] = ParsePair("--count", options.count, 2);
    const std::int32_t gap = std::min(size.cols / countX, size.rows / countY);
    return tqCreateDistortionPattern(image, size.cols, size.rows, countX, countY,
                                     options.radius > 0 ? options.radius : std::max(gap / 8, 1));
}

std::int32_t DrawConvergence(TqImage** image, const Size& size, const PatternOptions& options) {
    const auto [countX, countY] = ParsePair("--count", options.count, 0);
    return tqCreateConvergencePattern(image, size.cols, size.rows, countX, countY, options.lineWidth);
}

std::int32_t DrawCheckerboard(TqImage** image, const Size& size, const PatternOptions& options) {
    const auto [fieldsX, fieldsY] = ParsePair("--count", options.count, 2);
    return tqCreateCheckerboardPattern(image, size.cols, size.rows, fieldsX, fieldsY, !options.blackFirst);
}

std::int32_t DrawBorder(TqImage** image, const Size& size, const PatternOptions& options) {
    const auto [frameX, frameY] = ParsePair("--frame", options.frame, 0);
    std::vector<std::uint16_t> levels;
    if (!options.values.empty()) {
        constexpr std::size_t kMostFrames = 8000;
        const auto values = ParseInts(options.values, 1, kMostFrames);
        if (!values || *std::min_element(values->begin(), values->end()) < 0 ||
            *std::max_element(values->begin(), values->end()) > 65535) {
            FailUsage("--values takes grey levels of 0 to 65535, not " + options.values);
        }
        levels.assign(values->begin(), values->end());
    }
    const auto count =
        levels.empty() ? ParsePair("--count", options.count, 0)[0] : static_cast<std::int32_t>(levels.size());
    return tqCreateBorderPattern(image, count, levels.empty() ? nullptr : levels.data(), size.cols, size.rows,
                                 frameX, frameY, options.interior);
}

std::int32_t DrawZones(TqImage** image, const Size& size, const PatternOptions& options) {
    // A plate whose rings are a pel wide where they reach the nearer edges: at the distance d they are
    // firstRadius^2 / (2 d) wide.
    std::int32_t radius = options.radius;
    for (radius = std::max(radius, 1); options.radius <= 0 && radius * radius < size.Shorter();)
        ++radius;
    return tqCreateZonePattern(image, size.cols, size.rows, radius, options.zones, !options.blackFirst);
}

std::int32_t DrawAnsi(TqImage** image, const Size& size, const PatternOptions& options) {
    const std::int32_t radius = options.radius > 0 ? options.radius : std::max(size.Shorter() / 40, 1);
    return tqCreateANSI13Pattern(image, size.cols, size.rows, radius, options.extended);
}

std::int32_t DrawVesa(TqImage** image, const Size& size, const PatternOptions& options) {
    return tqCreateVESAConvergencePattern(image, size.cols, size.rows, !options.vertical, options.lineWidth);
}

std::int32_t DrawGrayScale(TqImage** image, const Size& size, const PatternOptions& options) {
    return tqCreateGrayScaleImage(image, ParsePair("--count", options.count, 2)[0], size.cols, size.rows);
}

void RunFourColors(const PatternOptions& options) {
    const Size size = ParseSize(options.size);
    const bool fourth = !options.whitePlane.empty();
    CheckPictureName(options.output, true);
    if (fourth) CheckPictureName(options.whitePlane, false);
    HostImage red(size.cols, size.rows), green(size.cols, size.rows), blue(size.cols, size.rows),
        white(size.cols, size.rows);
    Require(tqCreateFourColorImage(red.Address(), green.Address(), blue.Address(), white.Address(), size.cols,
                                   size.rows, fourth),
            options.output, "the pattern");
    OutputFiles files;
    WritePicture(options.output, files.Add(options.output).WorkingPath(), {&red, &green, &blue});
    if (fourth) WritePicture(options.whitePlane, files.Add(options.whitePlane).WorkingPath(), white);
    files.Commit();
}

using Draw = std::int32_t (*)(TqImage**, const Size&, const PatternOptions&);

void RunGrey(const PatternOptions& options, Draw draw) {
    const Size size = ParseSize(options.size);
    CheckPictureName(options.output, false);
    HostImage image(size.cols, size.rows);
    Require(draw(image.Address(), size, options), options.output, "the pattern");
    OutputFiles files;
    WritePicture(options.output, files.Add(options.output).WorkingPath(), image);
    files.Commit();
}

/// One pattern's subcommand and the options it takes.
class Kind {
  public:
    /// Without draw it is the one picture in colours.
    Kind(CLI::App& pattern, const char* name, const char* help, Draw draw)
        : command_(*pattern.add_subcommand(name, help)), options_(std::make_shared<PatternOptions>()) {
        command_.add_option("SIZE", options_->size, "COLUMNSxROWS or COLUMNS,ROWS")->required();
        command_
            .add_option("-o,--output", options_->output,
                        draw != nullptr ? "Picture to write: .png, .tif or .pgm with 16 bits, .bmp with 8"
                                        : "Picture to write: .png, .tif or .bmp, 8 bits a colour")
            ->required();
        command_.callback([typed = options_, draw] {
            if (draw != nullptr) {
                RunGrey(*typed, draw);
            } else {
                RunFourColors(*typed);
            }
        });
    }

    template <class T>
    Kind& Takes(const char* name, T PatternOptions::*value, const char* help) {
        command_.add_option(name, (*options_).*value, help);
        return *this;
    }
    template <class T>
    Kind& Takes(const char* name, T PatternOptions::*value, T standard, const char* help) {
        (*options_).*value = standard;
        command_.add_option(name, (*options_).*value, help)->capture_default_str();
        return *this;
    }
    Kind& Flag(const char* name, bool PatternOptions::*value, const char* help) {
        command_.add_flag(name, (*options_).*value, help);
        return *this;
    }
    Kind& TakesRadius(const char* help) { return Takes("--radius", &PatternOptions::radius, help); }
    Kind& TakesLineWidth() {
        return Takes("--line-width", &PatternOptions::lineWidth, std::int32_t{1}, "Width of the lines, pels");
    }
    Kind& TakesCount(const char* standard, const char* help) {
        return Takes("--count", &PatternOptions::count, std::string(standard), help);
    }
    Kind& TakesLattice() {
        return Takes("--step", &PatternOptions::step, "X[,Y]: from one to the next (fills the image)")
            .Takes("--first", &PatternOptions::first, "C,R: the first one (centres the others)");
    }

  private:
    CLI::App& command_;
    std::shared_ptr<PatternOptions> options_;
};

}  // namespace

void AddPattern(CLI::App& app) {
    CLI::App& pattern = *app.add_subcommand("pattern", "Draw a test image for a display or projector");
    pattern.require_subcommand(1);
    using O = PatternOptions;
    Kind(pattern, "dots", "Lattice of discs", DrawDots)
        .TakesCount("9,7", "X[,Y]: discs, at least 2")
        .TakesLattice()
        .TakesRadius("Of the discs, pels (an eighth of the step)");
    Kind(pattern, "distortion", "Discs in the middles of equal fields", DrawDistortion)
        .TakesCount("9,7", "X[,Y]: discs, at least 2")
        .TakesRadius("Of the discs, pels (an eighth of a field)");
    Kind(pattern, "ansi13", "The thirteen points for measuring projectors", DrawAnsi)
        .TakesRadius("Of the discs, pels (a fortieth of the shorter side)")
        .Flag("--extended", &O::extended, "Twenty-five points");
    Kind(pattern, "grid", "Lines around and between equal fields", DrawGrid)
        .TakesCount("9,7", "X[,Y]: vertical and horizontal lines, at least 2")
        .TakesLattice()
        .TakesLineWidth();
    Kind(pattern, "convergence", "Crosshatch over the whole image", DrawConvergence)
        .TakesCount("16,9", "X[,Y]: vertical and horizontal lines")
        .TakesLineWidth();
    Kind(pattern, "vesa", "Five lines over the whole image", DrawVesa)
        .Flag("--vertical", &O::vertical, "Vertical lines")
        .TakesLineWidth();
    Kind(pattern, "checkerboard", "Fields of white and black", DrawCheckerboard)
        .TakesCount("4,4", "X[,Y]: fields, at least 2")
        .Flag("--black-first", &O::blackFirst, "A black field in the upper left corner");
    Kind(pattern, "zone", "Rings of equal area around the middle", DrawZones)
        .TakesRadius("Of the innermost zone, pels (rings of a pel at the nearer edges)")
        .Takes("--zones", &O::zones, std::int32_t{0}, "Zones to draw; 0: all of a pel and wider")
        .Flag("--black-first", &O::blackFirst, "A black innermost zone");
    Kind(pattern, "border", "Frames one in the other", DrawBorder)
        .TakesCount("2", "Frames, white and black in turn")
        .Takes("--values", &O::values,
               "V,V,...: grey levels of the frames, from the outermost; sets their count")
        .Takes("--frame", &O::frame, std::string("1"), "X[,Y]: width of a frame's sides; 0 for none")
        .Takes("--interior", &O::interior, std::int32_t{0}, "Grey level inside");
    Kind(pattern, "gray-scale", "Bands from black to white", DrawGrayScale)
        .TakesCount("16", "Bands, at least 2");
    Kind(pattern, "four-color", "Red, green, blue and white fields", nullptr)
        .Takes(
            "--white-plane", &O::whitePlane,
            "Grey picture to write for a display with a fourth primary: its white field is lit there only");
}

}  // namespace cli
