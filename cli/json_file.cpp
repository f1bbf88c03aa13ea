#include "json_file.h"

#include "failure.h"
#include "files.h"
#include "text.h"

namespace cli {

Json ReadJsonObject(const std::string& path) {
    const std::string bytes = ReadFile(path);
    Json json;
    try {
        json = Json::parse(bytes);
    } catch (const Json::parse_error& error) {
        FailFile(path, Format("not JSON (byte %zu)", error.byte));
    }
    if (!json.is_object()) FailFile(path, "not a JSON object");
    return json;
}

}  // namespace cli
