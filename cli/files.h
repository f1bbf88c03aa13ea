#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct CloseStream {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using Stream = std::unique_ptr<std::FILE, CloseStream>;

/// Opens a file; a failure is reported under name. What was written is complete when Close returns.
Stream OpenStream(const std::string& name, const std::string& file, const char* mode);
void Close(const std::string& name, Stream stream);

/// The whole file. Files beyond what the largest image could need are refused before they are read.
std::string ReadFile(const std::string& path);

/// Replaces what file holds; a failure is reported under name.
void WriteBytes(const std::string& name, const std::string& file, std::string_view bytes);

/// A file that appears under its own name complete or not at all: it is written under a temporary name beside
/// it, renamed by Commit, and removed when it is given up.
class OutputFile {
  public:
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::string& Path() const noexcept { return path_; }
    /// Where the bytes go until Commit; the file exists already, empty.
    const std::string& WorkingPath() const noexcept { return working_; }
    void Write(std::string_view bytes) { WriteBytes(path_, working_, bytes); }
    void Commit();

  private:
    std::string path_;
    std::string working_;
};

/// The files of one command: none appears before all are written.
class OutputFiles {
  public:
    OutputFile& Add(const std::string& path) {
        return *files_.emplace_back(std::make_unique<OutputFile>(path));
    }
    void Commit() {
        for (const auto& file : files_)
            file->Commit();
    }

  private:
    std::vector<std::unique_ptr<OutputFile>> files_;
};

}  // namespace cli
