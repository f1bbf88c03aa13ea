#include "files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "failure.h"

namespace cli {
namespace {

// A plain PGM of 8000 x 8000 pels writes each in at most six characters; a lens map of that size takes eight
// bytes a pel and its head.
constexpr std::int64_t kLargestFile = 8000LL * 8000 * 8 + 4096;

}  // namespace

Stream OpenStream(const std::string& name, const std::string& file, const char* mode) {
    Stream stream(std::fopen(file.c_str(), mode));
    if (!stream) FailFile(name, std::strerror(errno));
    return stream;
}

void Close(const std::string& name, Stream stream) {
    // A full disk may show itself only when the buffer is written out.
    if (std::fclose(stream.release()) != 0) FailFile(name, std::strerror(errno));
}

std::string ReadFile(const std::string& path) {
    const Stream file = OpenStream(path, path, "rb");
    struct stat status {};
    if (fstat(fileno(file.get()), &status) != 0) FailFile(path, std::strerror(errno));
    if (S_ISDIR(status.st_mode)) FailFile(path, std::strerror(EISDIR));
    std::string bytes;
    char buffer[1 << 16];
    // Read to the end rather than to the stated size: pipes state none.
    while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file.get())) {
        bytes.append(buffer, count);
        if (static_cast<std::int64_t>(bytes.size()) > kLargestFile) FailFile(path, "the file is too large");
    }
    if (std::ferror(file.get())) FailFile(path, std::strerror(errno));
    return bytes;
}

void WriteBytes(const std::string& name, const std::string& file, std::string_view bytes) {
    Stream stream = OpenStream(name, file, "wb");
    const bool whole = std::fwrite(bytes.data(), 1, bytes.size(), stream.get()) == bytes.size();
    if (!whole) FailFile(name, std::strerror(errno));
    Close(name, std::move(stream));
}

OutputFile::OutputFile(const std::string& path) : path_(path) {
    if (path.empty()) FailUsage("an output file needs a name");
    struct stat status {};
    // Renaming over a device or a pipe would replace it by a plain file.
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) FailFile(path, "is not a plain file");
    const std::string working = path + ".part-" + std::to_string(getpid());
    const int descriptor = open(working.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) FailFile(path, std::strerror(errno));
    close(descriptor);
    working_ = working;
}

OutputFile::~OutputFile() {
    if (!working_.empty()) unlink(working_.c_str());
}

void OutputFile::Commit() {
    if (std::rename(working_.c_str(), path_.c_str()) != 0) FailFile(path_, std::strerror(errno));
    working_.clear();
}

}  // namespace cli
