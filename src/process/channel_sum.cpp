#include <algorithm>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "kernels/grey_arithmetic.h"
#include "process/pel_runs.h"
#include "tqimage/image_arithmetic.h"

namespace tq {
namespace {

constexpr std::int32_t kFailed = -1;

/// The sum spans as many levels as a display shows.
constexpr double kLargestSumPel = 255.0;

double PelAtCenter(const ConstImageView& view) noexcept {
    const std::int32_t col = TruncToInt32(view.header->CenterCol);
    const std::int32_t row = TruncToInt32(view.header->CenterRow);
    return view.Contains(col, row) ? view.At(col, row) : 0.0;
}

OwnedImage ChannelSum(const ConstImageView& first, const kernels::Channels& channels) {
    OwnedImage result(first, NewPels::kUnwritten);
    const ImageView out = result.View();
    double largest = kernels::LargestLuminance(channels, out.Count());
    if (largest == 0.0) largest = 1.0;
    const kernels::LuminanceScale scale{kLargestSumPel, largest, 0.0};
    const auto pels = ProduceMeasured(out, [&](std::size_t start, std::size_t count) {
        kernels::WriteLuminances(channels.From(start), scale, out.pels + start, count);
    });
    out.header->TotalPelValue = static_cast<double>(pels.sum);
    out.header->CenterPelValue = static_cast<float>(PelAtCenter(out));
    out.header->MaxPelValue = static_cast<float>(kLargestSumPel);
    out.header->LuxPerGrey = static_cast<float>(largest / kLargestSumPel);
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCombineImages(TqImage** out, const TqImage* first, const TqImage* second,
                                     const TqImage* third) {
    const TqImage* const images[3] = {first, second, third};
    ConstImageView views[3];
    ConstImageView leading;
    for (int i = 0; i < 3; ++i) {
        if (images[i] == nullptr) continue;
        views[i] = LocateImage(images[i]);
        if (!views[i]) return kFailed;
        if (!leading) leading = views[i];
        if (!SameSize(leading, views[i])) return kFailed;
    }
    if (out == nullptr || !leading) return kFailed;

    kernels::Channels channels{};
    for (int i = 0; i < 3; ++i) {
        channels.pels[i] = views[i] ? views[i].pels : leading.pels;
        channels.scales[i] = views[i] ? views[i].header->LuxPerGrey : 0.0;
    }
    return ReplaceImage(out, kFailed, [&] { return ChannelSum(leading, channels); });
}
