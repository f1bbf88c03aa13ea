#include <opencv2/imgproc.hpp>

#include <utility>
#include <vector>

#include "automation_host.h"
#include "contest.h"
#include "tqimage/pel_block.h"
#include "tqimage/region_ellipse.h"
#include "tqimage/region_polygon.h"
#include "tqimage/region_rectangle.h"

namespace tqbench {
namespace {

using benchmark::DoNotOptimize;

/// A seven-sided polygon that fills about half of the image.
std::vector<std::pair<std::int32_t, std::int32_t>> PolygonOf(const NoiseImage& image) {
    std::vector<std::pair<std::int32_t, std::int32_t>> vertices;
    for (const auto& [x, y] : {std::pair{0.05, 0.4},
                               {0.3, 0.05},
                               {0.55, 0.2},
                               {0.95, 0.1},
                               {0.8, 0.6},
                               {0.9, 0.95},
                               {0.2, 0.85}}) {
        vertices.emplace_back(static_cast<int>(x * image.Cols()), static_cast<int>(y * image.Rows()));
    }
    return vertices;
}

cv::Mat PolygonMask(const NoiseImage& image) {
    cv::Mat mask(image.Rows(), image.Cols(), CV_8UC1, cv::Scalar(0));
    std::vector<cv::Point> points;
    for (const auto& [col, row] : PolygonOf(image))
        points.emplace_back(col, row);
    cv::fillPoly(mask, std::vector<std::vector<cv::Point>>{points}, cv::Scalar(255));
    return mask;
}

cv::Mat EllipseMask(const NoiseImage& image) {
    cv::Mat mask(image.Rows(), image.Cols(), CV_8UC1, cv::Scalar(0));
    cv::ellipse(mask, {image.Cols() / 2, image.Rows() / 2}, {image.Cols() * 2 / 5, image.Rows() * 2 / 5}, 0,
                0, 360, cv::Scalar(255), cv::FILLED);
    return mask;
}

void RegisterRectangle() {
    Register({"rectangle/total",
              [](const NoiseImage& image) {
                  std::int32_t count;
                  DoNotOptimize(tqGetTotalPelValueInRegion(image.Get(), &count, 0, 0, 0, 0, 0));
              },
              [](const NoiseImage& image) { DoNotOptimize(cv::sum(image.Mat())); }, true});
    Register({"rectangle/total_from_threshold",
              [](const NoiseImage& image) {
                  std::int32_t count;
                  DoNotOptimize(tqGetTotalPelValueInRegion(image.Get(), &count, 0, 0, 0, 0, 30000));
              },
              [](const NoiseImage& image) {
                  const cv::Mat mask = image.Mat() >= 30000;
                  DoNotOptimize(cv::mean(image.Mat(), mask)[0] * cv::countNonZero(mask));
              },
              true});
    Register({"rectangle/extremes",
              [](const NoiseImage& image) {
                  std::int32_t min, max;
                  DoNotOptimize(tqGetMinMaxPelValueInRegion(image.Get(), &min, &max, 0, 0, 0, 0));
              },
              [](const NoiseImage& image) {
                  double min, max;
                  cv::minMaxLoc(image.Mat(), &min, &max);
              },
              true});
    Register({"rectangle/all_totals",
              [](const NoiseImage& image) {
                  std::int32_t min, max, count, lit;
                  float mean;
                  double total, squares;
                  DoNotOptimize(tqGetTotalPelValuesInRegion(image.Get(), &min, &max, &mean, &count, &total,
                                                            &squares, &lit, 0, 0, 0, 0));
              },
              [](const NoiseImage& image) {
                  cv::Scalar mean, deviation;
                  double min, max;
                  cv::meanStdDev(image.Mat(), mean, deviation);
                  cv::minMaxLoc(image.Mat(), &min, &max);
                  DoNotOptimize(cv::countNonZero(image.Mat()));
              },
              true});
}

void RegisterEllipse() {
    const auto ellipse = [](auto function) {
        return [=](const NoiseImage& image) {
            DoNotOptimize(function(image.Get(), image.Cols() / 2, image.Rows() / 2, image.Cols() * 4 / 5,
                                   image.Rows() * 4 / 5));
        };
    };
    Register({"ellipse/mean", ellipse(tqGetPelBlockAvgEllipse),
              [](const NoiseImage& image) { DoNotOptimize(cv::mean(image.Mat(), EllipseMask(image))); }});
    Register({"ellipse/max", ellipse(tqGetMaxPelValueInEllipse), [](const NoiseImage& image) {
                  double min, max;
                  cv::minMaxLoc(image.Mat(), &min, &max, nullptr, nullptr, EllipseMask(image));
              }});
    Register({"ellipse/area", ellipse(tqCalcAreaInEllipse),
              [](const NoiseImage& image) { DoNotOptimize(cv::countNonZero(EllipseMask(image))); }});
}

void RegisterPolygon() {
    Register({"polygon/mean",
              [](const NoiseImage& image) {
                  auto vertices = tqtest::MakeVertices(PolygonOf(image));
                  DoNotOptimize(tqGetPelBlockAvgPoly(image.Get(), vertices.Address()));
              },
              [](const NoiseImage& image) { DoNotOptimize(cv::mean(image.Mat(), PolygonMask(image))); }});
    Register({"polygon/max",
              [](const NoiseImage& image) {
                  auto vertices = tqtest::MakeVertices(PolygonOf(image));
                  DoNotOptimize(tqGetMaxPelValueInPoly(image.Get(), vertices.Address()));
              },
              [](const NoiseImage& image) {
                  double min, max;
                  cv::minMaxLoc(image.Mat(), &min, &max, nullptr, nullptr, PolygonMask(image));
              }});
    Register({"polygon/total_from_threshold",
              [](const NoiseImage& image) {
                  auto vertices = tqtest::MakeVertices(PolygonOf(image));
                  std::int32_t count;
                  DoNotOptimize(tqGetTotalPelValueInPoly(image.Get(), &count, vertices.Address(), 30000));
              },
              [](const NoiseImage& image) {
                  const cv::Mat mask = PolygonMask(image) & (image.Mat() >= 30000);
                  DoNotOptimize(cv::mean(image.Mat(), mask)[0] * cv::countNonZero(mask));
              }});
}

void RegisterCounts() {
    for (const int side : {3, 15, 51}) {
        const std::string block = std::to_string(side);
        Register({"count_blocks/" + block,
                  [=](const NoiseImage& image) {
                      std::uint32_t count;
                      tqCountAllPelBlocks(image.Get(), &count, 32768.0, side, side);
                      DoNotOptimize(count);
                  },
                  [=](const NoiseImage& image) {
                      static cv::Mat means, mask;
                      cv::blur(image.Mat(), means, {side, side});
                      cv::compare(means, 32768, mask, cv::CMP_GE);
                      DoNotOptimize(cv::countNonZero(mask));
                  }});
        Register({"count_ellipses/" + block,
                  [=](const NoiseImage& image) {
                      std::uint32_t count;
                      tqCountAllPelBlocksEllipse(image.Get(), &count, 32768.0, side, side);
                      DoNotOptimize(count);
                  },
                  // The peer turns to Fourier transforms for large kernels: its cost stays bounded, too.
                  [=](const NoiseImage& image) {
                      static cv::Mat means, mask;
                      cv::Mat kernel = cv::getStructuringElement(cv::MORPH_ELLIPSE, {side, side});
                      kernel.convertTo(kernel, CV_32F, 1.0 / cv::countNonZero(kernel));
                      cv::filter2D(image.Mat(), means, CV_32F, kernel);
                      cv::compare(means, 32768, mask, cv::CMP_GE);
                      DoNotOptimize(cv::countNonZero(mask));
                  }});
    }
}

[[maybe_unused]] const bool kRegistered =
    (RegisterRectangle(), RegisterEllipse(), RegisterPolygon(), RegisterCounts(), true);

}  // namespace
}  // namespace tqbench
