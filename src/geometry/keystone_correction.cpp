#include <cstddef>
#include <cstdint>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "geometry/distortion_map.h"
#include "kernels/map_row.h"
#include "tqimage/keystone.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kOtherSize = -2;
constexpr std::int32_t kNoMemory = -3;

OwnedImage RemoveKeystone(const ConstImageView& image, const ConstMapView& map) {
    OwnedImage result(image, NewPels::kUnwritten);
    const ImageView out = result.View();
    const kernels::SourcePels source{image.pels, image.cols, image.rows};
    // The bound of columns is one looser than that of rows, but a place in the column after the last is
    // outside for the sampler: either bound gives 0 there.
    for (std::int32_t row = 0; row < out.rows; ++row) {
        kernels::SampleWithin(source, &map.Row(row)->col, static_cast<std::size_t>(out.cols), out.Row(row));
    }
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqRemoveKeystone(TqImage** image, const TqDistortionMap* map) {
    const ConstImageView source = LocateHeld(image);
    if (!source) return kInvalidImage;
    const ConstMapView entries = LocateMap(map);
    if (!entries || entries.cols != source.cols || entries.rows != source.rows) return kOtherSize;
    return ReplaceImage(image, kNoMemory, [&] { return RemoveKeystone(source, entries); });
}
