#include "core/output_file.h"

#include <sys/stat.h>

namespace tq {

void RemoveRegularFile(const char* fileName) noexcept {
    struct stat info {};
    if (::stat(fileName, &info) == 0 && (info.st_mode & S_IFMT) == S_IFREG) std::remove(fileName);
}

}  // namespace tq
