#include "stray_light.h"

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <vector>

#include "failure.h"
#include "json_file.h"
#include "photometric_header.h"
#include "tqimage/stray_light.h"

namespace cli {

const char kStrayLightForm[] = R"(
--stray-light FILE, a JSON object:
  {"image": "stray.png", "fractionPerGrey": 1e-6, "center": [1999.5, 1499.5]}
  The image, a grey one of the unbinned sensor, is looked for beside the file. Its grey levels (signed; 65535
  stands for no data) times fractionPerGrey are the fractions of the mean level to subtract; center is where
  the axis meets it, its middle when left out.
)";

std::string RemoveStrayLight(const std::string& path, HostImage& image) {
    NamedValues values(path);
    const std::string name = (std::filesystem::path(path).parent_path() / values.Text("image")).string();
    const double fraction = values.Number("fractionPerGrey");
    if (!(std::fabs(fraction) <= static_cast<double>(std::numeric_limits<float>::max()))) {
        FailFile(path, "fractionPerGrey is too large");
    }
    // The library takes the factor where other images have their scale.
    PhotometricHeader header;
    header.luxPerGrey = static_cast<float>(fraction);
    if (values.Has("center")) {
        const std::vector<double> center = values.Numbers("center", 2, 2);
        if (!(std::fabs(center[0]) < kFarthestCenter && std::fabs(center[1]) < kFarthestCenter)) {
            FailFile(path, "center is too far away");
        }
        header.center = {static_cast<float>(center[0]), static_cast<float>(center[1])};
    }
    values.RefuseOthers();

    const GreyImage pels = ReadImage(name);
    const HostImage correction(pels, MakeHeader(header, pels.cols, pels.rows));
    const std::int32_t status = tqApplyStrayLightCorrection(image.Address(), correction.Get());
    if (status == -7 || status == -8) {
        FailMeasurement(path, "its centre does not reach the image's centre (see --center)");
    }
    Require(status, path, "the stray light correction");
    return "stray light of " + path + " subtracted";
}

}  // namespace cli
