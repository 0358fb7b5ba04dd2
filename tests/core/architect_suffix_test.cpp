#include <orvo/core/architect.h>

#include "recorder.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

#include <sys/utsname.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

// This program defines uname() itself; the library's call binds to it, so the
// tests choose the system name the Architect sees.
namespace {
const char* fake_sysname = "Linux";
bool fake_fails = false;
} // namespace

extern "C" int uname(struct utsname* info) noexcept {
    if (fake_fails) {
        errno = EFAULT;
        return -1;
    }
    std::memset(info, 0, sizeof *info);
    std::strncpy(info->sysname, fake_sysname, sizeof info->sysname - 1);
    return 0;
}

namespace {

struct System {
    const char* sysname;
    bool fails;
    const char* opened; ///< the plug-in file the Architect must have picked
};

class ArchitectSuffixTest : public ::testing::TestWithParam<System> {
protected:
    void SetUp() override { orvo_test::reset(); }
    void TearDown() override {
        fake_sysname = "Linux";
        fake_fails = false;
    }
};

TEST_P(ArchitectSuffixTest, SuffixFollowsTheSystemName) {
    fake_sysname = GetParam().sysname;
    fake_fails = GetParam().fails;
    orvo_test::ScratchDir dir;
    dir.write("config/libraries.cfg", "pear\n");
    dir.write("config/classes.cfg", "pear\n");
    std::vector<std::string> args{"/opt/run/agent3"};
    orvo::Architect architect(args);

    architect.construct();
    const auto* creation = orvo_test::creation_of(architect.get_classes().at("pear"));
    ASSERT_NE(creation, nullptr);
    EXPECT_EQ(creation->origin, GetParam().opened);
    architect.disassemble_framework();
}

INSTANTIATE_TEST_SUITE_P(
    Systems, ArchitectSuffixTest,
    ::testing::Values(System{"Darwin", false, "pear.dylib"}, System{"Linux", false, "pear.so"},
                      System{"darwin", false, "pear.so"}, System{"FreeBSD", false, "pear.so"},
                      System{"Darwin", true, "pear.so"}),
    [](const ::testing::TestParamInfo<System>& info) {
        return std::string(info.param.fails ? "Failing" : "") + info.param.sysname;
    });

} // namespace
