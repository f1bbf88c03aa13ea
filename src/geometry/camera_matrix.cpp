#include "geometry/camera_matrix.h"

#include <cstddef>

#include "geometry/linear_system.h"

namespace tq {
namespace {

constexpr std::size_t kUnknowns = 11;
using Equation = std::array<double, kUnknowns>;

/// Normal equations of a least-squares problem.
class NormalEquations {
  public:
    void Add(const Equation& equation, double value) noexcept {
        for (std::size_t i = 0; i < kUnknowns; ++i) {
            for (std::size_t j = 0; j < kUnknowns; ++j)
                system_[i][j] += equation[i] * equation[j];
            system_[i][kUnknowns] += equation[i] * value;
        }
    }
    bool Solve(Equation& unknowns) noexcept { return tq::Solve(system_, unknowns); }

  private:
    LinearSystem<kUnknowns> system_{};
};

/// One step from `camera`: with weights of 1 and no camera the direct linear transformation, with the weights
/// of the last camera the step of Gauss and Newton, for which `camera` is where the places are compared.
bool Step(std::span<const Sighting> sightings, const Normalisation& scaling, CameraMatrix& camera,
          bool first) noexcept {
    NormalEquations equations;
    for (const Sighting& s : sightings) {
        const auto [u, v] = scaling(s.seen);
        const auto& [x, y, z] = s.point;
        const double weight = first ? 1.0 : CameraRow(camera, 2, s.point, 1.0);
        const double col = first ? u : CameraRow(camera, 0, s.point, 1.0) / weight;
        const double row = first ? v : CameraRow(camera, 1, s.point, 1.0) / weight;
        const double a = 1.0 / weight;
        // The last coefficient is 1: the origin lies between the points, so before the camera.
        equations.Add({a * x, a * y, a * z, a, 0, 0, 0, 0, -col * a * x, -col * a * y, -col * a * z},
                      first ? u : u - col);
        equations.Add({0, 0, 0, 0, a * x, a * y, a * z, a, -row * a * x, -row * a * y, -row * a * z},
                      first ? v : v - row);
    }
    Equation unknowns{};
    if (!equations.Solve(unknowns)) return false;
    for (std::size_t i = 0; i < kUnknowns; ++i)
        camera[i] = first ? unknowns[i] : camera[i] + unknowns[i];
    camera[kUnknowns] = 1.0;
    for (const Sighting& s : sightings) {
        if (!(CameraRow(camera, 2, s.point, 1.0) > 0.0)) return false;
    }
    return true;
}

}  // namespace

double CameraRow(const CameraMatrix& camera, std::size_t row, const std::array<double, 3>& point,
                 double w) noexcept {
    const double* m = &camera[4 * row];
    return m[0] * point[0] + m[1] * point[1] + m[2] * point[2] + m[3] * w;
}

std::optional<CameraMatrix> Resect(std::span<const Sighting> sightings) noexcept {
    const Normalisation scaling(sightings, &Sighting::seen);
    CameraMatrix camera{};
    // Twelve equations for eleven unknowns: the direct solution is so near that a few steps are plenty.
    constexpr int kSteps = 8;
    for (int step = 0; step <= kSteps; ++step) {
        if (!Step(sightings, scaling, camera, step == 0)) return std::nullopt;
    }
    for (std::size_t i = 0; i < 4; ++i) {
        camera[i] = camera[i] / scaling.scale + scaling.col * camera[8 + i];
        camera[4 + i] = camera[4 + i] / scaling.scale + scaling.row * camera[8 + i];
    }
    return camera;
}

}  // namespace tq
