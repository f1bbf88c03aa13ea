#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "correction.h"
#include "photometric_header.h"
#include "region_argument.h"

namespace cli {

/// `tqimage measure` as it was typed; empty texts were not given.
struct MeasureOptions {
    std::string image;
    HeaderOptions header;
    std::string headerFile;
    CorrectionOptions correction;
    std::string defectWindow, defectOrigin;
    std::vector<std::string> regions;
    std::uint32_t angleMode = 0;
    std::string spot;
    std::string expect;
    std::string json, csv, bitmap;  ///< "-" for stdout
    bool progress = false;
};

/// `tqimage uniformity` as it was typed.
struct UniformityOptions {
    std::string image;
    HeaderOptions header;
    std::string headerFile;
    std::string spot;
    bool ellipses = false;
    std::string region = "rect:0,0,0,0";
    double threshold = 1.0;
    std::string json, csv;  ///< "-" for stdout
    bool progress = false;
};

/// `tqimage simulate` as it was typed.
struct SimulateOptions {
    std::string output;
    std::string size = "1600,1200";
    std::string pelsPerMeter = "1000";
    std::string center;
    double distance = 3.0;
    double candela = 1000.0;
    double exponent = 2.0;
    std::string tilt = "0,0";
    double luxPerGrey = 0.0;
    double darkLevel = 200.0;
    double electronsPerGrey = 1.0;
    double readNoise = 2.0;
    std::int32_t darkFrames = 16;
    std::int32_t hotPixels = 0;
    std::int32_t deadColumns = 0;
    std::string lensRadial;
    std::uint64_t seed = 1;
    std::vector<std::string> regions;
    std::string spot;
    bool progress = false;
};

/// `tqimage mtf` as it was typed.
struct MtfOptions {
    std::string image;
    std::vector<std::string> regions;
    std::int32_t points = 51;
    std::string json;  ///< "-" for stdout
};

/// One or two whole numbers, the one standing for both, none below least; anything else is a usage error.
std::array<std::int32_t, 2> ParsePair(const char* option, const std::string& text, std::int32_t least);

/// The regions as typed; the whole image when there are none.
std::vector<Region> ParseRegions(const std::vector<std::string>& arguments);

void RunMeasure(const MeasureOptions& options);
void RunUniformity(const UniformityOptions& options);
void RunSimulate(const SimulateOptions& options);
void RunMtf(const MtfOptions& options);

}  // namespace cli
