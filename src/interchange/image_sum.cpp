#include "tqimage/image_sum.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "measure/span_consumers.h"

using namespace tq;

namespace {

constexpr std::int32_t kOk = 0;
constexpr std::int32_t kFailed = -1;

constexpr double kLargestTotal = 4294967295.0;

std::int32_t StepOf(const TqImageHeader& header) noexcept {
    const double excess = std::nearbyint(header.TotalPelValue / kLargestTotal);
    if (!(excess > 0.0)) return 1;
    return TruncToInt32(std::min(1.0 + excess, double{std::numeric_limits<std::int32_t>::max()}));
}

/// pel / step by a multiplication, for steps that a pel can reach. The factor exceeds 2^32 / step by at most
/// 1, so a product is too large by less than 2^16; the exact pel x 2^32 / step lies at least 2^32 / step, and
/// so more than 2^16, below the multiple of 2^32 at which the quotient would change.
class PelDivider {
  public:
    explicit PelDivider(std::uint32_t step) noexcept : factor_((std::uint64_t{1} << 32) / step + 1) {}
    std::uint32_t operator()(Pel pel) const noexcept {
        return static_cast<std::uint32_t>((pel * factor_) >> 32);
    }

  private:
    std::uint64_t factor_;
};

/// Writes the entries of the pels from the step on, one behind the other, and returns their number. It is
/// `room`, which they were counted for, unless another thread writes the image meanwhile.
std::int32_t PutEntries(const ConstImageView& image, std::int32_t step, std::int32_t room,
                        TqImageSumEntry* entries) noexcept {
    const PelDivider quotient(static_cast<std::uint32_t>(step));
    std::uint32_t total = 0;
    std::int32_t count = 0;
    for (std::size_t i = 0; i < image.Count() && count < room; ++i) {
        const Pel pel = image.pels[i];
        if (pel < step) continue;
        total += quotient(pel);
        entries[count++] = {total, static_cast<std::uint32_t>(i)};
    }
    return count;
}

std::unique_ptr<std::uint8_t[]> MakeSum(const ConstImageView& image) {
    const std::int32_t step = StepOf(*image.header);
    TotalAtLeast kept(step);
    kept(image.pels, image.Count());
    // At most 8000 x 8000 entries, half a gigabyte.
    const auto count = static_cast<std::int32_t>(kept.Count());
    std::unique_ptr<std::uint8_t[]> block(
        new std::uint8_t[GridBytes(sizeof(TqImageSum), sizeof(TqImageSumEntry), count, 1)]);
    auto* const sum = reinterpret_cast<TqImageSum*>(block.get());
    *sum = {*image.header, step, count, {}};
    sum->Count = PutEntries(image, step, count, reinterpret_cast<TqImageSumEntry*>(sum + 1));
    return block;
}

/// False when an entry names a pel that the image has not.
bool PutPels(const TqImageSum& sum, const ImageView& image) noexcept {
    const auto* entries = reinterpret_cast<const TqImageSumEntry*>(&sum + 1);
    std::uint32_t before = 0;
    for (std::int32_t k = 0; k < sum.Count; ++k) {
        const auto [total, index] = entries[k];
        if (index >= image.Count()) return false;
        image.pels[index] = static_cast<Pel>((total - before) * static_cast<std::uint32_t>(sum.Step));
        before = total;
    }
    return true;
}

}  // namespace

std::int32_t TQ_CALL tqImageToImageSum(TqImageSum** sum, const TqImage* image) {
    const ConstImageView source = LocateImage(image);
    if (sum == nullptr || !source) return kFailed;
    return Guarded(kFailed, [&] {
        std::unique_ptr<std::uint8_t[]> block = MakeSum(source);
        FreeHostBlock(sum);
        *sum = reinterpret_cast<TqImageSum*>(block.release());
        return kOk;
    });
}

std::int32_t TQ_CALL tqImageSumToImage(TqImage** image, const TqImageSum* sum) {
    if (image == nullptr || sum == nullptr) return kFailed;
    return Guarded(kFailed, [&] {
        OwnedImage restored(sum->Header.PelCols, sum->Header.PelRows);
        restored.Header() = sum->Header;
        const ImageView view = restored.View();
        if (sum->Count < 0 || static_cast<std::size_t>(sum->Count) > view.Count()) return kFailed;
        if (!PutPels(*sum, view)) return kFailed;
        CommitImage(image, std::move(restored));
        return kOk;
    });
}
