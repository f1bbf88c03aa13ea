#include <cstdint>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "geometry/bilinear.h"
#include "geometry/distortion_map.h"
#include "tqimage/keystone.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kOtherSize = -2;
constexpr std::int32_t kNoMemory = -3;

OwnedImage RemoveKeystone(const ConstImageView& image, const ConstMapView& map) {
    OwnedImage result(image, NewPels::kUnwritten);
    const ImageView out = result.View();
    const BilinearSampler sampler(image);
    const auto cols = static_cast<float>(image.cols);
    const auto rows = static_cast<float>(image.rows);
    for (std::int64_t i = 0; i < map.Count(); ++i) {
        const MapEntry entry = map.entries[i];
        // The bound of columns is one looser than that of rows; hosts rely on maps made to these bounds.
        const bool hasSource = entry.HasSource() && entry.col <= cols && entry.row < rows;
        out.pels[i] = hasSource ? WrapToPel(TruncToInt32(sampler.AnyPlace(entry.col, entry.row))) : Pel{0};
    }
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqRemoveKeystone(TqImage** image, const TqDistortionMap* map) {
    const ConstImageView source = image == nullptr ? ConstImageView{} : LocateImage(*image);
    if (!source) return kInvalidImage;
    const ConstMapView entries = LocateMap(map);
    if (!entries || entries.cols != source.cols || entries.rows != source.rows) return kOtherSize;
    return Guarded(kNoMemory, [&] {
        CommitImage(image, RemoveKeystone(source, entries));
        return 0;
    });
}
