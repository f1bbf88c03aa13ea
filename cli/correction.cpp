#include "correction.h"

#include <algorithm>

#include "defect_csv.h"
#include "failure.h"
#include "keystone.h"
#include "lens_map.h"
#include "stray_light.h"
#include "text.h"
#include "tqimage/defects.h"
#include "tqimage/distortion.h"
#include "tqimage/point_operations.h"

namespace cli {
namespace {

// The largest sensor that a radial map is computed for: its entries take eight bytes each, so this side
// already means two gigabytes.
constexpr std::int64_t kLargestSensorSide = 16384;

std::string SubtractDark(const std::string& path, int bitsPerPel, const std::string& darkPath,
                         HostImage& image) {
    const GreyImage pels = ReadImage(darkPath);
    TqImageHeader header = image.Header();
    if (pels.cols != header.PelCols || pels.rows != header.PelRows) {
        FailMeasurement(darkPath, Format("%d x %d pels, but %s has %d x %d", pels.cols, pels.rows,
                                         path.c_str(), header.PelCols, header.PelRows));
    }
    if (pels.bitsPerPel != bitsPerPel) {
        FailMeasurement(darkPath,
                        Format("%d bits a pel, but %s has %d", pels.bitsPerPel, path.c_str(), bitsPerPel));
    }
    // A dark image's centre is its offset inside the image.
    header.CenterCol = 0.0f;
    header.CenterRow = 0.0f;
    const HostImage dark(pels, header);
    Require(tqSubtractImage(image.Address(), dark.Get()), darkPath, "the dark subtraction");
    return "dark image " + darkPath + " subtracted";
}

std::string RepairDefects(const CorrectionOptions& options, HostImage& image) {
    const std::vector<Defect> defects = ReadDefects(options.defects);
    std::string done = Format("%zu defects of %s repaired", defects.size(), options.defects.c_str());
    if (defects.empty()) return done;
    Int32Array list(defects.size(), 5);
    for (std::size_t record = 0; record < defects.size(); ++record) {
        for (std::size_t field = 0; field < 5; ++field)
            list.Put(record, field, defects[record][field]);
    }
    Require(tqRemoveBadPixels(image.Get(), options.defectOrigin[0], options.defectOrigin[1],
                              options.defectWindow[0], options.defectWindow[1], list.Address()),
            options.defects, "the repair of a defect");
    return done;
}

LensMap MakeRadialMap(const std::string& coefficients, const TqImageHeader& header) {
    const std::int64_t cols = std::int64_t{header.PelCols} * header.BinCols;
    const std::int64_t rows = std::int64_t{header.PelRows} * header.BinRows;
    if (cols > kLargestSensorSide || rows > kLargestSensorSide) {
        FailMeasurement("--lens-radial", "the unbinned sensor is too large");
    }
    const std::array<double, 2> center{static_cast<double>(header.CenterCol) * header.BinCols,
                                       static_cast<double>(header.CenterRow) * header.BinRows};
    const RadialLens lens(ParseRadialCoefficients(coefficients), center, static_cast<std::int32_t>(cols),
                          static_cast<std::int32_t>(rows));
    if (!lens.IsMonotone()) FailUsage("--lens-radial " + coefficients + ": no lens folds its image over");
    return LensMap::FromRadial(lens, center, static_cast<std::int32_t>(cols),
                               static_cast<std::int32_t>(rows));
}

LensMap MakeLensMap(const CorrectionOptions& options, const TqImageHeader& header) {
    if (!options.lensMap.empty()) return LensMap::Read(options.lensMap);
    if (!options.lensRadial.empty()) return MakeRadialMap(options.lensRadial, header);
    return ReadLensModel(options.lensModel, options.lensSetting, header);
}

std::string CorrectLens(const CorrectionOptions& options, HostImage& image) {
    const LensMap map = MakeLensMap(options, image.Header());
    const bool radial = !options.lensRadial.empty();
    const std::string file = options.lensMap + options.lensModel;  // at most one of them was given
    const std::string source = radial ? "--lens-radial" : file;
    const std::int32_t status = tqCorrectLensDistortion(image.Address(), map.Get());
    if (status == -3) FailMeasurement(source, "the map is smaller than the image");
    if (status == -7 || status == -8) {
        FailMeasurement(source, "the map's centre does not reach the image's centre (see --center)");
    }
    Require(status, source, "the lens correction");
    return "lens distortion corrected " + (radial ? "with " + options.lensRadial : "through " + file);
}

}  // namespace

std::vector<std::string> Correct(const std::string& path, Input& input, const CorrectionOptions& options,
                                 const Progress& progress) {
    HostImage& image = input.image;
    std::vector<std::string> done;
    if (!options.dark.empty()) {
        progress.Stage("subtracting " + options.dark);
        done.push_back(SubtractDark(path, input.bitsPerPel, options.dark, image));
    }
    if (!options.defects.empty()) {
        progress.Stage("repairing the defects of " + options.defects);
        done.push_back(RepairDefects(options, image));
    }
    if (!options.strayLight.empty()) {
        progress.Stage("subtracting stray light");
        done.push_back(RemoveStrayLight(options.strayLight, image));
    }
    if (!options.lensMap.empty() || !options.lensRadial.empty() || !options.lensModel.empty()) {
        progress.Stage("correcting the lens distortion");
        done.push_back(CorrectLens(options, image));
    }
    if (!options.keystone.empty()) {
        progress.Stage("removing the keystone");
        done.push_back(RemoveKeystone(options.keystone, image));
    }
    return done;
}

}  // namespace cli
