#include <orvo/net/addr.h>

#include <gtest/gtest.h>

#include <netdb.h>

#include <sstream>

using orvo::net::Addr;

TEST(Addr, CopiesShareOneBodyUntilReassigned) {
    Addr first(80, 0x7F000001u);
    Addr copy = first;
    copy.setPort(81);
    EXPECT_EQ(first.getPort(), 81);
    EXPECT_EQ(&first.getAddr(), &copy.getAddr());

    copy = Addr(90);
    copy.setPort(91);
    EXPECT_EQ(first.getPort(), 81);
    EXPECT_NE(&first.getAddr(), &copy.getAddr());
}

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

TEST(Addr, EqualityOrderAndPrinting) {
    EXPECT_TRUE(Addr(5) == Addr(5, Addr::ANY));
    EXPECT_TRUE(Addr() == Addr(0));
    EXPECT_FALSE(Addr(5, 1u) == Addr(5, 2u));
    EXPECT_FALSE(Addr(5, 1u) == Addr(6, 1u));

    EXPECT_TRUE(Addr(1, 2u) < Addr(0, 3u));
    EXPECT_FALSE(Addr(0, 3u) < Addr(1, 2u));
    EXPECT_TRUE(Addr(1, 3u) < Addr(2, 3u));
    EXPECT_FALSE(Addr(2, 3u) < Addr(2, 3u));
    // Ordering is numeric in host byte order, not over the stored bytes.
    EXPECT_TRUE(Addr(0, 0x00000100u) < Addr(0, 0x01000000u));
    EXPECT_TRUE(Addr(0x00FF, 1u) < Addr(0x0100, 1u));

    std::ostringstream out; // printed port first
    out << Addr(3100, std::string("localhost")) << Addr(80, 0x7F000001u);
    EXPECT_EQ(out.str(), "(3100:localhost)(80:127.0.0.1)");
}

TEST(Addr, UnknownNameRaisesTheResolversCode) {
    try {
        Addr(1, std::string("no-such-host.invalid"));
        FAIL() << "resolved a reserved name";
    } catch (const orvo::net::HostNotFound& error) {
        EXPECT_NE(error.err(), 0);
        EXPECT_STREQ(error.what(), hstrerror(error.err()));
    }
}
