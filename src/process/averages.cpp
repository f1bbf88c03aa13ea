#include <algorithm>

#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "kernels/grey_arithmetic.h"
#include "process/pel_runs.h"
#include "tqimage/image_arithmetic.h"

namespace tq {
namespace {

constexpr std::int32_t kOk = 0;

struct PairStatus {
    static constexpr std::int32_t kInvalidFirst = -2, kInvalidSecond = -3, kOtherSize = -4, kNoMemory = -5;
};

struct RunningAverageStatus {
    static constexpr std::int32_t kInvalidImage = -2, kNotCopied = -3, kInvalidAverage = -4, kOtherSize = -5,
                                  kNoMemory = -6;
};

/// Makes a new image from two of one size, make(first, second), and stores it in `out`.
template <class Make>
std::int32_t StoreFromPair(TqImage** out, const TqImage* a, const TqImage* b, Make&& make) {
    const ConstImageView first = LocateImage(a);
    if (out == nullptr || !first) return PairStatus::kInvalidFirst;
    const ConstImageView second = LocateImage(b);
    if (!second) return PairStatus::kInvalidSecond;
    if (!SameSize(first, second)) return PairStatus::kOtherSize;
    return ReplaceImage(out, PairStatus::kNoMemory, [&] { return make(first, second); });
}

/// The mean luminance of `count` images, `average` standing for all but the fresh one, in the coarser of the
/// two grey scales.
OwnedImage Mean(const ConstImageView& average, const ConstImageView& fresh, std::int32_t count) {
    OwnedImage result(average, NewPels::kUnwritten);
    const ImageView out = result.View();
    out.header->LuxPerGrey = std::max(average.header->LuxPerGrey, fresh.header->LuxPerGrey);
    const kernels::RunningMean mean{fresh.header->LuxPerGrey, average.header->LuxPerGrey,
                                    static_cast<double>(count), out.header->LuxPerGrey};
    out.header->MaxPelValue = kernels::FoldIntoMean(mean, fresh.pels, average.pels, out.pels, out.Count());
    return result;
}

OwnedImage Copy(const ConstImageView& source) {
    OwnedImage copy(source, NewPels::kUnwritten);
    std::copy_n(source.pels, source.Count(), copy.View().pels);
    return copy;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqRunningAverage(TqImage** average, const TqImage* image, std::int32_t count) {
    using Status = RunningAverageStatus;
    const ConstImageView fresh = LocateImage(image);
    if (!fresh) return Status::kInvalidImage;
    if (average == nullptr) return Status::kInvalidAverage;
    if (*average == nullptr || count < 2) {
        // An average that is the image itself is its own copy; a new block would leave the host's other
        // pointer dangling.
        if (*average == image) return kOk;
        return ReplaceImage(average, Status::kNotCopied, [&] { return Copy(fresh); });
    }
    const ConstImageView old = LocateHeld(average);
    if (!old) return Status::kInvalidAverage;
    if (!SameSize(old, fresh)) return Status::kOtherSize;
    return ReplaceImage(average, Status::kNoMemory, [&] { return Mean(old, fresh, count); });
}

std::int32_t TQ_CALL tqAverageImages(TqImage** out, const TqImage* a, const TqImage* b) {
    return StoreFromPair(out, a, b, [](const ConstImageView& first, const ConstImageView& second) {
        return Mean(first, second, 2);
    });
}

std::int32_t TQ_CALL tqRootSumSquare(TqImage** out, const TqImage* a, const TqImage* b, float weightA,
                                     float weightB) {
    return StoreFromPair(out, a, b, [&](const ConstImageView& first, const ConstImageView& second) {
        OwnedImage result(first, NewPels::kUnwritten);
        const float larger = std::max(weightA, weightB);
        kernels::RootSumSquare(first.pels, second.pels, weightA / larger, weightB / larger,
                               result.View().pels, first.Count());
        return result;
    });
}
