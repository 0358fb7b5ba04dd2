#include "process_usage.h"

#include <orvo/communication/messenger.h>
#include <orvo/core/architect.h>
#include <orvo/net/comm_unit.h>

#include <support/loopback.h>
#include <support/open_fds.h>
#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <vector>

namespace {

// One whole life of an agent: a new Architect assembles the framework of the
// test plug-in (its own components and the library's connection and messenger),
// the agent exchanges one message with the server, and everything is taken
// down again. Every component name is unique, so nothing is dropped.
class AssemblyCycles : public ::testing::Test {
protected:
    void SetUp() override {
        scratch.write("config/libraries.cfg", "cycler\n");
        scratch.write("config/classes.cfg", "configuration\ncommunit\nmessenger\nballast\nagent\n");
        scratch.write("config/server.cfg",
                      "127.0.0.1 " + std::to_string(server.address().getPort()) + " 15096\n");
    }

    /// Runs `cycle` 1,000 times after a warm-up and expects the process to
    /// hold as many descriptors and as much memory afterwards as before.
    template <class Cycle> void expect_flat(Cycle cycle) {
        // The first cycles load the plug-in and fill the C++ runtime's
        // one-time caches; what is measured is what every further cycle adds.
        constexpr int warm_up = 20, cycles = 1000;
        long fds = 0, rss = 0, heap = 0;
        for (int i = 0; i < warm_up + cycles; ++i) {
            if (i == warm_up) {
                fds = orvo_test::open_fds();
                rss = orvo_test::resident_kib();
                heap = orvo_test::heap_in_use();
            }
            std::vector<std::string> args{"/opt/team/cycles"};
            orvo::Architect architect(args);
            cycle(architect);
            architect.disassemble_framework();
            ASSERT_FALSE(HasFatalFailure()) << "cycle " << i;
        }
        std::cout << "over " << cycles << " cycles: descriptors " << fds << " -> "
                  << orvo_test::open_fds() << ", resident " << rss << " KiB -> "
                  << orvo_test::resident_kib() << " KiB, heap in use " << heap << " B -> "
                  << orvo_test::heap_in_use() << " B" << std::endl;
        EXPECT_EQ(orvo_test::open_fds(), fds);
        // A component left behind holds at least its own few dozen bytes; a
        // quarter of that per cycle stays below the allocator's own noise.
        EXPECT_LE(orvo_test::heap_in_use() - heap, cycles * 8) << "heap grows with every cycle";
#if !defined(__SANITIZE_ADDRESS__)
        // The sanitizer keeps freed blocks in quarantine, so only a plain
        // build can expect the resident size to stay put. One lost ballast
        // block per cycle would add 256 MiB.
        EXPECT_LE(orvo_test::resident_kib() - rss, 1024) << "resident memory grows every cycle";
#endif
    }

    orvo_test::Listener server;
    orvo_test::ScratchDir scratch;
};

TEST_F(AssemblyCycles, ThousandCyclesKeepDescriptorsAndMemoryFlat) {
    expect_flat([this](orvo::Architect& architect) {
        ASSERT_NE(architect.assemble_framework(), nullptr);
        const auto& classes = architect.get_classes();
        auto* messenger = dynamic_cast<orvo::communication::Messenger*>(classes.at("messenger"));
        auto* communit = dynamic_cast<orvo::net::CommUnit*>(classes.at("communit"));
        ASSERT_NE(messenger, nullptr);
        ASSERT_NE(communit, nullptr);

        const auto link = server.accept();
        messenger->send_message("(init)");
        ASSERT_EQ(orvo_test::read_bytes(*link, 10), orvo_test::frame("(init)"));
        const std::string reply = orvo_test::frame("(ok)");
        ASSERT_EQ(link->send(reply.data(), static_cast<unsigned int>(reply.size())), 8);
        ASSERT_TRUE(communit->SelectInput(true));
        ASSERT_TRUE(messenger->recieve_message());
        ASSERT_EQ(messenger->get_message(), "(ok)");
    });
}

} // namespace
