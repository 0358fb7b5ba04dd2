#ifndef ORVO_TOOLS_DRILL_DRILL_OPTIONS_H
#define ORVO_TOOLS_DRILL_DRILL_OPTIONS_H

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvo::drill {

/// A command line the drill cannot run; the message says why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What every drill takes: the robot, the trials and the server.
struct DrillOptions {
    int type = 0;
    int runs = 1;
    double seconds = 10;
    std::string params;      ///< a parameter file instead of the installed one
    std::string server_host; ///< empty: start a server of our own per run
    int server_port = 0;
    int monitor_port = 0;
    unsigned seed = 1;
};

/// The arguments after the subcommand, one flag at a time. A drill reads its
/// own flags with the helpers and leaves the common ones to parse_common().
class Arguments {
public:
    explicit Arguments(std::vector<std::string> words) : words_(std::move(words)) {}
    bool done() const { return next_ >= words_.size(); }
    const std::string& flag() const { return words_[next_]; }
    void skip() { ++next_; }
    /// The value after the current flag, as text or number; throws UsageError.
    std::string text();
    double number();
    int integer();
    /// The current word as a number, for flags that take several.
    double value();

private:
    std::vector<std::string> words_;
    std::size_t next_ = 0;
};

/// Reads every flag: the drill's own through `own` (which returns false for a
/// flag it does not know), the common ones into the result. Throws UsageError.
DrillOptions parse_common(Arguments& arguments, const std::function<bool(Arguments&)>& own);

} // namespace orvo::drill

#endif
