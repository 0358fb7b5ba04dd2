#ifndef ORVO_PARAMS_PARAM_SET_H
#define ORVO_PARAMS_PARAM_SET_H

#include <orvo/core/export.h>

#include <map>
#include <stdexcept>
#include <string>

namespace orvo::params {

/// A parameter file could not be read, or one of its entries is unusable.
class ORVO_API ParamError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One tunable number: the value in use and the range a search may try.
struct Param {
    double value = 0;
    double min = 0;
    double max = 0;
};

/// The named numbers that shape one skill of one robot type, read from a JSON
/// object of entries {"name": {"value": V, "min": A, "max": B}, ...}. Every
/// entry must hold all three numbers with min <= value <= max, so that a
/// search tuning the skill starts from a valid point and knows its bounds.
class ORVO_API ParamSet {
public:
    ParamSet() = default;
    /// Reads `text`; `origin` names it in error messages. Throws ParamError.
    static ParamSet parse(const std::string& text, const std::string& origin);
    /// Reads the file at `path`. Throws ParamError.
    static ParamSet load(const std::string& path);

    /// The value of `name`; throws ParamError naming the origin when missing.
    double operator[](const std::string& name) const;
    bool has(const std::string& name) const { return entries_.count(name) != 0; }
    /// Replaces a value; throws ParamError when outside the entry's range.
    void set(const std::string& name, double value);
    const std::map<std::string, Param>& entries() const { return entries_; }
    const std::string& origin() const { return origin_; }
    /// The set as JSON, in the format parse() reads.
    std::string dump() const;

private:
    std::map<std::string, Param> entries_;
    std::string origin_;
};

/// Where the parameter file of `skill` for robot `type` is: the directory
/// named by the environment variable ORVO_PARAMS_DIR if set, else the
/// installed share/orvo/params, else the source tree's params/ (for builds
/// that are not installed). The file is <dir>/<skill>/type<T>.json.
ORVO_API std::string params_path(const std::string& skill, int type);

} // namespace orvo::params

#endif
