#ifndef ORVO_TOOLS_DRILL_SUMMARY_H
#define ORVO_TOOLS_DRILL_SUMMARY_H

#include <nlohmann/json.hpp>

#include <ostream>
#include <string>
#include <vector>

namespace orvo::drill {

/// The runs of one drill: each printed as one JSON line when it ends, and
/// summed up at the end as a table of every numeric figure (mean, min, max).
class Summary {
public:
    explicit Summary(std::ostream& lines) : lines_(lines) {}
    void add(const nlohmann::json& run);
    void print(std::ostream& out, const std::vector<std::string>& figures) const;

private:
    std::ostream& lines_;
    std::vector<nlohmann::json> runs_;
};

} // namespace orvo::drill

#endif
