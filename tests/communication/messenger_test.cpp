#include <orvo/communication/messenger.h>
#include <orvo/core/architect.h>

#include <support/loopback.h>
#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

using orvo::Class_Map;
using orvo::communication::Configuration;
using orvo::communication::Messenger;
using orvo::net::CommUnit;
using orvo::net::Received;
using namespace std::string_literals;

namespace {

using MessengerTest = orvo_test::NoDescriptorLeak;

/// The configuration a plug-in would supply.
class FixedConfiguration : public Configuration {
public:
    FixedConfiguration(const std::string& host, unsigned int port) {
        server_host = host;
        server_port = port;
        run_value = 11;
    }
};

} // namespace

TEST_F(MessengerTest, MissingCollaboratorsRaiseFromTheMessengersLink) {
    FixedConfiguration configuration("127.0.0.1", 1);
    CommUnit communit;
    const std::vector<std::pair<Class_Map, std::string>> cases{
        {{{"configuration", &configuration}}, "communit"},
        {{{"communit", &communit}}, "configuration"}};
    for (auto [classes, missing] : cases) {
        Messenger messenger;
        try {
            messenger.link(classes);
            ADD_FAILURE() << "linked without " << missing;
        } catch (const orvo::LinkException& error) {
            EXPECT_EQ(error.get_source(),
                      "communication/src/messenger.cpp: In function 'link' (line 63): ");
            EXPECT_EQ(error.get_message(),
                      "Error while linking <messenger>\n\t-> class <" + missing + "> not found");
        }
    }
}

TEST_F(MessengerTest, WrongOrUnreachableCollaboratorsFailAtInit) {
    CommUnit communit;
    FixedConfiguration configuration("127.0.0.1", orvo_test::released_port().getPort());
    Class_Map swapped{{"configuration", &communit}, {"communit", &configuration}};
    Messenger messenger;
    messenger.link(swapped); // registered under the names: no link error
    EXPECT_THROW(messenger.init(), orvo::LogicException);
    // Without a communit nothing is sent or received.
    messenger.send_message("(init)");
    EXPECT_FALSE(messenger.recieve_message());
    EXPECT_EQ(messenger.receive(std::chrono::milliseconds(0)), Received::closed);

    Class_Map classes{{"configuration", &configuration}, {"communit", &communit}};
    Messenger refused;
    refused.link(classes);
    EXPECT_NO_THROW(refused.init());
    EXPECT_FALSE(communit.is_connected());

    FixedConfiguration unknown("no-such-host.invalid", 1);
    CommUnit other;
    Class_Map unresolvable{{"configuration", &unknown}, {"communit", &other}};
    Messenger lost;
    lost.link(unresolvable);
    EXPECT_THROW(lost.init(), orvo::net::HostNotFound);
}

TEST_F(MessengerTest, ArchitectAssemblesAConnectedMessengerFromPlugins) {
    orvo_test::Listener listener;
    orvo_test::ScratchDir scratch;
    scratch.write("config/libraries.cfg", "serverconfiguration\n");
    scratch.write("config/classes.cfg", "communit\nconfiguration\nmessenger\nagent\n");
    scratch.write("config/server.cfg",
                  "localhost " + std::to_string(listener.address().getPort()) + " 15096\n");

    std::vector<std::string> args{"/opt/team/messenger_host"};
    orvo::Architect architect(args);
    ASSERT_NE(architect.assemble_framework(), nullptr);
    const auto& classes = architect.get_classes();
    auto* messenger = dynamic_cast<Messenger*>(classes.at("messenger"));
    auto* communit = dynamic_cast<CommUnit*>(classes.at("communit"));
    ASSERT_NE(messenger, nullptr);
    ASSERT_NE(communit, nullptr);
    EXPECT_TRUE(communit->is_connected()) << "init connects";
    EXPECT_EQ(communit->get_host(), "localhost");
    EXPECT_EQ(communit->get_run_value(), 15096u);

    const auto server = listener.accept();
    messenger->send_message("");
    messenger->send_message(nullptr);
    messenger->send_message("(init (unum 7))");
    EXPECT_EQ(orvo_test::read_bytes(*server, 19), "\x00\x00\x00\x0f(init (unum 7))"s);

    EXPECT_FALSE(messenger->recieve_message());
    const std::string reply = orvo_test::frame("(ok)");
    server->send(reply.data(), reply.size());
    ASSERT_TRUE(orvo_test::readable(communit->get_socket().getFD()));
    EXPECT_TRUE(messenger->recieve_message());
    EXPECT_EQ(messenger->get_message(), "(ok)");
    // Nothing more pending: the kept message is overwritten with "".
    EXPECT_FALSE(messenger->recieve_message());
    EXPECT_EQ(messenger->get_message(), "");

    // Two frames in one read: the lossless path hands out both, in order.
    const std::string two = orvo_test::frame("(a)") + orvo_test::frame("(b)");
    server->send(two.data(), two.size());
    for (const char* expected : {"(a)", "(b)"}) {
        EXPECT_EQ(messenger->receive(std::chrono::milliseconds(orvo_test::wait_ms)),
                  Received::message);
        EXPECT_EQ(messenger->get_message(), expected);
    }
    EXPECT_EQ(messenger->receive(std::chrono::milliseconds(0)), Received::timed_out);
    EXPECT_EQ(messenger->get_message(), "");

    architect.disassemble_framework();
    // finalize closed the connection: the server sees the end.
    char byte;
    ASSERT_TRUE(orvo_test::readable(server->getFD()));
    EXPECT_EQ(server->recv(&byte, 1), 0);
}
