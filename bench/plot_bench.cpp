#include "tqimage/plots.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <numbers>

#include "contest.h"

namespace tqbench {
namespace {

using benchmark::DoNotOptimize;

/// Polar plots have the size of the image, discs its shorter side.
std::int32_t Diameter(const NoiseImage& image) {
    return std::min(image.Cols(), image.Rows());
}

cv::Point2f MiddleOf(std::int32_t cols, std::int32_t rows) {
    return {static_cast<float>(cols) * 0.5f, static_cast<float>(rows) * 0.5f};
}

/// The angle at which an f-theta lens reaches the nearer border, degrees.
float AngleOf(const NoiseImage& image) {
    TqImageHeader header{};
    tqGetImageInfo(&header, image.Get());
    const float radius = static_cast<float>(Diameter(image) - 1) * 0.5f / header.PelsPerMeterX;
    return radius / header.SourceDistance * 180.0f / std::numbers::pi_v<float>;
}

void RegisterPolar(const char* name, std::int32_t quantity) {
    Register({name,
              [quantity](const NoiseImage& image) {
                  static TqImage* polar = nullptr;
                  DoNotOptimize(tqCreatePolarImage(&polar, image.Get(), image.Cols(), image.Rows(),
                                                   AngleOf(image), 1, quantity));
                  tqImageFree(&polar);
              },
              [](const NoiseImage& image) {
                  // The peer's rows are the azimuths.
                  cv::Mat polar;
                  cv::warpPolar(image.Mat(), polar, cv::Size(image.Rows(), image.Cols()),
                                MiddleOf(image.Cols(), image.Rows()), Diameter(image) * 0.5,
                                static_cast<int>(cv::INTER_LINEAR) | cv::WARP_POLAR_LINEAR);
                  DoNotOptimize(polar.data);
              }});
}

template <class Create>
void RegisterRadar(const char* name, Create create, int interpolation) {
    Register({name,
              [create](const NoiseImage& image) {
                  static TqImage* radar = nullptr;
                  DoNotOptimize(create(&radar, image.Get(), Diameter(image)));
                  tqImageFree(&radar);
              },
              [interpolation](const NoiseImage& image) {
                  const std::int32_t size = Diameter(image);
                  cv::Mat radar;
                  cv::warpPolar(image.Mat(), radar, cv::Size(size, size), MiddleOf(size, size), size * 0.5,
                                interpolation | cv::WARP_POLAR_LINEAR | cv::WARP_INVERSE_MAP);
                  DoNotOptimize(radar.data);
              }});
}

[[maybe_unused]] const bool kRegistered =
    (RegisterPolar("polar/grey", 0), RegisterPolar("polar/intensity", 1),
     RegisterRadar("radar/mean", tqCreateRadarPlot, cv::INTER_LINEAR),
     RegisterRadar("radar/nearest", tqCreateRadarPlotNoInterp, cv::INTER_NEAREST), true);

}  // namespace
}  // namespace tqbench
