#include "lens_model.h"

#include <cstdint>
#include <vector>

#include "failure.h"
#include "json_file.h"
#include "library.h"
#include "tqimage/lens_model.h"

namespace cli {

const char kLensModelForm[] = R"(
--lens-model FILE, a JSON object in pels of the unbinned sensor:
  {"center": [1999.5, 1499.5], "radius": 2500, "radial": [-0.08, 0.01, 0], "tangential": [0, 0],
   "scale": 1, "sensor": [4000, 3000], "settings": [[{"center": ...}, ...], ...]}
  With x = (column - cx) / R, y = (row - cy) / R, q = x^2 + y^2 and L = 1 + k1 q + k2 q^2 + k3 q^3 a
  corrected pel is captured at cx + R s (x L + 2 p1 x y + p2 (q + 2 x^2)) and
  cy + R s (y L + 2 p2 x y + p1 (q + 2 y^2)). Only center and radius are needed; the sensor is else the
  image's. settings holds further models, an array a position of the lens's first ring with one model a
  position of the second: --lens-setting A,B, from 0, then counts, and interpolates between positions.
)";

namespace {

// In the library's order.
using Model = std::array<double, 9>;

Model ReadModel(NamedValues& values) {
    Model model{};
    model[8] = 1.0;
    const auto take = [&](const char* name, std::size_t first, std::size_t least, std::size_t most) {
        const std::vector<double> numbers = values.Numbers(name, least, most);
        std::copy(numbers.begin(), numbers.end(), model.begin() + static_cast<std::ptrdiff_t>(first));
    };
    take("center", 0, 2, 2);
    take("radius", 2, 1, 1);
    if (values.Has("radial")) take("radial", 3, 1, 3);
    if (values.Has("tangential")) take("tangential", 6, 2, 2);
    if (values.Has("scale")) take("scale", 8, 1, 1);
    return model;
}

/// The calibrated positions, all of the first's second ones one behind the other.
struct Grid {
    std::size_t countA = 0;
    std::size_t countB = 0;
    std::vector<Model> models;
};

Grid ReadGrid(NamedValues& values) {
    Grid grid;
    const Json& rings = values.Any("settings");
    if (rings.is_null()) return grid;
    const auto refuse = [&] { FailFile(values.Path(), "settings takes arrays of models, of one length"); };
    if (!rings.is_array() || rings.empty()) refuse();
    grid.countA = rings.size();
    for (const Json& ring : rings) {
        if (!ring.is_array() || ring.empty()) refuse();
        if (grid.countB != 0 && ring.size() != grid.countB) refuse();
        grid.countB = ring.size();
        for (const Json& json : ring) {
            NamedValues model(values.Path(), json);
            grid.models.push_back(ReadModel(model));
            model.RefuseOthers();
        }
    }
    return grid;
}

/// What the library refuses with a code of its own is told in the file's words.
void CheckStatus(std::int32_t status, const std::string& path) {
    if (status == -1) FailMeasurement(path, "a sensor has 1 to 8000 columns and rows");
    if (status == -3) FailMeasurement(path, "not the coefficients of a lens (it folds its image over)");
    Require(status, path, "the lens map");
}

}  // namespace

LensMap ReadLensModel(const std::string& path, const std::optional<LensSetting>& setting,
                      const TqImageHeader& header) {
    NamedValues values(path);
    const Model standard = ReadModel(values);
    const Grid grid = ReadGrid(values);
    std::vector<double> sensor{static_cast<double>(header.PelCols) * header.BinCols,
                               static_cast<double>(header.PelRows) * header.BinRows};
    if (values.Has("sensor")) sensor = values.Numbers("sensor", 2, 2);
    values.RefuseOthers();
    if (setting && grid.models.empty()) FailFile(path, "there are no settings to choose from");

    DoubleArray table(1 + grid.models.size(), standard.size());
    for (std::size_t row = 0; row <= grid.models.size(); ++row) {
        const Model& model = row == 0 ? standard : grid.models[row - 1];
        for (std::size_t field = 0; field < model.size(); ++field)
            table.Put(row, field, model[field]);
    }
    // Sizes beyond any sensor's are the library's to refuse, but must fit into its integers.
    const auto size = [](double side) {
        return side >= 1.0 && side <= 8000.0 ? static_cast<std::int32_t>(side) : 0;
    };
    TqLensSetting chosen{size(sensor[0]),
                         size(sensor[1]),
                         static_cast<std::int32_t>(grid.countA),
                         static_cast<std::int32_t>(grid.countB),
                         -1.0f,
                         -1.0f};
    if (setting) {
        chosen.A = static_cast<float>((*setting)[0]);
        chosen.B = static_cast<float>((*setting)[1]);
    }
    TqDistortionMap* map = nullptr;
    CheckStatus(tqBuildLensDistortionImage(&map, &chosen, table.Address()), path);
    return LensMap(map);
}

}  // namespace cli
