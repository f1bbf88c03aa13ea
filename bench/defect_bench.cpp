#include <opencv2/imgproc.hpp>

#include <cstring>
#include <map>
#include <memory>
#include <utility>

#include "contest.h"
#include "tqimage/defect_detection.h"
#include "tqimage/defects.h"

namespace tqbench {
namespace {

/// A copy of the image to work on, made anew for each turn of both sides.
class WorkingCopy {
  public:
    explicit WorkingCopy(const NoiseImage& image) {
        TqImageHeader header;
        tqGetImageInfo(&header, image.Get());
        tqCreateImage(&header, &block_);
        std::memcpy(PelsOf(block_), image.Mat().data, image.Mat().total() * image.Mat().elemSize());
    }
    WorkingCopy(const WorkingCopy&) = delete;
    WorkingCopy& operator=(const WorkingCopy&) = delete;
    ~WorkingCopy() { tqImageFree(&block_); }
    TqImage* Get() { return block_; }

  private:
    TqImage* block_ = nullptr;
};

void Find(const NoiseImage& image, std::int32_t reference, std::int32_t side, bool zeroFree) {
    TqImage* out = nullptr;
    std::int32_t bright, dark;
    const auto find = zeroFree ? tqFindPixelDefects : tqFindPixelDefects1;
    benchmark::DoNotOptimize(find(&out, image.Get(), 2, reference, side, 50.0, &bright, &dark));
    tqImageFree(&out);
}

/// Bright and dark pels against a reference image, as the peer's operations put it together.
void Compare(const cv::Mat& image, const cv::Mat& reference) {
    static cv::Mat mask, out;
    cv::Mat high, low, bright, dark;
    reference.convertTo(high, CV_32F, 1.5);
    reference.convertTo(low, CV_32F, 0.5);
    cv::Mat pels;
    image.convertTo(pels, CV_32F);
    cv::compare(pels, high, bright, cv::CMP_GT);
    cv::compare(pels, low, dark, cv::CMP_LT);
    cv::bitwise_or(bright, dark, mask);
    out.setTo(0);
    image.copyTo(out, mask);
    benchmark::DoNotOptimize(cv::countNonZero(bright) + cv::countNonZero(dark));
}

/// Mean of the pels that are not 0: the sums of pels and of ones, divided.
void CompareLitMeans(const NoiseImage& image, int side) {
    cv::Mat sums, counts, means;
    const cv::Mat lit = image.Mat() != 0;
    cv::boxFilter(image.Mat(), sums, CV_32F, {side, side}, {-1, -1}, false);
    cv::boxFilter(lit, counts, CV_32F, {side, side}, {-1, -1}, false);
    cv::divide(sums, counts, means, 255.0);
    Compare(image.Mat(), means);
}

void RegisterDetectors() {
    for (const int side : {5, 51}) {
        const std::string size = std::to_string(side);
        Register({"defects/mean_" + size, [=](const NoiseImage& image) { Find(image, 0, side, false); },
                  [=](const NoiseImage& image) { CompareLitMeans(image, side); }});
        Register({"defects/mean_zero_free_" + size,
                  [=](const NoiseImage& image) { Find(image, 0, side, true); },
                  [=](const NoiseImage& image) { CompareLitMeans(image, side); }});
    }
    // The peer has medians of 16 bits for 3 and 5 only.
    for (const int side : {3, 5}) {
        Register({"defects/median_" + std::to_string(side),
                  [=](const NoiseImage& image) { Find(image, 1, side, false); },
                  [=](const NoiseImage& image) {
                      cv::Mat medians;
                      cv::medianBlur(image.Mat(), medians, side);
                      Compare(image.Mat(), medians);
                  }});
    }
    for (const int side : {15, 51, 101}) {
        Register({"defects/median_" + std::to_string(side),
                  [=](const NoiseImage& image) { Find(image, 1, side, false); },
                  {}});
    }
}

/// The defect image of all pels above the threshold, made once.
const TqImage* MarksOf(const NoiseImage& image, std::int32_t threshold) {
    static std::map<std::pair<const TqImage*, std::int32_t>, std::unique_ptr<WorkingCopy>> marks;
    auto& found = marks[{image.Get(), threshold}];
    if (found == nullptr) {
        found = std::make_unique<WorkingCopy>(image);
        for (std::size_t i = 0; i < image.Mat().total(); ++i) {
            std::uint16_t& pel = PelsOf(found->Get())[i];
            if (pel <= threshold) pel = 0;
        }
    }
    return found->Get();
}

/// Repairs against a copy of the image, which each of their turns includes.
void RegisterRepairs() {
    const auto add = [](const std::string& name, auto repair) {
        Register({name,
                  [=](const NoiseImage& image) {
                      WorkingCopy work(image);
                      repair(work.Get(), image);
                  },
                  [](const NoiseImage& image) { WorkingCopy copied(image); }});
    };
    for (const int threshold : {65500, 32768}) {
        for (const int side : {3, 51}) {
            const std::string name = std::to_string(side) + "_above_" + std::to_string(threshold);
            add("hot_pixels/" + name, [=](TqImage* image, const NoiseImage&) {
                tqReplaceHotPixels(image, threshold, 1.0f, side, side);
            });
            add("spikes/" + name,
                [=](TqImage* image, const NoiseImage&) { tqEditSpikes(image, threshold, 0, side, side); });
            add("fix_defects/" + name, [=](TqImage* image, const NoiseImage& noise) {
                tqFixDefects(image, MarksOf(noise, threshold), side, side);
            });
        }
    }
}

[[maybe_unused]] const bool kRegistered = (RegisterDetectors(), RegisterRepairs(), true);

}  // namespace
}  // namespace tqbench
