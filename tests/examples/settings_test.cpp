#include "settings.h"

#include <orvo/core/exception.h>

#include <support/failure.h>

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

namespace {

demo::Settings read(const std::string& text) {
    std::istringstream in(text);
    demo::Settings settings;
    demo::read_settings(in, "config/server.cfg", settings);
    return settings;
}

std::tuple<std::string, unsigned, unsigned, std::string, unsigned, unsigned, unsigned, unsigned,
           std::string, std::string, bool, std::string>
fields(const demo::Settings& s) {
    return {s.host,   s.port, s.drawing_port, s.team,    s.unum, s.type,
            s.cycles, s.wait, s.drawing_host, s.motions, s.play, s.sync_lock};
}

TEST(Settings, DefaultsPointAtTheLocalServerAndEveryKeyIsRead) {
    EXPECT_EQ(
        fields(read("# nothing but a comment\n\n   \n")),
        fields(demo::Settings{"localhost", 3100, 15096, "orvo", 0, 0, 0, 10, "", "", false, ""}));
    EXPECT_EQ(fields(read("host 10.0.0.7\nport 3200 # trailing comment\n\tdrawing_port 32769\n"
                          "team blue-2\nunum 11\ntype 4\ncycles 250\nwait 3\n"
                          "drawing_host 127.0.0.1\nmotions /m\nplay 1\nsync_lock /l\n")),
              fields(demo::Settings{"10.0.0.7", 3200, 32769, "blue-2", 11, 4, 250, 3, "127.0.0.1",
                                    "/m", true, "/l"}));
}

TEST(Settings, MalformedValuesNameFileLineAndValue) {
    const std::string at = "Exception @ demo/settings.cpp: In function 'read_settings'";
    const std::string thrown = orvo_test::failure([] { read("host a\n\nport 31x0\n"); });
    EXPECT_EQ(thrown.rfind(at, 0), 0u) << thrown;
    EXPECT_EQ(thrown.substr(thrown.find(" | ")),
              " | config/server.cfg:3: port: '31x0' is not a port (1-65535)");

    const std::pair<const char*, const char*> cases[] = {
        {"port 0", "port: '0' is not a port (1-65535)"},
        {"port 65536", "port: '65536' is not a port (1-65535)"},
        {"drawing_port -1", "drawing_port: '-1' is not a port (1-65535)"},
        {"unum 12", "unum: '12' is not a player number (0-11)"},
        {"type 5", "type: '5' is not a robot type (0-4)"},
        {"cycles 99999999999999999999",
         "cycles: '99999999999999999999' is not a cycle count (0-100000000)"},
        {"team two words", "team: one value expected, found also 'words'"},
        {"team (x)", "team: '(x)' is not a team name (1-15 letters, digits, - or _)"},
        {"port", "port: value missing"},
        {"prot 3100", "unknown setting 'prot'"}};
    for (const auto& [line, message] : cases) {
        const std::string thrown = orvo_test::failure([&] { read(std::string(line) + "\n"); });
        EXPECT_EQ(thrown.substr(thrown.find(" | ") + 3),
                  "config/server.cfg:1: " + std::string(message));
    }
    // Nothing is half-applied before the bad line.
    std::istringstream in("port x\n");
    demo::Settings settings;
    EXPECT_THROW(demo::read_settings(in, "config/server.cfg", settings), orvo::Exception);
    EXPECT_EQ(settings.port, 3100u);
}

} // namespace
