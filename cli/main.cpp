#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>

#include "commands.h"
#include "failure.h"

namespace cli {
namespace {

int Run(int count, char** arguments) {
    CLI::App app("Photometric measurements in images of an imaging photometer.", "tqimage");
    app.set_version_flag("--version", TQIMAGE_VERSION);
    app.require_subcommand(1);
    app.footer(
        "Exit codes: 0 done, 1 measurement impossible, 2 usage, 3 file, 4 outside the expectations of "
        "--expect.");
    // In the order of the help.
    AddMeasure(app);
    AddUniformity(app);
    AddColour(app);
    AddMtf(app);
    AddDefects(app);
    AddConvert(app);
    AddCorrect(app);
    AddTransform(app);
    AddSimulate(app);
    AddPattern(app);
    AddPlot(app);
    try {
        app.parse(count, arguments);
    } catch (const CLI::Success& shown) {
        return app.exit(shown);
    } catch (const CLI::ParseError& error) {
        FailUsage(std::string(error.what()) + " (see tqimage --help)");
    }
    return 0;
}

}  // namespace
}  // namespace cli

int main(int count, char** arguments) {
    try {
        return cli::Run(count, arguments);
    } catch (const cli::Failure& failure) {
        std::fprintf(stderr, "tqimage: %s\n", failure.what());
        return static_cast<int>(failure.Code());
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "tqimage: out of memory\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tqimage: %s\n", error.what());
    }
    return static_cast<int>(cli::Exit::kCannotMeasure);
}
