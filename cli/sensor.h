#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "defect_csv.h"
#include "image_file.h"
#include "radial_lens.h"
#include "scene.h"

namespace cli {

/// How the simulated camera turns illuminance into pels.
struct Sensor {
    double luxPerGrey = 0.0;
    double darkLevel = 200.0;       ///< grey of a pel without light
    double electronsPerGrey = 1.0;  ///< sets the shot noise
    double readNoise = 2.0;         ///< grey, standard deviation
    std::int32_t darkFrames = 16;   ///< exposures averaged into the dark image
    std::int32_t hotPixels = 0;     ///< stuck at full scale
    std::int32_t deadColumns = 0;   ///< stuck at 0
    std::uint64_t seed = 1;

    /// Variance of one pel of the dark-subtracted image that holds this much signal, grey squared.
    double PelVariance(double grey) const;
};

/// What a session with the camera leaves behind.
struct Capture {
    GreyImage image;
    GreyImage dark;
    std::vector<Defect> defects;  ///< columns first: their repair must not read an unrepaired pel's neighbour
};

/// Takes the picture, through the lens when there is one.
Capture TakeCapture(const Scene& scene, const Sensor& sensor, const std::optional<RadialLens>& lens);

}  // namespace cli
