#include "options.h"

#include <limits>

#include "failure.h"
#include "text.h"

namespace cli {

std::array<std::int32_t, 2> ParsePair(const char* option, const std::string& text, std::int32_t least) {
    const auto values = ParseInts(text, 1, 2);
    if (!values || values->front() < least || values->back() < least) {
        const bool any = least == std::numeric_limits<std::int32_t>::min();
        FailUsage(std::string(option) + " takes one or two whole numbers" +
                  (any ? "" : Format(", %d at least", least)) + ", not " + text);
    }
    return {values->front(), values->back()};
}

std::vector<Region> ParseRegions(const std::vector<std::string>& arguments) {
    std::vector<Region> regions;
    regions.reserve(arguments.size());
    for (const std::string& argument : arguments)
        regions.push_back(ParseRegion(argument));
    if (regions.empty()) regions.push_back(ParseRegion("image=rect:0,0,0,0"));
    CheckNames(regions);
    return regions;
}

}  // namespace cli
