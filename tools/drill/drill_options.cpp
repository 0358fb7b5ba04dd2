#include "drill_options.h"

namespace orvo::drill {

std::string Arguments::text() {
    const std::string name = words_[next_];
    if (next_ + 1 >= words_.size()) {
        throw UsageError(name + " needs a value");
    }
    ++next_;
    return words_[next_++];
}

double Arguments::number() {
    if (next_ + 1 >= words_.size()) {
        throw UsageError(flag() + " needs a value");
    }
    ++next_;
    return value();
}

double Arguments::value() {
    if (done()) {
        throw UsageError("a number is missing at the end");
    }
    const std::string name = next_ > 0 ? words_[next_ - 1] : std::string("argument");
    const std::string value = words_[next_++];
    std::size_t used = 0;
    try {
        const double parsed = std::stod(value, &used);
        if (used == value.size()) {
            return parsed;
        }
    } catch (const std::exception&) {
    }
    throw UsageError(name + ": \"" + value + "\" is not a number");
}

int Arguments::integer() {
    const std::string name = flag();
    const double value = number();
    if (value != static_cast<int>(value)) {
        throw UsageError(name + " takes a whole number");
    }
    return static_cast<int>(value);
}

DrillOptions parse_common(Arguments& arguments, const std::function<bool(Arguments&)>& own) {
    DrillOptions options;
    while (!arguments.done()) {
        if (own(arguments)) {
            continue;
        }
        const std::string flag = arguments.flag();
        if (flag == "--type") {
            options.type = arguments.integer();
        } else if (flag == "--runs") {
            options.runs = arguments.integer();
        } else if (flag == "--seconds") {
            options.seconds = arguments.number();
        } else if (flag == "--params") {
            options.params = arguments.text();
        } else if (flag == "--seed") {
            options.seed = static_cast<unsigned>(arguments.integer());
        } else if (flag == "--monitor-port") {
            options.monitor_port = arguments.integer();
        } else if (flag == "--server") {
            const std::string where = arguments.text();
            const auto colon = where.rfind(':');
            if (colon == std::string::npos) {
                throw UsageError("--server takes HOST:PORT");
            }
            options.server_host = where.substr(0, colon);
            options.server_port = std::stoi(where.substr(colon + 1));
        } else {
            throw UsageError("unknown argument " + flag);
        }
    }
    if (options.type < 0 || options.type > 4) {
        throw UsageError("--type is 0 to 4");
    }
    if (options.runs < 1 || options.seconds <= 0) {
        throw UsageError("--runs and --seconds must be positive");
    }
    if (!options.server_host.empty() && options.monitor_port == 0) {
        throw UsageError("--server needs --monitor-port");
    }
    return options;
}

} // namespace orvo::drill
