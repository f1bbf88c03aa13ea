#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "commands.h"
#include "correction_options.h"
#include "delivery.h"
#include "failure.h"
#include "image_output.h"
#include "input.h"
#include "options.h"

namespace cli {
namespace {

/// `tqimage correct` as it was typed.
struct CorrectOptions {
    std::string image;
    HeaderOptions header;
    TypedCorrections corrections;
    std::string output;
    bool progress = false;
};

void Run(const CorrectOptions& options) {
    CheckImageName(options.output);
    const CorrectionOptions corrections = ParseCorrections(options.corrections);
    const Progress progress(options.progress);
    Input input = ReadInput(options.image, options.header, progress);
    std::string done;
    for (const std::string& step : Correct(options.image, input, corrections, progress))
        done += step + "\n";
    if (done.empty()) FailUsage("there is no correction to make (see tqimage correct --help)");
    progress.Stage("writing " + options.output);
    WriteWithHeader(options.output, input.image);
    Show(done);
}

}  // namespace

void AddCorrect(CLI::App& app) {
    const auto typed = std::make_shared<CorrectOptions>();
    CorrectOptions& options = *typed;
    CLI::App& command = *app.add_subcommand(
        "correct", "Correct an image, write it with its header beside it, and tell what was done");
    AddImage(command, options.image);
    AddHeader(command, options.header);
    AddCorrections(command, options.corrections);
    AddImageOutput(command, options.output, options.progress);
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli
