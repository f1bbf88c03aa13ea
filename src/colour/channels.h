#pragma once

#include <array>
#include <cstdint>

#include "core/image_view.h"
#include "kernels/channel_mix.h"

namespace tq {

/// The nine coefficients of a host's matrix in row order.
using ColourMatrix = std::array<double, 9>;

struct Xyz {
    double x;
    double y;
    double z;
};

constexpr Xyz Transform(const ColourMatrix& m, double a, double b, double c) noexcept {
    return {m[0] * a + m[1] * b + m[2] * c, m[3] * a + m[4] * b + m[5] * c, m[6] * a + m[7] * b + m[8] * c};
}

/// x and y, or u' and v'.
struct Chromaticity {
    double first;
    double second;
};

/// x and y of CIE 1931, both 0 for black.
constexpr Chromaticity ToXy(const Xyz& at) noexcept {
    const double sum = at.x + at.y + at.z;
    if (sum == 0.0) return {0.0, 0.0};
    return {at.x / sum, at.y / sum};
}

/// u' and v' of CIE 1976, both 0 for black.
constexpr Chromaticity ToUv(const Xyz& at) noexcept {
    const double sum = at.x + 15.0 * at.y + 3.0 * at.z;
    if (sum == 0.0) return {0.0, 0.0};
    return {4.0 * at.x / sum, 9.0 * at.y / sum};
}

/// Three valid images of one size; pel (column, row) of each shows the same point.
struct Channels {
    ConstImageView first;
    ConstImageView second;
    ConstImageView third;

    kernels::ChannelRuns Run(std::int32_t row, std::int32_t firstCol, std::int32_t count) const noexcept {
        return {first.Row(row) + firstCol, second.Row(row) + firstCol, third.Row(row) + firstCol,
                static_cast<std::size_t>(count)};
    }
    kernels::ChannelRuns All() const noexcept { return {first.pels, second.pels, third.pels, first.Count()}; }
};

/// What a function says to channels that it cannot use, in the order of the checks.
struct ChannelCodes {
    std::int32_t null;
    std::int32_t first;
    std::int32_t second;
    std::int32_t third;
    std::int32_t sizes;
};

/// Codes of the functions that tell every channel apart and have no further use for the numbers.
inline constexpr ChannelCodes kChannelCodes{-2, -3, -4, -5, -6};

/// 0, or the code of the first channel that is invalid or of another size.
inline std::int32_t CheckChannels(const Channels& channels, const ChannelCodes& codes) noexcept {
    if (!channels.first) return codes.first;
    if (!channels.second) return codes.second;
    if (!channels.third) return codes.third;
    const bool same = SameSize(channels.first, channels.second) && SameSize(channels.second, channels.third);
    return same ? 0 : codes.sizes;
}

/// The same for the host's pointers, of which none may be null. After a failure the channels are of no use.
inline std::int32_t LocateChannels(const TqImage* first, const TqImage* second, const TqImage* third,
                                   const ChannelCodes& codes, Channels* channels) noexcept {
    if (first == nullptr || second == nullptr || third == nullptr) return codes.null;
    *channels = {LocateImage(first), LocateImage(second), LocateImage(third)};
    return CheckChannels(*channels, codes);
}

}  // namespace tq
