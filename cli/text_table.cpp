#include "text_table.h"

#include <algorithm>
#include <cstddef>

namespace cli {

std::string TextTable::Text() const {
    std::vector<std::size_t> widths;
    for (const auto& line : lines_) {
        widths.resize(std::max(widths.size(), line.size()));
        for (std::size_t index = 0; index < line.size(); ++index) {
            widths[index] = std::max(widths[index], line[index].size());
        }
    }
    std::string text;
    for (const auto& line : lines_) {
        std::string aligned;
        for (std::size_t index = 0; index < line.size(); ++index) {
            const std::string blanks(widths[index] - line[index].size(), ' ');
            aligned += index == 0 ? line[index] + blanks : "  " + blanks + line[index];
        }
        text += aligned.substr(0, aligned.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

}  // namespace cli
