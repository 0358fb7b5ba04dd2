// The demo as a user runs it: the stand-in server and several host processes,
// each assembling the demo plug-ins, play a bounded game on loopback.

#include "child_process.h"

#include <support/loopback.h>
#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

using orvo_test::count_of;

class DemoGame : public ::testing::Test {
protected:
    void SetUp() override {
        fs::copy(DEMO_CONFIG_DIR, scratch.path / "config", fs::copy_options::recursive);
        fs::create_symlink(ORVO_HOST, scratch.path / "demo");
    }

    void set(const std::string& key, const std::string& value) {
        const auto file = scratch.path / "config" / "server.cfg";
        std::ifstream in(file);
        std::ostringstream out;
        for (std::string line; std::getline(in, line);) {
            out << (line.rfind(key + " ", 0) == 0 ? key + " " + value : line) << '\n';
        }
        in.close();
        std::ofstream(file, std::ios::trunc) << out.str();
    }

    std::unique_ptr<orvo_test::ChildProcess> start_host(const std::string& name,
                                                        const std::string& library_path) {
        const std::string dir = scratch.path.string();
        return std::make_unique<orvo_test::ChildProcess>(
            std::vector<std::string>{dir + "/demo"}, dir, dir + "/" + name + ".out",
            dir + "/" + name + ".err", std::vector<std::string>{"LD_LIBRARY_PATH=" + library_path});
    }

    /// Runs one host against nothing in particular; returns its exit status.
    int run_alone(const std::string& library_path = DEMO_PLUGIN_DIR) {
        auto host = start_host("alone", library_path);
        const int status = host->wait_for(30s);
        error = host->error_text();
        return status;
    }

    orvo_test::ScratchDir scratch;
    std::string error;
};

