#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "input.h"
#include "lens_model.h"

namespace cli {

/// What is to be corrected; empty paths and texts leave a step out.
struct CorrectionOptions {
    std::string dark;
    std::string defects;
    std::array<std::int32_t, 2> defectWindow{3, 3};
    std::array<std::int32_t, 2> defectOrigin{0, 0};
    std::string strayLight;
    std::string lensMap;
    std::string lensRadial;
    std::string lensModel;
    std::optional<LensSetting> lensSetting;
    std::string keystone;
};

/// Subtracts the dark image, repairs the defects, subtracts the stray light, corrects the lens, then the
/// keystone, in this order: a defect differs from the dark image as much as from its neighbours, a lens
/// correction would spread it, stray light is known where the sensor sees it, and lines are straight only
/// after the lens. Returns one line a step for the report.
std::vector<std::string> Correct(const std::string& path, Input& input, const CorrectionOptions& options,
                                 const Progress& progress);

}  // namespace cli
