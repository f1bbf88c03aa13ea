#include "measurement.h"

#include <cmath>
#include <numbers>

#include "failure.h"
#include "region_query.h"
#include "text.h"
#include "tqimage/photometry.h"

namespace cli {
namespace {

constexpr double kDegrees = 180.0 / std::numbers::pi;

/// A direction as the photometric functions return it, in radians.
struct Direction {
    double candela = 0.0;
    double angle1 = 0.0;
    double angle2 = 0.0;
    double offAxis = 0.0;
};

class RegionMeasurement {
  public:
    RegionMeasurement(const HostImage& image, const PhotometricHeader& header, const Region& region,
                      const MeasuringOptions& options, HostImage& scratch)
        : image_(image),
          header_(header),
          region_(region),
          options_(options),
          subject_("region " + region.name),
          query_(image, region, scratch) {}

    Figures Measure() {
        Grey();
        if (header_.HasScale()) Area();
        if (header_.luxPerGrey) Illuminance();
        if (header_.HasFrame()) Directions();
        return figures_;
    }

  private:
    void Grey() {
        std::int32_t pels = 0;
        const double total = query_.Total(0, pels);
        if (pels < 1) FailMeasurement(subject_, "no pel of the image lies inside");
        std::int32_t filled = 0;
        query_.Total(1, filled);
        const auto range = query_.Extremes();
        mean_ = total / pels;
        figures_[Quantity::kPels] = pels;
        figures_[Quantity::kEmptyPels] = pels - filled;
        figures_[Quantity::kTotalGrey] = total;
        figures_[Quantity::kMeanGrey] = mean_;
        figures_[Quantity::kMinGrey] = range.lowest.grey;
        figures_[Quantity::kMinColumn] = range.lowest.col;
        figures_[Quantity::kMinRow] = range.lowest.row;
        figures_[Quantity::kMaxGrey] = range.highest.grey;
        figures_[Quantity::kMaxColumn] = range.highest.col;
        figures_[Quantity::kMaxRow] = range.highest.row;
    }

    void Area() {
        const auto& scale = *header_.pelsPerMeter;
        const double squareMetres = 1.0 / (static_cast<double>(scale[0]) * static_cast<double>(scale[1]));
        figures_[Quantity::kAreaMm2] = *figures_[Quantity::kPels] * squareMetres * 1e6;
    }

    void Illuminance() {
        figures_[Quantity::kMeanLux] = static_cast<double>(*header_.luxPerGrey) * mean_;
        if (!header_.HasScale() || region_.shape != Shape::kRectangle) return;
        const auto& box = region_.box;
        double meanLux = 0.0;
        const double flux = tqCalcFluxInRegion(image_.Get(), box[0], box[1], box[2], box[3], &meanLux);
        figures_[Quantity::kFluxLm] = RequirePositive(flux, subject_, "its flux");
        figures_[Quantity::kMeanLux] = meanLux;
    }

    void Directions() {
        const Direction average = Average();
        figures_[Quantity::kAngle1] = average.angle1 * kDegrees;
        figures_[Quantity::kAngle2] = average.angle2 * kDegrees;
        figures_[Quantity::kOffAxis] = average.offAxis * kDegrees;
        // Without the photometric scale the directions are known, their intensities are not.
        if (!header_.luxPerGrey) return;
        const Direction peak = Peak();
        figures_[Quantity::kCandela] = average.candela;
        figures_[Quantity::kPeakCandela] = peak.candela;
        // Where nothing is lit no direction is the brightest.
        if (!(peak.candela > 0.0)) return;
        figures_[Quantity::kPeakAngle1] = peak.angle1 * kDegrees;
        figures_[Quantity::kPeakAngle2] = peak.angle2 * kDegrees;
        figures_[Quantity::kPeakOffAxis] = peak.offAxis * kDegrees;
    }

    Direction Average() {
        if (region_.shape == Shape::kPolygon) return PolygonAverage();
        return region_.shape == Shape::kEllipse ? EllipseAverage() : RectangleAverage();
    }
    Direction Peak() {
        if (region_.shape == Shape::kPolygon) return PolygonPeak();
        return region_.shape == Shape::kEllipse ? EllipsePeak() : RectanglePeak();
    }

