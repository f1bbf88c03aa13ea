#include "photometric_header.h"

#include <unistd.h>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "failure.h"
#include "json_file.h"
#include "text.h"

namespace cli {
namespace {

using Values = std::vector<double>;
using Refuse = std::function<void(const std::string&)>;

/// A header is a set of named numbers wherever it comes from: each source hands them over here.
struct Field {
    const char* name;
    std::size_t least;  ///< values needed
    std::size_t most;   ///< values allowed
    const char* form;
};
constexpr Field kPelsPerMeter{"pelsPerMeter", 1, 2, "one or two numbers above 0"};
constexpr Field kCenter{"center", 2, 2, "two numbers, column and row"};
constexpr Field kLuxPerGrey{"luxPerGrey", 1, 1, "a number above 0"};
constexpr Field kDistance{"distance", 1, 1, "a number above 0"};
constexpr Field kBin{"bin", 1, 2, "one or two whole numbers, 1 to 32767"};

// The library's header holds single precision: a value that becomes 0 or infinite there is no value.
bool IsScale(double value) {
    return value >= static_cast<double>(std::numeric_limits<float>::min()) &&
           value <= static_cast<double>(std::numeric_limits<float>::max());
}

bool Accepts(const Field& field, const Values& values) {
    if (values.size() < field.least || values.size() > field.most) return false;
    for (const double value : values) {
        if (&field == &kCenter ? !(std::fabs(value) < kFarthestCenter) : !IsScale(value)) return false;
        if (&field == &kBin && (value != std::floor(value) || value > 32767)) return false;
    }
    return true;
}

template <typename Number>
std::array<Number, 2> Pair(const Values& values) {
    return {static_cast<Number>(values.front()), static_cast<Number>(values.back())};
}

void Store(PhotometricHeader& header, const Field& field, const Values& values, const Refuse& refuse) {
    if (!Accepts(field, values)) return refuse(std::string(" takes ") + field.form);
    if (&field == &kPelsPerMeter) header.pelsPerMeter = Pair<float>(values);
    if (&field == &kCenter) header.center = Pair<float>(values);
    if (&field == &kLuxPerGrey) header.luxPerGrey = static_cast<float>(values[0]);
    if (&field == &kDistance) header.distance = static_cast<float>(values[0]);
    if (&field == &kBin) header.bin = Pair<std::int16_t>(values);
}

template <typename Number>
void Spread(const std::array<Number, 2>& pair, Number& first, Number& second) {
    first = pair[0];
    second = pair[1];
}

Values JsonNumbers(const Json& json) {
    Values values;
    if (json.is_number()) values.push_back(json.get<double>());
    if (!json.is_array()) return values;
    for (const Json& element : json) {
        if (!element.is_number()) return {};
        values.push_back(element.get<double>());
    }
    return values;
}

template <typename Number>
Json JsonPair(const std::array<Number, 2>& pair) {
    return Json::array({pair[0], pair[1]});
}

}  // namespace

PhotometricHeader ParseHeaderOptions(const HeaderOptions& options) {
    PhotometricHeader header;
    const auto take = [&](const Field& field, const char* option, const std::string& text) {
        if (text.empty()) return;
        const auto values = ParseReals(text, field.least, field.most);
        Store(header, field, values.value_or(Values{}),
              [&](const std::string& reason) { FailUsage(option + reason + ", not " + text); });
    };
    take(kPelsPerMeter, "--pels-per-meter", options.pelsPerMeter);
    take(kCenter, "--center", options.center);
    take(kLuxPerGrey, "--lux-per-grey", options.luxPerGrey);
    take(kDistance, "--distance", options.distance);
    take(kBin, "--bin", options.bin);
    return header;
}

PhotometricHeader ReadSidecar(const std::string& path) {
    const Json json = ReadJsonObject(path);
    PhotometricHeader header;
    for (const auto& [name, value] : json.items()) {
        bool known = false;
        for (const Field* field : {&kPelsPerMeter, &kCenter, &kLuxPerGrey, &kDistance, &kBin}) {
            if (name != field->name) continue;
            known = true;
            Store(header, *field, JsonNumbers(value),
                  [&](const std::string& reason) { FailFile(path, field->name + reason); });
        }
        // A misspelt name would otherwise silently cost figures or change them.
        if (!known) FailFile(path, "unknown field " + name);
    }
    return header;
}

std::string FormatSidecar(const PhotometricHeader& header) {
    Json json = Json::object();
    if (header.pelsPerMeter) json[kPelsPerMeter.name] = JsonPair(*header.pelsPerMeter);
    if (header.center) json[kCenter.name] = JsonPair(*header.center);
    if (header.luxPerGrey) json[kLuxPerGrey.name] = *header.luxPerGrey;
    if (header.distance) json[kDistance.name] = *header.distance;
    if (header.bin) json[kBin.name] = JsonPair(*header.bin);
    return JsonText(json);
}

PhotometricHeader Overlay(const PhotometricHeader& base, const PhotometricHeader& winner) {
    PhotometricHeader result = base;
    if (winner.pelsPerMeter) result.pelsPerMeter = winner.pelsPerMeter;
    if (winner.center) result.center = winner.center;
    if (winner.luxPerGrey) result.luxPerGrey = winner.luxPerGrey;
    if (winner.distance) result.distance = winner.distance;
    if (winner.bin) result.bin = winner.bin;
    return result;
}

PhotometricHeader FindHeader(const std::string& image, const HeaderOptions& options) {
    const PhotometricHeader typed = ParseHeaderOptions(options);
    if (!options.file.empty()) return Overlay(ReadSidecar(options.file), typed);
    const std::string sidecar = image + ".json";
    if (access(sidecar.c_str(), F_OK) == 0) return Overlay(ReadSidecar(sidecar), typed);
    return typed;
}

TqImageHeader MakeHeader(const PhotometricHeader& header, std::int32_t cols, std::int32_t rows) {
    TqImageHeader result{};
    result.PelCols = cols;
    result.PelRows = rows;
    result.CenterCol = static_cast<float>(cols - 1) * 0.5f;
    result.CenterRow = static_cast<float>(rows - 1) * 0.5f;
    result.BinCols = 1;
    result.BinRows = 1;
    Correct(result, header);
    return result;
}

void Correct(TqImageHeader& image, const PhotometricHeader& known) {
    if (known.pelsPerMeter) Spread(*known.pelsPerMeter, image.PelsPerMeterX, image.PelsPerMeterY);
    if (known.center) Spread(*known.center, image.CenterCol, image.CenterRow);
    if (known.luxPerGrey) image.LuxPerGrey = *known.luxPerGrey;
    if (known.distance) image.SourceDistance = *known.distance;
    if (known.bin) Spread(*known.bin, image.BinCols, image.BinRows);
}

PhotometricHeader ReadBack(const TqImageHeader& header) {
    PhotometricHeader result;
    const auto take = [&](const Field& field, const Values& values) {
        Store(result, field, values, [](const std::string&) {});
    };
    take(kPelsPerMeter, {header.PelsPerMeterX, header.PelsPerMeterY});
    take(kCenter, {header.CenterCol, header.CenterRow});
    take(kLuxPerGrey, {header.LuxPerGrey});
    take(kDistance, {header.SourceDistance});
    take(kBin, {static_cast<double>(header.BinCols), static_cast<double>(header.BinRows)});
    return result;
}

}  // namespace cli
