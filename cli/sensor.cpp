#include "sensor.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "failure.h"
#include "random.h"
#include "text.h"

namespace cli {
namespace {

constexpr double kFullScale = 65535.0;

std::uint16_t Quantise(double grey) {
    return static_cast<std::uint16_t>(std::clamp(std::floor(grey + 0.5), 0.0, kFullScale));
}

GreyImage Expose(const Scene& scene, const Sensor& sensor, const std::optional<RadialLens>& lens) {
    Random random(sensor.seed);
    GreyImage image = MakeGreyImage("simulate", scene.GetTarget().cols, scene.GetTarget().rows, 16);
    for (std::int32_t row = 0; row < image.rows; ++row) {
        for (std::int32_t col = 0; col < image.cols; ++col) {
            std::array<double, 2> place{static_cast<double>(col), static_cast<double>(row)};
            if (lens) place = lens->Corrected(place[0], place[1]);
            const double signal = scene.Illuminance(place[0], place[1]) / sensor.luxPerGrey;
            // Photons arrive one by one: the variance of their number is the number.
            const double variance = signal / sensor.electronsPerGrey + sensor.readNoise * sensor.readNoise;
            const double noise = random.Normal() * std::sqrt(variance);
            image.pels[image.Index(col, row)] = Quantise(sensor.darkLevel + signal + noise);
        }
    }
    return image;
}

GreyImage ExposeDark(const Target& target, const Sensor& sensor) {
    Random random(~sensor.seed);
    GreyImage dark = MakeGreyImage("simulate", target.cols, target.rows, 16);
    const double noise = sensor.readNoise / std::sqrt(static_cast<double>(sensor.darkFrames));
    for (std::uint16_t& pel : dark.pels)
        pel = Quantise(sensor.darkLevel + random.Normal() * noise);
    return dark;
}

/// Scatters defects that keep away from each other and from the border: each has the healthy neighbours that
/// a repair with a window of 3 x 3 needs.
class DefectScatter {
  public:
    DefectScatter(const Target& target, std::uint64_t seed) : random_(seed ^ 0x5555), target_(target) {}

    bool AddColumn() {
        return Try([&] {
            const std::int32_t col = 2 + random_.Below(target_.cols - 4);
            for (const Defect& other : defects_) {
                if (std::abs(other[1] - col) < kApart) return false;
            }
            defects_.push_back({kDefectColumn, col, 0, 0, 0});
            return true;
        });
    }
    bool AddPel() {
        return Try([&] {
            const std::int32_t col = 2 + random_.Below(target_.cols - 4);
            const std::int32_t row = 2 + random_.Below(target_.rows - 4);
            for (const Defect& other : defects_) {
                const bool sameRows = other[0] == kDefectColumn || std::abs(other[2] - row) < kApart;
                if (std::abs(other[1] - col) < kApart && sameRows) return false;
            }
            defects_.push_back({kDefectPel, col, row, 0, 0});
            return true;
        });
    }
    const std::vector<Defect>& Defects() const { return defects_; }

  private:
    static constexpr std::int32_t kApart = 4;

    template <typename Attempt>
    bool Try(Attempt attempt) {
        if (target_.cols < 8 || target_.rows < 8) return false;
        // An image that is still mostly free gives a place within a few tries.
        for (int count = 0; count < 1000; ++count) {
            if (attempt()) return true;
        }
        return false;
    }

    Random random_;
    Target target_;
    std::vector<Defect> defects_;
};

void Damage(GreyImage& image, const std::vector<Defect>& defects) {
    for (const Defect& defect : defects) {
        if (defect[0] == kDefectPel) {
            image.pels[image.Index(defect[1], defect[2])] = static_cast<std::uint16_t>(kFullScale);
            continue;
        }
        for (std::int32_t row = 0; row < image.rows; ++row)
            image.pels[image.Index(defect[1], row)] = 0;
    }
}

}  // namespace

double Sensor::PelVariance(double grey) const {
    // Rounding to whole numbers adds 1/12 each for the image and the dark image.
    return grey / electronsPerGrey + readNoise * readNoise * (1.0 + 1.0 / darkFrames) + 2.0 / 12.0;
}

Capture TakeCapture(const Scene& scene, const Sensor& sensor, const std::optional<RadialLens>& lens) {
    DefectScatter scatter(scene.GetTarget(), sensor.seed);
    bool placed = true;
    for (std::int32_t count = 0; count < sensor.deadColumns; ++count)
        placed = placed && scatter.AddColumn();
    for (std::int32_t count = 0; count < sensor.hotPixels; ++count)
        placed = placed && scatter.AddPel();
    if (!placed) FailUsage("the image has no room for so many defects that keep apart");

    Capture capture{Expose(scene, sensor, lens), ExposeDark(scene.GetTarget(), sensor), scatter.Defects()};
    Damage(capture.image, capture.defects);
    Damage(capture.dark, capture.defects);
    return capture;
}

}  // namespace cli
