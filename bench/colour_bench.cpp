#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <map>
#include <memory>
#include <vector>

#include "contest.h"
#include "tqimage/colour_averages.h"
#include "tqimage/colour_difference.h"
#include "tqimage/colour_transforms.h"
#include "tqimage/point_operations.h"

namespace tqbench {
namespace {

/// Three filter images of a noisy scene, and the outputs of either side.
struct Scene {
    explicit Scene(const NoiseImage& image) : from(image), mats(3) {
        for (std::size_t k = 0; k < 3; ++k) {
            tqGlobalCopy(&channels[k], image.Get());
            std::uint16_t* const pels = PelsOf(channels[k]);
            // The noise of one channel in the brightness that the filters share.
            for (std::size_t i = 0; i < image.Mat().total(); ++i)
                pels[i] = static_cast<std::uint16_t>(20000 + i % 30011 + (pels[i] >> (3 + k)));
            mats[k] = cv::Mat(image.Rows(), image.Cols(), CV_16UC1, pels);
            TqImageHeader header;
            tqGetImageInfo(&header, channels[k]);
            header.LuxPerGrey = 0.013f;
            tqSetImageInfo(channels[k], &header);
        }
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;
    ~Scene() {
        for (TqImage*& image : channels)
            tqImageFree(&image);
        for (TqImage*& image : out)
            if (image != nullptr) tqImageFree(&image);
    }

    /// Planes of X, Y and Z as the peer makes them.
    std::vector<cv::Mat> Mixed() const {
        cv::Mat merged, real, xyz;
        cv::merge(mats, merged);
        merged.convertTo(real, CV_32F);
        cv::transform(real, xyz, cv::Matx33f(1.5f, -0.75f, 0.1f, -0.5f, 1.25f, 0.01f, 0.3f, -0.2f, 2.0f));
        std::vector<cv::Mat> planes;
        cv::split(xyz, planes);
        return planes;
    }
    /// u' and v' of them.
    std::vector<cv::Mat> Chromaticities(const std::vector<cv::Mat>& xyz) const {
        cv::Mat below;
        cv::addWeighted(xyz[0], 1.0, xyz[1], 15.0, 0.0, below);
        cv::scaleAdd(xyz[2], 3.0, below, below);
        std::vector<cv::Mat> uv(2);
        cv::divide(xyz[0], below, uv[0], 4.0);
        cv::divide(xyz[1], below, uv[1], 9.0);
        return uv;
    }
    /// Scaled to the largest value.
    void Keep(const cv::Mat& values, std::size_t k) {
        double largest = 0.0;
        cv::minMaxLoc(values, nullptr, &largest);
        values.convertTo(results[k], CV_16U, 65000.0 / largest);
    }

    const NoiseImage& from;
    TqImage* channels[3] = {};
    TqImage* out[3] = {};
    std::vector<cv::Mat> mats;
    cv::Mat results[3];
};

using Step = void (*)(Scene&);

void Add(const std::string& name, Step ours, Step peer) {
    Register({"colour_" + name, With<Scene>(ours), With<Scene>(peer)});
}

void RegisterTransforms() {
    const Step peer = [](Scene& s) {
        const auto planes = s.Mixed();
        for (std::size_t k = 0; k < 3; ++k)
            s.Keep(planes[k], k);
    };
    Add(
        "rgb_to_xyz",
        [](Scene& s) {
            tqTransformRGBToXYZ2(&s.out[0], &s.out[1], &s.out[2], s.channels[0], s.channels[1], s.channels[2],
                                 1.5f, -0.75f, 0.1f, -0.5f, 1.25f, 0.01f, 0.3f, -0.2f, 2.0f);
        },
        peer);
    Add(
        "xyz_to_rgb",
        [](Scene& s) {
            tqTransformXYZToRGB3(&s.out[0], &s.out[1], &s.out[2], s.channels[0], s.channels[1], s.channels[2],
                                 0.01, 0.02, 0.03, 1.5, -0.75, 0.1, -0.5, 1.25, 0.01, 0.3, -0.2, 2.0);
        },
        peer);
}

/// u' of the pels, or of blocks around them.
template <int kBlock>
void RegisterChromaticity(const std::string& name) {
    Add(
        name,
        [](Scene& s) {
            tqTransformToColorSpace(&s.out[0], s.channels[0], s.channels[1], s.channels[2], 2, 65000, 0.0f,
                                    0.7f, kBlock, kBlock, 1.5f, -0.75f, 0.1f, -0.5f, 1.25f, 0.01f, 0.3f,
                                    -0.2f, 2.0f);
        },
        [](Scene& s) {
            auto planes = s.Mixed();
            if (kBlock > 1) {
                for (cv::Mat& plane : planes)
                    cv::blur(plane, plane, {kBlock, kBlock});
            }
            s.Chromaticities(planes)[0].convertTo(s.results[0], CV_16U, 65000.0 / 0.7);
        });
}

void RegisterDifferences() {
    const Step peer = [](Scene& s) {
        auto uv = s.Chromaticities(s.Mixed());
        cv::Mat luminance, sum;
        s.mats[1].convertTo(luminance, CV_32F, 0.013 / 300.0, -1.0);
        cv::subtract(uv[0], 0.2, uv[0]);
        cv::subtract(uv[1], 0.47, uv[1]);
        for (cv::Mat* each : {&uv[0], &uv[1], &luminance})
            cv::multiply(*each, *each, *each);
        cv::add(uv[0], uv[1], sum);
        cv::scaleAdd(luminance, 0.7, sum, sum);
        cv::sqrt(sum, sum);
        s.Keep(sum, 0);
    };
    Add(
        "difference",
        [](Scene& s) {
            tqCalcColorLumDiff(&s.out[0], s.channels[0], s.channels[1], s.channels[2], 0.2f, 0.47f, 300.0f,
                               0.7f, 1.0f, 1, 1, 1.5f, -0.75f, 0.1f, -0.5f, 1.25f, 0.01f, 0.3f, -0.2f, 2.0f);
        },
        peer);
    Add(
        "error",
        [](Scene& s) {
            tqCalcColorError(&s.out[0], s.channels[0], s.channels[1], s.channels[2], 0.2f, 0.47f, 0.01f,
                             0.005f, 30.0f, 1, 1, 1.5f, -0.75f, 0.1f, -0.5f, 1.25f, 0.01f, 0.3f, -0.2f, 2.0f);
        },
        peer);
}

void RegisterAverage() {
    Add(
        "average",
        [](Scene& s) {
            float x, y, z;
            tqCalcAverageColorValues(s.channels[0], s.channels[1], s.channels[2], 30000, 1, 0, 0, 0, 1, 0, 0,
                                     0, 1, 0, &x, &y, &z);
            benchmark::DoNotOptimize(x + y + z);
        },
        [](Scene& s) {
            const cv::Mat counted = s.mats[1] > 30001;
            for (const cv::Mat& mat : s.mats)
                benchmark::DoNotOptimize(cv::mean(mat, counted));
        });
}

[[maybe_unused]] const bool kRegistered =
    (RegisterTransforms(), RegisterChromaticity<1>("u_prime"), RegisterChromaticity<5>("u_prime_5x5"),
     RegisterDifferences(), RegisterAverage(), true);

}  // namespace
}  // namespace tqbench
