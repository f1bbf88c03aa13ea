#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "library.h"
#include "progress.h"

namespace cli {

/// What is to be corrected; empty paths and texts leave a step out.
struct CorrectionOptions {
    std::string dark;
    std::string defects;
    std::array<std::int32_t, 2> defectWindow{3, 3};
    std::array<std::int32_t, 2> defectOrigin{0, 0};
    std::string lensMap;
    std::string lensRadial;
};

/// Subtracts the dark image, repairs the defects, corrects the lens, in this order: a defect differs from the
/// dark image as much as from its neighbours, and a lens correction would spread it. Returns one line a step
/// for the report.
std::vector<std::string> Correct(const std::string& path, int bitsPerPel, const CorrectionOptions& options,
                                 const Progress& progress, HostImage& image);

}  // namespace cli
