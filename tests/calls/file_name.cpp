#include <filesystem>
#include <random>

#include "arguments.h"

namespace tqtest {

std::string Argument<const char*>::FileName() {
    static const std::string name = [] {
        std::error_code ignored;
        auto folder = std::filesystem::temp_directory_path(ignored);
        // Of its own for each process: the tests run side by side.
        return (folder / ("tqimage_call_" + std::to_string(std::random_device()()))).string();
    }();
    return name;
}

}  // namespace tqtest
