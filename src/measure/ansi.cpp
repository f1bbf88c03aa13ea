#include <algorithm>
#include <array>
#include <cstdint>

#include "core/image_view.h"
#include "core/numerics.h"
#include "measure/block_average.h"
#include "measure/photometric_frame.h"
#include "measure/span_consumers.h"
#include "tqimage/uniformity.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoScale = -3;

/// Percent of the way from the first pel to the last, across and down.
struct AnsiPoint {
    double x;
    double y;
};

// ANSI IT7.228 puts the grid in the middles of nine equal fields; hosts know these rounded percentages.
constexpr std::array<AnsiPoint, 9> kGrid = {{{16.7, 16.7},
                                             {50.0, 16.7},
                                             {83.3, 16.7},
                                             {16.7, 50.0},
                                             {50.0, 50.0},
                                             {83.3, 50.0},
                                             {16.7, 83.3},
                                             {50.0, 83.3},
                                             {83.3, 83.3}}};
constexpr std::array<AnsiPoint, 4> kCorners = {{{5.0, 5.0}, {95.0, 5.0}, {5.0, 95.0}, {95.0, 95.0}}};

/// The shape that hosts pass for elliptical spots; every other one means rectangles.
constexpr std::int32_t kEllipticalSpots = 1;

struct Spot {
    std::int32_t shape;
    std::int32_t width;
    std::int32_t height;
};

double Sample(const ConstImageView& view, const AnsiPoint& point, const Spot& spot) {
    const std::int32_t col = TruncToInt32((view.cols - 1) * point.x / 100.0);
    const std::int32_t row = TruncToInt32((view.rows - 1) * point.y / 100.0);
    return spot.shape == kEllipticalSpots ? EllipseAverage(view, col, row, spot.width, spot.height)
                                          : BlockAverage(view, col, row, spot.width, spot.height);
}

/// Mean of the grid, and the extremes of everything sampled.
struct AnsiSamples {
    double mean = 0.0;
    double max = 0.0;
    double min = 100000.0;  // above every pel

    AnsiSamples(const ConstImageView& view, const Spot& spot) {
        double sum = 0.0;
        for (const AnsiPoint& point : kGrid)
            sum += Take(view, point, spot);
        mean = sum / 9.0;
        for (const AnsiPoint& point : kCorners)
            Take(view, point, spot);
    }

  private:
    double Take(const ConstImageView& view, const AnsiPoint& point, const Spot& spot) {
        const double sample = Sample(view, point, spot);
        max = std::max(max, sample);
        min = std::min(min, sample);
        return sample;
    }
};

}  // namespace

double TQ_CALL tqCalcANSILumens(const TqImage* image, std::int32_t shape, std::int32_t width,
                                std::int32_t height) {
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    const PhotometricFrame frame(*view.header);
    if (!frame.HasScale()) return kNoScale;
    const AnsiSamples samples(view, {shape, width, height});
    TotalAtLeast lit(1);
    lit(view.pels, view.Count());
    // Hosts have set the screen around the field to 0: the pels that are left measure the lit area.
    return samples.mean * frame.LuxPerGrey() * static_cast<double>(lit.Count()) / frame.PelsPerSquareMeter();
}

std::int32_t TQ_CALL tqCalcANSIUniformity(const TqImage* image, double* maximumDeviation,
                                          double* minimumDeviation, std::int32_t shape, std::int32_t width,
                                          std::int32_t height) {
    *maximumDeviation = 0.0;
    *minimumDeviation = 0.0;
    const ConstImageView view = LocateImage(image);
    if (!view) return kInvalidImage;
    if (!PhotometricFrame(*view.header).HasScale()) return kNoScale;
    const AnsiSamples samples(view, {shape, width, height});
    *maximumDeviation = (samples.max - samples.mean) * 100.0 / samples.mean;
    *minimumDeviation = (samples.min - samples.mean) * 100.0 / samples.mean;
    return 0;
}
