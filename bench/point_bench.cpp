#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "contest.h"
#include "tqimage/image_arithmetic.h"
#include "tqimage/masks.h"
#include "tqimage/point_operations.h"

namespace tqbench {
namespace {

/// Images that a contest may write. Functions that make a new image get the block they returned last time as
/// the one to replace.
struct Scratch {
    explicit Scratch(const NoiseImage& image) : from(image) {
        tqGlobalCopy(&target, image.Get());
        tqGlobalCopy(&other, image.Get());
        auto* pels = PelsOf(other);
        for (std::size_t i = 0; i < image.Mat().total(); ++i)
            pels[i] = static_cast<std::uint16_t>(pels[i] * 40503U + 9000U);
        otherMat = cv::Mat(image.Rows(), image.Cols(), CV_16UC1, pels);
        image.Mat().copyTo(result);
        TqImageHeader header;
        tqGetImageInfo(&header, other);
        header.CenterCol = header.CenterRow = 0.0f;
        header.LuxPerGrey = 0.017f;
        tqSetImageInfo(other, &header);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() {
        tqImageFree(&target);
        tqImageFree(&other);
    }

    const NoiseImage& from;
    TqImage* target = nullptr;
    TqImage* other = nullptr;
    cv::Mat otherMat;
    cv::Mat result;
};

using Step = void (*)(Scratch&);

enum class Result { kInPlace, kNew };

/// Each operation against the peer, and the loop that copies as many images. Where we make a new image the
/// peer makes one too; "_reused" is the peer that writes into memory it has already.
void Add(const std::string& name, Result result, Step ours, Step peer, Step copy) {
    const auto anew = [=](Scratch& s) {
        const cv::Mat replaced = std::exchange(s.result, cv::Mat());
        peer(s);
    };
    const auto add = [&](const std::string& title, auto opponent) {
        Contest contest{title, With<Scratch>(ours), With<Scratch>(opponent)};
        contest.traffic = With<Scratch>(copy);
        Register(contest);
    };
    if (result == Result::kInPlace) {
        add(name, peer);
    } else {
        add(name, anew);
        add(name + "_reused", peer);
    }
}

void RewriteInPlace(Scratch& s) {
    auto* words = s.result.ptr<std::uint64_t>();
    const std::size_t count = s.result.total() / 4;
    for (std::size_t i = 0; i < count; ++i)
        words[i] = ~words[i];
}

void CopyToNew(Scratch& s) {
    tqGlobalCopy(&s.target, s.from.Get());
}

/// Two images in, one new out.
void CopyOfTwo(Scratch& s) {
    TqImage* out = nullptr;
    TqImageHeader header;
    tqGetImageInfo(&header, s.target);
    tqCreateImage(&header, &out);
    const auto* a = s.from.Mat().ptr<std::uint64_t>();
    const auto* b = s.otherMat.ptr<std::uint64_t>();
    auto* to = PelsOf(out);
    const std::size_t count = s.result.total() / 4;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t both = a[i] ^ b[i];
        std::memcpy(to + 4 * i, &both, sizeof both);
    }
    tqImageFree(&s.target);
    s.target = out;
}

const std::vector<std::uint16_t>& Table() {
    static const std::vector<std::uint16_t> table = [] {
        std::vector<std::uint16_t> made(65536);
        for (std::size_t i = 0; i < made.size(); ++i)
            made[i] = static_cast<std::uint16_t>(65535 - i);
        return made;
    }();
    return table;
}

void RegisterOneImage() {
    Add(
        "add_constant", Result::kInPlace, [](Scratch& s) { tqAddConstant(s.target, 77); },
        [](Scratch& s) { cv::add(s.result, 77, s.result); }, RewriteInPlace);
    Add(
        "subtract_value", Result::kNew, [](Scratch& s) { tqSubtractValue(&s.target, 77); },
        [](Scratch& s) { cv::subtract(s.from.Mat(), 77, s.result); }, CopyToNew);
    Add(
        "invert", Result::kInPlace, [](Scratch& s) { tqInvertImage(s.target); },
        [](Scratch& s) {
            double low, high;
            cv::minMaxLoc(s.result, &low, &high);
            cv::subtract(low + high, s.result, s.result);
        },
        RewriteInPlace);
    Add(
        "replace_dark", Result::kInPlace, [](Scratch& s) { tqReplaceDarkPels0(s.target, 500, 3); },
        [](Scratch& s) { cv::threshold(s.result, s.result, 500, 0, cv::THRESH_TOZERO); }, RewriteInPlace);
    Add(
        "remove_dark", Result::kInPlace,
        [](Scratch& s) {
            std::int32_t count;
            tqRemoveDarkPels(s.target, &count, 500);
        },
        [](Scratch& s) {
            cv::threshold(s.result, s.result, 500, 0, cv::THRESH_TOZERO);
            benchmark::DoNotOptimize(cv::countNonZero(s.result));
        },
        RewriteInPlace);
    Add(
        "scale", Result::kInPlace, [](Scratch& s) { tqScaleImage2(s.target, 1.0001f); },
        [](Scratch& s) { s.result.convertTo(s.result, CV_16U, 1.0001); }, RewriteInPlace);
    Add(
        "look_up", Result::kInPlace, [](Scratch& s) { tqCorrectLinearity(s.target, Table().data()); },
        [](Scratch& s) {
            auto* pels = s.result.ptr<std::uint16_t>();
            const auto* table = Table().data();
            const std::size_t count = s.result.total();
            for (std::size_t i = 0; i < count; ++i)
                pels[i] = table[pels[i]];
        },
        RewriteInPlace);
}

void RegisterTwoImages() {
    Add(
        "subtract", Result::kNew, [](Scratch& s) { tqSubtractImage(&s.target, s.other); },
        [](Scratch& s) { cv::subtract(s.from.Mat(), s.otherMat, s.result); }, CopyOfTwo);
    Add(
        "multiply", Result::kNew, [](Scratch& s) { tqMultiplyImages(&s.target, s.other, 40000); },
        [](Scratch& s) { cv::multiply(s.from.Mat(), s.otherMat, s.result, 1.0 / 40000); }, CopyOfTwo);
    Add(
        "mask", Result::kNew, [](Scratch& s) { tqMaskImage(&s.target, s.other); },
        [](Scratch& s) {
            cv::max(s.from.Mat(), 1, s.result);
            s.result.setTo(0, s.otherMat == 0);
            double largest;
            cv::minMaxLoc(s.result, nullptr, &largest);
            benchmark::DoNotOptimize(cv::sum(s.result));
        },
        CopyOfTwo);
    Add(
        "average", Result::kNew, [](Scratch& s) { tqAverageImages(&s.target, s.from.Get(), s.other); },
        [](Scratch& s) { cv::addWeighted(s.from.Mat(), 0.29, s.otherMat, 0.5, 0.0, s.result); }, CopyOfTwo);
    Add(
        "running_average", Result::kNew, [](Scratch& s) { tqRunningAverage(&s.target, s.from.Get(), 9); },
        [](Scratch& s) { cv::addWeighted(s.from.Mat(), 1.0 / 9, s.otherMat, 8.0 / 9, 0.0, s.result); },
        CopyOfTwo);
    Add(
        "ratio", Result::kNew, [](Scratch& s) { tqDivideImage(&s.target, s.from.Get(), s.other); },
        [](Scratch& s) {
            static cv::Mat ratio;
            cv::divide(s.from.Mat(), s.otherMat, ratio, 1.0, CV_64F);
            double largest;
            cv::minMaxLoc(ratio, nullptr, &largest);
            ratio.convertTo(s.result, CV_16U, 65000.0 / largest);
        },
        CopyOfTwo);
    Add(
        "normalize", Result::kNew,
        [](Scratch& s) {
            tqGlobalCopy(&s.target, s.from.Get());
            tqNormalizeImage(&s.target, s.other);
        },
        [](Scratch& s) {
            static cv::Mat means;
            cv::boxFilter(s.otherMat, means, CV_32F, {3, 3});
            double largest;
            cv::minMaxLoc(means, nullptr, &largest);
            cv::divide(s.from.Mat(), s.otherMat, s.result, largest);
            cv::minMaxLoc(s.result, nullptr, &largest);
            benchmark::DoNotOptimize(cv::sum(s.result));
        },
        CopyOfTwo);
    Add(
        "root_sum_square", Result::kNew,
        [](Scratch& s) { tqRootSumSquare(&s.target, s.from.Get(), s.other, 0.4f, 0.6f); },
        [](Scratch& s) {
            static cv::Mat a, b;
            s.from.Mat().convertTo(a, CV_32F);
            s.otherMat.convertTo(b, CV_32F);
            cv::multiply(a, a, a, 0.4 / 0.6);
            cv::multiply(b, b, b);
            cv::sqrt(a + b, a);
            a.convertTo(s.result, CV_16U);
        },
        CopyOfTwo);
    Add(
        "combine", Result::kNew,
        [](Scratch& s) { tqCombineImages(&s.target, s.from.Get(), s.other, s.from.Get()); },
        [](Scratch& s) {
            static cv::Mat sum;
            cv::addWeighted(s.from.Mat(), 0.01, s.otherMat, 0.017, 0.0, sum, CV_32F);
            cv::scaleAdd(cv::Mat_<float>(s.from.Mat()), 0.01, sum, sum);
            double largest;
            cv::minMaxLoc(sum, nullptr, &largest);
            sum.convertTo(s.result, CV_16U, 255.0 / largest);
        },
        CopyOfTwo);
}

[[maybe_unused]] const bool kRegistered = (RegisterOneImage(), RegisterTwoImages(), true);

}  // namespace
}  // namespace tqbench
