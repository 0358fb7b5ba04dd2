#include <orvo/core/architect.h>

#include "recorder.h"
#include "support/scratch_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

namespace {

using orvo_test::journal;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

std::string at(const char* function, int line) {
    return std::string("core/src/architect.cpp: In function '") + function + "' (line " +
           std::to_string(line) + "): ";
}

const std::string assemble_site = at("assemble_framework", 33);

/// What the host sees of an orvo::Exception.
struct Failure {
    bool thrown = false;
    bool plain_class = false; ///< exactly orvo::Exception, not a subclass
    std::string source;
    std::string message;
    std::string type;
};

template <class Step> Failure failure_of(Step step) {
    Failure failure;
    try {
        step();
    } catch (const orvo::Exception& e) {
        failure.thrown = true;
        failure.plain_class = typeid(e) == typeid(orvo::Exception);
        failure.source = e.get_source();
        failure.message = e.get_message();
        failure.type = e.get_type();
    }
    return failure;
}

bool loaded(const std::string& file) {
    void* handle = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) {
        dlclose(handle);
    }
    return handle != nullptr;
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

    /// The creation record of the component registered as `name`.
    const orvo_test::Creation& registered(const std::string& name) {
        const auto* creation = orvo_test::creation_of(architect.get_classes().at(name));
        if (creation == nullptr) {
            throw std::logic_error(name + " was not made by a test plug-in");
        }
        return *creation;
    }

    Failure assemble_failure() {
        return failure_of([this] { architect.assemble_framework(); });
    }

    orvo_test::ScratchDir dir;
    std::vector<std::string> args{"/opt/run/agent3"};
    orvo::Architect architect{args};
};

TEST_F(ArchitectTest, TagIsTheTextAfterTheLastSlashOfTheFirstArgument) {
    configure("alpha\n", "zulu\nagent\n");
    ASSERT_NE(architect.assemble_framework(), nullptr);
    EXPECT_EQ(registered("zulu").origin, "alpha.agent3");

    std::vector<std::string> plain{"agent7", "--ignored"};
    orvo::Architect plain_tag(plain);
    plain_tag.construct();
    EXPECT_EQ(orvo_test::creation_of(plain_tag.get_classes().at("zulu"))->origin, "alpha.agent7");
    plain_tag.disassemble_framework();
}

TEST_F(ArchitectTest, PlugInsStayLoadedAfterConstructClosesItsHandles) {
    configure("alpha\nbeta\n", "zulu\nshared\n");
    architect.construct();
    EXPECT_TRUE(loaded("libalpha.agent3.so"));
    EXPECT_TRUE(loaded("libbeta.agent3.so"));
    // The components' code lives in the plug-ins: every hook still runs.
    architect.disassemble_framework();
    EXPECT_THAT(journal(),
                ElementsAre("shared.finalize", "zulu.finalize", "shared.delete", "zulu.delete"));
}

TEST_F(ArchitectTest, FactoryExportedTwiceComesFromTheFirstListedLibrary) {
    configure("alpha\nbeta\n", "shared\n");
    architect.construct();
    EXPECT_EQ(registered("shared").origin, "alpha.agent3");

    orvo_test::ScratchDir other;
    other.write("config/libraries.cfg", "beta\nalpha\n");
    other.write("config/classes.cfg", "shared\n");
    orvo::Architect reversed(args);
    reversed.construct();
    EXPECT_EQ(orvo_test::creation_of(reversed.get_classes().at("shared"))->origin, "beta.agent3");
    reversed.disassemble_framework();
}

