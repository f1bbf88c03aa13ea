#include <opencv2/imgproc.hpp>

#include <string>
#include <vector>

#include "contest.h"
#include "tqimage/equalisation.h"
#include "tqimage/thresholds.h"

namespace tqbench {
namespace {

/// A host's image to work on, with fresh pels before every turn; the copy is not in the time.
TqImage*& Target() {
    static TqImage* target = nullptr;
    return target;
}

void Refresh(const NoiseImage& image) {
    tqGlobalCopy(&Target(), image.Get());
}

using Peer = void (*)(const cv::Mat& in, cv::Mat& out);

/// The peer makes a new image as well.
template <class Ours>
void Add(const std::string& name, Ours ours, Peer peer, std::int32_t largestSide = 8000) {
    Contest contest{name, [=](const NoiseImage&) { benchmark::DoNotOptimize(ours(&Target())); }, {}};
    if (peer != nullptr) {
        contest.peer = [=](const NoiseImage& image) {
            cv::Mat out;
            peer(image.Mat(), out);
            benchmark::DoNotOptimize(out.data);
        };
    }
    contest.prepare = Refresh;
    contest.largestSide = largestSide;
    Register(contest);
}

void Measure(const cv::Mat& image) {
    cv::Mat means;
    cv::boxFilter(image, means, CV_32F, {3, 3});
    double largest;
    cv::minMaxLoc(means, nullptr, &largest);
    benchmark::DoNotOptimize(cv::sum(image));
}

template <int kSide>
void KeepOutliers(const cv::Mat& in, cv::Mat& out) {
    cv::Mat means, floats;
    cv::boxFilter(in, means, CV_32F, {kSide, kSide});
    in.convertTo(floats, CV_32F);
    const cv::Mat outliers = (floats < means * 0.9) | (floats > means * 1.1);
    out = cv::Mat::zeros(in.size(), CV_16U);
    in.copyTo(out, outliers);
}

void Equalize(const cv::Mat& in, cv::Mat& out) {
    constexpr int kLevels = 65536;
    constexpr float kRange[] = {0.0f, kLevels};
    const float* ranges = kRange;
    const int channel = 0;
    cv::Mat counts;
    cv::calcHist(&in, 1, &channel, cv::noArray(), counts, 1, &kLevels, &ranges);
    std::vector<std::uint16_t> table(kLevels);
    float share = 0.0f;
    for (int level = 0; level < kLevels; ++level) {
        share += counts.at<float>(level) / static_cast<float>(in.total());
        table[static_cast<std::size_t>(level)] = static_cast<std::uint16_t>(65535.0f * share + 0.5f);
    }
    out.create(in.size(), CV_16U);
    const auto* from = in.ptr<std::uint16_t>();
    auto* to = out.ptr<std::uint16_t>();
    for (std::size_t i = 0; i < in.total(); ++i)
        to[i] = table[from[i]];
    Measure(out);
}

template <int kSide>
std::int32_t KeepLocalOutliers(TqImage** image) {
    return tqLocalThresholdImage(image, *image, 2, kSide, kSide, 10.0, nullptr, nullptr);
}

template <int kSide>
std::int32_t KeepLitOutliers(TqImage** image) {
    return tqLocalThresholdImage2(image, *image, 2, kSide, kSide, 10.0, nullptr, nullptr);
}

template <int kSide>
std::int32_t EqualizeLocally(TqImage** image) {
    return tqLocalHistoEqualize(image, *image, 4096, kSide, kSide);
}

void RegisterAll() {
    Add(
        "threshold/region",
        [](TqImage** image) { return tqThresholdImageInRegion(image, 30000, 0, 0, 0, 0, 0); },
        [](const cv::Mat& in, cv::Mat& out) { cv::threshold(in, out, 29999, 0, cv::THRESH_TOZERO); });
    Add(
        "threshold/whole", [](TqImage** image) { return tqThresholdImage(image, 30000, 0); },
        [](const cv::Mat& in, cv::Mat& out) {
            cv::threshold(in, out, 29999, 0, cv::THRESH_TOZERO);
            Measure(out);
        });
    Add(
        "threshold/band", [](TqImage** image) { return tqThresholdImage2(image, 20000, 40000); },
        [](const cv::Mat& in, cv::Mat& out) {
            cv::Mat inside;
            cv::inRange(in, 20000, 40000, inside);
            out = cv::Mat::zeros(in.size(), CV_16U);
            in.copyTo(out, inside);
            double largest;
            cv::minMaxLoc(out, nullptr, &largest);
            benchmark::DoNotOptimize(largest);
        });
    Add("threshold/local_3", KeepLocalOutliers<3>, KeepOutliers<3>);
    Add("threshold/local_15", KeepLocalOutliers<15>, KeepOutliers<15>);
    Add("threshold/local_51", KeepLocalOutliers<51>, KeepOutliers<51>);
    Add("threshold/local_lit_3", KeepLitOutliers<3>, nullptr);
    Add("threshold/local_lit_51", KeepLitOutliers<51>, nullptr);
    Add(
        "equalize/whole", [](TqImage** image) { return tqHistoEqualize(image, *image, 65536); }, Equalize);
    // The peer has no equalisation around each pel; the sides tell how the cost grows.
    Add("equalize/local_15", EqualizeLocally<15>, nullptr, 1000);
    Add("equalize/local_31", EqualizeLocally<31>, nullptr, 1000);
    Add("equalize/local_61", EqualizeLocally<61>, nullptr, 1000);
}

[[maybe_unused]] const bool kRegistered = (RegisterAll(), true);

}  // namespace
}  // namespace tqbench
