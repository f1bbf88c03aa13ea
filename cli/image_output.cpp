#include "image_output.h"

#include <CLI/CLI.hpp>

#include "files.h"
#include "options.h"
#include "photometric_header.h"

namespace cli {

void AddImageOutput(CLI::App& command, std::string& output, bool& progress) {
    const char* const group = "Output";
    command
        .add_option("-o,--output", output,
                    "Image to write, .png, .tif or .pgm with 16 bits; its header goes to OUTPUT.json")
        ->required()
        ->group(group);
    AddProgress(command, progress, group);
}

void WriteWithHeader(const std::string& output, const HostImage& image) {
    OutputFiles files;
    WriteImage(output, files.Add(output).WorkingPath(), ToGreyImage(image));
    files.Add(output + ".json").Write(FormatSidecar(ReadBack(image.Header())));
    files.Commit();
}

}  // namespace cli
