#include "correction_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>

#include "failure.h"
#include "keystone.h"
#include "options.h"
#include "radial_lens.h"
#include "stray_light.h"
#include "text.h"

namespace cli {

void AddCorrections(CLI::App& command, TypedCorrections& typed) {
    const auto add = [&](const char* name, std::string& value, const char* help) {
        command.add_option(name, value, help)->group("Corrections, in this order");
    };
    add("--dark", typed.files.dark, "Image to subtract");
    add("--defects", typed.files.defects, "CSV file: type,x,y,start,end");
    add("--defect-window", typed.defectWindow, "W[,H]: neighbourhood of a repair (3,3)");
    add("--defect-origin", typed.defectOrigin, "C[,R]: sensor position of the first pel (0,0)");
    add("--stray-light", typed.files.strayLight, "JSON file of the stray light, see below");
    add("--lens", typed.files.lensMap, "Distortion map file");
    add("--lens-radial", typed.files.lensRadial, kLensHelp);
    add("--lens-model", typed.files.lensModel, "JSON file of lens coefficients, see below");
    add("--lens-setting", typed.lensSetting, "A,B: positions of the lens's rings in that file");
    add("--keystone", typed.files.keystone, "JSON file of the screen, see below");
    command.footer(std::string(kStrayLightForm) + kLensModelForm + kKeystoneForm + "\n" +
                   command.get_footer());
}

CorrectionOptions ParseCorrections(const TypedCorrections& typed) {
    CorrectionOptions options = typed.files;
    const auto lenses = {!options.lensMap.empty(), !options.lensRadial.empty(), !options.lensModel.empty()};
    if (std::count(lenses.begin(), lenses.end(), true) > 1) {
        FailUsage("--lens, --lens-radial and --lens-model exclude each other");
    }
    if (!options.lensRadial.empty()) ParseRadialCoefficients(options.lensRadial);
    if (!typed.lensSetting.empty()) {
        const LensSetting setting = ParseNumbers<2>("--lens-setting", typed.lensSetting, {});
        if (setting[0] < 0.0 || setting[1] < 0.0) FailUsage("--lens-setting is not negative");
        if (options.lensModel.empty()) FailUsage("--lens-setting chooses from --lens-model");
        options.lensSetting = setting;
    }
    if (!typed.defectWindow.empty()) {
        options.defectWindow = ParsePair("--defect-window", typed.defectWindow, 1);
    }
    if (!typed.defectOrigin.empty()) {
        constexpr std::int32_t kAnyNumber = std::numeric_limits<std::int32_t>::min();
        options.defectOrigin = ParsePair("--defect-origin", typed.defectOrigin, kAnyNumber);
    }
    return options;
}

}  // namespace cli
