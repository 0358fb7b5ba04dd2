#include "settings.h"

#include <orvo/core/exception.h>

#include <gtest/gtest.h>

#include <sstream>

namespace {

std::string failure_of(const std::string& text) {
    std::istringstream in(text);
    demo::Settings settings;
    try {
        demo::read_settings(in, "config/server.cfg", settings);
    } catch (const orvo::Exception& failure) {
        return failure.get_message();
    }
    return "";
}

TEST(Settings, DefaultsPointAtTheLocalServer) {
    std::istringstream in("# nothing but a comment\n\n   \n");
    demo::Settings settings;
    demo::read_settings(in, "config/server.cfg", settings);
    EXPECT_EQ(settings.host, "localhost");
    EXPECT_EQ(settings.port, 3100u);
    EXPECT_EQ(settings.drawing_port, 15096u);
    EXPECT_EQ(settings.team, "orvo");
    EXPECT_EQ(settings.unum, 0u);
    EXPECT_EQ(settings.cycles, 0u);
}

TEST(Settings, EveryKeyIsRead) {
    std::istringstream in("host 10.0.0.7\nport 3200 # trailing comment\n\tdrawing_port 32769\n"
                          "team blue-2\nunum 11\ncycles 250\nwait 3\n");
    demo::Settings settings;
    demo::read_settings(in, "config/server.cfg", settings);
    EXPECT_EQ(settings.host, "10.0.0.7");
    EXPECT_EQ(settings.port, 3200u);
    EXPECT_EQ(settings.drawing_port, 32769u);
    EXPECT_EQ(settings.team, "blue-2");
    EXPECT_EQ(settings.unum, 11u);
    EXPECT_EQ(settings.cycles, 250u);
    EXPECT_EQ(settings.wait, 3u);
}

TEST(Settings, MalformedValuesNameFileLineAndValue) {
    EXPECT_EQ(failure_of("host a\n\nport 31x0\n"),
              "config/server.cfg:3: port: '31x0' is not a port (1-65535)");
    EXPECT_EQ(failure_of("port 0\n"), "config/server.cfg:1: port: '0' is not a port (1-65535)");
    EXPECT_EQ(failure_of("port 65536\n"),
              "config/server.cfg:1: port: '65536' is not a port (1-65535)");
    EXPECT_EQ(failure_of("drawing_port -1\n"),
              "config/server.cfg:1: drawing_port: '-1' is not a port (1-65535)");
    EXPECT_EQ(failure_of("unum 12\n"),
              "config/server.cfg:1: unum: '12' is not a player number (0-11)");
    EXPECT_EQ(failure_of("cycles 99999999999999999999\n"),
              "config/server.cfg:1: cycles: '99999999999999999999' is not a cycle count "
              "(0-100000000)");
    EXPECT_EQ(failure_of("team two words\n"),
              "config/server.cfg:1: team: one value expected, found also 'words'");
    EXPECT_EQ(failure_of("team (x)\n"),
              "config/server.cfg:1: team: '(x)' is not a team name (1-15 letters, digits, - or _)");
    EXPECT_EQ(failure_of("port\n"), "config/server.cfg:1: port: value missing");
    EXPECT_EQ(failure_of("prot 3100\n"), "config/server.cfg:1: unknown setting 'prot'");
}

TEST(Settings, TheFailureIsAnOrvoExceptionWithItsLocation) {
    std::istringstream in("port x\n");
    demo::Settings settings;
    try {
        demo::read_settings(in, "config/server.cfg", settings);
        FAIL() << "no exception";
    } catch (const orvo::Exception& failure) {
        EXPECT_EQ(failure.get_type(), "Exception");
        EXPECT_EQ(failure.get_source().rfind("demo/settings.cpp: In function 'read_settings'", 0),
                  0u);
    }
    EXPECT_EQ(settings.port, 3100u); // nothing half-applied before the bad line
}

} // namespace
