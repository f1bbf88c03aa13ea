#pragma once

#include <cstdint>
#include <utility>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"

namespace tq {

inline constexpr std::int32_t kInvalidEqualisationSource = -2;
inline constexpr std::int32_t kEqualisationNotCreated = -3;
inline constexpr std::int32_t kNoHistogram = -4;

/// Lets fill(result), which returns a status, write the pels and figures of a new block with the source's
/// header, and hands the block to the host. The block that `out` holds goes before anything can fail, so that
/// a failure leaves null: hosts take that for "no result". When it is the source it stays until its last use.
template <class Fill>
std::int32_t ProduceEqualised(TqImage** out, const TqImage* source, const ConstImageView& view, Fill&& fill) {
    if (*out != source) FreeHostBlock(out);
    OwnedImage result;
    std::int32_t status = Guarded(kEqualisationNotCreated, [&] {
        result = OwnedImage(view, NewPels::kUnwritten);
        return 0;
    });
    if (status == 0) status = Guarded(kNoHistogram, [&] { return fill(result.View()); });
    if (status == 0) {
        CommitImage(out, std::move(result));
    } else {
        FreeHostBlock(out);
    }
    return status;
}

}  // namespace tq
