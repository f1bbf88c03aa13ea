#include "json_file.h"

#include <utility>

#include "failure.h"
#include "files.h"
#include "text.h"

namespace cli {
namespace {

/// The numbers of an array, or the one number; nothing when anything else stands there.
std::optional<std::vector<double>> NumbersOf(const Json& json) {
    std::vector<double> values;
    if (json.is_number()) return std::vector<double>{json.get<double>()};
    if (!json.is_array()) return std::nullopt;
    for (const Json& element : json) {
        if (!element.is_number()) return std::nullopt;
        values.push_back(element.get<double>());
    }
    return values;
}

}  // namespace

Json ReadJsonObject(const std::string& path) {
    const std::string bytes = ReadFile(path);
    Json json;
    try {
        json = Json::parse(bytes);
    } catch (const Json::parse_error& error) {
        FailFile(path, Format("not JSON (byte %zu)", error.byte));
    } catch (const Json::out_of_range&) {
        FailFile(path, "a number in it is too large");
    }
    if (!json.is_object()) FailFile(path, "not a JSON object");
    return json;
}

std::string JsonText(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

NamedValues::NamedValues(std::string path, Json object) : path_(std::move(path)), object_(std::move(object)) {
    if (!object_.is_object()) FailFile(path_, "not a JSON object");
}

bool NamedValues::Has(const char* name) {
    asked_.insert(name);
    return object_.contains(name);
}

const Json& NamedValues::Any(const char* name) {
    static const Json none;
    return Has(name) ? object_[name] : none;
}

std::vector<double> NamedValues::Numbers(const char* name, std::size_t least, std::size_t most) {
    const auto values = NumbersOf(Any(name));
    if (!values || values->size() < least || values->size() > most) {
        FailFile(path_, std::string(name) + " takes " +
                            (most == 1       ? "a number"
                             : least == most ? Format("%zu numbers", least)
                                             : Format("%zu to %zu numbers", least, most)));
    }
    return *values;
}

std::vector<double> NamedValues::Points(const char* name, std::size_t count) {
    std::vector<double> values;
    const Json& points = Any(name);
    for (std::size_t at = 0; points.is_array() && at < points.size(); ++at) {
        const auto pair = NumbersOf(points[at]);
        if (!pair || pair->size() != 2) break;
        values.insert(values.end(), pair->begin(), pair->end());
    }
    if (values.size() != 2 * count || points.size() != count) {
        FailFile(path_, std::string(name) + Format(" takes %zu points [column, row]", count));
    }
    return values;
}

std::string NamedValues::Text(const char* name) {
    const Json& text = Any(name);
    if (!text.is_string()) FailFile(path_, std::string(name) + " takes a text");
    return text.get<std::string>();
}

void NamedValues::RefuseOthers() const {
    for (const auto& [name, value] : object_.items()) {
        if (!asked_.contains(name)) FailFile(path_, "unknown field " + name);
    }
}

}  // namespace cli
