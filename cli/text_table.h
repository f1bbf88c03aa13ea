#pragma once

#include <string>
#include <utility>
#include <vector>

namespace cli {

/// Lines of cells, aligned by column: the first to the left, figures to the right.
class TextTable {
  public:
    void AddLine(std::vector<std::string> cells) { lines_.push_back(std::move(cells)); }
    std::string Text() const;

  private:
    std::vector<std::vector<std::string>> lines_;
};

}  // namespace cli
