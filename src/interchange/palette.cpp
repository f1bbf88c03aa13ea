#include "interchange/palette.h"

#include <cstddef>

namespace tq {
namespace {

constexpr PaletteEntry kWhite{255, 255, 255, 0};

/// Entries below this are white in the palettes that set off the darkest levels: paper in a printed report.
constexpr std::size_t kWhiteEntries = 16;

/// A colour that the false colours pass through, and the entry where they do.
struct ColourStop {
    int index;
    PaletteEntry colour;
};

/// Chosen by eye: neighbouring levels stay apart in hue, and the brightest pale out instead of ending in
/// white.
constexpr ColourStop kFalseColours[] = {
    {18, {170, 0, 170, 0}},    {32, {170, 0, 170, 0}},    {64, {255, 0, 85, 0}},   {96, {170, 170, 0, 0}},
    {128, {170, 255, 0, 0}},   {160, {0, 255, 128, 0}},   {192, {0, 170, 255, 0}}, {224, {0, 0, 255, 0}},
    {254, {198, 198, 255, 0}}, {255, {203, 203, 255, 0}},
};

/// The straight line between two levels, rounded to nearest, halves to even.
std::uint8_t Between(int from, int to, int step, int steps) noexcept {
    const int scaled = from * steps + (to - from) * step;
    const int whole = scaled / steps;
    const int twice = 2 * (scaled % steps);
    const bool up = twice > steps || (twice == steps && whole % 2 != 0);
    return static_cast<std::uint8_t>(whole + (up ? 1 : 0));
}

Palette FalseColours() noexcept {
    Palette palette;
    for (int i = 0; i < kFalseColours[0].index; ++i) {
        const auto level = static_cast<std::uint8_t>(10 * i);
        palette[static_cast<std::size_t>(i)] = {level, 0, level, 0};
    }
    for (std::size_t stop = 1; stop < std::size(kFalseColours); ++stop) {
        const auto& [first, from] = kFalseColours[stop - 1];
        const auto& [last, to] = kFalseColours[stop];
        for (int i = first; i <= last; ++i) {
            palette[static_cast<std::size_t>(i)] = {Between(from.blue, to.blue, i - first, last - first),
                                                    Between(from.green, to.green, i - first, last - first),
                                                    Between(from.red, to.red, i - first, last - first), 0};
        }
    }
    return palette;
}

/// The ramp of the channels whose factor is 1.
Palette Ramp(int blue, int green, int red) noexcept {
    Palette palette;
    for (int i = 0; i < 256; ++i) {
        palette[static_cast<std::size_t>(i)] = {static_cast<std::uint8_t>(blue * i),
                                                static_cast<std::uint8_t>(green * i),
                                                static_cast<std::uint8_t>(red * i), 0};
    }
    return palette;
}

Palette WhiteForDark(Palette palette) noexcept {
    for (std::size_t i = 0; i < kWhiteEntries; ++i)
        palette[i] = kWhite;
    return palette;
}

}  // namespace

Palette GreyRamp() noexcept {
    return Ramp(1, 1, 1);
}

std::optional<Palette> MakePalette(std::int32_t code) noexcept {
    switch (code) {
        case 0:
            return std::nullopt;
        case 1:
            return WhiteForDark(GreyRamp());
        case 2:
            return WhiteForDark(FalseColours());
        case 3:
            return Ramp(0, 0, 1);
        case 4:
            return Ramp(0, 1, 0);
        case 5:
            return Ramp(1, 0, 0);
        case -1:
            return FalseColours();
        default:
            return GreyRamp();
    }
}

}  // namespace tq
