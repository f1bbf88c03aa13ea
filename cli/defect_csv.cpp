#include "defect_csv.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "failure.h"
#include "files.h"
#include "text.h"

namespace cli {
namespace {

constexpr char kHead[] = "type,x,y,start,end";

/// The types in the order of their numbers, and which of x, y, start, end each one reads.
struct DefectType {
    const char* name;
    std::array<bool, 4> reads;
};
constexpr DefectType kTypes[] = {
    {"pel", {true, true, false, false}},           {"column", {true, false, false, false}},
    {"column-segment", {true, false, true, true}}, {"row", {false, true, false, false}},
    {"row-segment", {false, true, true, true}},    {"block", {true, true, true, true}},
};
constexpr auto kTypeCount = static_cast<std::int32_t>(std::size(kTypes));

std::optional<std::int32_t> ParseType(std::string_view text) {
    const auto number = ParseInt(text);
    if (number) return *number >= 0 && *number < kTypeCount ? number : std::nullopt;
    for (std::int32_t type = 0; type < kTypeCount; ++type) {
        if (text == kTypes[type].name) return type;
    }
    return std::nullopt;
}

Defect ParseRecord(const std::string& place, std::string_view line) {
    auto fields = Split(line, ',');
    if (fields.size() > 5) FailFile(place, "more than five fields");
    // Trailing fields that the type does not use may be missing altogether.
    fields.resize(5);
    const auto type = ParseType(Trim(fields[0]));
    if (!type) FailFile(place, "unknown defect type " + std::string(Trim(fields[0])));
    Defect defect{*type};
    for (std::size_t index = 1; index < 5; ++index) {
        const std::string_view field = Trim(fields[index]);
        if (field.empty() && !kTypes[*type].reads[index - 1]) continue;
        const auto value = ParseInt(field);
        if (!value) {
            const char* const names[] = {"type", "x", "y", "start", "end"};
            FailFile(place, Format("%s of a %s is not a whole number", names[index], kTypes[*type].name));
        }
        defect[index] = *value;
    }
    return defect;
}

}  // namespace

std::vector<Defect> ReadDefects(const std::string& path) {
    const std::string bytes = ReadFile(path);
    std::vector<Defect> defects;
    bool headSeen = false;
    int number = 0;
    for (const std::string_view whole : Split(bytes, '\n')) {
        ++number;
        const std::string_view line = Trim(whole);
        if (line.empty() || line.front() == '#') continue;
        const std::string place = Format("%s: line %d", path.c_str(), number);
        if (headSeen) {
            defects.push_back(ParseRecord(place, line));
            continue;
        }
        if (line != kHead) FailFile(place, std::string("the header line ") + kHead + " is missing");
        headSeen = true;
    }
    if (!headSeen) FailFile(path, std::string("the header line ") + kHead + " is missing");
    return defects;
}

std::string FormatDefects(const std::vector<Defect>& defects) {
    std::string text = std::string(kHead) + "\n";
    for (const Defect& defect : defects) {
        const DefectType& type = kTypes[defect[0]];
        text += type.name;
        for (std::size_t index = 1; index < 5; ++index) {
            text += type.reads[index - 1] ? Format(",%d", defect[index]) : ",";
        }
        text += '\n';
    }
    return text;
}

}  // namespace cli
