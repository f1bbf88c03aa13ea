#include "interchange/text_palette.h"

#include <string_view>

namespace tq {
namespace {

constexpr std::size_t kFieldLength = 4;
/// The fourth character parts the fields and is never looked at.
constexpr std::size_t kDigits = 3;
constexpr std::size_t kFields = 4;

bool IsBlank(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// As the C library's conversion reads it in the "C" locale: blanks, a sign, digits up to the first other
/// character.
std::uint8_t ReadField(std::string_view field) noexcept {
    std::size_t i = 0;
    while (i < field.size() && IsBlank(field[i]))
        ++i;
    const bool negative = i < field.size() && field[i] == '-';
    if (i < field.size() && (field[i] == '-' || field[i] == '+')) ++i;
    int value = 0;
    for (; i < field.size() && field[i] >= '0' && field[i] <= '9'; ++i)
        value = 10 * value + (field[i] - '0');
    return static_cast<std::uint8_t>(negative ? -value : value);
}

/// Nothing is read behind the text's end, and of a longer text only what makes a palette.
std::string_view PaletteText(const char* text) noexcept {
    constexpr std::size_t kMost = kFieldLength * kFields * std::tuple_size_v<Palette>;
    std::size_t length = 0;
    while (length < kMost && text[length] != '\0')
        ++length;
    return {text, length};
}

}  // namespace

Palette ReadTextPalette(const char* text) noexcept {
    const std::string_view all = PaletteText(text);
    Palette palette{};
    const auto field = [&](std::size_t number) {
        const std::size_t start = number * kFieldLength;
        return start < all.size() ? ReadField(all.substr(start, kDigits)) : std::uint8_t{0};
    };
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const std::size_t first = i * kFields;
        palette[i] = {.blue = field(first + 2),
                      .green = field(first + 1),
                      .red = field(first),
                      .reserved = field(first + 3)};
    }
    return palette;
}

}  // namespace tq
