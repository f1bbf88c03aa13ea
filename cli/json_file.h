#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace cli {

using Json = nlohmann::ordered_json;

/// The object that a JSON file holds; anything else ends with the file's name and the reason.
Json ReadJsonObject(const std::string& path);

/// As it is written to files and shown. File names may be any bytes; what is not text in them is replaced
/// rather than refused.
std::string JsonText(const Json& json);

/// The named values of an object in a JSON file. What has another form than asked for ends with the file's
/// name and the value's.
class NamedValues {
  public:
    explicit NamedValues(const std::string& path) : NamedValues(path, ReadJsonObject(path)) {}
    NamedValues(std::string path, Json object);

    const std::string& Path() const noexcept { return path_; }
    bool Has(const char* name);
    /// So many numbers, one standing without brackets; pairs of points are listed one behind the other.
    std::vector<double> Numbers(const char* name, std::size_t least, std::size_t most);
    std::vector<double> Points(const char* name, std::size_t count);
    double Number(const char* name) { return Numbers(name, 1, 1)[0]; }
    std::string Text(const char* name);
    /// Whatever it is; null when there is none.
    const Json& Any(const char* name);
    /// Refuses names that were not asked for: a misspelt one would otherwise be left out in silence.
    void RefuseOthers() const;

  private:
    std::string path_;
    Json object_;
    std::set<std::string> asked_;
};

}  // namespace cli
