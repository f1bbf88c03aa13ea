#include <opencv2/imgproc.hpp>

#include <string>

#include "contest.h"
#include "tqimage/clustering.h"
#include "tqimage/filters.h"
#include "tqimage/gradients.h"
#include "tqimage/local_contrast.h"

namespace tqbench {
namespace {

/// A host's image for a filter to replace: the contest's noise, copied anew for every turn.
class Host {
  public:
    TqImage** Of(const NoiseImage& image) {
        if (block_ != nullptr) tqImageFree(&block_);
        block_ = nullptr;
        tqGlobalCopy(&block_, image.Get());
        return &block_;
    }

  private:
    TqImage* block_ = nullptr;
};

/// The copy is in the time of both, and so are two new blocks.
template <class Filter>
std::function<void(const NoiseImage&)> Ours(Filter filter) {
    return [=](const NoiseImage& image) {
        static Host host;
        benchmark::DoNotOptimize(filter(host.Of(image)));
    };
}

template <class Filter>
std::function<void(const NoiseImage&)> Peer(Filter filter) {
    return [=](const NoiseImage& image) {
        const cv::Mat copy = image.Mat().clone();
        cv::Mat out;
        filter(copy, out);
        benchmark::DoNotOptimize(out.data);
    };
}

void RegisterMedians() {
    for (const int size : {3, 5}) {
        Register({"median/" + std::to_string(size),
                  Ours([=](TqImage** image) { return tqMedianFilter(image, size); }),
                  Peer([=](const cv::Mat& in, cv::Mat& out) { cv::medianBlur(in, out, size); })});
    }
    // The peer has no larger median of 16 bits.
    for (const int size : {7, 15, 31, 51}) {
        Register({"median/" + std::to_string(size),
                  Ours([=](TqImage** image) { return tqMedianFilter(image, size); }),
                  {}});
    }
}

void RegisterMeans() {
    for (const int size : {3, 15, 51}) {
        Register({"average/" + std::to_string(size),
                  Ours([=](TqImage** image) { return tqNeighborhoodAverage(image, size, size); }),
                  Peer([=](const cv::Mat& in, cv::Mat& out) {
                      cv::blur(in, out, {size, size});
                  })});
        Register({"average_lit/" + std::to_string(size),
                  Ours([=](TqImage** image) { return tqNeighborhoodAverage0(image, size, size); }),
                  Peer([=](const cv::Mat& in, cv::Mat& out) {
                      static cv::Mat sums, numbers, lit;
                      lit = in > 0;
                      cv::boxFilter(in, sums, CV_32F, {size, size}, {-1, -1}, false);
                      cv::boxFilter(lit, numbers, CV_32F, {size, size}, {-1, -1}, false);
                      cv::divide(sums, numbers, out, 255.0, CV_16U);
                  })});
    }
    Register({"smooth", Ours([](TqImage** image) { return tqSmoothImage(image, 1); }),
              Peer([](const cv::Mat& in, cv::Mat& out) {
                  cv::blur(in, out, {3, 3});
              })});
    Register({"smooth_lit", Ours([](TqImage** image) { return tqSmoothImage0(image, 1); }), {}});
}

void RegisterDeviations() {
    for (const int size : {9, 51}) {
        Register({"local_deviation/" + std::to_string(size),
                  Ours([=](TqImage** image) { return tqCalcLocalStdDev(image, size, size); }),
                  Peer([=](const cv::Mat& in, cv::Mat& out) {
                      static cv::Mat means, squares;
                      cv::boxFilter(in, means, CV_64F, {size, size});
                      cv::sqrBoxFilter(in, squares, CV_64F, {size, size});
                      squares -= means.mul(means);
                      cv::sqrt(cv::max(squares, 0.0), squares);
                      cv::normalize(squares, out, 0, 65000, cv::NORM_MINMAX, CV_16U);
                  })});
    }
}

void RegisterConvolutions() {
    Register({"sharpen", Ours([](TqImage** image) { return tqSharpenImage(image, 2.0f); }),
              Peer([](const cv::Mat& in, cv::Mat& out) {
                  cv::Mat kernel(3, 3, CV_32F, cv::Scalar(-1.0 / 9.0));
                  kernel.at<float>(1, 1) = 17.0f / 9.0f;
                  cv::filter2D(in, out, CV_16U, kernel);
              })});
    Register({"low_pass", Ours([](TqImage** image) { return tqLowPassFilter(image); }),
              Peer([](const cv::Mat& in, cv::Mat& out) {
                  cv::Mat kernel(5, 5, CV_32F, cv::Scalar(1));
                  kernel(cv::Rect(1, 1, 3, 3)).setTo(4);
                  kernel.at<float>(2, 2) = 12;
                  static cv::Mat results;
                  cv::filter2D(in, results, CV_32F, kernel);
                  cv::normalize(results, out, 0, 65535, cv::NORM_MINMAX, CV_16U);
              })});
}

template <class Make>
std::function<void(const NoiseImage&)> New(Make make) {
    return [=](const NoiseImage& image) {
        static TqImage* out = nullptr;
        benchmark::DoNotOptimize(make(&out, image.Get()));
    };
}

void RegisterNewImages() {
    Register({"gradient/sobel",
              New([](TqImage** out, const TqImage* image) { return tqCalcGradient(out, image, 0); }),
              [](const NoiseImage& image) {
                  static cv::Mat x, y, magnitude, out;
                  cv::Sobel(image.Mat(), x, CV_32F, 1, 0);
                  cv::Sobel(image.Mat(), y, CV_32F, 0, 1);
                  cv::magnitude(x, y, magnitude);
                  magnitude.convertTo(out, CV_16U);
              }});
    Register({"local_contrast/surround", New([](TqImage** out, const TqImage* image) {
                  return tqCalcLocalLumDiff(out, image, 3, 3, 15, 15);
              }),
              [](const NoiseImage& image) {
                  static cv::Mat inner, outer, out;
                  cv::boxFilter(image.Mat(), inner, CV_32F, {3, 3}, {-1, -1}, false);
                  cv::boxFilter(image.Mat(), outer, CV_32F, {15, 15}, {-1, -1}, false);
                  inner = inner / 9.0 - (outer - inner) / 216.0;
                  cv::normalize(inner, out, 0, 64000, cv::NORM_MINMAX, CV_16U);
              }});
    for (const int direction : {0, 2, 4}) {
        Register({"local_contrast/direction/" + std::to_string(direction),
                  New([=](TqImage** out, const TqImage* image) {
                      return tqCalcLocalLumDiffDir(out, image, 5, 5, 10, direction);
                  }),
                  {}});
    }
    for (const int limit : {1, 10, 300}) {
        Register({"cluster/" + std::to_string(limit),
                  New([=](TqImage** out, const TqImage* image) {
                      std::int32_t count;
                      return tqClusterImage(out, image, limit, &count);
                  }),
                  {}});
    }
}

[[maybe_unused]] const bool kRegistered = (RegisterMedians(), RegisterMeans(), RegisterDeviations(),
                                           RegisterConvolutions(), RegisterNewImages(), true);

}  // namespace
}  // namespace tqbench
