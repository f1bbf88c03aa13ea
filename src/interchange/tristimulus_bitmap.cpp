#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/numerics.h"
#include "core/portable_math.h"
#include "interchange/bitmap_conversion.h"
#include "interchange/bitmap_object.h"
#include "tqimage/colour_bitmap.h"

namespace tq {
namespace {

constexpr std::int32_t kLoadFailed = -100;
constexpr std::int32_t kNoImage = -4;

/// The decoding of IEC 61966-2-1.
double Linear(int byte) {
    const double value = byte / 255.0;
    return value <= 0.04045 ? value / 12.92 : portable::Pow((value + 0.055) / 1.055, 2.4);
}

/// Red, green and blue of sRGB in X, Y and Z, adapted to the D50 illuminant, times 10000.
constexpr double kWeights[3][3] = {{4361, 3851, 1431}, {2225, 7169, 606}, {139, 971, 7141}};

/// The share of each byte of a channel in one image.
using Shares = std::array<std::array<double, 256>, 3>;

std::array<Shares, 3> MakeShares() {
    std::array<Shares, 3> shares;
    for (std::size_t byte = 0; byte < 256; ++byte) {
        const double linear = Linear(static_cast<int>(byte));
        for (std::size_t image = 0; image < 3; ++image) {
            for (std::size_t channel = 0; channel < 3; ++channel)
                shares[image][channel][byte] = kWeights[image][channel] * linear;
        }
    }
    return shares;
}

/// One of the three images of a bitmap of colours.
OwnedImage MixImage(const OwnedBitmap& bitmap, const Shares& shares, const TqImageHeader* info) {
    const auto [cols, rows] = std::pair(bitmap.Get().width, bitmap.Get().height);
    OwnedImage image(cols, rows, NewPels::kUnwritten);
    const ImageView view = image.View();
    const auto& [red, green, blue] = shares;
    Pel largest = 0;
    for (std::int32_t row = 0; row < rows; ++row) {
        const std::uint8_t* colour = bitmap.Row(row);
        Pel* const pels = view.Row(row);
        for (std::int32_t col = 0; col < cols; ++col, colour += 3) {
            const double mixed = red[colour[2]] + green[colour[1]] + blue[colour[0]];
            pels[col] = ClampToPel(TruncToInt32(mixed));
            largest = std::max(largest, pels[col]);
        }
    }
    image.Header() = BitmapImageHeader(info, cols, rows, largest);
    return image;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tq24bitColorBitmapToImage(const char* fileName, const TqImageHeader* info,
                                               TqImage** first, TqImage** second, TqImage** third) {
    const std::optional<OwnedBitmap> bitmap = LoadBitmap(fileName, BitmapDepth::kColours);
    if (!bitmap) return kLoadFailed;
    if (first == nullptr || second == nullptr || third == nullptr) return kNoImage;
    return Guarded(kNoImage, [&] {
        const std::array<Shares, 3> shares = MakeShares();
        OwnedImage x = MixImage(*bitmap, shares[0], info);
        OwnedImage y = MixImage(*bitmap, shares[1], info);
        OwnedImage z = MixImage(*bitmap, shares[2], info);
        CommitImage(first, std::move(x));
        CommitImage(second, std::move(y));
        CommitImage(third, std::move(z));
        return 0;
    });
}
