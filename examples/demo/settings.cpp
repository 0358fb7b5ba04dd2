#include "settings.h"

#include <orvo/core/exception.h>

#include <cerrno>
#include <cstdlib>
#include <sstream>

namespace demo {

namespace {

constexpr const char* source_file = "demo/settings.cpp";

/// `source_line` is where in this file the fault was found; `line` where in the settings file.
[[noreturn]] void fail(int source_line, const std::string& file, unsigned line,
                       const std::string& what) {
    throw orvo::Exception(orvo::gen_ffl_string(source_file, "read_settings", source_line),
                          file + ":" + std::to_string(line) + ": " + what, "Exception");
}

unsigned int number(const std::string& file, unsigned line, const std::string& key,
                    const std::string& value, unsigned long low, unsigned long high,
                    const char* kind) {
    char* end = nullptr;
    errno = 0;
    const unsigned long parsed = std::strtoul(value.c_str(), &end, 10);
    if (value.empty() || value[0] == '-' || value[0] == '+' || *end != '\0' || errno != 0 ||
        parsed < low || parsed > high) {
        fail(__LINE__, file, line,
             key + ": '" + value + "' is not " + kind + " (" + std::to_string(low) + "-" +
                 std::to_string(high) + ")");
    }
    return static_cast<unsigned int>(parsed);
}

bool is_name(const std::string& value) {
    if (value.empty() || value.size() > 15) {
        return false;
    }
    for (const char c : value) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                           (c >= '0' && c <= '9') || c == '_' || c == '-';
        if (!plain) {
            return false;
        }
    }
    return true;
}

} // namespace

void read_settings(std::istream& in, const std::string& file, Settings& settings) {
    std::string text;
    unsigned line = 0;
    while (std::getline(in, text)) {
        ++line;
        const auto comment = text.find('#');
        if (comment != std::string::npos) {
            text.erase(comment);
        }
        std::istringstream words(text);
        std::string key;
        std::string value;
        std::string extra;
        if (!(words >> key)) {
            continue;
        }
        if (!(words >> value)) {
            fail(__LINE__, file, line, key + ": value missing");
        }
        if (words >> extra) {
            fail(__LINE__, file, line, key + ": one value expected, found also '" + extra + "'");
        }
        if (key == "host") {
            settings.host = value;
        } else if (key == "port") {
            settings.port = number(file, line, key, value, 1, 65535, "a port");
        } else if (key == "drawing_host") {
            settings.drawing_host = value;
        } else if (key == "drawing_port") {
            settings.drawing_port = number(file, line, key, value, 1, 65535, "a port");
        } else if (key == "team") {
            if (!is_name(value)) {
                fail(__LINE__, file, line,
                     "team: '" + value + "' is not a team name (1-15 letters, digits, - or _)");
            }
            settings.team = value;
        } else if (key == "unum") {
            settings.unum = number(file, line, key, value, 0, 11, "a player number");
        } else if (key == "type") {
            settings.type = number(file, line, key, value, 0, 4, "a robot type");
        } else if (key == "cycles") {
            settings.cycles = number(file, line, key, value, 0, 100000000, "a cycle count");
        } else if (key == "wait") {
            settings.wait = number(file, line, key, value, 1, 3600, "a number of seconds");
        } else if (key == "motions") {
            settings.motions = value;
        } else if (key == "sync_lock") {
            settings.sync_lock = value;
        } else if (key == "play") {
            settings.play = number(file, line, key, value, 0, 1, "0 or 1") == 1;
        } else {
            fail(__LINE__, file, line, "unknown setting '" + key + "'");
        }
    }
}

} // namespace demo
