#include <utility>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/replaced_image.h"
#include "kernels/grey_arithmetic.h"
#include "measure/image_values.h"
#include "process/pel_runs.h"
#include "tqimage/image_arithmetic.h"

namespace tq {
namespace {

constexpr std::int32_t kOk = 0;

struct DivideStatus {
    static constexpr std::int32_t kInvalidNumerator = -2, kInvalidDenominator = -3, kNotMade = -4;
};
struct NormalizeStatus {
    static constexpr std::int32_t kInvalidImage = -2, kInvalidReference = -3, kOtherSize = -4, kNoMemory = -5,
                                  kBlackReference = -8;
};

/// The largest ratio becomes this pel; hosts rely on the room above it.
constexpr double kLargestRatioPel = 65000.0;

/// The block that an output held on entry. It goes before anything is validated, but an input of the same
/// call has to last until the end of it.
class DisplacedBlock {
  public:
    DisplacedBlock(TqImage** out, const TqImage* a, const TqImage* b) {
        if (out == nullptr) return;
        block_ = std::exchange(*out, nullptr);
        if (block_ != a && block_ != b) FreeHostBlock(&block_);
    }
    DisplacedBlock(const DisplacedBlock&) = delete;
    DisplacedBlock& operator=(const DisplacedBlock&) = delete;
    ~DisplacedBlock() { FreeHostBlock(&block_); }

  private:
    TqImage* block_ = nullptr;
};

OwnedImage Ratios(const ConstImageView& numerator, const ConstImageView& denominator) {
    OwnedImage result(numerator, NewPels::kUnwritten);
    const ImageView out = result.View();
    const kernels::LuminanceRatio ratio{numerator.header->LuxPerGrey, denominator.header->LuxPerGrey, 0.0};
    const double largest =
        kernels::LargestRatio(-1.0, ratio, numerator.pels, denominator.pels, numerator.Count());
    out.header->MaxPelValue = static_cast<float>(kLargestRatioPel);
    out.header->LuxPerGrey = static_cast<float>(largest / kLargestRatioPel);
    // By the scale as stored, so that a pel times the header's scale is the ratio again.
    kernels::WriteRatios(ratio, numerator.pels, denominator.pels, out.header->LuxPerGrey, out.pels,
                         out.Count());
    return result;
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqDivideImage(TqImage** out, const TqImage* numerator, const TqImage* denominator) {
    using Status = DivideStatus;
    const DisplacedBlock displaced(out, numerator, denominator);
    const ConstImageView over = LocateImage(numerator);
    if (out == nullptr || !over) return Status::kInvalidNumerator;
    const ConstImageView under = LocateImage(denominator);
    if (!under) return Status::kInvalidDenominator;
    if (!SameSize(over, under)) return Status::kNotMade;
    return Guarded(Status::kNotMade, [&] {
        *out = Ratios(over, under).Release();
        return kOk;
    });
}

std::int32_t TQ_CALL tqNormalizeImage(TqImage** image, TqImage* reference) {
    using Status = NormalizeStatus;
    const ConstImageView source = LocateHeld(image);
    if (!source) return Status::kInvalidImage;
    const ImageView flat = LocateImage(reference);
    if (!flat) return Status::kInvalidReference;
    if (!SameSize(source, flat)) return Status::kOtherSize;
    return Guarded(Status::kNoMemory, [&] {
        // Without a neighbourhood the stored maximum stands.
        StoreLargestNeighbourhoodMean(flat);
        const float whole = flat.header->MaxPelValue;
        if (whole == 0.0f) return Status::kBlackReference;
        OwnedImage result(source, NewPels::kUnwritten);
        const ImageView out = result.View();
        const auto pels = ProduceMeasured(out, [&](std::size_t first, std::size_t count) {
            kernels::DivideByFlatField(source.pels + first, flat.pels + first, whole, out.pels + first,
                                       count);
        });
        StoreImageValues(out, pels);
        CommitImage(image, std::move(result));
        return kOk;
    });
}
