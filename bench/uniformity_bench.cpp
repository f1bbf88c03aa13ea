#include "tqimage/uniformity.h"

#include <opencv2/imgproc.hpp>

#include "contest.h"
#include "tqimage/image.h"

namespace tqbench {
namespace {

using benchmark::DoNotOptimize;

/// Blemishes of both signs, found by the peer one sign at a time. A blemish of its own is a pel that a
/// threshold near the ends of the range leaves; at a low threshold the noise is a maze.
void RegisterSemu(const char* name, std::int32_t threshold) {
    Register({name,
              [threshold](const NoiseImage& image) {
                  DoNotOptimize(tqCalcSemu(image.Get(), threshold, nullptr, nullptr));
              },
              [threshold](const NoiseImage& image) {
                  for (const bool bright : {false, true}) {
                      const cv::Mat mask = bright ? cv::Mat(image.Mat() >= 32000 + threshold)
                                                  : cv::Mat(image.Mat() <= 32000 - threshold);
                      cv::Mat labels, stats, centroids;
                      DoNotOptimize(cv::connectedComponentsWithStats(mask, labels, stats, centroids));
                  }
              },
              true});
}

void RegisterMura() {
    Register({"mura/total",
              [](const NoiseImage& image) {
                  std::int32_t count;
                  DoNotOptimize(tqGetTotalMuraInRegion(image.Get(), &count, 0, 0, 0, 0, 0));
              },
              [](const NoiseImage& image) {
                  cv::Mat signal;
                  cv::absdiff(image.Mat(), cv::Scalar(32000), signal);
                  DoNotOptimize(cv::sum(signal));
              },
              true});
    Register({"mura/root_mean_square",
              [](const NoiseImage& image) {
                  std::int32_t count;
                  DoNotOptimize(tqGetRMSMuraInRegion(image.Get(), &count, 0, 0, 0, 0, 0));
              },
              [](const NoiseImage& image) {
                  cv::Mat signal;
                  cv::absdiff(image.Mat(), cv::Scalar(32000), signal);
                  DoNotOptimize(cv::norm(signal, cv::NORM_L2SQR) / cv::countNonZero(signal));
              },
              true});
}

void RegisterWholeImage() {
    Register({"ansi/lumens",
              [](const NoiseImage& image) { DoNotOptimize(tqCalcANSILumens(image.Get(), 1, 15, 15)); },
              [](const NoiseImage& image) { DoNotOptimize(cv::countNonZero(image.Mat())); }, true});
    Register({"contrast/map",
              [](const NoiseImage& image) {
                  static TqImage* map = nullptr;
                  DoNotOptimize(tqCalcAbsContrast(&map, image.Get()));
                  tqImageFree(&map);
              },
              [](const NoiseImage& image) {
                  const double mean = cv::mean(image.Mat())[0];
                  cv::Mat values, contrast, map;
                  image.Mat().convertTo(values, CV_32F);
                  cv::divide(cv::abs(values - mean), values + mean, contrast);
                  double strongest;
                  cv::minMaxLoc(contrast, nullptr, &strongest);
                  contrast.convertTo(map, CV_16U, 65535 / strongest);
                  DoNotOptimize(map.data);
              }});
    Register({"lamp/clip_range_of_the_dark",
              [](const NoiseImage& image) {
                  std::int32_t left, top, right, bottom;
                  DoNotOptimize(tqCalcLampClipRange(image.Get(), 65535, &left, &top, &right, &bottom));
              },
              nullptr, true});
}

[[maybe_unused]] const bool kRegistered = (RegisterMura(), RegisterSemu("semu/maze", 1000),
                                           RegisterSemu("semu/specks", 31000), RegisterWholeImage(), true);

}  // namespace
}  // namespace tqbench