    Direction Spot(std::int32_t col, std::int32_t row, std::int32_t width, std::int32_t height) const {
        Direction spot;
        Require(tqCalcCandela(image_.Get(), col, row, &spot.candela, &spot.angle1, &spot.angle2,
                              &spot.offAxis, width, height, options_.angleMode),
                subject_, "its intensity");
        return spot;
    }

    // The library's measuring spots are ellipses; the direction of the middle pel and the rectangle's own
    // mean illuminance give the rectangle's intensity: I = E R^2 / cos, with R = distance / cos.
    Direction RectangleAverage() const {
        const auto& box = region_.box;
        Direction average = Spot((box[0] + box[2]) / 2, (box[1] + box[3]) / 2, 1, 1);
        const double cosine = std::cos(average.offAxis);
        const double range = static_cast<double>(*header_.distance) / cosine;
        average.candela = figures_[Quantity::kMeanLux].value_or(0.0) * range * range / cosine;
        return average;
    }

    Direction RectanglePeak() const {
        const auto& box = region_.box;
        const auto [width, height] = options_.spot;
        // The search leaves a rectangle's last column and row to the blocks that would need them.
        if ((width > 1 || height > 1) && (width > box[2] - box[0] || height > box[3] - box[1])) {
            FailMeasurement(subject_, Format("a spot of %d x %d pels does not fit into it", width, height));
        }
        std::int32_t col = -1;
        std::int32_t row = -1;
        Direction peak;
        peak.candela = RequirePositive(tqFindMaxCandelaInRegion(image_.Get(), &col, &row, box[0], box[1],
                                                                box[2], box[3], 0, width, height),
                                       subject_, "the search for its brightest direction");
        if (col < 0) return peak;
        const double candela = peak.candela;
        peak = Spot(col, row, 1, 1);
        peak.candela = candela;
        return peak;
    }

    Direction EllipseAverage() const {
        const auto& box = region_.box;
        return Spot(box[0], box[1], box[2], box[3]);
    }

    Direction EllipsePeak() const {
        const auto& box = region_.box;
        Direction peak;
        Require(tqCalcMaxCandelaInEllipse(image_.Get(), box[0], box[1], &peak.candela, &peak.angle1,
                                          &peak.angle2, &peak.offAxis, box[2], box[3], options_.angleMode),
                subject_, "the search for its brightest direction");
        return peak;
    }

    Direction PolygonAverage() const {
        Direction average;
        Require(tqCalcPolyCandela(image_.Get(), query_.Vertices(), &average.candela, &average.angle1,
                                  &average.angle2, &average.offAxis, options_.angleMode),
                subject_, "its intensity");
        return average;
    }

    Direction PolygonPeak() const {
        Direction peak;
        Require(tqCalcMaxPolyCandela(image_.Get(), query_.Vertices(), &peak.candela, &peak.angle1,
                                     &peak.angle2, &peak.offAxis, options_.angleMode),
                subject_, "the search for its brightest direction");
        return peak;
    }

    const HostImage& image_;
    const PhotometricHeader& header_;
    const Region& region_;
    const MeasuringOptions& options_;
    std::string subject_;
    RegionQuery query_;
    double mean_ = 0.0;
    Figures figures_;
};

}  // namespace

std::vector<Measurement> MeasureRegions(const HostImage& image, const PhotometricHeader& header,
                                        const std::vector<Region>& regions, const MeasuringOptions& options,
                                        const Progress& progress) {
    const TqImageHeader size = image.Header();
    HostImage scratch(size.PelCols, size.PelRows);
    std::vector<Measurement> measurements;
    for (const Region& region : regions) {
        progress.Stage(Format("measuring %s (%zu of %zu)", region.name.c_str(), measurements.size() + 1,
                              regions.size()));
        measurements.push_back(
            {region, RegionMeasurement(image, header, region, options, scratch).Measure()});
    }
    return measurements;
}

std::array<const char*, 2> AngleNames(std::uint32_t mode) {
    switch (mode) {
        case 0:
            return {"horizontal, atan(x/D)", "vertical, atan(y/D)"};
        case 1:
            return {"horizontal, atan(x/D)", "elevation, asin(y/R)"};
        case 2:
            return {"azimuth, asin(x/R)", "vertical, atan(y/D)"};
        default:
            return {"azimuth about the axis", "polar, acos(D/R)"};
    }
}

}  // namespace cli
