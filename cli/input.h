#pragma once

#include <string>

#include "library.h"
#include "photometric_header.h"
#include "progress.h"

namespace cli {

/// The image that a command works on, with what is known of how it was taken.
struct Input {
    PhotometricHeader known;
    int bitsPerPel;  ///< of the file, 8 or 16
    HostImage image;
};

Input ReadInput(const std::string& path, const HeaderOptions& options, const Progress& progress);

}  // namespace cli
