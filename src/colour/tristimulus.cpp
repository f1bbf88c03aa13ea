#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "colour/channels.h"
#include "colour/mixed_images.h"
#include "core/guard.h"
#include "core/out_value.h"
#include "tqimage/colour_transforms.h"

using namespace tq;

namespace {

constexpr std::int32_t kNullImage = -2;
constexpr std::int32_t kNoMemory = -4;
constexpr ChannelCodes kCodes{kNullImage, -3, -3, -3, -5};

/// The brightest pel of a channel whose scale is returned. Not kBrightestLevel, because hosts have the one
/// and the other in their files.
constexpr double kFullScale = 64000.0;

kernels::ChannelMix MixOf(const ColourMatrix& m) noexcept {
    kernels::ChannelMix mix{};
    std::copy(m.begin(), m.end(), mix.matrix);
    return mix;
}

}  // namespace

std::int32_t TQ_CALL tqTransformRGBToXYZ(TqImage** outX, TqImage** outY, TqImage** outZ, double* scaleX,
                                         double* scaleY, double* scaleZ, const TqImage* red,
                                         const TqImage* green, const TqImage* blue, float m0, float m1,
                                         float m2, float m3, float m4, float m5, float m6, float m7,
                                         float m8) {
    StoreIfAsked(scaleX, 0.0);
    StoreIfAsked(scaleY, 0.0);
    StoreIfAsked(scaleZ, 0.0);
    Channels channels;
    if (const auto status = LocateChannels(red, green, blue, kCodes, &channels)) return status;
    if (outX == nullptr || outY == nullptr || outZ == nullptr) return kNullImage;
    return Guarded(kNoMemory, [&] {
        kernels::ChannelMix mix = MixOf({m0, m1, m2, m3, m4, m5, m6, m7, m8});
        mix.factor = channels.second.header->LuxPerGrey;
        MixedImages images(channels, mix);
        const auto& maxima = images.Maxima();
        const std::array<double, 3> units{maxima[0] / kFullScale, maxima[1] / kFullScale,
                                          maxima[2] / kFullScale};
        images.Fill(units);
        images.Commit(outX, outY, outZ);
        StoreIfAsked(scaleX, units[0]);
        StoreIfAsked(scaleY, units[1]);
        StoreIfAsked(scaleZ, units[2]);
        return 0;
    });
}

std::int32_t TQ_CALL tqTransformRGBToXYZ2(TqImage** outX, TqImage** outY, TqImage** outZ, const TqImage* red,
                                          const TqImage* green, const TqImage* blue, float m0, float m1,
                                          float m2, float m3, float m4, float m5, float m6, float m7,
                                          float m8) {
    Channels channels;
    if (const auto status = LocateChannels(red, green, blue, kCodes, &channels)) return status;
    if (outX == nullptr || outY == nullptr || outZ == nullptr) return kNullImage;
    return Guarded(kNoMemory, [&] {
        kernels::ChannelMix mix = MixOf({m0, m1, m2, m3, m4, m5, m6, m7, m8});
        mix.scales[0] = channels.first.header->LuxPerGrey;
        mix.scales[1] = channels.second.header->LuxPerGrey;
        mix.scales[2] = channels.third.header->LuxPerGrey;
        MixedImages images(channels, mix);
        images.Fill(images.StoreScales(images.Maxima()));
        images.Commit(outX, outY, outZ);
        return 0;
    });
}

std::int32_t TQ_CALL tqTransformXYZToRGB3(TqImage** outRed, TqImage** outGreen, TqImage** outBlue,
                                          const TqImage* x, const TqImage* y, const TqImage* z, double scaleX,
                                          double scaleY, double scaleZ, double m0, double m1, double m2,
                                          double m3, double m4, double m5, double m6, double m7, double m8) {
    Channels channels;
    if (const auto status = LocateChannels(x, y, z, kCodes, &channels)) return status;
    if (outRed == nullptr || outGreen == nullptr || outBlue == nullptr) return kNullImage;
    return Guarded(kNoMemory, [&] {
        kernels::ChannelMix mix = MixOf({m0, m1, m2, m3, m4, m5, m6, m7, m8});
        mix.scales[0] = scaleX;
        mix.scales[1] = scaleY;
        mix.scales[2] = scaleZ;
        const double luxPerGrey = channels.second.header->LuxPerGrey;
        if (luxPerGrey != 0.0) mix.divisor = luxPerGrey;
        MixedImages images(channels, mix);
        const double largest = *std::max_element(images.Maxima().begin(), images.Maxima().end());
        // One factor for the three channels: their ratios are the colour.
        double unit = 1.0;
        if (!(largest < kLargestPel + 1.0)) {
            unit = largest / kBrightestLevel;
            for (std::size_t k = 0; k < 3; ++k) {
                float& stored = images.Header(k).LuxPerGrey;
                stored = static_cast<float>(stored * unit);
            }
        }
        images.Fill({unit, unit, unit});
        images.Commit(outRed, outGreen, outBlue);
        return 0;
    });
}
