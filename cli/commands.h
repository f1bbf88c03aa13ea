#pragma once

namespace CLI {
class App;
}

namespace cli {

// Each subcommand stands in a file of its own: what can be typed, and what is then done.
void AddColour(CLI::App& app);
void AddConvert(CLI::App& app);
void AddCorrect(CLI::App& app);
void AddDefects(CLI::App& app);
void AddMeasure(CLI::App& app);
void AddMtf(CLI::App& app);
void AddPattern(CLI::App& app);
void AddPlot(CLI::App& app);
void AddSimulate(CLI::App& app);
void AddTransform(CLI::App& app);
void AddUniformity(CLI::App& app);

}  // namespace cli