TEST_F(ArchitectTest, FirstComponentOfANameWinsAndLaterOnesAreNeitherRegisteredNorDeleted) {
    configure("alpha\n", "impostor\nmike\nmike\nrenamed\n");
    architect.construct();

    const auto& classes = architect.get_classes();
    EXPECT_EQ(classes.size(), 2u);
    EXPECT_EQ(classes.count("renamed"), 0u);
    EXPECT_EQ(registered("bravo").factory, "renamed");
    EXPECT_EQ(registered("mike").factory, "impostor");

    architect.disassemble_framework();
    EXPECT_THAT(journal(),
                ElementsAre("bravo.finalize", "mike.finalize", "bravo.delete", "mike.delete"));
    ASSERT_EQ(orvo_test::creations().size(), 4u);
    EXPECT_TRUE(orvo_test::creations()[1].alive);
    EXPECT_TRUE(orvo_test::creations()[2].alive);
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

TEST_F(ArchitectTest, MissingCollaboratorReachesTheHostAsPlainExceptionOfLinkType) {
    configure("alpha\n", "zulu\nneedy\nagent\n");
    const Failure failure = assemble_failure();

    ASSERT_TRUE(failure.thrown);
    EXPECT_TRUE(failure.plain_class);
    EXPECT_EQ(failure.type, "LinkException");
    EXPECT_EQ(failure.message, "Error while linking <needy>\n\t-> class <absent> not found");
    // The link step replaces the lookup's own location instead of chaining it.
    EXPECT_EQ(failure.source, assemble_site + "\n--> " + at("link", 246));
    EXPECT_THAT(journal(), ElementsAre("agent.link", "needy.link"));
}

TEST_F(ArchitectTest, LinkStepReraisesALinkException) {
    configure("alpha\n", "needy\n");
    architect.construct();
    try {
        architect.link();
        FAIL() << "link() succeeded";
    } catch (const orvo::LinkException& e) {
        EXPECT_EQ(e.get_source(), at("link", 246));
    }
}

TEST_F(ArchitectTest, OtherLinkFailuresPassTheLinkStepUnchanged) {
    configure("alpha\n", "zulu\nlink_fails\n");
    const Failure failure = assemble_failure();
    ASSERT_TRUE(failure.thrown);
    EXPECT_EQ(failure.source,
              assemble_site + "\n--> plugins/recorded.h: In function 'link' (line 5): ");
    EXPECT_EQ(failure.message, "cannot link");
    EXPECT_THAT(journal(), ElementsAre("kilo.link"));
}

TEST_F(ArchitectTest, InitFailureIsChainedThreeLevelsAndStopsTheWalk) {
    configure("alpha\n", "zulu\ninit_fails\nagent\n");
    const Failure failure = assemble_failure();

    ASSERT_TRUE(failure.thrown);
    EXPECT_TRUE(failure.plain_class);
    EXPECT_EQ(failure.type, "LogicException");
    EXPECT_EQ(failure.message, "cannot start");
    EXPECT_EQ(failure.source, assemble_site + "\n--> " + at("init", 265) +
                                  "\n--> plugins/recorded.h: In function 'init' (line 7): ");
    EXPECT_THAT(journal(),
                ElementsAre("agent.link", "kilo.link", "zulu.link", "agent.init", "kilo.init"));

    // The host may still take down what was built.
    journal().clear();
    architect.disassemble_framework();
    EXPECT_THAT(journal(), ElementsAre("agent.finalize", "kilo.finalize", "zulu.finalize",
                                       "agent.delete", "kilo.delete", "zulu.delete"));
}

TEST_F(ArchitectTest, FinalizeFailureIsChainedByFinalize) {
    configure("alpha\n", "finalize_fails\n");
    architect.construct();
    const Failure failure = failure_of([this] { architect.finalize(); });
    EXPECT_EQ(failure.source,
              at("finalize", 281) + "\n--> plugins/recorded.h: In function 'finalize' (line 9): ");
    EXPECT_EQ(failure.message, "cannot stop");
}

TEST_F(ArchitectTest, DisassembleSwallowsAFinalizeFailureButDeletesEverything) {
    configure("alpha\n", "zulu\nfinalize_fails\nagent\nmike\n");
    ASSERT_NE(architect.assemble_framework(), nullptr);
    journal().clear();

    architect.disassemble_framework();
    EXPECT_THAT(journal(), ElementsAre("agent.finalize", "kilo.finalize", "agent.delete",
                                       "kilo.delete", "mike.delete", "zulu.delete"));
}

TEST_F(ArchitectTest, MissingAgentIsReportedUnwrapped) {
    configure("alpha\n", "zulu\n");
    const Failure failure = assemble_failure();
    ASSERT_TRUE(failure.thrown);
    EXPECT_TRUE(failure.plain_class);
    EXPECT_EQ(failure.source, at("assemble_framework", 44));
    EXPECT_EQ(failure.message, "Could not find class <Agent>");
    EXPECT_EQ(failure.type, "Exception");
    // Assembly itself completed.
    EXPECT_THAT(journal(), ElementsAre("zulu.link", "zulu.init"));
}

TEST_F(ArchitectTest, AgentThatIsNoAgentGivesNull) {
    configure("beta\nalpha\n", "not_agent\nagent\n");
    EXPECT_EQ(architect.assemble_framework(), nullptr);
    EXPECT_EQ(registered("agent").factory, "not_agent");
}

TEST_F(ArchitectTest, EmptyArgumentsGiveTheStandardRangeError) {
    configure("alpha\n", "agent\n");
    args.clear();
    try {
        architect.assemble_framework();
        FAIL() << "assembled without arguments";
    } catch (const std::out_of_range& e) {
        EXPECT_THAT(e.what(), StartsWith("vector::_M_range_check"));
    }
    EXPECT_THAT(orvo_test::creations(), IsEmpty());
}

struct BrokenConfig {
    const char* missing;   ///< file left out
    const char* malformed; ///< file holding a tab-only line
    int construct_line;
    int reader_line;
    const char* message;
};

class ArchitectConfigTest : public ArchitectTest,
                            public ::testing::WithParamInterface<BrokenConfig> {};

TEST_P(ArchitectConfigTest, ReaderFailureIsChainedThreeLevels) {
    const BrokenConfig& broken = GetParam();
    configure("alpha\n", "agent\n");
    if (broken.malformed != nullptr) {
        dir.write(broken.malformed, "agent\n\t\t\n");
    }
    if (broken.missing != nullptr) {
        std::filesystem::remove(dir.path / broken.missing);
    }

    const Failure failure = assemble_failure();
    ASSERT_TRUE(failure.thrown);
    EXPECT_TRUE(failure.plain_class);
    EXPECT_EQ(failure.type, "Exception");
    EXPECT_EQ(failure.message, broken.message);
    EXPECT_EQ(failure.source, assemble_site + "\n--> " + at("construct", broken.construct_line) +
                                  "\n--> " + at("parse_config_file", broken.reader_line));
}

INSTANTIATE_TEST_SUITE_P(
    Files, ArchitectConfigTest,
    ::testing::Values(
        BrokenConfig{"config/libraries.cfg", nullptr, 93, 303, "Opening file failed!"},
        BrokenConfig{nullptr, "config/libraries.cfg", 93, 359, "Error while parsing values!"},
        BrokenConfig{"config/classes.cfg", nullptr, 178, 303, "Opening file failed!"},
        BrokenConfig{nullptr, "config/classes.cfg", 178, 359, "Error while parsing values!"}),
    [](const ::testing::TestParamInfo<BrokenConfig>& info) {
        const std::string file =
            info.param.missing != nullptr ? info.param.missing : info.param.malformed;
        return std::string(info.param.missing != nullptr ? "Missing" : "Malformed") +
               (file.find("libraries") != std::string::npos ? "Libraries" : "Classes");
    });

TEST_F(ArchitectTest, LibraryThatCannotBeOpenedEndsConstruction) {
    configure("alpha\nnowhere\n", "agent\n");
    const Failure failure = assemble_failure();
    ASSERT_TRUE(failure.thrown);
    EXPECT_EQ(failure.source, assemble_site + "\n--> " + at("construct", 165));
    EXPECT_EQ(failure.message, "Failed to open shared library!");
    EXPECT_EQ(failure.type, "Exception");
    EXPECT_THAT(orvo_test::creations(), IsEmpty());
}

TEST_F(ArchitectTest, MissingFactoryCarriesTheLoadersErrorText) {
    configure("alpha\nbeta\n", "zulu\nnothing\nmike\n");
    const Failure failure = assemble_failure();
    ASSERT_TRUE(failure.thrown);
    EXPECT_EQ(failure.source, assemble_site + "\n--> " + at("construct", 212));
    // The last library searched is the one the loader complains about.
    EXPECT_EQ(failure.message, std::string(ORVO_TEST_PLUGIN_DIR) +
                                   "/libbeta.agent3.so: undefined symbol: create_nothing");
    EXPECT_EQ(failure.type, "Exception");
    // What was created before the failure stays registered.
    EXPECT_EQ(architect.get_classes().size(), 1u);
}

TEST_F(ArchitectTest, MissingFactoryWithoutALoaderErrorIsALogicError) {
    configure("", "zulu\n");
    dlerror(); // no error pending
    EXPECT_THROW(architect.assemble_framework(), std::logic_error);
}

} // namespace
