#include <orvo/net/addr.h>

#include <gtest/gtest.h>

#include <netdb.h>

using orvo::net::Addr;

TEST(Addr, ConstructorsFillTheStructureAndTheHostText) {
    EXPECT_EQ(Addr().getAddr().sin_family, 0);
    const Addr numeric(3100, 0x7F000001u);
    EXPECT_EQ(numeric.getAddr().sin_family, AF_INET);
    EXPECT_EQ(numeric.getAddr().sin_port, htons(3100));
    EXPECT_EQ(numeric.getAddr().sin_addr.s_addr, htonl(0x7F000001u));

    sockaddr_in raw = numeric.getAddr();
    raw.sin_zero[3] = 9; // copied as it is, padding included
    EXPECT_EQ(Addr(raw).getAddr().sin_zero[3], 9);
    EXPECT_EQ(Addr(raw).getHostStr(), "127.0.0.1");

    // The host text is the given name, else the dotted quad.
    const Addr named(3100, std::string("localhost"));
    EXPECT_EQ(named.getHostStr(), "localhost");
    EXPECT_EQ(named.getHost(), 0x7F000001u);
    EXPECT_EQ(named.getPort(), 3100);

    EXPECT_EQ(Addr(3100, 0x7F000001u).getHostStr(), "127.0.0.1");
    EXPECT_EQ(Addr(1, Addr::BROADCAST).getHostStr(), "255.255.255.255");
    EXPECT_EQ(Addr(1, std::string("127.0.0.2")).getHost(), 0x7F000002u);
}