TEST_F(DemoGame, FourAgentsPlayAGameThatTheServerAndThePictureRecord) {
    constexpr std::size_t agents = 4;
    constexpr int cycles = 40;
    const std::string dir = scratch.path.string();
    std::vector<std::string> argv{STANDIN_SERVER};
    std::istringstream options("--port 0 --drawing-port 0 --ports-file ports --agents 4 "
                               "--cycles 40 --sync --start-timeout 20 --cycle-timeout 5 "
                               "--log log.txt --svg field.svg");
    argv.insert(argv.end(), std::istream_iterator<std::string>(options), {});
    orvo_test::ChildProcess server(argv, dir, dir + "/server.out", dir + "/server.err");
    ASSERT_TRUE(orvo_test::wait_for_file(dir + "/ports", 10s)) << server.error_text();
    unsigned tcp = 0, udp = 0;
    std::ifstream(dir + "/ports") >> tcp >> udp;
    set("port", std::to_string(tcp));
    set("drawing_port", std::to_string(udp));

    std::vector<std::unique_ptr<orvo_test::ChildProcess>> hosts;
    for (std::size_t i = 0; i < agents; ++i) {
        hosts.push_back(start_host("agent" + std::to_string(i), DEMO_PLUGIN_DIR));
    }
    ASSERT_EQ(server.wait_for(60s), 0) << server.error_text();
    std::map<int, std::string> outputs; // by player number
    for (auto& host : hosts) {
        ASSERT_EQ(host->wait_for(20s), 0) << host->error_text();
        EXPECT_EQ(host->error_text(), "");
        const std::string output = host->output_text();
        std::smatch number;
        ASSERT_TRUE(std::regex_search(output, number, std::regex("^agent (\\d+) of team orvo")))
            << output;
        outputs[std::stoi(number[1])] = output;
    }
    ASSERT_EQ(outputs.size(), agents); // every number given once

    // Every agent answered every cycle.
    const std::string summary = server.output_text();
    EXPECT_EQ(count_of(summary, "     40       40 "), agents) << summary;

    // What the server received from each connection, in order, and the
    // connection of each player number.
    std::map<int, std::vector<std::string>> by_connection;
    std::map<int, int> connection_of;
    std::ifstream log(dir + "/log.txt");
    for (int connection = 0, unum = 0, cycle = 0; log >> connection >> unum >> cycle;) {
        std::string message;
        std::getline(log >> std::ws, message);
        by_connection[connection].push_back(message);
        connection_of[unum] = connection;
    }
    for (const auto& [unum, output] : outputs) {
        SCOPED_TRACE("player " + std::to_string(unum));
        const auto& messages = by_connection[connection_of[unum]];
        ASSERT_GE(messages.size(), 3u);
        EXPECT_EQ(messages[0], "(scene rsg/agent/nao/nao.rsg)");
        EXPECT_EQ(messages[1], "(init (unum 0)(teamname orvo))");
        // One "(syn)" ends every cycle's answer; the effectors' commands come before it.
        std::vector<std::string> commands;
        std::copy_if(messages.begin() + 2, messages.end(), std::back_inserter(commands),
                     [](const std::string& m) { return m != "(syn)"; });
        EXPECT_EQ(messages.size() - 2 - commands.size(), std::size_t{cycles});
        EXPECT_EQ(messages.back(), "(syn)");
        ASSERT_FALSE(commands.empty());
        EXPECT_TRUE(std::regex_match(
            commands.front(), std::regex("\\(beam -?\\d+\\.\\d\\d -?\\d+\\.\\d\\d 0\\.0\\)")))
            << commands.front();

        // The action log's effector records, oldest first, are the tail of
        // what the server received, in the same order.
        std::vector<std::string> recorded;
        const std::regex effector("-> Effector \\(effector_(beam|head): (.*)\\)$");
        std::istringstream lines(output);
        for (std::string line; std::getline(lines, line);) {
            std::smatch match;
            if (std::regex_search(line, match, effector)) {
                recorded.push_back(match[2]);
            }
        }
        ASSERT_GE(recorded.size(), 10u) << output; // ten actions kept, a head command each
        ASSERT_LE(recorded.size(), commands.size());
        const std::vector<std::string> tail(commands.end() - static_cast<long>(recorded.size()),
                                            commands.end());
        EXPECT_EQ(recorded, tail);

        // The log keeps the last ten cycles, all spreading out with their skills.
        EXPECT_EQ(count_of(output, "[Descriptor_Action] Behavior(behavior_spread_out)"), 10u);
        EXPECT_EQ(count_of(output, "-> Skill (skill_find_cell: 3 mates, area "), 10u) << output;
        EXPECT_EQ(count_of(output, "-> Skill (skill_look: pan "), 10u);
        EXPECT_NE(output.find("[i][Action Log]\n\n\t-> @Sim ("), std::string::npos) << output;
        // The current action: find the cell, perhaps beam towards its centroid, look around.
        EXPECT_TRUE(std::regex_search(
            output, std::regex("current action: \\(log \\(action \\(initiator "
                               "behavior_spread_out\\)\\(skill_chain \\(skill \\(id "
                               "skill_find_cell\\)\\)( \\(skill \\(id skill_beam\\)\\))? "
                               "\\(skill \\(id skill_look\\)\\)\\)\\(effectors( \\(effector "
                               "\\(id effector_beam\\)\\))? \\(effector \\(id "
                               "effector_head\\)\\)\\)\\)\\)\n")))
            << output;
        EXPECT_NE(output.find("processing time per cycle (receive to send): min "),
                  std::string::npos);
    }

    // The picture shows every agent and its cell.
    const std::string svg = orvo_test::ChildProcess::read(dir + "/field.svg");
    for (const std::string shape : {"cell", "agent", "point", "line"}) {
        EXPECT_EQ(count_of(svg, "class=\"" + shape + "\""), agents) << shape;
    }
}

TEST_F(DemoGame, MissingPlugInsMalformedSettingsAndWrongPortsStopTheHost) {
    EXPECT_EQ(run_alone("/nonexistent"), 1);
    EXPECT_NE(error.find("Failed to open shared library!"), std::string::npos) << error;

    std::ofstream(scratch.path / "config" / "classes.cfg", std::ios::app) << "skill_kick\n";
    EXPECT_EQ(run_alone(), 1);
    EXPECT_NE(error.find("undefined symbol: create_skill_kick"), std::string::npos) << error;
    fs::copy(DEMO_CONFIG_DIR "/classes.cfg", scratch.path / "config" / "classes.cfg",
             fs::copy_options::overwrite_existing);

    set("port", "31x0");
    EXPECT_EQ(run_alone(), 1);
    EXPECT_NE(error.find("demo/settings.cpp: In function 'read_settings'"), std::string::npos);
    EXPECT_NE(error.find("config/server.cfg:4: port: '31x0' is not a port (1-65535)"),
              std::string::npos)
        << error;

    const std::string port = std::to_string(orvo_test::released_port().getPort());
    set("port", port);
    EXPECT_EQ(run_alone(), 1);
    EXPECT_NE(error.find("cannot connect to the server at 127.0.0.1:" + port + " (is it running?)"),
              std::string::npos)
        << error;

    set("host", "no.such..host"); // the resolver refuses it without asking a name server
    EXPECT_EQ(run_alone(), 1);
    EXPECT_NE(error.find("'no.such..host' (setting 'host' of config/server.cfg): Unknown host"),
              std::string::npos)
        << error;
}

} // namespace
