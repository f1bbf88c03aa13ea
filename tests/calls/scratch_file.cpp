#include "scratch_file.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace tqtest {

ScratchFile::~ScratchFile() {
    std::remove(Name());
}

bool ScratchFile::Exists() const {
    return std::ifstream(name_).good();
}

std::vector<std::uint8_t> ScratchFile::Bytes() const {
    std::ifstream file(name_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void ScratchFile::Write(const std::vector<std::uint8_t>& bytes) const {
    std::ofstream file(name_, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

const std::string& ScratchFile::NameOfThread() {
    thread_local const std::string name = [] {
        std::error_code ignored;
        const auto folder = std::filesystem::temp_directory_path(ignored);
        return (folder / ("tqimage_call_" + std::to_string(std::random_device()()))).string();
    }();
    return name;
}

}  // namespace tqtest
