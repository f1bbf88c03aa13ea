#include "keystone.h"

#include <cstdint>
#include <numbers>
#include <vector>

#include "failure.h"
#include "json_file.h"
#include "lens_map.h"
#include "text.h"
#include "tqimage/keystone.h"

namespace cli {

const char kKeystoneForm[] = R"(
--keystone FILE, a JSON object in pels of the image after the lens correction:
  {"corners": [[210, 180], [3790, 205], [3700, 2840], [305, 2810]]}
  of a flat screen: top left, top right, bottom right, bottom left; or
  {"threshold": 20000}
  the flat screen is what is brighter than this grey level: its corners are found; or
  {"marks": [[c, r], ...], "halfAngle": 40, "heightOverRadius": 0.8}
  of a screen on an upright cylinder: top left, middle, right, bottom right, middle, left; the angle is that
  about the axis from the middle to a side, in degrees.
)";

namespace {

/// A map together with the words for it.
struct Removal {
    LensMap map;
    std::string done;
};

Removal FlatScreen(NamedValues& values, const HostImage& image) {
    std::vector<double> corners(8, -1.0);
    std::int32_t threshold = 0;
    if (values.Has("threshold")) {
        const double level = values.Number("threshold");
        if (!(level >= 0.0 && level <= 65535.0)) FailFile(values.Path(), "threshold is 0 to 65535");
        threshold = static_cast<std::int32_t>(level);
    } else {
        corners = values.Points("corners", 4);
        if (corners[0] < 0.0) FailFile(values.Path(), "corners begin in the image");
    }
    TqDistortionMap* map = nullptr;
    double horizontal = 0.0;
    double vertical = 0.0;
    const std::int32_t status =
        tqCalcKeyStone(&map, image.Get(), threshold, corners.data(), &horizontal, &vertical);
    if (status == -99) FailMeasurement(values.Path(), "no pel is brighter than the threshold");
    if (status == -2) FailMeasurement(values.Path(), "the screen has no four straight borders");
    if (status == -3) FailMeasurement(values.Path(), "the corners are not those of a screen");
    Require(status, values.Path(), "the keystone map");
    std::string text;
    for (std::size_t at = 0; at < corners.size(); at += 2)
        text += Format("%s[%.3f, %.3f]", at == 0 ? "" : ", ", corners[at], corners[at + 1]);
    return {LensMap(map), Format("keystone of %s removed: corners [%s], horizontal %.3f %%, vertical %.3f %%",
                                 values.Path().c_str(), text.c_str(), horizontal, vertical)};
}

Removal Cylinder(NamedValues& values, const HostImage& image) {
    const std::vector<double> marks = values.Points("marks", 6);
    const double halfAngle = values.Number("halfAngle");
    const double heightOverRadius = values.Number("heightOverRadius");
    TqDistortionMap* map = nullptr;
    double rms = 0.0;
    const std::int32_t status = tqCalcCylinderKeyStone(
        &map, image.Get(), marks.data(), halfAngle * std::numbers::pi / 180.0, heightOverRadius, &rms);
    if (status == -2) {
        FailFile(values.Path(), "halfAngle lies between 0 and 90 degrees, heightOverRadius above 0");
    }
    if (status == -3) FailMeasurement(values.Path(), "the marks do not tell where the camera was");
    Require(status, values.Path(), "the cylinder's map");
    return {LensMap(map),
            Format("cylinder of %s unrolled: marks met within %.3f pels", values.Path().c_str(), rms)};
}

}  // namespace

std::string RemoveKeystone(const std::string& path, HostImage& image) {
    NamedValues values(path);
    const Removal removal = values.Has("marks") ? Cylinder(values, image) : FlatScreen(values, image);
    values.RefuseOthers();
    Require(tqRemoveKeystone(image.Address(), removal.map.Get()), path, "the removal of the keystone");
    return removal.done;
}

}  // namespace cli
