#include "loopback.h"

#include <orvo/net/socket_stream_buf.h>
#include <orvo/net/tcp_socket.h>
#include <orvo/net/udp_socket.h>

#include <gtest/gtest.h>

#include <istream>
#include <ostream>
#include <string>

using orvo::net::Addr;
using orvo::net::Socket;
using orvo::net::SocketStreamBuf;
using orvo::net::UDPSocket;
using orvo_test::loopback;

namespace {

using StreamBufTest = orvo_test::NoDescriptorLeak;

/// A datagram sink: every datagram is one send of the stream buffer.
struct Sink {
    Sink() : socket(Addr(0, loopback)) { orvo_test::bound_waits(socket.getFD()); }
    std::string next() {
        if (!orvo_test::readable(socket.getFD())) {
            return "<nothing>";
        }
        char buffer[65536];
        const int n = socket.recv(buffer, sizeof buffer);
        return n < 0 ? "<error>" : std::string(buffer, n);
    }
    bool quiet() { return !orvo_test::readable(socket.getFD(), 50); }
    UDPSocket socket;
};

} // namespace

TEST_F(StreamBufTest, FlushSendsPendingOutputAsOneDatagram) {
    Sink sink;
    UDPSocket socket(Addr(0, loopback), sink.socket.getName());
    SocketStreamBuf buffer(&socket, 8);
    std::ostream out(&buffer);
    out << "abc" << std::flush;
    EXPECT_TRUE(out.good());
    EXPECT_EQ(sink.next(), "abc");
    EXPECT_TRUE(sink.quiet());
    out << std::flush; // nothing pending: nothing sent
    EXPECT_TRUE(sink.quiet());
}

TEST_F(StreamBufTest, OutputBeyondTheBufferGoesInFullBuffers) {
    Sink sink;
    UDPSocket socket(Addr(0, loopback), sink.socket.getName());
    {
        SocketStreamBuf buffer(&socket, 8);
        std::ostream out(&buffer);
        out << "0123456789abcdefghij";
        EXPECT_EQ(sink.next(), "01234567");
        EXPECT_EQ(sink.next(), "89abcdef");
        EXPECT_TRUE(sink.quiet());
    } // the destructor flushes the rest
    EXPECT_EQ(sink.next(), "ghij");
}

TEST_F(StreamBufTest, UnconnectedOutputGoesToThePeer) {
    Sink sink;
    UDPSocket socket(Addr(0, loopback));
    SocketStreamBuf buffer(&socket, 64, true, sink.socket.getName());
    std::ostream out(&buffer);
    out << "to peer" << std::flush;
    EXPECT_EQ(sink.next(), "to peer");
}

TEST_F(StreamBufTest, ZeroSizedBufferSendsEveryByteAlone) {
    Sink sink;
    UDPSocket socket(Addr(0, loopback), sink.socket.getName());
    SocketStreamBuf buffer(&socket, 0);
    std::ostream out(&buffer);
    out << "ab" << std::flush;
    EXPECT_TRUE(out.good());
    EXPECT_EQ(sink.next(), "a");
    EXPECT_EQ(sink.next(), "b");
}

TEST_F(StreamBufTest, FailedSendReportsAndKeepsTheOutput) {
    UDPSocket socket(Addr(0, loopback)); // unconnected, and no peer to send to
    SocketStreamBuf buffer(&socket, 4);
    std::ostream out(&buffer);
    out << "ab";
    EXPECT_EQ(buffer.pubsync(), -1);
    out << "cdef";
    EXPECT_TRUE(out.bad());
}

TEST_F(StreamBufTest, LoneFfEndsTheStreamAndDoubleFfIsData) {
    UDPSocket socket(Addr(0, loopback));
    orvo_test::bound_waits(socket.getFD());
    UDPSocket sender(Addr(0, loopback), socket.getName());
    SocketStreamBuf buffer(&socket, 64);
    std::istream in(&buffer);

    sender.send("\xFF\xFF", 2);
    EXPECT_EQ(in.get(), 0xFF);
    EXPECT_EQ(in.get(), 0xFF);
    sender.send("\xFF", 1);
    EXPECT_EQ(in.get(), std::char_traits<char>::eof());
    EXPECT_TRUE(in.eof());

    in.clear();
    sender.send("ok ", 3);
    std::string word;
    in >> word;
    EXPECT_EQ(word, "ok");
}

TEST_F(StreamBufTest, FirstSenderBecomesTheFixedPeer) {
    UDPSocket socket(Addr(0, loopback));
    orvo_test::bound_waits(socket.getFD());
    Sink first;
    Sink second;
    SocketStreamBuf buffer(&socket, 64, false);
    std::iostream stream(&buffer);

    first.socket.send("hi", 2, socket.getName());
    EXPECT_EQ(stream.get(), 'h');
    EXPECT_TRUE(socket.isConnected());
    EXPECT_EQ(socket.getPeer(), first.socket.getName());

    // A connected datagram socket only hears from its peer.
    second.socket.send("zz", 2, socket.getName());
    stream << "back" << std::flush;
    EXPECT_EQ(first.next(), "back");
    EXPECT_TRUE(second.quiet());
}

TEST_F(StreamBufTest, FixedPeerStaysUnconnected) {
    UDPSocket socket(Addr(0, loopback));
    orvo_test::bound_waits(socket.getFD());
    UDPSocket sender(Addr(0, loopback));
    SocketStreamBuf buffer(&socket, 64, true);
    std::istream in(&buffer);
    sender.send("hi", 2, socket.getName());
    EXPECT_EQ(in.get(), 'h');
    EXPECT_FALSE(socket.isConnected());
}

TEST_F(StreamBufTest, TcpStreamEndsWhenThePeerCloses) {
    orvo_test::TcpPair pair;
    SocketStreamBuf buffer(pair.client.get(), 16);
    std::iostream stream(&buffer);

    stream << "(init)" << std::flush;
    char received[16];
    ASSERT_EQ(pair.server->recv(received, sizeof received), 6);
    EXPECT_EQ(std::string(received, 6), "(init)");

    pair.server->send("(ok)", 4);
    pair.server->close();
    std::string text;
    std::getline(stream, text);
    EXPECT_EQ(text, "(ok)");
    EXPECT_TRUE(stream.eof());
    EXPECT_EQ(stream.get(), std::char_traits<char>::eof());
}

TEST_F(StreamBufTest, ReceiveErrorEndsTheStream) {
    UDPSocket socket(Addr(0, loopback));
    socket.setNonBlocking(true);
    SocketStreamBuf buffer(&socket, 16);
    std::istream in(&buffer);
    EXPECT_EQ(in.get(), std::char_traits<char>::eof());
}
