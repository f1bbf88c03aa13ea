#pragma once

#include <string>

#include "correction.h"

namespace CLI {
class App;
}

namespace cli {

/// The corrections as they were typed; empty texts were not given.
struct TypedCorrections {
    CorrectionOptions files;
    std::string defectWindow, defectOrigin, lensSetting;
};

/// --dark to --keystone, and below the help what their files hold.
void AddCorrections(CLI::App& command, TypedCorrections& typed);

/// What they mean together; contradictions and unreadable values are usage errors.
CorrectionOptions ParseCorrections(const TypedCorrections& typed);

}  // namespace cli
