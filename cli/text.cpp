#include "text.h"

#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

namespace cli {
namespace {

template <typename Number>
std::optional<Number> ParseNumber(std::string_view text) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

template <typename Number, typename Parse>
std::optional<std::vector<Number>> ParseList(std::string_view text, std::size_t least, std::size_t most,
                                             Parse parse) {
    std::vector<Number> values;
    for (const std::string_view field : Split(text, ',')) {
        const auto value = parse(Trim(field));
        if (!value) return std::nullopt;
        values.push_back(*value);
    }
    if (values.size() < least || values.size() > most) return std::nullopt;
    return values;
}

}  // namespace

std::string Format(const char* pattern, ...) {
    char* text = nullptr;
    std::va_list arguments;
    va_start(arguments, pattern);
    const int length = vasprintf(&text, pattern, arguments);
    va_end(arguments);
    if (length < 0) throw std::bad_alloc();
    const std::unique_ptr<char, void (*)(void*)> owner(text, std::free);
    return {text, static_cast<std::size_t>(length)};
}

std::string FormatFigure(const char* pattern, double value) {
    char text[64];
    std::snprintf(text, sizeof text, pattern, value);
    return text;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (true) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

std::string QuoteCsv(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char letter : text) {
        if (letter == '"') quoted += '"';
        quoted += letter;
    }
    return quoted + '"';
}

std::string_view Trim(std::string_view text) {
    const char* const blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::int32_t> ParseInt(std::string_view text) {
    return ParseNumber<std::int32_t>(text);
}

std::optional<double> ParseReal(std::string_view text) {
    const auto value = ParseNumber<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::vector<double>> ParseReals(std::string_view text, std::size_t least, std::size_t most) {
    return ParseList<double>(text, least, most, ParseReal);
}

std::optional<std::vector<std::int32_t>> ParseInts(std::string_view text, std::size_t least,
                                                   std::size_t most) {
    return ParseList<std::int32_t>(text, least, most, ParseInt);
}

}  // namespace cli
