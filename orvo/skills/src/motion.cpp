#include <orvo/skills/motion.h>

#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

namespace orvo::skills {

namespace {

constexpr const char* source_file = "skills/src/motion.cpp";

[[noreturn]] void fail(const char* function, int line, const std::string& message) {
    throw MotionException(gen_ffl_string(source_file, function, line), message);
}

std::optional<double> to_number(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

/// The blank-separated words of `line`, up to a '#'.
std::vector<std::string_view> words_of(std::string_view line) {
    line = line.substr(0, line.find('#'));
    std::vector<std::string_view> words;
    std::size_t at = 0;
    while (at < line.size()) {
        while (at < line.size() && is_blank(line[at])) {
            ++at;
        }
        const std::size_t start = at;
        while (at < line.size() && !is_blank(line[at])) {
            ++at;
        }
        if (at > start) {
            words.push_back(line.substr(start, at - start));
        }
    }
    return words;
}

} // namespace

MotionException::MotionException(const std::string& source, const std::string& message)
    : Exception(source, message, "MotionException") {}

MotionException::~MotionException() = default;

Motion Motion::parse(std::string_view text, const std::string& origin) {
    Motion motion;
    motion.name_ = std::filesystem::path(origin).stem().string();
    int line_number = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        ++line_number;
        const std::vector<std::string_view> words = words_of(line);
        if (words.empty()) {
            continue;
        }
        const std::string at = origin + ":" + std::to_string(line_number) + ": ";
        Keyframe keyframe;
        const auto duration = to_number(words[0]);
        if (!duration || *duration <= 0) {
            fail("parse", __LINE__,
                 at + "the duration '" + std::string(words[0]) +
                     "' is not a positive number of seconds");
        }
        keyframe.duration = *duration;
        if (words.size() == 1) {
            fail("parse", __LINE__, at + "a keyframe needs at least one JOINT=DEGREES");
        }
        for (std::size_t i = 1; i < words.size(); ++i) {
            const std::string_view word = words[i];
            const std::size_t equals = word.find('=');
            const std::string name(word.substr(0, equals));
            const auto joint = robot::joint_by_name(name);
            if (!joint) {
                fail("parse", __LINE__, at + "unknown joint '" + name + "'");
            }
            const auto angle = equals == std::string_view::npos
                                   ? std::nullopt
                                   : to_number(word.substr(equals + 1));
            if (!angle) {
                fail("parse", __LINE__,
                     at + "'" + std::string(word) + "' does not give " + name + " in degrees");
            }
            if (keyframe.joints.test(robot::index(*joint))) {
                fail("parse", __LINE__, at + name + " is given twice");
            }
            keyframe.joints.set(robot::index(*joint));
            keyframe.angles[robot::index(*joint)] = *angle;
        }
        motion.joints_ |= keyframe.joints;
        motion.duration_ += keyframe.duration;
        motion.keyframes_.push_back(keyframe);
    }
    if (motion.keyframes_.empty()) {
        fail("parse", __LINE__, origin + ": no keyframe");
    }
    return motion;
}

Motion Motion::load(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::error_code ignored;
    if (!file || std::filesystem::is_directory(path, ignored)) {
        fail("load", __LINE__, path + ": cannot be read");
    }
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad()) {
        fail("load", __LINE__, path + ": cannot be read");
    }
    return parse(text, path);
}

} // namespace orvo::skills
