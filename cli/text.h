#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// printf into a string.
[[gnu::format(printf, 1, 2)]] std::string Format(const char* pattern, ...);
/// The same for one number and a pattern of a table of figures.
std::string FormatFigure(const char* pattern, double value);

std::vector<std::string_view> Split(std::string_view text, char separator);
std::string_view Trim(std::string_view text);

/// A field of a CSV file, in quotes where it needs them.
std::string QuoteCsv(const std::string& text);

/// The whole text as one number, whatever the locale; none when anything else stands in it. Infinities and
/// NaN are not numbers here.
std::optional<std::int32_t> ParseInt(std::string_view text);
std::optional<double> ParseReal(std::string_view text);

/// Comma-separated numbers, between least and most of them.
std::optional<std::vector<double>> ParseReals(std::string_view text, std::size_t least, std::size_t most);
std::optional<std::vector<std::int32_t>> ParseInts(std::string_view text, std::size_t least,
                                                   std::size_t most);

}  // namespace cli
