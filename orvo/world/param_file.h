#ifndef ORVO_WORLD_PARAM_FILE_H
#define ORVO_WORLD_PARAM_FILE_H

#include <orvo/core/export.h>
#include <orvo/params/param_set.h>

#include <set>
#include <string>

namespace orvo::world {

/// A parameter file is missing, malformed, lacks an entry, holds a value
/// outside the entry's own bounds or an entry nobody reads.
using ParamFileError = params::ParamError;

/// The parameters of one robot type read one by one into a model's fields,
/// with a final check that the file holds nothing else (a misspelt name would
/// otherwise be silently ignored).
class ORVO_API ParamFile {
public:
    explicit ParamFile(const std::string& path) : set_(params::ParamSet::load(path)) {}

    /// The value of `key`; throws when the file has no such entry.
    double number(const char* key) {
        read_.insert(key);
        return set_[key];
    }
    void read(const char* key, double& out) { out = number(key); }
    void read(const char* key, int& out) { out = static_cast<int>(number(key)); }
    /// Refuses entries that no read asked for.
    void check_no_others() const;

private:
    params::ParamSet set_;
    std::set<std::string> read_;
};

} // namespace orvo::world

#endif
