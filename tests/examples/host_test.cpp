// The host program as a user runs it: a process started under a tag name in a
// run directory.

#include "child_process.h"

#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace std::chrono_literals;

class Host : public ::testing::Test {
protected:
    /// Runs the host as ./<tag> in the scratch directory; returns its status.
    int run(const std::string& tag, std::vector<std::string> extra = {}) {
        const auto program = scratch.path / tag;
        if (!std::filesystem::exists(program)) {
            std::filesystem::create_symlink(ORVO_HOST, program);
        }
        std::vector<std::string> argv = {program.string()};
        argv.insert(argv.end(), extra.begin(), extra.end());
        const std::string dir = scratch.path.string();
        orvo_test::ChildProcess host(argv, dir, dir + "/out.txt", dir + "/err.txt",
                                     {"LD_LIBRARY_PATH=" + std::string(PROBE_PLUGIN_DIR)});
        const int status = host.wait_for(30s);
        output = host.output_text();
        error = host.error_text();
        return status;
    }
    void configure(const std::string& classes) {
        scratch.write("config/libraries.cfg", "hostprobe\n");
        scratch.write("config/classes.cfg", classes);
    }

    orvo_test::ScratchDir scratch;
    std::string output;
    std::string error;
};

TEST_F(Host, RunsTheAgentOfItsTagAndTakesItDownAgain) {
    configure("probe_agent\n");
    ASSERT_EQ(run("probe"), 0) << error;
    EXPECT_EQ(output, "probe ran\nprobe finalized\n");
    EXPECT_EQ(error, "");
}

TEST_F(Host, FailuresNameTheirCauseAndTheAgentIsStillCleanedUp) {
    EXPECT_EQ(run("probe"), 1); // no configuration at all
    EXPECT_NE(error.find("libraries.cfg"), std::string::npos) << error;

    const struct {
        const char *tag, *classes, *probe, *cause;
    } cases[] = {{"other", "probe_agent", "", "Failed to open shared library!"},
                 {"probe", "no_such_component", "", "create_no_such_component"},
                 {"probe", "impostor", "", "is not an agent"},
                 {"probe", "probe_agent", "std", "probe failed in the standard way"}};
    for (const auto& c : cases) {
        configure(std::string(c.classes) + "\n");
        scratch.write("probe.txt", c.probe);
        EXPECT_EQ(run(c.tag), 1) << c.cause;
        EXPECT_NE(error.find(c.cause), std::string::npos) << error;
    }
    scratch.write("probe.txt", "orvo\n");
    EXPECT_EQ(run("probe"), 1);
    EXPECT_EQ(error, "Exception of type(Exception):\nprobe.cpp: In function 'run' (line 7): "
                     "\n\tprobe failed\n");
    EXPECT_EQ(output, "probe finalized\n");
}

} // namespace
