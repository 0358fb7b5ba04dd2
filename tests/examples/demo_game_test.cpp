// The demo as a user runs it: scripts/demo.sh starts the stand-in server, which
// keeps a real server's rules, and a team of host processes, each assembling
// the demo plug-ins, plays a bounded game on loopback.

#include "child_process.h"

#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

using orvo_test::count_of;

constexpr int team_size = 11;

/// One agent's report: the first lines of its output.
struct Report {
    std::string agent; ///< "orvo/N", N the start order
    int number = -1;
    unsigned received = 0, missed = 0;
    double joint_error = -1; ///< degrees, worst over the last 25 cycles
    std::string output;
};

/// What one run of scripts/demo.sh left behind.
struct DemoRun {
    int status = -1;
    std::string output; ///< the script's, then its error text
    fs::path dir;
    std::vector<Report> agents; ///< in start order
    std::string summary;        ///< the stand-in's
};

DemoRun play(const fs::path& dir, const std::vector<std::string>& options) {
    DemoRun run;
    run.dir = dir;
    std::vector<std::string> argv{"/bin/bash",   DEMO_SCRIPT,    "--standin", "--no-build",
                                  "--build-dir", ORVO_BUILD_DIR, "--run-dir", dir.string(),
                                  "--slowdown",  DEMO_SLOWDOWN};
    argv.insert(argv.end(), options.begin(), options.end());
    const std::string log = dir.string() + ".txt";
    orvo_test::ChildProcess script(argv, fs::current_path().string(), log, log + ".err");
    run.status = script.wait_for(180s);
    run.output = script.output_text() + script.error_text();
    run.summary = orvo_test::ChildProcess::read((dir / "server-summary.txt").string());
    const std::regex head("^agent (\\d+) of team orvo \\(left\\): (\\d+) cycles[^\n]*\n"
                          "perceptions: (\\d+) received, (\\d+) missed\n"
                          "joints: worst error (\\d+\\.\\d) degrees over the last 25 cycles\n");
    for (int n = 1; n <= team_size; ++n) {
        Report report;
        report.agent = "orvo/" + std::to_string(n);
        report.output = orvo_test::ChildProcess::read((dir / report.agent / "output.txt").string());
        std::smatch match;
        if (std::regex_search(report.output, match, head)) {
            report.number = std::stoi(match[1]);
            report.received = std::stoul(match[3]);
            report.missed = std::stoul(match[4]);
            report.joint_error = std::stod(match[5]);
        }
        run.agents.push_back(std::move(report));
    }
    return run;
}

/// Where the stand-in saw each robot of team orvo at kick-off, by connection
/// (start order), in the field's frame.
std::map<int, std::pair<double, double>> kick_off_positions(const std::string& summary) {
    // agent type team unum joined perceptions pairs answered messages bytes beams joints
    // drawings kick-off-x kick-off-y latency
    const std::regex row("\\s*(\\d+) +\\d +orvo +\\d+ +\\w+( +\\d+){8} +(-?\\d+\\.\\d+) "
                         "(-?\\d+\\.\\d+) .*");
    std::map<int, std::pair<double, double>> positions;
    std::istringstream lines(summary);
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (std::regex_match(line, match, row)) {
            positions[std::stoi(match[1])] = {std::stod(match[3]), std::stod(match[4])};
        }
    }
    return positions;
}

/// What is wrong with a run of the demo team against a server with a real
/// server's rules: one line per fault, none when the team played as it should.
std::vector<std::string> faults(const DemoRun& run) {
    std::vector<std::string> found;
    if (run.status != 0) {
        found.push_back("demo.sh ended with status " + std::to_string(run.status));
    }
    std::multiset<int> numbers;
    for (const Report& agent : run.agents) {
        if (agent.number < 0) {
            found.push_back(agent.agent + ": no report");
        } else if (agent.received == 0 || agent.missed != 0) {
            found.push_back(agent.agent + ": " + std::to_string(agent.received) + " received, " +
                            std::to_string(agent.missed) + " missed");
        }
        if (agent.number >= 0 && agent.joint_error >= 2) {
            found.push_back(agent.agent + ": joints off their targets by " +
                            std::to_string(agent.joint_error) + " degrees");
        }
        numbers.insert(agent.number);
    }
    std::string listed;
    bool one_to_eleven = true;
    int expected = 1;
    for (const int number : numbers) {
        listed += ' ' + std::to_string(number);
        one_to_eleven = one_to_eleven && number == expected++;
    }
    if (!one_to_eleven) {
        found.push_back("numbers:" + listed);
    }
    const auto positions = kick_off_positions(run.summary);
    if (positions.size() != team_size) {
        found.push_back(std::to_string(positions.size()) + " positions at kick-off");
    }
    for (auto one = positions.begin(); one != positions.end(); ++one) {
        const auto [x, y] = one->second;
        if (x > 0 || x < -15 || std::abs(y) > 10) {
            found.push_back("robot " + std::to_string(one->first) + " outside its half");
        }
        for (auto other = std::next(one); other != positions.end(); ++other) {
            if (std::hypot(x - other->second.first, y - other->second.second) < 1) {
                found.push_back("robots " + std::to_string(one->first) + " and " +
                                std::to_string(other->first) + " closer than 1 m");
            }
        }
    }
    return found;
}

