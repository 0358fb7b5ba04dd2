#include <orvo/net/socket_stream_buf.h>
#include <orvo/net/tcp_socket.h>
#include <orvo/net/udp_socket.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <istream>
#include <memory>
#include <ostream>
#include <string>

using orvo::net::Addr;
using orvo::net::SocketStreamBuf;
using orvo::net::UDPSocket;
using orvo_test::loopback;
using Traits = std::char_traits<char>;

namespace {

/// A datagram sink: every datagram is one send of the stream buffer.
struct Sink {
    Sink() : socket(Addr(0, loopback)) { orvo_test::bound_waits(socket.getFD()); }
    std::string next() {
        char buffer[65536];
        const int n = orvo_test::readable(socket.getFD()) ? socket.recv(buffer, sizeof buffer) : -1;
        return n < 0 ? "<nothing>" : std::string(buffer, n);
    }
    bool quiet() { return !orvo_test::readable(socket.getFD(), 50); }
    UDPSocket socket;
};

/// A sink and a datagram socket connected to it, both open before the
/// descriptors are counted.
class StreamBufTest : public orvo_test::NoDescriptorLeak {
protected:
    void SetUp() override {
        NoDescriptorLeak::SetUp();
        orvo_test::bound_waits(socket->getFD());
    }
    std::unique_ptr<Sink> sink = std::make_unique<Sink>();
    std::unique_ptr<UDPSocket> socket =
        std::make_unique<UDPSocket>(Addr(0, loopback), sink->socket.getName());
};

} // namespace

TEST_F(StreamBufTest, OutputGoesOutInWholeBuffers) {
    {
        SocketStreamBuf buffer(socket.get(), 8);
        std::ostream out(&buffer);
        out << "abc" << std::flush;
        EXPECT_TRUE(out.good());
        EXPECT_EQ(sink->next(), "abc");
        out << std::flush; // nothing pending: nothing sent
        EXPECT_TRUE(sink->quiet());

        out << "0123456789abcdefghij";
        EXPECT_EQ(sink->next(), "01234567");
        EXPECT_EQ(sink->next(), "89abcdef");
        EXPECT_TRUE(sink->quiet());
    } // the destructor flushes the rest
    EXPECT_EQ(sink->next(), "ghij");

    SocketStreamBuf unbuffered(socket.get(), 0);
    std::ostream out(&unbuffered);
    out << "ab" << std::flush;
    EXPECT_TRUE(out.good());
    EXPECT_EQ(sink->next(), "a");
    EXPECT_EQ(sink->next(), "b");
}

TEST_F(StreamBufTest, LoneFfEndsTheStreamAndDoubleFfIsData) {
    SocketStreamBuf buffer(&sink->socket, 64);
    std::istream in(&buffer);
    socket->send("\xFF\xFF", 2);
    EXPECT_EQ(in.get(), 0xFF);
    EXPECT_EQ(in.get(), 0xFF);
    socket->send("\xFF", 1);
    EXPECT_EQ(in.get(), Traits::eof());
    EXPECT_TRUE(in.eof());

    in.clear();
    socket->send("ok ", 3);
    std::string word;
    in >> word;
    EXPECT_EQ(word, "ok");
}

TEST_F(StreamBufTest, InputEndsOnCloseAndOnReceiveErrors) {
    orvo_test::Listener listener;
    orvo::net::TCPSocket client(Addr(0, loopback), listener.address());
    orvo_test::bound_waits(client.getFD());
    const auto server = listener.accept();
    SocketStreamBuf buffer(&client, 16);
    std::iostream stream(&buffer);
    stream << "(init)" << std::flush;
    EXPECT_EQ(orvo_test::read_bytes(*server, 6), "(init)");
    server->send("(ok)", 4);
    server->close();
    std::string text;
    std::getline(stream, text);
    EXPECT_EQ(text, "(ok)");
    EXPECT_TRUE(stream.eof());
    EXPECT_EQ(stream.get(), Traits::eof());

    sink->socket.setNonBlocking(true); // nothing there: EAGAIN
    SocketStreamBuf empty(&sink->socket, 16);
    std::istream in(&empty);
    EXPECT_EQ(in.get(), Traits::eof());
}
