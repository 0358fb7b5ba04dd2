#include <orvo/core/architect.h>

#include <support/failure.h>
#include <support/loopback.h>
#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

const std::string assemble_site =
    "core/src/architect.cpp: In function 'assemble_framework' (line 33): ";
const std::string open_site = "core/src/architect.cpp: In function 'construct' (line 165): ";

// Damaged plug-in files and hostile names in the configuration: the host gets
// the Architect's own report, and nothing stays open or alive afterwards.
//
// A library value holding a slash makes the file name a relative path, so the
// value "/junk" with the tag "cycles" opens ./lib/junk.cycles.so in the
// working directory, where each test puts a file of its making.
class BrokenPlugins : public orvo_test::NoDescriptorLeak {
protected:
    /// Assembling from these libraries fails as a missing library does.
    void expect_open_failure(const std::string& libraries) {
        dir.write("config/libraries.cfg", libraries);
        dir.write("config/classes.cfg", "agent\n");
        std::vector<std::string> args{"/opt/team/cycles"};
        orvo::Architect architect(args);
        EXPECT_EQ(orvo_test::failure([&] { architect.assemble_framework(); }),
                  "Exception @ " + assemble_site + "\n--> " + open_site +
                      " | Failed to open shared library!");
        architect.disassemble_framework();
    }

    orvo_test::ScratchDir dir;
};

TEST_F(BrokenPlugins, DamagedFilesAndHostileNamesAreReportedAsUnopenable) {
    std::string elf_header(64, '\0');
    std::ifstream(CYCLER_PLUGIN, std::ios::binary).read(&elf_header[0], 64);
    ASSERT_EQ(elf_header.substr(1, 3), "ELF");
    // Only the ELF header survives: the loader refuses the file. A file cut
    // further on is mapped as its headers describe and faults inside the
    // loader itself, before the Architect could report anything.
    for (const std::string& content : {std::string(), std::string("not a library\n"), elf_header}) {
        dir.write("lib/junk.cycles.so", content);
        expect_open_failure("cycler\n/junk\n");
    }
    std::filesystem::remove(dir.path / "lib/junk.cycles.so");
    std::filesystem::create_directories(dir.path / "lib/junk.cycles.so");
    for (const std::string& libraries :
         {std::string("/junk\n"), std::string(5000, 'n') + "\n",
          std::string("/../../../../../../etc/passwd\n"), std::string("\x01\x02\x7f\xff\n")}) {
        expect_open_failure(libraries);
    }
}

} // namespace
