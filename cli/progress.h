#pragma once

#include <unistd.h>

#include <cstdio>
#include <string>

namespace cli {

/// Tells on stderr what the program is at: to a person at a terminal, or when asked to, never into a log by
/// itself.
class Progress {
  public:
    explicit Progress(bool asked) : shown_(asked || isatty(STDERR_FILENO) != 0) {}
    void Stage(const std::string& what) const {
        if (shown_) std::fprintf(stderr, "tqimage: %s\n", what.c_str());
    }

  private:
    bool shown_;
};

}  // namespace cli
