#include "transform_step.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "failure.h"
#include "options.h"
#include "text.h"
#include "tqimage/framing.h"
#include "tqimage/orientation.h"
#include "tqimage/resampling.h"
#include "tqimage/transform.h"

namespace cli {

const char kTransformSteps[] = R"(
Steps, taken in the order in which they are typed:
  turn:left|right|half
  mirror:columns|rows|diagonal     left to right, upside down, columns become rows
  rotate:DEGREES                   counter-clockwise, about the middle
  crop:LEFT,TOP,RIGHT,BOTTOM       both ends included; RIGHT or BOTTOM 0 is the last
  bin:X[,Y]                        so many pels become their mean
  bin-lit:X[,Y]                    the mean of those that are not 0
  unbin:X[,Y]                      a binned image back to so many sensor pels a pel
  scale:X[,Y]                      factors above 0
)";

namespace {

TransformStep ParseTurn(const std::string& value) {
    // How the library combines mirrors and quarter turns.
    constexpr std::array<std::array<std::int32_t, 2>, 3> kModes{{{0, 1}, {0, 2}, {1, 3}}};
    const auto choice = ParseChoice("turn", value, {"left", "right", "half"});
    return [mode = kModes[static_cast<std::size_t>(choice)]](HostImage& image) {
        return tqMirrorTransposeImage(image.Address(), mode[0], mode[1]);
    };
}

TransformStep ParseMirror(const std::string& value) {
    constexpr std::array<std::array<std::int32_t, 2>, 3> kModes{{{1, 0}, {0, 3}, {1, 1}}};
    const auto choice = ParseChoice("mirror", value, {"columns", "rows", "diagonal"});
    return [mode = kModes[static_cast<std::size_t>(choice)]](HostImage& image) {
        return tqMirrorTransposeImage(image.Address(), mode[0], mode[1]);
    };
}

TransformStep ParseCrop(const std::string& value) {
    return [typed = ParseArea("crop=rect:" + value)](HostImage& image) {
        Region area = typed;
        FitRegion(area, image.Header().PelCols, image.Header().PelRows);
        const auto [left, top, right, bottom] = area.box;
        return tqFrameUpImg2(image.Address(), image.Get(), left, top, right, bottom);
    };
}

using Bin = std::int32_t(TQ_CALL*)(TqImage**, std::int32_t, std::int32_t);

TransformStep ParseBin(const char* name, const std::string& value, Bin bin) {
    const auto factors = ParsePair(name, value, 1);
    // The library adds a block up in 32 bits.
    if (std::int64_t{factors[0]} * factors[1] > 32768) {
        FailUsage(std::string(name) + " takes 32768 pels at most into one, not " + value);
    }
    return [=](HostImage& image) {
        const TqImageHeader header = image.Header();
        if (factors[0] * header.BinCols > INT16_MAX || factors[1] * header.BinRows > INT16_MAX) {
            FailUsage(std::string(name) + ":" + value + ": no header holds so large a binning");
        }
        return bin(image.Address(), factors[0], factors[1]);
    };
}

TransformStep ParseUnbin(const std::string& value) {
    const auto factors = ParsePair("unbin", value, 1);
    return [=](HostImage& image) { return tqUnBinImage(image.Address(), factors[0], factors[1]); };
}

/// Resamples through a matrix that takes the offset of a pel from the result's middle to that in the image.
/// The middles, and pels up to their borders, fall on each other.
std::int32_t Resample(HostImage& image, const std::array<double, 4>& toSource, double cols, double rows) {
    if (!(cols >= 1.0 && cols <= static_cast<double>(kLargestSide) && rows >= 1.0 &&
          rows <= static_cast<double>(kLargestSide))) {
        FailUsage("rotate and scale: an image has 1 to 8000 columns and rows");
    }
    const TqImageHeader header = image.Header();
    const auto [xx, xy, yx, yy] = toSource;
    const double col = 0.5 * (cols - 1.0);
    const double row = 0.5 * (rows - 1.0);
    const double matrix[] = {xx,  xy,  0.5 * (header.PelCols - 1) - xx * col - xy * row,
                             yx,  yy,  0.5 * (header.PelRows - 1) - yx * col - yy * row,
                             0.0, 0.0, 1.0};
    constexpr std::int32_t kBilinear = 1;
    return tqTransformImage(image.Address(), matrix, static_cast<std::int32_t>(cols),
                            static_cast<std::int32_t>(rows), kBilinear, 0);
}

TransformStep ParseRotate(const std::string& value) {
    const auto degrees = ParseReal(value);
    if (!degrees || std::fabs(*degrees) > 360.0) FailUsage("rotate takes degrees, 360 at most, not " + value);
    const double angle = *degrees * std::numbers::pi / 180.0;
    return [cosine = std::cos(angle), sine = std::sin(angle)](HostImage& image) {
        const TqImageHeader header = image.Header();
        // A quarter turn's cosine is not quite 0, and must not cost a column.
        constexpr double kNothing = 1e-9;
        const auto side = [&](double along, double across) {
            return std::ceil(std::fabs(along * cosine) + std::fabs(across * sine) - kNothing);
        };
        return Resample(image, {cosine, -sine, sine, cosine}, side(header.PelCols, header.PelRows),
                        side(header.PelRows, header.PelCols));
    };
}

TransformStep ParseScale(const std::string& value) {
    const auto factors = ParseReals(value, 1, 2);
    if (!factors || !(factors->front() > 0.0) || !(factors->back() > 0.0)) {
        FailUsage("scale takes one or two factors above 0, not " + value);
    }
    return [x = factors->front(), y = factors->back()](HostImage& image) {
        const TqImageHeader header = image.Header();
        return Resample(image, {1.0 / x, 0.0, 0.0, 1.0 / y}, std::round(x * header.PelCols),
                        std::round(y * header.PelRows));
    };
}

}  // namespace

TransformStep ParseTransformStep(const std::string& text) {
    const std::size_t colon = text.find(':');
    const std::string name = text.substr(0, colon);
    const std::string value = colon == std::string::npos ? "" : text.substr(colon + 1);
    if (name == "turn") return ParseTurn(value);
    if (name == "mirror") return ParseMirror(value);
    if (name == "rotate") return ParseRotate(value);
    if (name == "crop") return ParseCrop(value);
    if (name == "bin") return ParseBin("bin", value, tqBinImage);
    if (name == "bin-lit") return ParseBin("bin-lit", value, tqBinImage0);
    if (name == "unbin") return ParseUnbin(value);
    if (name == "scale") return ParseScale(value);
    FailUsage("no step is called " + name + " (see tqimage transform --help)");
}

}  // namespace cli
