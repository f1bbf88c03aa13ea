#include <opencv2/imgproc.hpp>

#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "contest.h"
#include "tqimage/distortion.h"
#include "tqimage/keystone.h"
#include "tqimage/orientation.h"
#include "tqimage/resampling.h"
#include "tqimage/stitching.h"

namespace tqbench {
namespace {

/// A host's distortion map and the same places as the peer reads them fastest.
struct Places {
    template <class Source>
    Places(std::int32_t cols, std::int32_t rows, Source&& source) {
        TqImageHeader info{};
        info.PelCols = cols;
        info.PelRows = rows;
        tqCreateDistortionImage(&map, &info);
        cv::Mat pairs(rows, cols, CV_32FC2);
        for (std::int32_t row = 0; row < rows; ++row) {
            for (std::int32_t col = 0; col < cols; ++col) {
                const cv::Point2f at = source(static_cast<float>(col), static_cast<float>(row));
                pairs.at<cv::Vec2f>(row, col) = {at.x, at.y};
                tqPutDistortionPel(map, &info, col, row, at.x, at.y);
            }
        }
        cv::convertMaps(pairs, cv::noArray(), whole, parts, CV_16SC2);
    }
    Places(const Places&) = delete;
    Places& operator=(const Places&) = delete;
    ~Places() {
        auto* block = reinterpret_cast<TqImage*>(map);
        tqImageFree(&block);
    }

    TqDistortionMap* map = nullptr;
    cv::Mat whole;
    cv::Mat parts;
};

/// What the turns of a contest work on: a fresh copy of the image, which either side reads and ours replaces.
struct Scratch {
    explicit Scratch(const NoiseImage& image) : from(image) {}
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() {
        tqImageFree(&target);
        tqImageFree(&labels);
    }

    void Prepare() { tqGlobalCopy(&target, from.Get()); }
    /// The same, and what the first turn would have to wait for.
    void PrepareMaps() {
        Prepare();
        Lens();
        Keystone();
    }
    void PrepareLabels() {
        Prepare();
        Labels();
    }
    /// The copy as the peer sees it.
    cv::Mat Mat() const { return {from.Rows(), from.Cols(), CV_16UC1, PelsOf(target)}; }
    cv::Point2f Middle() const {
        return {static_cast<float>(from.Cols() - 1) * 0.5f, static_cast<float>(from.Rows() - 1) * 0.5f};
    }

    /// A barrel of 2 % at the corners.
    const Places& Lens() {
        if (lens == nullptr) {
            const cv::Point2f middle = Middle();
            const float scale = 0.02f / (middle.x * middle.x + middle.y * middle.y);
            lens = std::make_unique<Places>(from.Cols(), from.Rows(), [=](float col, float row) {
                const cv::Point2f off = cv::Point2f(col, row) - middle;
                return middle + off * (1.0f - scale * off.dot(off));
            });
        }
        return *lens;
    }
    /// A screen seen from below.
    const Places& Keystone() {
        if (keystone == nullptr) {
            const cv::Point2f middle = Middle();
            keystone = std::make_unique<Places>(from.Cols(), from.Rows(), [=](float col, float row) {
                const float w = 1.0f + 0.1f * row / middle.y;
                return middle + (cv::Point2f(col, row) - middle) * (1.0f / w);
            });
        }
        return *keystone;
    }
    /// Four segments of one label each.
    const TqImage* Labels() {
        if (labels == nullptr) {
            tqGlobalCopy(&labels, from.Get());
            auto* pels = PelsOf(labels);
            for (std::int32_t row = 0; row < from.Rows(); ++row) {
                for (std::int32_t col = 0; col < from.Cols(); ++col)
                    *pels++ = static_cast<std::uint16_t>(1 + 4 * col / from.Cols());
            }
        }
        return labels;
    }

