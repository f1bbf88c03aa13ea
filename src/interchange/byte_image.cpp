#include "tqimage/byte_image.h"

#include <cstdint>
#include <ctime>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "kernels/dither.h"

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoImage = -5;

}  // namespace

std::int32_t TQ_CALL tqConvert16to8(TqImage** image, double factor) {
    return tq::ReplaceImage(image, kInvalidImage, kNoImage, [&](const tq::ConstImageView& source) {
        tq::OwnedImage bytes(source, tq::NewPels::kUnwritten);
        // Another grain for every picture of a series, so that averaging a series removes it.
        const auto seed = static_cast<std::uint32_t>(std::time(nullptr));
        tq::kernels::DitherToBytes(source.pels, factor, seed, bytes.View().pels, source.Count());
        return bytes;
    });
}
