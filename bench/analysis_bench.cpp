#include <opencv2/imgproc.hpp>

#include <map>
#include <string>

#include "contest.h"
#include "tqimage/centroid.h"
#include "tqimage/comparison.h"
#include "tqimage/line_detection.h"
#include "tqimage/moments.h"

namespace tqbench {
namespace {

using benchmark::DoNotOptimize;

/// The result of the last turn is handed in again: hosts keep their result image.
TqImage** Result() {
    static TqImage* result = nullptr;
    return &result;
}

/// A second image of the same size: the first one turned round, and without the zeros that have no relative
/// difference.
const NoiseImage& Another(const NoiseImage& image) {
    static std::map<int, NoiseImage> images;
    const auto found = images.find(image.Cols());
    if (found != images.end()) return found->second;
    const NoiseImage& other = images.try_emplace(image.Cols(), image.Cols(), image.Rows()).first->second;
    cv::Mat pels = other.Mat();
    cv::flip(pels, pels, -1);
    cv::max(pels, 1, pels);
    return other;
}

void RegisterImages() {
    Register({"compare_images",
              [](const NoiseImage& image) { tqCompareImages(Result(), Another(image).Get(), image.Get()); },
              [](const NoiseImage& image) {
                  cv::Mat reference, test, difference, pels;
                  Another(image).Mat().convertTo(reference, CV_64F, 0.01);
                  image.Mat().convertTo(test, CV_64F, 0.01);
                  cv::absdiff(test, reference, difference);
                  cv::divide(difference, reference, difference);
                  double min, max;
                  cv::minMaxLoc(difference, &min, &max);
                  difference.convertTo(pels, CV_16U, 64000.0 / max, 0.4999 - 0.5);
                  DoNotOptimize(pels.data);
              }});
    Register({"detect_line", [](const NoiseImage& image) { tqDetectLine(Result(), image.Get(), 2); },
              [](const NoiseImage& image) {
                  const cv::Mat mask = (cv::Mat_<float>(3, 3) << -1, -1, 2, -1, 2, -1, 2, -1, -1);
                  cv::Mat response, pels;
                  cv::filter2D(image.Mat(), response, CV_32F, mask);
                  cv::Mat(cv::abs(response)).convertTo(pels, CV_16U);
                  DoNotOptimize(pels.data);
              }});
    for (const int side : {3, 15}) {
        Register({"moment2/" + std::to_string(side),
                  [=](const NoiseImage& image) { tqCalcMoment(Result(), image.Get(), 2, side, side); },
                  [=](const NoiseImage& image) {  // E(v^2) - E(v)^2: another, looser formula
                      cv::Mat mean, square, pels;
                      cv::boxFilter(image.Mat(), mean, CV_32F, {side, side});
                      cv::sqrBoxFilter(image.Mat(), square, CV_32F, {side, side});
                      cv::Mat variance = square - mean.mul(mean);
                      double min, max;
                      cv::minMaxLoc(variance, &min, &max);
                      variance.convertTo(pels, CV_16U, 65000.0 / max);
                      DoNotOptimize(pels.data);
                  }});
    }
}

void RegisterCentroids() {
    Register({"centroid_in_region",
              [](const NoiseImage& image) {
                  double col = 0, row = 0;
                  tqFindCentroidInRegion(image.Get(), &col, &row, 20000, 0, 0, 9999, 9999);
                  DoNotOptimize(col + row);
              },
              [](const NoiseImage& image) {
                  cv::Mat lit;
                  cv::threshold(image.Mat(), lit, 20000, 0, cv::THRESH_TOZERO);
                  DoNotOptimize(cv::moments(lit).m10);
              },
              true});
    for (const int side : {3, 15, 51}) {
        Register({"centroid_of_blocks/" + std::to_string(side),
                  [=](const NoiseImage& image) {
                      double col = 0, row = 0;
                      tqFindCentroid(image.Get(), &col, &row, 30000.0, side, side);
                      DoNotOptimize(col + row);
                  },
                  [=](const NoiseImage& image) {
                      cv::Mat mean;
                      cv::boxFilter(image.Mat(), mean, CV_32F, {side, side});
                      cv::threshold(mean, mean, 30000, 0, cv::THRESH_TOZERO);
                      DoNotOptimize(cv::moments(mean).m10);
                  }});
    }
}

[[maybe_unused]] const bool kRegistered = (RegisterImages(), RegisterCentroids(), true);

}  // namespace
}  // namespace tqbench
