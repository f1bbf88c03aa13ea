#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tqtest {

/// A file that one call writes or reads, removed with the scope. Each thread of each process has its own.
class ScratchFile {
  public:
    ScratchFile() = default;
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile();

    const char* Name() const { return name_.c_str(); }
    bool Exists() const;
    /// Nothing when there is no file.
    std::vector<std::uint8_t> Bytes() const;
    void Write(const std::vector<std::uint8_t>& bytes) const;

  private:
    static const std::string& NameOfThread();

    std::string name_ = NameOfThread();
};

}  // namespace tqtest
