#pragma once

#include <stdexcept>
#include <string>

namespace cli {

/// What a script learns from the program's exit.
enum class Exit { kOk = 0, kCannotMeasure = 1, kUsage = 2, kFile = 3, kOutsideExpectation = 4 };

/// Ends the command; main prints "tqimage: message" and exits with the code.
class Failure : public std::runtime_error {
  public:
    Failure(Exit code, const std::string& message) : std::runtime_error(message), code_(code) {}
    Exit Code() const noexcept { return code_; }

  private:
    Exit code_;
};

[[noreturn]] inline void FailFile(const std::string& file, const std::string& reason) {
    throw Failure(Exit::kFile, file + ": " + reason);
}
[[noreturn]] inline void FailUsage(const std::string& reason) {
    throw Failure(Exit::kUsage, reason);
}
[[noreturn]] inline void FailMeasurement(const std::string& subject, const std::string& reason) {
    throw Failure(Exit::kCannotMeasure, subject + ": " + reason);
}

}  // namespace cli
