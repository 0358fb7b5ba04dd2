#include <orvo/core/architect.h>

#include "recorder.h"
#include "support/failure.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using orvo_test::journal;
using ::testing::ElementsAre;

std::string at(const char* function, int line) {
    return std::string("core/src/architect.cpp: In function '") + function + "' (line " +
           std::to_string(line) + "): ";
}

/// The start of every failure assemble_framework() chains.
std::string assembling(const std::string& type) {
    return type + " @ " + at("assemble_framework", 33) + "\n--> ";
}

/// What the host sees of a failing assembly (the class is exactly orvo::Exception).
std::string assembly_failure(orvo::Architect& architect) {
    return orvo_test::failure([&] { architect.assemble_framework(); });
}

const char* origin_of(orvo::Architect& architect, const std::string& name) {
    return orvo_test::creation_of(architect.get_classes().at(name))->origin.c_str();
}

// Each test runs in its own working directory with its own two config files;
// the plug-ins come from the build tree through the loader's search path.
class ArchitectTest : public ::testing::Test {
protected:
    void SetUp() override { orvo_test::reset(); }

    void TearDown() override {
        // Whatever a test left behind is released: disassembling twice finds
        // nothing the second time, and dropped duplicates are deleted here.
        architect.disassemble_framework();
        for (const auto& creation : orvo_test::creations()) {
            if (creation.alive) {
                delete creation.component;
            }
        }
    }

    void configure(const std::string& libraries, const std::string& classes) {
        dir.write("config/libraries.cfg", libraries);
        dir.write("config/classes.cfg", classes);
    }

    std::string factory_of(const std::string& name) {
        return orvo_test::creation_of(architect.get_classes().at(name))->factory;
    }

    /// A fresh assembly from these config files (nullptr: the file is missing)
    /// fails with `report` after `calls`, and leaves no component alive.
    void expect_failed_assembly(const char* libraries, const char* classes,
                                const std::string& report, const std::vector<std::string>& calls) {
        orvo_test::reset();
        std::filesystem::remove_all(dir.path / "config");
        for (const auto& [file, content] : {std::pair{"config/libraries.cfg", libraries},
                                            std::pair{"config/classes.cfg", classes}}) {
            if (content != nullptr) {
                dir.write(file, content);
            }
        }
        orvo::Architect fresh(args);
        EXPECT_EQ(assembly_failure(fresh), report);
        EXPECT_EQ(journal(), calls);
        fresh.disassemble_framework();
        for (const auto& creation : orvo_test::creations()) {
            EXPECT_FALSE(creation.alive) << creation.factory;
        }
    }

    orvo_test::ScratchDir dir;
    std::vector<std::string> args{"/opt/run/agent3"};
    orvo::Architect architect{args};
};

TEST_F(ArchitectTest, TagIsTheTextAfterTheLastSlashOfTheFirstArgument) {
    configure("alpha\n", "zulu\nagent\n");
    ASSERT_NE(architect.assemble_framework(), nullptr);
    EXPECT_STREQ(origin_of(architect, "zulu"), "alpha.agent3");

    std::vector<std::string> plain{"agent7", "--ignored"};
    orvo::Architect plain_tag(plain);
    plain_tag.construct();
    EXPECT_STREQ(origin_of(plain_tag, "zulu"), "alpha.agent7");
    plain_tag.disassemble_framework();
}

TEST_F(ArchitectTest, FactoryExportedTwiceComesFromTheFirstListedLibraryWhichStaysLoaded) {
    configure("alpha\nbeta\n", "shared\n");
    architect.construct();
    EXPECT_STREQ(origin_of(architect, "shared"), "alpha.agent3");
    // construct() closed its handles; the components' code must still be there.
    for (const char* file : {"libalpha.agent3.so", "libbeta.agent3.so"}) {
        void* handle = dlopen(file, RTLD_NOW | RTLD_NOLOAD);
        EXPECT_NE(handle, nullptr) << file;
        if (handle != nullptr) {
            dlclose(handle);
        }
    }

    orvo_test::ScratchDir other;
    other.write("config/libraries.cfg", "beta\nalpha\n");
    other.write("config/classes.cfg", "shared\n");
    orvo::Architect reversed(args);
    reversed.construct();
    EXPECT_STREQ(origin_of(reversed, "shared"), "beta.agent3");
    reversed.disassemble_framework();
}

TEST_F(ArchitectTest, FirstComponentOfAReportedNameWinsAndLaterOnesAreNeitherRegisteredNorDeleted) {
    configure("alpha\n", "impostor\nmike\nmike\nrenamed\n");
    architect.construct();
    EXPECT_EQ(architect.get_classes().size(), 2u);
    EXPECT_EQ(factory_of("bravo"), "renamed");
    EXPECT_EQ(factory_of("mike"), "impostor");

    architect.disassemble_framework();
    EXPECT_THAT(journal(),
                ElementsAre("bravo.finalize", "mike.finalize", "bravo.delete", "mike.delete"));
    ASSERT_EQ(orvo_test::creations().size(), 4u);
    EXPECT_TRUE(orvo_test::creations()[1].alive && orvo_test::creations()[2].alive);
}

