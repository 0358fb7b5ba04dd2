#ifndef ORVO_WORLD_PARAM_FILE_H
#define ORVO_WORLD_PARAM_FILE_H

#include <orvo/core/export.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace orvo::world {

/// A parameter file is missing, malformed, lacks an entry or holds a value
/// outside the entry's own bounds.
class ORVO_API ParamFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A JSON object whose every entry reads {"value": V, "min": A, "max": B}:
/// the parameters of one robot type, with the bounds a search may move them in.
class ORVO_API ParamFile {
public:
    explicit ParamFile(const std::string& path);
    ~ParamFile();
    ParamFile(const ParamFile&) = delete;
    ParamFile& operator=(const ParamFile&) = delete;

    /// The value of `key`, checked against its bounds.
    double number(const char* key);
    void read(const char* key, double& out) { out = number(key); }
    void read(const char* key, int& out) { out = static_cast<int>(number(key)); }
    /// Refuses entries that no read asked for (a misspelt name would
    /// otherwise be silently ignored).
    void check_no_others() const;

private:
    struct Doc;
    std::unique_ptr<Doc> doc_;
    std::string path_;
};

} // namespace orvo::world

#endif
