#include "input.h"

#include "image_file.h"

namespace cli {

Input ReadInput(const std::string& path, const HeaderOptions& options, const Progress& progress) {
    const PhotometricHeader known = FindHeader(path, options);
    progress.Stage("reading " + path);
    const GreyImage pels = ReadImage(path);
    return {known, pels.bitsPerPel, HostImage(pels, MakeHeader(known, pels.cols, pels.rows))};
}

}  // namespace cli
