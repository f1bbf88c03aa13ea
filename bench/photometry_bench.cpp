#include <opencv2/imgproc.hpp>

#include <cmath>
#include <map>

#include "contest.h"
#include "tqimage/automation.h"
#include "tqimage/exchange.h"
#include "tqimage/photometry.h"
#include "tqimage/region_rectangle.h"

namespace tqbench {
namespace {

using benchmark::DoNotOptimize;

/// R^2 / cos(theta) for every pel, prepared outside the clock: the peer gets the geometry for nothing.
const cv::Mat& Geometry(const NoiseImage& image) {
    static std::map<int, cv::Mat> maps;
    cv::Mat& map = maps[image.Cols()];
    if (!map.empty()) return map;
    map.create(image.Rows(), image.Cols(), CV_32FC1);
    for (int row = 0; row < map.rows; ++row) {
        for (int col = 0; col < map.cols; ++col) {
            const double x = (col - (map.cols - 1) * 0.5) / 2000.0, y = (row - (map.rows - 1) * 0.5) / 2000.0;
            const double range = std::sqrt(x * x + y * y + 9.0);
            map.at<float>(row, col) = static_cast<float>(range * range * range / 3.0);
        }
    }
    return map;
}

/// Block means weighted with the geometry. The buffers stay, so that the peer pays for no fresh memory.
const cv::Mat& PeerIntensities(const NoiseImage& image, int side) {
    static cv::Mat means, weighted;
    cv::boxFilter(image.Mat(), means, CV_32F, {side, side});
    cv::multiply(means, Geometry(image), weighted);
    return weighted;
}

void PeerSearch(const NoiseImage& image, int side) {
    double max;
    cv::Point at;
    cv::minMaxLoc(PeerIntensities(image, side), nullptr, &max, nullptr, &at);
    DoNotOptimize(at);
}

void RegisterSearches() {
    for (const int side : {1, 3, 15, 51}) {
        const std::string block = std::to_string(side);
        const auto peer = [=](const NoiseImage& image) { PeerSearch(image, side); };
        Register({"max_candela/" + block,
                  [=](const NoiseImage& image) {
                      std::int32_t col, row;
                      DoNotOptimize(tqCalcMaxCandela(image.Get(), &col, &row, side, side));
                  },
                  peer});
        Register({"avg_candela/" + block,
                  [=](const NoiseImage& image) {
                      double average;
                      DoNotOptimize(tqCalcAvgCandela(image.Get(), &average, side, side));
                  },
                  [=](const NoiseImage& image) { DoNotOptimize(cv::mean(PeerIntensities(image, side))); }});
        Register({"find_max_candela/" + block,
                  [=](const NoiseImage& image) {
                      std::int32_t col, row;
                      DoNotOptimize(tqFindMaxCandelaInRegion(image.Get(), &col, &row, 0, 0, image.Cols() - 1,
                                                             image.Rows() - 1, 0, side, side));
                  },
                  peer});
        Register({"find_extremes/" + block,
                  [=](const NoiseImage& image) {
                      double min, max;
                      std::int32_t minCol, minRow, maxCol, maxRow;
                      DoNotOptimize(tqFindMinMaxInRegion(image.Get(), &min, &max, &minCol, &minRow, &maxCol,
                                                         &maxRow, 0, 0, 0, 0, 0, side, side));
                  },
                  [=](const NoiseImage& image) {
                      static cv::Mat means;
                      cv::boxFilter(image.Mat(), means, CV_64F, {side, side});
                      double min, max;
                      cv::minMaxLoc(means, &min, &max);
                  }});
    }
}

void RegisterArrays() {
    for (const int side : {3, 15, 51}) {
        Register({"pixel_array/" + std::to_string(side),
                  [=](const NoiseImage& image) {
                      SAFEARRAY* array = nullptr;
                      tqGetPixelArray(image.Get(), 0, side, side, &array);
                      SafeArrayDestroy(array);
                  },
                  [=](const NoiseImage& image) {
                      cv::Mat means;
                      cv::boxFilter(image.Mat(), means, CV_64F, {side, side});
                      DoNotOptimize(means.data);
                  }});
    }
}

[[maybe_unused]] const bool kRegistered = (RegisterSearches(), RegisterArrays(), true);

}  // namespace
}  // namespace tqbench
