#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "tqimage/base.h"

namespace cli {

/// A header's centre lies nearer than this, in pels, columns and rows.
inline constexpr double kFarthestCenter = 1e6;

/// What is known about how an image was taken. Every field may be unknown: figures that need it are then not
/// given.
struct PhotometricHeader {
    std::optional<std::array<float, 2>> pelsPerMeter;  ///< on the target, horizontal and vertical
    std::optional<std::array<float, 2>> center;        ///< where the optical axis meets the image
    std::optional<float> luxPerGrey;
    std::optional<float> distance;  ///< source to target, metres
    std::optional<std::array<std::int16_t, 2>> bin;

    bool HasScale() const { return pelsPerMeter.has_value(); }
    bool HasFrame() const { return pelsPerMeter && distance; }
};

/// The header options as they were typed; empty ones were not given.
struct HeaderOptions {
    std::string pelsPerMeter, center, luxPerGrey, distance, bin;
    std::string file;  ///< of a header
};

/// The options' values; a value that no header can hold is a usage error.
PhotometricHeader ParseHeaderOptions(const HeaderOptions& options);

/// Reads a sidecar: a JSON object with any of pelsPerMeter, center, luxPerGrey, distance and bin; pairs are
/// arrays of two, and one number stands for both of pelsPerMeter and bin.
PhotometricHeader ReadSidecar(const std::string& path);
/// The same as text. Unknown fields are left out.
std::string FormatSidecar(const PhotometricHeader& header);

/// What is known from either; the winner's fields count where both know one.
PhotometricHeader Overlay(const PhotometricHeader& base, const PhotometricHeader& winner);

/// What is known of an image file: from the options as they were typed, else from the header file, else from
/// IMAGE.json when there is one.
PhotometricHeader FindHeader(const std::string& image, const HeaderOptions& options);

/// The library's header. Unknown scales are 0, the centre is the image's middle and the binning 1 unless
/// known.
TqImageHeader MakeHeader(const PhotometricHeader& header, std::int32_t cols, std::int32_t rows);
/// Replaces what is known in a header that an image brings along.
void Correct(TqImageHeader& image, const PhotometricHeader& known);

/// The reverse: what a library's header tells; values that MakeHeader could not have put there are unknown.
PhotometricHeader ReadBack(const TqImageHeader& header);

}  // namespace cli