TEST_F(ArchitectTest, LifecycleWalksFollowRegisteredNamesNotTheClassList) {
    configure("alpha\n", "zulu\nrenamed\nagent\nmike\nalpha\n");
    orvo::Agent* agent = architect.assemble_framework();
    ASSERT_NE(agent, nullptr);
    EXPECT_EQ(orvo_test::creation_of(agent)->factory, "agent");
    agent->run();
    architect.disassemble_framework();

    EXPECT_THAT(journal(),
                ElementsAre("agent.link", "alpha.link", "bravo.link", "mike.link", "zulu.link",
                            "agent.init", "alpha.init", "bravo.init", "mike.init", "zulu.init",
                            "agent.run", "agent.finalize", "alpha.finalize", "bravo.finalize",
                            "mike.finalize", "zulu.finalize", "agent.delete", "alpha.delete",
                            "bravo.delete", "mike.delete", "zulu.delete"));
    for (const auto& entry : architect.get_classes()) {
        EXPECT_EQ(entry.second, nullptr) << entry.first;
    }
}

// Every way assembly fails: the host's report names each layer's site, the
// walk stops at the failure, and disassembling takes down whatever was made.
// A null list leaves its file out; a tab-only line is one the reader refuses.
TEST_F(ArchitectTest, AssemblyFailuresAreChainedAndStopTheWalk) {
    const std::string plugin = "plugins/recorded.h: In function ";
    const auto config = [](int line, int reader_line, const char* message) {
        return assembling("Exception") + at("construct", line) + "\n--> " +
               at("parse_config_file", reader_line) + " | " + message;
    };
    const struct {
        const char *libraries, *classes;
        std::string report;
        std::vector<std::string> calls;
    } cases[] = {
        {"alpha\n",
         "zulu\nneedy\nagent\n",
         assembling("LinkException") + at("link", 246) +
             " | Error while linking <needy>\n\t-> class <absent> not found",
         {"agent.link", "needy.link"}},
        {"alpha\n",
         "zulu\nlink_fails\n",
         assembling("Exception") + plugin + "'link' (line 5):  | cannot link",
         {"kilo.link"}},
        {"alpha\n",
         "zulu\ninit_fails\nagent\n",
         assembling("LogicException") + at("init", 265) + "\n--> " + plugin +
             "'init' (line 7):  | cannot start",
         {"agent.link", "kilo.link", "zulu.link", "agent.init", "kilo.init"}},
        {"alpha\n",
         "zulu\n",
         "Exception @ " + at("assemble_framework", 44) + " | Could not find class <Agent>",
         {"zulu.link", "zulu.init"}},
        {"alpha\nnowhere\n",
         "agent\n",
         assembling("Exception") + at("construct", 165) + " | Failed to open shared library!",
         {}},
        // The last library searched is the one the loader complains about.
        {"alpha\nbeta\n",
         "zulu\nnothing\nmike\n",
         assembling("Exception") + at("construct", 212) + " | " + ORVO_TEST_PLUGIN_DIR +
             "/libbeta.agent3.so: undefined symbol: create_nothing",
         {}},
        {nullptr, "agent\n", config(93, 303, "Opening file failed!"), {}},
        {"alpha\n\t\t\n", "agent\n", config(93, 359, "Error while parsing values!"), {}},
        {"alpha\n", nullptr, config(178, 303, "Opening file failed!"), {}},
        {"alpha\n", "agent\n\t\t\n", config(178, 359, "Error while parsing values!"), {}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.report);
        expect_failed_assembly(c.libraries, c.classes, c.report, c.calls);
    }
}

TEST_F(ArchitectTest, FinalizeFailureIsChainedByFinalizeAndSwallowedByDisassemble) {
    configure("alpha\n", "zulu\nfinalize_fails\nagent\nmike\n");
    ASSERT_NE(architect.assemble_framework(), nullptr);
    EXPECT_EQ(orvo_test::failure([this] { architect.finalize(); }),
              "Exception @ " + at("finalize", 281) +
                  "\n--> plugins/recorded.h: In function 'finalize' (line 9):  | cannot stop");
    journal().clear();
    architect.disassemble_framework();
    EXPECT_THAT(journal(), ElementsAre("agent.finalize", "kilo.finalize", "agent.delete",
                                       "kilo.delete", "mike.delete", "zulu.delete"));
}

TEST_F(ArchitectTest, AgentThatIsNoAgentGivesNull) {
    configure("beta\nalpha\n", "not_agent\nagent\n");
    EXPECT_EQ(architect.assemble_framework(), nullptr);
    EXPECT_EQ(factory_of("agent"), "not_agent");
}

TEST_F(ArchitectTest, EmptyArgumentsAndASilentLoaderGiveStandardErrors) {
    configure("", "zulu\n");
    dlerror(); // no error pending: nothing to report but a logic error
    EXPECT_THROW(architect.assemble_framework(), std::logic_error);

    configure("alpha\n", "agent\n");
    std::vector<std::string> none;
    orvo::Architect nameless(none);
    EXPECT_THROW(nameless.assemble_framework(), std::out_of_range);
}

} // namespace
