#include "summary.h"

#include <algorithm>
#include <cstdio>
#include <limits>

namespace orvo::drill {

void Summary::add(const nlohmann::json& run) {
    lines_ << run.dump() << std::endl;
    runs_.push_back(run);
}

void Summary::print(std::ostream& out, const std::vector<std::string>& figures) const {
    char line[128];
    std::snprintf(line, sizeof line, "%-16s %10s %10s %10s  (%zu runs)\n", "figure", "mean", "min",
                  "max", runs_.size());
    out << line;
    for (const std::string& figure : figures) {
        double sum = 0;
        double low = std::numeric_limits<double>::infinity();
        double high = -low;
        std::size_t count = 0;
        for (const auto& run : runs_) {
            if (run.contains(figure) && run[figure].is_number()) {
                const double value = run[figure].get<double>();
                sum += value;
                low = std::min(low, value);
                high = std::max(high, value);
                ++count;
            }
        }
        if (count > 0) {
            std::snprintf(line, sizeof line, "%-16s %10.3f %10.3f %10.3f\n", figure.c_str(),
                          sum / count, low, high);
            out << line;
        }
    }
}

} // namespace orvo::drill