/// What the server received from each connection, in order, by connection number.
std::map<int, std::vector<std::string>> messages_by_connection(const fs::path& dir) {
    std::map<int, std::vector<std::string>> by_connection;
    std::ifstream log(dir / "server-log.txt");
    for (int connection = 0, unum = 0, cycle = 0; log >> connection >> unum >> cycle;) {
        std::string message;
        std::getline(log >> std::ws, message);
        by_connection[connection].push_back(message);
    }
    return by_connection;
}

/// The messages of the effector records in an agent's action log dump, oldest first.
std::vector<std::string> effector_records(const std::string& output) {
    std::vector<std::string> recorded;
    const std::regex effector("-> Effector \\(effector_(beam|joints): (.*)\\)$");
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (std::regex_search(line, match, effector)) {
            recorded.push_back(match[2]);
        }
    }
    return recorded;
}

// What the server received from one agent: its join, then one answer ending
// in "(syn)" per perception, the first command a beam; `recorded` gets the
// agent's logged effector commands, which must be the tail of those answers.
void check_answers(const Report& agent, const std::vector<std::string>& messages, char type,
                   std::vector<std::string>& recorded) {
    ASSERT_GE(messages.size(), 3u);
    EXPECT_EQ(messages[0], std::string("(scene rsg/agent/nao/nao_hetero.rsg ") + type + ")");
    EXPECT_EQ(messages[1], "(init (unum 0)(teamname orvo))");
    // One "(syn)" ends every cycle's answer; the effectors' commands come before it.
    std::vector<std::string> commands;
    std::copy_if(messages.begin() + 2, messages.end(), std::back_inserter(commands),
                 [](const std::string& m) { return m != "(syn)"; });
    // The server may close before the agent's last answer reaches it
    // (seen on a busy machine): that answer is then missing from its log.
    const std::size_t answers = messages.size() - 2 - commands.size();
    const bool last_answer_unread = answers + 1 == std::size_t{agent.received};
    EXPECT_TRUE(answers == std::size_t{agent.received} || last_answer_unread)
        << answers << " answers to " << agent.received << " perceptions";
    EXPECT_EQ(messages.back(), "(syn)");
    ASSERT_FALSE(commands.empty());
    EXPECT_TRUE(std::regex_match(commands.front(),
                                 std::regex("\\(beam -?\\d+\\.\\d\\d -?\\d+\\.\\d\\d 0\\.0\\)")))
        << commands.front();

    // The action log's effector records, oldest first, are the tail of
    // what the server received, in the same order.
    // Ten actions kept, a joint command each, less the last when it went unread.
    recorded = effector_records(agent.output);
    ASSERT_GE(recorded.size(), 10u) << agent.output;
    if (last_answer_unread) {
        recorded.pop_back();
    }
    ASSERT_LE(recorded.size(), commands.size());
    const std::vector<std::string> tail(commands.end() - static_cast<long>(recorded.size()),
                                        commands.end());
    EXPECT_EQ(recorded, tail);
}

TEST(DemoTeam, ElevenRobotsOfMixedTypesJoinSpreadOverTheirHalfAndMissNoPerception) {
    orvo_test::ScratchDir scratch;
    const DemoRun run = play(scratch.path / "run", {"--cycles", "100"});
    ASSERT_EQ(faults(run), std::vector<std::string>{}) << run.output;

    const auto by_connection = messages_by_connection(run.dir);
    const char types[] = "04042002000";
    for (int n = 1; n <= team_size; ++n) {
        const Report& agent = run.agents[n - 1];
        SCOPED_TRACE(agent.agent);
        // Connections are numbered in the order the agents started.
        std::vector<std::string> recorded;
        check_answers(agent, by_connection.at(n), types[n - 1], recorded);
        if (HasFatalFailure()) {
            return;
        }

        // After the kick-off the log keeps ten cycles of holding the place: no beam.
        EXPECT_EQ(count_of(agent.output, "[Descriptor_Action] Behavior(behavior_hold_position)"),
                  10u)
            << agent.output;
        // Every joint of the robot's type in one command a cycle.
        EXPECT_EQ(count_of(recorded.back(), ")("), 21u) << recorded.back();
        EXPECT_EQ(count_of(agent.output, "effector_beam"), 0u);
        EXPECT_NE(agent.output.find("current action: (log (action (initiator "
                                    "behavior_hold_position)(skill_chain (skill (id "
                                    "skill_find_cell)) (skill (id skill_joints)))(effectors "
                                    "(effector (id effector_joints)))))\n"),
                  std::string::npos)
            << agent.output;
    }

    // The picture shows every agent and its cell.
    const std::string svg = orvo_test::ChildProcess::read((run.dir / "field.svg").string());
    for (const std::string shape : {"cell", "agent", "point", "line"}) {
        EXPECT_EQ(count_of(svg, "class=\"" + shape + "\""), std::size_t{team_size}) << shape;
    }
}

} // namespace
