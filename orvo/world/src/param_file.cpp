#include <orvo/world/param_file.h>

#include <nlohmann/json.hpp>

#include <fstream>
#include <set>

namespace orvo::world {

struct ParamFile::Doc {
    nlohmann::json json;
    std::set<std::string> read;
};

ParamFile::ParamFile(const std::string& path) : doc_(std::make_unique<Doc>()), path_(path) {
    std::ifstream in(path);
    if (!in)
        throw ParamFileError(path + ": cannot be read");
    doc_->json = nlohmann::json::parse(in, nullptr, false);
    if (doc_->json.is_discarded() || !doc_->json.is_object())
        throw ParamFileError(path + ": not a JSON object");
}

ParamFile::~ParamFile() = default;

double ParamFile::number(const char* key) {
    doc_->read.insert(key);
    const nlohmann::json& all = doc_->json;
    if (!all.contains(key))
        throw ParamFileError(path_ + ": no entry \"" + key + "\"");
    const nlohmann::json& entry = all[key];
    for (const char* part : {"value", "min", "max"})
        if (!entry.is_object() || !entry.contains(part) || !entry[part].is_number())
            throw ParamFileError(path_ + ": \"" + key + "\" needs numbers value, min and max");
    const double value = entry["value"].get<double>();
    if (value < entry["min"].get<double>() || value > entry["max"].get<double>())
        throw ParamFileError(path_ + ": \"" + key + "\" is outside its min and max");
    return value;
}

void ParamFile::check_no_others() const {
    for (auto it = doc_->json.begin(); it != doc_->json.end(); ++it)
        if (!doc_->read.count(it.key()))
            throw ParamFileError(path_ + ": unknown entry \"" + it.key() + "\"");
}

} // namespace orvo::world
