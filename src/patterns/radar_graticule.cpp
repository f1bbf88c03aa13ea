#include <algorithm>
#include <cmath>
#include <cstdint>

#include "core/image_view.h"
#include "core/numerics.h"
#include "core/replaced_image.h"
#include "patterns/azimuth.h"
#include "patterns/pattern_image.h"
#include "patterns/plot_line.h"
#include "tqimage/plots.h"

namespace tq {
namespace {

constexpr std::int32_t kBadArgument = -1;
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

/// A ring or spoke a degree: more lines would hide any plot.
constexpr std::int32_t kMostLines = 360;

struct Graticule {
    std::int32_t margin;
    std::int32_t rings;
    std::int32_t spokes;
    Pel grey;
    Pel background;
};

/// True where a pel so far from the middle is on a ring one pel wide.
bool IsOnRing(double distance, double ringStep, std::int32_t rings) noexcept {
    const double ring = std::clamp(std::nearbyint(distance / ringStep), 1.0, static_cast<double>(rings));
    const double beyond = distance - ring * ringStep;
    return beyond >= -0.5 && beyond < 0.5;
}

/// The disc of the plot in the middle of the frame, with its rings.
void DrawDisc(const ConstImageView& plot, const Graticule& graticule, const ImageView& out, double radius) {
    const PlotPlace middle{(out.cols - 1) * 0.5, (out.rows - 1) * 0.5};
    const bool hasRings = graticule.rings > 0 && radius > 0.0;
    const double ringStep = hasRings ? radius / graticule.rings : 0.0;
    for (std::int32_t row = 0; row < out.rows; ++row) {
        Pel* pels = out.Row(row);
        for (std::int32_t col = 0; col < out.cols; ++col) {
            const double x = col - middle.col;
            const double y = row - middle.row;
            const double square = x * x + y * y;
            if (hasRings && IsOnRing(std::sqrt(square), ringStep, graticule.rings)) {
                pels[col] = graticule.grey;
            } else if (square > radius * radius) {
                pels[col] = graticule.background;
            } else {
                pels[col] = plot.At(col - graticule.margin, row - graticule.margin);
            }
        }
    }
}

void DrawSpokes(const Graticule& graticule, const ImageView& out, double radius) {
    if (graticule.spokes <= 0) return;
    const PlotPlace middle{(out.cols - 1) * 0.5, (out.rows - 1) * 0.5};
    const TurnParts parts(graticule.spokes);
    for (std::int32_t spoke = 0; spoke < graticule.spokes; ++spoke) {
        const Direction direction = parts[spoke];
        DrawLine(out, middle, {middle.col + radius * direction.cosine, middle.row - radius * direction.sine},
                 graticule.grey);
    }
}

OwnedImage Pad(const ConstImageView& plot, const Graticule& graticule) {
    OwnedImage padded = MakeDrawnImage(plot.cols + 2 * graticule.margin, plot.rows + 2 * graticule.margin,
                                       NewPels::kUnwritten);
    const double radius = (std::min(plot.cols, plot.rows) - 1) * 0.5;
    DrawDisc(plot, graticule, padded.View(), radius);
    DrawSpokes(graticule, padded.View(), radius);
    padded.Header().LuxPerGrey = plot.header->LuxPerGrey;
    return padded;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqPadRadarPlot(TqImage** image, std::int32_t margin, std::int32_t rings,
                                    std::int32_t spokes, std::int32_t grey, std::int32_t background) {
    if (image == nullptr || margin < 0 || rings > kMostLines || spokes > kMostLines) return kBadArgument;
    const ConstImageView plot = LocateImage(*image);
    if (!plot) return kInvalidImage;
    if (margin > (kMaxSide - std::max(plot.cols, plot.rows)) / 2) return kBadArgument;
    const Graticule graticule{margin, rings, spokes, ClampToPel(grey), ClampToPel(background)};
    return ReplaceImage(image, kNoMemory, [&] { return Pad(plot, graticule); });
}