    const NoiseImage& from;
    TqImage* target = nullptr;
    TqImage* labels = nullptr;
    cv::Mat result;
    std::unique_ptr<Places> lens;
    std::unique_ptr<Places> keystone;
};

using Step = void (*)(Scratch&);

void Prepare(Scratch& s) {
    s.Prepare();
}

/// We make a new image, so the peer makes one too; "_reused" is the peer that writes into memory it has
/// already.
void Add(const std::string& name, Step ours, Step peer, std::int32_t largestSide = 8000,
         Step prepare = Prepare) {
    if (peer == nullptr) {
        Register({"geometry/" + name, With<Scratch>(ours), {}, false, With<Scratch>(prepare), largestSide});
        return;
    }
    const auto anew = [=](Scratch& s) {
        const cv::Mat replaced = std::exchange(s.result, cv::Mat());
        peer(s);
    };
    Register({"geometry/" + name, With<Scratch>(ours), With<Scratch>(anew), false, With<Scratch>(prepare),
              largestSide});
    Register({"geometry/" + name + "_reused", With<Scratch>(ours), With<Scratch>(peer), false,
              With<Scratch>(prepare), largestSide});
}

void RegisterTurns() {
    Add(
        "turn_left", [](Scratch& s) { tqTransposeImage(&s.target, 1); },
        [](Scratch& s) { cv::rotate(s.Mat(), s.result, cv::ROTATE_90_COUNTERCLOCKWISE); });
    Add(
        "turn_right", [](Scratch& s) { tqTransposeImage(&s.target, 2); },
        [](Scratch& s) { cv::rotate(s.Mat(), s.result, cv::ROTATE_90_CLOCKWISE); });
    Add(
        "transpose", [](Scratch& s) { tqMirrorTransposeImage(&s.target, 1, 1); },
        [](Scratch& s) { cv::transpose(s.Mat(), s.result); });
    Add(
        "mirror", [](Scratch& s) { tqMirrorImage(&s.target); },
        [](Scratch& s) { cv::flip(s.Mat(), s.result, 1); });
    Add(
        "flip", [](Scratch& s) { tqTransposeImage(&s.target, 3); },
        [](Scratch& s) { cv::flip(s.Mat(), s.result, 0); });
    Add(
        "half_turn", [](Scratch& s) { tqMirrorTransposeImage(&s.target, 1, 3); },
        [](Scratch& s) { cv::rotate(s.Mat(), s.result, cv::ROTATE_180); });
}

void Warp(Scratch& s, double angle, double scale, cv::Point2d shift, cv::Size size) {
    cv::Mat matrix = cv::getRotationMatrix2D(s.Middle(), angle, scale);
    matrix.at<double>(0, 2) += shift.x;
    matrix.at<double>(1, 2) += shift.y;
    cv::warpAffine(s.Mat(), s.result, matrix, size, cv::INTER_LINEAR);
}

void RegisterResampling() {
    // The enlarged result of a turned image must still be an image.
    Add(
        "rotate_7", [](Scratch& s) { tqRotateImage(&s.target, 7.0f, s.Middle().x, s.Middle().y); },
        [](Scratch& s) {
            const cv::Size size =
                cv::RotatedRect(s.Middle(), s.from.Mat().size(), 7.0f).boundingRect().size();
            const cv::Point2d middle(0.5 * (size.width - 1), 0.5 * (size.height - 1));
            Warp(s, 7.0, 1.0, middle - cv::Point2d(s.Middle()), size);
        },
        4000);
    Add(
        "scale_1.1", [](Scratch& s) { tqScaleImage(&s.target, 1.1, 1.1); },
        [](Scratch& s) { Warp(s, 0.0, 1.1, {}, s.from.Mat().size()); });
    Add(
        "shift", [](Scratch& s) { tqShiftImage(&s.target, 10.3, 7.6); },
        [](Scratch& s) {
            Warp(s, 0.0, 1.0, {10.3, 7.6}, s.from.Mat().size());
        });
    Add(
        "size_0.7", [](Scratch& s) { tqSizeImage(&s.target, s.from.Cols() * 7 / 10); },
        [](Scratch& s) { cv::resize(s.Mat(), s.result, {}, 0.7, 0.7, cv::INTER_LINEAR); });
    Add(
        "unbin_2x2",
        [](Scratch& s) {
            TqImageHeader header;
            tqGetImageInfo(&header, s.target);
            header.BinCols = header.BinRows = 2;
            tqSetImageInfo(s.target, &header);
            tqUnBinImage(&s.target, 1, 1);
        },
        [](Scratch& s) { cv::resize(s.Mat(), s.result, {}, 2.0, 2.0, cv::INTER_LINEAR); }, 4000);
}

void RegisterBinning() {
    Add(
        "bin_2x2", [](Scratch& s) { tqBinImage(&s.target, 2, 2); },
        [](Scratch& s) { cv::resize(s.Mat(), s.result, {}, 0.5, 0.5, cv::INTER_AREA); });
    Add(
        "bin_3x3", [](Scratch& s) { tqBinImage(&s.target, 3, 3); },
        [](Scratch& s) {
            cv::resize(s.Mat(), s.result, {s.from.Cols() / 3, s.from.Rows() / 3}, 0, 0, cv::INTER_AREA);
        });
    Add(
        "bin_4x4", [](Scratch& s) { tqBinImage(&s.target, 4, 4); },
        [](Scratch& s) { cv::resize(s.Mat(), s.result, {}, 0.25, 0.25, cv::INTER_AREA); });
    // The peer needs the sums and the counts of the pels with data apart.
    const Step peerLit = [](Scratch& s) {
        static cv::Mat sums, lit, counts;
        cv::resize(s.Mat(), sums, {}, 0.5, 0.5, cv::INTER_AREA);
        cv::threshold(s.Mat(), lit, 0, 4, cv::THRESH_BINARY);
        cv::resize(lit, counts, {}, 0.5, 0.5, cv::INTER_AREA);
        cv::divide(sums, counts, s.result, 4.0);
        benchmark::DoNotOptimize(cv::sum(s.result));
    };
    Add(
        "bin_lit_2x2", [](Scratch& s) { tqBinImage0(&s.target, 2, 2); }, peerLit);
}

void RegisterMaps() {
    const Step maps = [](Scratch& s) { s.PrepareMaps(); };
    const Step labels = [](Scratch& s) { s.PrepareLabels(); };
    Add(
        "lens", [](Scratch& s) { tqCorrectLensDistortion(&s.target, s.Lens().map); },
        [](Scratch& s) { cv::remap(s.Mat(), s.result, s.Lens().whole, s.Lens().parts, cv::INTER_LINEAR); },
        8000, maps);
    Add(
        "keystone", [](Scratch& s) { tqRemoveKeystone(&s.target, s.Keystone().map); },
        [](Scratch& s) {
            cv::remap(s.Mat(), s.result, s.Keystone().whole, s.Keystone().parts, cv::INTER_LINEAR);
        },
        8000, maps);
    Add(
        "stitch_3x3", [](Scratch& s) { tqSmoothStitch(&s.target, s.Labels(), 3, 3); }, nullptr, 4000, labels);
    Add(
        "stitch_51x51", [](Scratch& s) { tqSmoothStitch(&s.target, s.Labels(), 51, 51); }, nullptr, 4000,
        labels);
}

[[maybe_unused]] const bool kRegistered =
    (RegisterTurns(), RegisterResampling(), RegisterBinning(), RegisterMaps(), true);

}  // namespace
}  // namespace tqbench
