#include <orvo/params/param_set.h>

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace orvo::params {

namespace {

double number_of(const nlohmann::json& entry, const char* key, const std::string& where) {
    const auto found = entry.find(key);
    if (found == entry.end() || !found->is_number()) {
        throw ParamError(where + ": \"" + key + "\" missing or not a number");
    }
    return found->get<double>();
}

bool readable(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

} // namespace

ParamSet ParamSet::parse(const std::string& text, const std::string& origin) {
    nlohmann::json document;
    try {
        document = nlohmann::json::parse(text);
    } catch (const nlohmann::json::parse_error& error) {
        throw ParamError(origin + ": " + error.what());
    }
    if (!document.is_object()) {
        throw ParamError(origin + ": not a JSON object");
    }
    ParamSet set;
    set.origin_ = origin;
    for (const auto& [name, entry] : document.items()) {
        const std::string where = origin + ": " + name;
        if (!entry.is_object()) {
            throw ParamError(where + ": not an object with value, min and max");
        }
        Param param{number_of(entry, "value", where), number_of(entry, "min", where),
                    number_of(entry, "max", where)};
        if (!(param.min <= param.value && param.value <= param.max)) {
            throw ParamError(where + ": value outside [min, max]");
        }
        set.entries_.emplace(name, param);
    }
    return set;
}

ParamSet ParamSet::load(const std::string& path) {
    std::ifstream in(path);
    if (!in) {
        throw ParamError(path + ": cannot be read");
    }
    std::ostringstream text;
    text << in.rdbuf();
    return parse(text.str(), path);
}

double ParamSet::operator[](const std::string& name) const {
    const auto found = entries_.find(name);
    if (found == entries_.end()) {
        throw ParamError(origin_ + ": no parameter \"" + name + "\"");
    }
    return found->second.value;
}

void ParamSet::set(const std::string& name, double value) {
    const auto found = entries_.find(name);
    if (found == entries_.end()) {
        throw ParamError(origin_ + ": no parameter \"" + name + "\"");
    }
    if (!(found->second.min <= value && value <= found->second.max)) {
        throw ParamError(origin_ + ": " + name + " outside [min, max]");
    }
    found->second.value = value;
}

std::string ParamSet::dump() const {
    nlohmann::json document = nlohmann::json::object();
    for (const auto& [name, param] : entries_) {
        document[name] = {{"value", param.value}, {"min", param.min}, {"max", param.max}};
    }
    return document.dump(2);
}

std::string params_path(const std::string& skill, int type) {
    const std::string file = "/" + skill + "/type" + std::to_string(type) + ".json";
    if (const char* dir = std::getenv("ORVO_PARAMS_DIR"); dir != nullptr && *dir != '\0') {
        return dir + file;
    }
    for (const char* dir : {ORVO_INSTALLED_PARAMS_DIR, ORVO_SOURCE_PARAMS_DIR}) {
        if (readable(dir + file)) {
            return dir + file;
        }
    }
    return ORVO_INSTALLED_PARAMS_DIR + file;
}

} // namespace orvo::params
