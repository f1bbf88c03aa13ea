#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "contest.h"
#include "tqimage/automation.h"
#include "tqimage/bitmap.h"
#include "tqimage/bitmap_files.h"
#include "tqimage/byte_image.h"
#include "tqimage/colour_bitmap.h"
#include "tqimage/image.h"

namespace tqbench {
namespace {

constexpr std::int32_t kGreyRamp = 6;
constexpr double kFullScale = 65535.0;

/// What the library and the peer write: both make their result anew in every turn, as hosts get it.
struct Scratch {
    explicit Scratch(const NoiseImage& noise) : from(noise) {
        tqGlobalCopy(&scaled, noise.Get());
        TqImageHeader header;
        tqGetImageInfo(&header, scaled);
        header.MaxPelValue = static_cast<float>(kFullScale);
        tqSetImageInfo(scaled, &header);
        for (std::size_t byte = 0; byte < 256; ++byte)
            curve.at<std::uint8_t>(static_cast<int>(byte)) =
                static_cast<std::uint8_t>(255 * std::pow(static_cast<double>(byte) / 255, 1 / 2.4));
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() {
        tqFreeLeadBmp(&bitmap);
        tqImageFree(&scaled);
        tqImageFree(&image);
    }
    TqLeadBitmap* NewBitmap() {
        tqFreeLeadBmp(&bitmap);
        return &bitmap;
    }
    /// Memory that the peer has not written yet in this turn.
    cv::Mat& NewResult() {
        result.release();
        return result;
    }

    const NoiseImage& from;
    TqImage* scaled = nullptr;
    TqImage* image = nullptr;
    TqLeadBitmap bitmap{};
    cv::Mat curve = cv::Mat(1, 256, CV_8U);
    cv::Mat result;
    double scale = 0.0;
};

using Step = void (*)(Scratch&);

void Add(
    const char* name, Step ours, Step peer, Step prepare = [](Scratch&) {}) {
    Register({name, With<Scratch>(ours), With<Scratch>(peer), false, With<Scratch>(prepare)});
}

/// A plain loop that makes a byte of every pel.
template <class ByteOf>
void Loop(Scratch& s, const ByteOf& byteOf) {
    cv::Mat& result = s.NewResult();
    result.create(s.from.Rows(), s.from.Cols(), CV_8U);
    const std::uint16_t* pels = s.from.Mat().ptr<std::uint16_t>();
    std::uint8_t* bytes = result.ptr();
    const std::size_t count = result.total();
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = byteOf(pels[i]);
}

/// Two bytes in, one out, and nothing else: the yardstick of everything that makes bytes of pels.
void NarrowingCopy(Scratch& s) {
    Loop(s, [](std::uint16_t pel) { return static_cast<std::uint8_t>(pel >> 8); });
}

/// The same with a byte for each of the 65536 grey levels, as the definition of the curve asks.
void LookUpCopy(Scratch& s) {
    static const std::vector<std::uint8_t> table = [] {
        std::vector<std::uint8_t> made(65536);
        for (std::size_t i = 0; i < made.size(); ++i)
            made[i] = static_cast<std::uint8_t>(255 * std::pow(static_cast<double>(i) / kFullScale, 1 / 2.4));
        return made;
    }();
    Loop(s, [](std::uint16_t pel) { return table[pel]; });
}

void Curved(Scratch& s) {
    tqImageToLeadBmp(s.NewBitmap(), &s.scale, s.scaled, kGreyRamp, 1.0);
}

void ScaledAndLookedUp(Scratch& s) {
    static cv::Mat bytes;
    s.from.Mat().convertTo(bytes, CV_8U, 255.0 / kFullScale);
    cv::LUT(bytes, s.curve, s.NewResult());
}

void RegisterGrey() {
    Add("bitmap_curve", Curved, ScaledAndLookedUp);
    Add("bitmap_curve_copy", Curved, NarrowingCopy);
    Add("bitmap_curve_loop", Curved, LookUpCopy);
    Add(
        "bitmap_logarithm",
        [](Scratch& s) {
            tqImageToLeadBmpScale(s.NewBitmap(), &s.scale, s.scaled, nullptr, kGreyRamp, 10, 60000, 1, -1.0);
        },
        [](Scratch& s) {
            static cv::Mat logarithms;
            s.from.Mat().convertTo(logarithms, CV_32F, 1.0, 1.0);
            cv::log(logarithms, logarithms);
            logarithms.convertTo(s.NewResult(), CV_8U, 254 / std::log(6000.0), 1 - std::log(10.0));
        });
    Add(
        "bitmap_dither", [](Scratch& s) { tqConvert16to8(&s.image, 255.0 / kFullScale); },
        [](Scratch& s) {
            static cv::Mat grain;
            grain.create(s.from.Mat().size(), CV_32F);
            cv::randu(grain, 0.0, 1.0);
            cv::addWeighted(s.from.Mat(), 255.0 / kFullScale, grain, 1.0, -0.5, s.NewResult(), CV_8U);
        },
        [](Scratch& s) { tqGlobalCopy(&s.image, s.from.Get()); });
    Add(
        "bitmap_back", [](Scratch& s) { tqLeadBmpToImage(s.bitmap, &s.image); },
        [](Scratch& s) {
            const cv::Mat bytes(s.bitmap.height, s.bitmap.width, CV_8U, s.bitmap.rows,
                                static_cast<std::size_t>(s.bitmap.bytesPerLine));
            double largest;
            cv::minMaxLoc(bytes, nullptr, &largest);
            bytes.convertTo(s.NewResult(), CV_16U);
        },
        Curved);
    // The peer turns the rows of a bitmap that it has to make as well.
    Add(
        "bitmap_dib",
        [](Scratch& s) {
            void* dib = nullptr;
            tqImageToDIB(&dib, s.scaled, kGreyRamp);
            GlobalFree(dib);
        },
        [](Scratch& s) {
            static cv::Mat bytes;
            ScaledAndLookedUp(s);
            bytes.release();
            cv::flip(s.result, bytes, 0);
        });
}

void CombineWith(Scratch& s, bool normalize, double gamma) {
    tqCombineImagesRGB(s.NewBitmap(), s.scaled, s.scaled, s.scaled, 0.9f, 1.0f, 0.8f, normalize, 0, gamma);
}

void MixWith(Scratch& s, double gamma) {
    static cv::Mat merged, power;
    const cv::Mat planes[] = {s.from.Mat(), s.from.Mat(), s.from.Mat()};
    cv::merge(planes, 3, merged);
    if (gamma == 1.0) {
        static cv::Mat bytes;
        merged.convertTo(bytes, CV_8U, 255.0 / kFullScale);
        cv::LUT(bytes, s.curve, s.NewResult());
        return;
    }
    merged.convertTo(power, CV_32F, 1.0 / kFullScale);
    cv::pow(power, gamma / 2.4, power);
    power.convertTo(s.NewResult(), CV_8U, 255.0);
}

void RegisterColours() {
    Add(
        "combine_curve", [](Scratch& s) { CombineWith(s, false, 1.0); }, [](Scratch& s) { MixWith(s, 1.0); });
    Add(
        "combine_gamma", [](Scratch& s) { CombineWith(s, false, 2.2); }, [](Scratch& s) { MixWith(s, 2.2); });
    Add(
        "combine_normalized", [](Scratch& s) { CombineWith(s, true, 1.0); },
        [](Scratch& s) {
            static cv::Mat largest, factor, channel[3];
            const double gains[] = {0.9, 1.0, 0.8};
            for (int i = 0; i < 3; ++i)
                s.from.Mat().convertTo(channel[i], CV_32F, gains[i]);
            cv::max(channel[0], channel[1], largest);
            cv::max(largest, channel[2], largest);
            cv::divide(255.0, largest, factor);
            cv::Mat bytes[3];
            for (int i = 0; i < 3; ++i)
                cv::multiply(channel[i], factor, bytes[i], 1.0, CV_8U);
            cv::merge(bytes, 3, s.NewResult());
        });
}

[[maybe_unused]] const bool kRegistered = (RegisterGrey(), RegisterColours(), true);

}  // namespace
}  // namespace tqbench
