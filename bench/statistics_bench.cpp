#include <opencv2/imgproc.hpp>

#include <cstdint>
#include <string>
#include <vector>

#include "contest.h"
#include "tqimage/automation.h"
#include "tqimage/deviation.h"
#include "tqimage/gray_search.h"
#include "tqimage/histogram.h"
#include "tqimage/whole_image.h"

namespace tqbench {
namespace {

using benchmark::DoNotOptimize;

/// A copy that the functions which change an image may change, again and again; made once for each size.
TqImage* Scratch(const NoiseImage& image) {
    static TqImage* scratch = nullptr;
    static const TqImage* source = nullptr;
    if (source != image.Get()) tqGlobalCopy(&scratch, source = image.Get());
    return scratch;
}

/// The one-counter loop that a histogram is measured against.
void PlainHistogram(const cv::Mat& mat) {
    std::vector<std::uint32_t> counts(65536);
    const auto* pels = mat.ptr<std::uint16_t>();
    const std::size_t count = mat.total();
    std::uint32_t* const table = counts.data();
    for (std::size_t i = 0; i < count; ++i)
        ++table[pels[i]];
    DoNotOptimize(table);
}

void Histogram(const TqImage* image) {
    SAFEARRAY* array = nullptr;
    tqGetHistogram(image, &array);
    DoNotOptimize(array);
    SafeArrayDestroy(array);
}

void RegisterSums() {
    Register({"whole/sum",
              [](const NoiseImage& image) {
                  double mean;
                  DoNotOptimize(tqSumAllPels(image.Get(), &mean, 0));
              },
              [](const NoiseImage& image) { DoNotOptimize(cv::sum(image.Mat())); }, true});
    Register({"whole/sum_and_max",
              [](const NoiseImage& image) {
                  float largest;
                  DoNotOptimize(tqSumAllPels2(image.Get(), nullptr, &largest));
              },
              [](const NoiseImage& image) {
                  double largest;
                  DoNotOptimize(cv::sum(image.Mat()));
                  cv::minMaxLoc(image.Mat(), nullptr, &largest);
              },
              true});
    Register({"whole/max",
              [](const NoiseImage& image) {
                  float largest;
                  DoNotOptimize(tqGetMaxPelValue2(image.Get(), &largest));
              },
              [](const NoiseImage& image) {
                  double largest;
                  cv::minMaxLoc(image.Mat(), nullptr, &largest);
                  DoNotOptimize(largest);
              },
              true});
    Register({"whole/count_at_least",
              [](const NoiseImage& image) { DoNotOptimize(tqCountPixels(image.Get(), 30000)); },
              [](const NoiseImage& image) { DoNotOptimize(cv::countNonZero(image.Mat() >= 30000)); }, true});
    Register({"whole/standard_deviation",
              [](const NoiseImage& image) {
                  double mean;
                  DoNotOptimize(tqCalcStdDev(image.Get(), &mean));
              },
              [](const NoiseImage& image) {
                  cv::Scalar mean, deviation;
                  cv::meanStdDev(image.Mat(), mean, deviation);
                  DoNotOptimize(deviation);
              },
              true});
}

void RegisterHeader() {
    Register({"whole/largest_3x3",
              [](const NoiseImage& image) { DoNotOptimize(tqMaxAvgPels(Scratch(image))); },
              [](const NoiseImage& image) {
                  cv::Mat sums;
                  double largest;
                  cv::boxFilter(image.Mat(), sums, CV_32F, {3, 3}, {-1, -1}, false);
                  cv::minMaxLoc(sums, nullptr, &largest);
                  DoNotOptimize(largest);
              },
              true});
    Register({"whole/refresh",
              [](const NoiseImage& image) { DoNotOptimize(tqCalcImageValues(Scratch(image))); },
              [](const NoiseImage& image) {
                  double largest;
                  DoNotOptimize(cv::sum(image.Mat()));
                  cv::minMaxLoc(image.Mat(), nullptr, &largest);
              },
              true});
    Register({"whole/column_means", [](const NoiseImage& image) { tqColAverage(Scratch(image)); },
              [](const NoiseImage& image) {
                  cv::Mat means, line, out;
                  cv::reduce(image.Mat(), means, 0, cv::REDUCE_AVG, CV_32F);
                  means.convertTo(line, CV_16U);
                  cv::repeat(line, image.Rows(), 1, out);
              }});
    Register({"whole/row_means", [](const NoiseImage& image) { tqRowAverage(Scratch(image)); },
              [](const NoiseImage& image) {
                  cv::Mat means, line, out;
                  cv::reduce(image.Mat(), means, 1, cv::REDUCE_AVG, CV_32F);
                  means.convertTo(line, CV_16U);
                  cv::repeat(line, 1, image.Cols(), out);
              }});
}

void RegisterHistogram() {
    const auto calcHist = [](const NoiseImage& image) {
        const int channel = 0, bins = 65536;
        const float limits[] = {0, 65536};
        const float* ranges[] = {limits};
        cv::Mat counts;
        cv::calcHist(&image.Mat(), 1, &channel, cv::Mat(), counts, 1, &bins, ranges);
    };
    Register({"whole/histogram", [](const NoiseImage& image) { Histogram(image.Get()); }, calcHist});
    Register({"whole/histogram_of_noise_vs_plain_loop",
              [](const NoiseImage& image) { Histogram(image.Get()); },
              [](const NoiseImage& image) { PlainHistogram(image.Mat()); }});
    // A flat area, where a single counter waits for itself.
    const auto flat = [](const NoiseImage& image) {
        static TqImage* flatImage = nullptr;
        static const TqImage* source = nullptr;
        if (source != image.Get()) {
            tqGlobalCopy(&flatImage, source = image.Get());
            tqInitializeImagePels(flatImage, 40000);
        }
        return flatImage;
    };
    Register({"whole/histogram_of_flat_vs_plain_loop",
              [=](const NoiseImage& image) { Histogram(flat(image)); },
              [=](const NoiseImage& image) {
                  PlainHistogram(cv::Mat(image.Rows(), image.Cols(), CV_16UC1, PelsOf(flat(image))));
              }});
}

void RegisterSearches() {
    for (const int side : {3, 15, 51}) {
        const std::string block = std::to_string(side);
        const auto blurred = [=](const NoiseImage& image) {
            cv::Mat means;
            double largest;
            cv::blur(image.Mat(), means, {side, side});
            cv::minMaxLoc(means, nullptr, &largest);
            DoNotOptimize(largest);
        };
        Register({"gray_search/max/" + block,
                  [=](const NoiseImage& image) {
                      std::int32_t col, row;
                      DoNotOptimize(tqFindMaxGray(image.Get(), &col, &row, 0, side, side));
                  },
                  blurred});
        // The peer has no zero-aware mean; this is the usual way round: sums and counts, divided.
        Register({"gray_search/min_of_lit/" + block,
                  [=](const NoiseImage& image) {
                      std::int32_t col, row;
                      DoNotOptimize(tqFindMinGray0(image.Get(), &col, &row, 0, side, side));
                  },
                  [=](const NoiseImage& image) {
                      cv::Mat sums, counts, means;
                      double smallest;
                      cv::boxFilter(image.Mat(), sums, CV_32F, {side, side}, {-1, -1}, false);
                      const cv::Mat lit = (image.Mat() > 0) / 255;
                      cv::boxFilter(lit, counts, CV_32F, {side, side}, {-1, -1}, false);
                      cv::divide(sums, counts, means);
                      cv::minMaxLoc(means, &smallest, nullptr);
                      DoNotOptimize(smallest);
                  }});
    }
}

[[maybe_unused]] const bool kRegistered =
    (RegisterSums(), RegisterHeader(), RegisterHistogram(), RegisterSearches(), true);

}  // namespace
}  // namespace tqbench
