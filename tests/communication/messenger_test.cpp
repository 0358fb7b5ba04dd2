#include <orvo/communication/messenger.h>
#include <orvo/core/architect.h>

#include <net/loopback.h>
#include <support/scratch_dir.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using orvo::Class_Map;
using orvo::communication::Configuration;
using orvo::communication::Messenger;
using orvo::net::Addr;
using orvo::net::CommUnit;
using orvo::net::TCPSocket;
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

std::string read_bytes(TCPSocket& socket, std::size_t count) {
    std::string bytes(count, '\0');
    std::size_t have = 0;
    while (have < count && orvo_test::readable(socket.getFD())) {
        const int n = socket.recv(&bytes[have], count - have);
        if (n <= 0) {
            break;
        }
        have += n;
    }
    bytes.resize(have);
    return bytes;
}

void expect_link_failure(Class_Map& classes, const std::string& missing) {
    Messenger messenger;
    try {
        messenger.link(classes);
        FAIL() << "linked without " << missing;
    } catch (const orvo::LinkException& error) {
        EXPECT_EQ(error.get_source(),
                  "communication/src/messenger.cpp: In function 'link' (line 63): ");
        EXPECT_EQ(error.get_message(),
                  "Error while linking <messenger>\n\t-> class <" + missing + "> not found");
        EXPECT_EQ(error.get_type(), "LinkException");
    }
}

} // namespace

TEST_F(MessengerTest, MissingCollaboratorsRaiseFromTheMessengersLink) {
    FixedConfiguration configuration("127.0.0.1", 1);
    CommUnit communit;
    Class_Map only_configuration{{"configuration", &configuration}};
    expect_link_failure(only_configuration, "communit");
    Class_Map only_communit{{"communit", &communit}};
    expect_link_failure(only_communit, "configuration");
}

TEST_F(MessengerTest, CollaboratorsOfAnotherClassFailAtInit) {
    CommUnit communit;
    FixedConfiguration configuration("127.0.0.1", 1);
    Class_Map swapped{{"configuration", &communit}, {"communit", &configuration}};
    Messenger messenger;
    messenger.link(swapped); // registered under the names: no link error
    EXPECT_THROW(messenger.init(), orvo::LogicException);
    // Without a communit nothing is sent or received.
    messenger.send_message("(init)");
    EXPECT_FALSE(messenger.recieve_message());
}

TEST_F(MessengerTest, TalksThroughTheCommUnit) {
    orvo_test::Listener server_socket;
    FixedConfiguration configuration("localhost", server_socket.address().getPort());
    CommUnit communit;
    Class_Map classes{{"configuration", &configuration}, {"communit", &communit}};
    Messenger messenger;
    EXPECT_EQ(messenger.get_name(), "messenger");
    messenger.link(classes);
    messenger.init();
    EXPECT_TRUE(communit.is_connected());
    EXPECT_EQ(communit.get_host(), "localhost");
    EXPECT_EQ(communit.get_run_value(), 11u);

    Addr peer;
    std::unique_ptr<orvo::net::Socket> server(server_socket.socket.accept(peer));
    auto& tcp = static_cast<TCPSocket&>(*server);

    messenger.send_message("");
    messenger.send_message(nullptr);
    messenger.send_message("(scene rsg/agent/nao.rsg)");
    EXPECT_EQ(read_bytes(tcp, 29), "\x00\x00\x00\x19(scene rsg/agent/nao.rsg)"s);

    EXPECT_FALSE(messenger.recieve_message());
    const std::string reply = "\x00\x00\x00\x0c(time (n 1))"s;
    tcp.send(reply.data(), reply.size());
    ASSERT_TRUE(orvo_test::readable(communit.get_socket().getFD()));
    EXPECT_TRUE(messenger.recieve_message());
    EXPECT_EQ(messenger.get_message(), "(time (n 1))");
    // Nothing more pending: the kept message is overwritten with "".
    EXPECT_FALSE(messenger.recieve_message());
    EXPECT_EQ(messenger.get_message(), "");
}

TEST_F(MessengerTest, UnreachableServerLeavesTheFrameworkUnconnected) {
    Addr refused;
    {
        TCPSocket reserved(Addr(0, orvo_test::loopback));
        refused = reserved.getName();
    }
    FixedConfiguration configuration("127.0.0.1", refused.getPort());
    CommUnit communit;
    Class_Map classes{{"configuration", &configuration}, {"communit", &communit}};
    Messenger messenger;
    messenger.link(classes);
    EXPECT_NO_THROW(messenger.init());
    EXPECT_FALSE(communit.is_connected());

    FixedConfiguration unknown("no-such-host.invalid", 1);
    CommUnit other;
    Class_Map unresolvable{{"configuration", &unknown}, {"communit", &other}};
    Messenger lost;
    lost.link(unresolvable);
    EXPECT_THROW(lost.init(), orvo::net::HostNotFound);
}

TEST_F(MessengerTest, ArchitectAssemblesAConnectedMessengerFromPlugins) {
    orvo_test::Listener server_socket;
    orvo_test::ScratchDir scratch;
    scratch.write("config/libraries.cfg", "serverconfiguration\n");
    scratch.write("config/classes.cfg", "communit\nconfiguration\nmessenger\nagent\n");
    scratch.write("config/server.cfg",
                  "127.0.0.1 " + std::to_string(server_socket.address().getPort()) + " 15096\n");

    std::vector<std::string> args{"/opt/team/messenger_host"};
    orvo::Architect architect(args);
    ASSERT_NE(architect.assemble_framework(), nullptr);
    const auto& classes = architect.get_classes();
    auto* messenger = dynamic_cast<Messenger*>(classes.at("messenger"));
    auto* communit = dynamic_cast<CommUnit*>(classes.at("communit"));
    ASSERT_NE(messenger, nullptr);
    ASSERT_NE(communit, nullptr);
    ASSERT_NE(dynamic_cast<Configuration*>(classes.at("configuration")), nullptr);
    EXPECT_TRUE(communit->is_connected()) << "init connects";
    EXPECT_EQ(communit->get_run_value(), 15096u);

    Addr peer;
    std::unique_ptr<orvo::net::Socket> server(server_socket.socket.accept(peer));
    auto& tcp = static_cast<TCPSocket&>(*server);
    messenger->send_message("(init (unum 7))");
    EXPECT_EQ(read_bytes(tcp, 19), "\x00\x00\x00\x0f(init (unum 7))"s);
    const std::string reply = "\x00\x00\x00\x04(ok)"s;
    tcp.send(reply.data(), reply.size());
    ASSERT_TRUE(orvo_test::readable(communit->get_socket().getFD()));
    EXPECT_TRUE(messenger->recieve_message());
    EXPECT_EQ(messenger->get_message(), "(ok)");

    architect.disassemble_framework();
    // finalize closed the connection: the server sees the end.
    char byte;
    ASSERT_TRUE(orvo_test::readable(tcp.getFD()));
    EXPECT_EQ(tcp.recv(&byte, 1), 0);
}
