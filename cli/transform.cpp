#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "image_output.h"
#include "input.h"
#include "options.h"
#include "transform_step.h"

namespace cli {
namespace {

/// `tqimage transform` as it was typed.
struct TransformOptions {
    std::string image;
    std::vector<std::string> steps;
    HeaderOptions header;
    std::string output;
    bool progress = false;
};

void Run(const TransformOptions& options) {
    CheckImageName(options.output);
    std::vector<TransformStep> steps;
    for (const std::string& text : options.steps)
        steps.push_back(ParseTransformStep(text));
    const Progress progress(options.progress);
    Input input = ReadInput(options.image, options.header, progress);
    for (std::size_t at = 0; at < steps.size(); ++at) {
        progress.Stage(options.steps[at]);
        Require(steps[at](input.image), options.image, options.steps[at].c_str());
    }
    progress.Stage("writing " + options.output);
    WriteWithHeader(options.output, input.image);
}

}  // namespace

void AddTransform(CLI::App& app) {
    const auto typed = std::make_shared<TransformOptions>();
    TransformOptions& options = *typed;
    CLI::App& command =
        *app.add_subcommand("transform", "Turn, mirror, crop, bin or scale an image, and its header with it");
    AddImage(command, options.image);
    command.add_option("STEPS", options.steps, "What to do, see below")->required();
    AddHeader(command, options.header);
    command.footer(kTransformSteps + ("\n" + command.get_footer()));
    AddImageOutput(command, options.output, options.progress);
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli
