#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace cli {

using Json = nlohmann::ordered_json;

/// The object that a JSON file holds; anything else ends with the file's name and the reason.
Json ReadJsonObject(const std::string& path);

}  // namespace cli
