#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace cli {

/// One record of a defect list: type, x, y, start, end, as the library takes them.
using Defect = std::array<std::int32_t, 5>;

inline constexpr std::int32_t kDefectPel = 0;
inline constexpr std::int32_t kDefectColumn = 1;
inline constexpr std::int32_t kDefectRow = 3;

/// Reads a defect list: a header line "type,x,y,start,end", then one record a line. The type is a number 0..5
/// or its name (pel, column, column-segment, row, row-segment, block); fields that the type does not use may
/// be empty. Empty lines and lines that start with # are skipped.
std::vector<Defect> ReadDefects(const std::string& path);

/// The same as text, with names.
std::string FormatDefects(const std::vector<Defect>& defects);

}  // namespace cli
