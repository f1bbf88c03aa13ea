#include "truth.h"

#include <algorithm>
#include <cmath>

#include "failure.h"
#include "region_samples.h"

namespace cli {
namespace {

/// The pel whose direction a region's intensity is given for: middles and means are truncated to pels.
std::array<std::int64_t, 2> ReferencePel(const Region& region) {
    const auto& box = region.box;
    if (region.shape == Shape::kEllipse) return {box[0], box[1]};
    if (region.shape == Shape::kRectangle) return {(box[0] + box[2]) / 2, (box[1] + box[3]) / 2};
    std::int64_t col = 0;
    std::int64_t row = 0;
    for (const auto& vertex : region.vertices) {
        col += vertex[0];
        row += vertex[1];
    }
    const auto count = static_cast<std::int64_t>(region.vertices.size());
    return {col / count, row / count};
}

double MeanLux(const Scene& scene, const std::function<void(const Visit&)>& sample, double* area = nullptr) {
    double lux = 0.0;
    double pels = 0.0;
    sample([&](const Sample& place) {
        lux += scene.Illuminance(place.col, place.row) * place.area;
        pels += place.area;
    });
    if (area) *area = pels;
    return pels > 0.0 ? lux / pels : 0.0;
}

/// The brightest place that a spot reaches whose block stays inside the region: a single pel but in
/// rectangles.
Sample BrightestPlace(const Scene& scene, const Region& region, std::array<std::int32_t, 2> spot) {
    Region search = region;
    if (region.shape == Shape::kRectangle) {
        search.box[0] += spot[0] / 2;
        search.box[1] += spot[1] / 2;
        search.box[2] = std::max(search.box[0], search.box[2] - (spot[0] - 1 - spot[0] / 2));
        search.box[3] = std::max(search.box[1], search.box[3] - (spot[1] - 1 - spot[1] / 2));
    }
    double best = -1.0;
    Sample at{};
    SampleRegion(search, 0.0, [&](const Sample& place) {
        const double intensity = scene.Intensity(place.col, place.row);
        if (intensity <= best) return;
        best = intensity;
        at = place;
    });
    return at;
}

double SpotLux(const Scene& scene, const Sample& at, std::array<std::int32_t, 2> spot) {
    const double across = 0.5 * (spot[0] - 1);
    const double down = 0.5 * (spot[1] - 1);
    return MeanLux(scene, [&](const Visit& visit) {
        SampleRectangle({at.col - across, at.row - down, at.col + across, at.row + down}, visit);
    });
}

/// Percent of a mean over so many pels that its noise may reach: `deviations` standard deviations, and one
/// grey level for what the corrections round away (interpolation and repair drop fractions, the dark image
/// is whole numbers).
double TolerancePercent(const Sensor& sensor, double lux, double pels, double deviations) {
    const double grey = lux / sensor.luxPerGrey;
    const double noise = std::sqrt(sensor.PelVariance(grey) / std::max(pels, 1.0));
    return 100.0 * (deviations * noise + 1.0) / grey;
}

/// An intensity with its tolerance. A measuring spot takes the mean of its extent for the light of its
/// middle: the difference belongs to the method and widens the tolerance.
Json ExpectIntensity(const Scene& scene, double col, double row, double spotLux, double noisePercent) {
    const double candela = scene.Intensity(col, row);
    const double read = scene.IntensityOf(spotLux, col, row);
    return {{"value", candela}, {"tolerancePercent", noisePercent + 100.0 * std::fabs(read / candela - 1.0)}};
}

// Where the extent of a region moves its intensity by more than this, the mean does not stand for the middle
// and no intensity is stated.
constexpr double kLargestExtentPercent = 1.0;

}  // namespace

Json RegionTruth(const Scene& scene, const Sensor& sensor, const Region& region,
                 std::array<std::int32_t, 2> spot) {
    double pels = 0.0;
    const double lux = MeanLux(
        scene, [&](const Visit& visit) { SampleRegion(region, 0.0, visit); }, &pels);
    // Pels are in or out as a whole: half of one all round is open.
    const double wider = MeanLux(scene, [&](const Visit& visit) { SampleRegion(region, 0.5, visit); });
    if (!(lux > 0.0)) FailMeasurement("region " + region.name, "the lamp does not light it");
    if (region.shape != Shape::kRectangle) spot = {1, 1};
    // Five standard deviations: one true measurement in two million falls outside.
    const double mean = TolerancePercent(sensor, lux, pels, 5.0) + 100.0 * std::fabs(wider / lux - 1.0);
    // The largest of some ten thousand spots is itself about four deviations out; two more are the margin.
    const double peak = TolerancePercent(sensor, lux, static_cast<double>(spot[0]) * spot[1], 6.0);

    Json expect = Json::object();
    expect["meanLux"] = {{"value", lux}, {"tolerancePercent", mean}};
    if (region.shape == Shape::kRectangle) {
        expect["fluxLm"] = {{"value", lux * pels * scene.SquareMetresPerPel()}, {"tolerancePercent", mean}};
    }
    const auto [col, row] = ReferencePel(region);
    Json candela = ExpectIntensity(scene, static_cast<double>(col), static_cast<double>(row), lux, mean);
    if (candela["tolerancePercent"] < kLargestExtentPercent) expect["candela"] = std::move(candela);
    const Sample at = BrightestPlace(scene, region, spot);
    expect["peakCandela"] = ExpectIntensity(scene, at.col, at.row, SpotLux(scene, at, spot), peak);
    return {{"name", region.name}, {"region", region.text}, {"expect", std::move(expect)}};
}

}  // namespace cli
