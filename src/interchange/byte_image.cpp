#include "tqimage/byte_image.h"

#include <cstdint>
#include <ctime>
#include <utility>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "kernels/dither.h"

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoImage = -5;

}  // namespace

std::int32_t TQ_CALL tqConvert16to8(TqImage** image, double factor) {
    const tq::ConstImageView source = tq::LocateImage(image == nullptr ? nullptr : *image);
    if (!source) return kInvalidImage;
    return tq::Guarded(kNoImage, [&] {
        tq::OwnedImage bytes(source, tq::NewPels::kUnwritten);
        // Another grain for every picture of a series, so that averaging a series removes it.
        const auto seed = static_cast<std::uint32_t>(std::time(nullptr));
        tq::kernels::DitherToBytes(source.pels, factor, seed, bytes.View().pels, source.Count());
        tq::CommitImage(image, std::move(bytes));
        return 0;
    });
}
