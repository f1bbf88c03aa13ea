#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

#include "images.h"

/// Matrices, channel sets and truths that the tests of colour share.
namespace tqtest {

using Matrix = std::array<float, 9>;
using Triple = std::array<double, 3>;

constexpr Matrix kIdentity{1, 0, 0, 0, 1, 0, 0, 0, 1};
/// Linear sRGB to XYZ (IEC 61966-2-1): its white is D65, (0.3127, 0.3290).
constexpr Matrix kSrgb{0.4124f, 0.3576f, 0.1805f, 0.2126f, 0.7152f, 0.0722f, 0.0193f, 0.1192f, 0.9505f};
/// Filters that overlap, so that coefficients are negative.
constexpr Matrix kMixed{1.5f, -0.75f, 0.1f, -0.5f, 1.25f, 0.01f, 0.3f, -0.2f, 2.0f};

struct ChannelSet {
    std::array<Image, 3> images;

    const TqImage* operator[](std::size_t k) const { return images[k]; }
    Triple At(std::size_t i) const {
        return {double(images[0].Pels()[i]), double(images[1].Pels()[i]), double(images[2].Pels()[i])};
    }
};

/// Noise with holes and saturated pels, and a scale of its own for each channel.
inline ChannelSet NoiseChannels(std::int32_t cols, std::int32_t rows, std::uint32_t seed) {
    ChannelSet set;
    for (std::uint32_t k = 0; k < 3; ++k) {
        set.images[k] = RandomImageWithHoles(cols, rows, seed + k, 7);
        set.images[k].Header().LuxPerGrey = 0.013f * static_cast<float>(k + 1);
    }
    set.images[1].Header().SourceDistance = 3.5f;
    return set;
}

inline ChannelSet UniformChannels(std::int32_t cols, std::int32_t rows, const std::array<int, 3>& pels) {
    ChannelSet set;
    for (std::size_t k = 0; k < 3; ++k)
        set.images[k] = MakeImage(cols, rows, [&](auto, auto) { return pels[k]; });
    return set;
}

inline Triple Multiply(const Matrix& m, const Triple& v) {
    Triple out;
    for (std::size_t k = 0; k < 3; ++k) {
        const double first = double(m[3 * k]) * v[0], second = double(m[3 * k + 1]) * v[1];
        out[k] = first + second + double(m[3 * k + 2]) * v[2];
    }
    return out;
}

/// u' and v' of CIE 1976, 0 for black.
struct Uv {
    double u, v;
};

inline Uv UvOf(const Triple& xyz) {
    const double d = xyz[0] + 15 * xyz[1] + 3 * xyz[2];
    return d == 0 ? Uv{0, 0} : Uv{4 * xyz[0] / d, 9 * xyz[1] / d};
}

inline double Distance(Uv a, Uv b) {
    return std::hypot(a.u - b.u, a.v - b.v);
}

/// What a value becomes in a pel: truncated, not a number and beyond int32 indefinite, then clamped.
inline std::uint16_t PelOf(double value) {
    if (!(std::abs(value) < 2147483648.0)) return 0;
    return static_cast<std::uint16_t>(std::fmin(std::fmax(std::trunc(value), 0.0), 65535.0));
}

/// Passes the nine coefficients of a matrix by value between the other arguments.
template <class Fn, class M, std::size_t... k>
auto WithMatrix(Fn&& fn, const M& m, std::index_sequence<k...>) {
    return fn(m[k]...);
}
template <class Fn, class M>
auto WithMatrix(Fn&& fn, const M& m) {
    return WithMatrix(std::forward<Fn>(fn), m, std::make_index_sequence<9>());
}

}  // namespace tqtest
