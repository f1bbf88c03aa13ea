#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#if defined(__unix__)
#include <sys/resource.h>

#include <csignal>
#endif

namespace tqtest {

/// A file name that is removed with the scope.
class TempName {
  public:
    explicit TempName(const char* name) : name_(testing::TempDir() + name) {}
    TempName(const TempName&) = delete;
    TempName& operator=(const TempName&) = delete;
    ~TempName() { std::remove(name_.c_str()); }
    const char* c_str() const { return name_.c_str(); }
    operator const std::string&() const { return name_; }
    bool Exists() const { return std::ifstream(name_).good(); }
    /// Every byte of the file, line ends as they are.
    std::string Bytes() const {
        std::ifstream file(name_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::string name_;
};

#if defined(__unix__)
/// Lets this process write no file beyond `bytes`, as a full disk would.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &before_);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

  private:
    rlimit before_{};
    void (*handler_)(int) = SIG_DFL;
};
#endif

}  // namespace tqtest
