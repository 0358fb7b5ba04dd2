#include <orvo/net/socket_stream_buf.h>

namespace orvo::net {

namespace {
constexpr unsigned char end_marker = 0xFF;
}

SocketStreamBuf::SocketStreamBuf(Socket* socket, int buffer_size, bool fixed_peer, const Addr& peer)
    : socket(socket), peer(peer), buffer_size(buffer_size < 0 ? 0 : buffer_size),
      fixed_peer(fixed_peer) {}

SocketStreamBuf::~SocketStreamBuf() {
    // Only pending output matters; without a put area there is nothing to send.
    if (pptr() != nullptr) {
        overflow(traits_type::eof());
    }
}

void SocketStreamBuf::reset_put_area() {
    setp(out_buffer.get(), out_buffer.get() + buffer_size);
}

bool SocketStreamBuf::writeData() {
    if (pptr() == out_buffer.get()) {
        return true;
    }
    const auto pending = static_cast<unsigned int>(pptr() - out_buffer.get());
    const int sent = socket->isConnected()
                         ? socket->send(out_buffer.get(), pending, 0, Socket::CHECK)
                         : socket->send(out_buffer.get(), pending, peer, 0, Socket::CHECK);
    return sent > 0;
}

int SocketStreamBuf::sync() {
    if (pptr() == nullptr) {
        return 0;
    }
    if (!writeData()) {
        return -1;
    }
    reset_put_area();
    return 0;
}

SocketStreamBuf::int_type SocketStreamBuf::overflow(int_type c) {
    if (pptr() != nullptr) {
        if (!writeData()) {
            return traits_type::eof();
        }
    } else {
        out_buffer.reset(new char[buffer_size]);
    }
    reset_put_area();
    if (traits_type::eq_int_type(c, traits_type::eof())) {
        return 0;
    }
    if (pptr() == epptr()) {
        // A zero-sized buffer never has room: the byte goes out on its own.
        const char byte = traits_type::to_char_type(c);
        const int sent = socket->isConnected() ? socket->send(&byte, 1, 0, Socket::CHECK)
                                               : socket->send(&byte, 1, peer, 0, Socket::CHECK);
        return sent > 0 ? 0 : traits_type::eof();
    }
    *pptr() = traits_type::to_char_type(c);
    pbump(1);
    return 0;
}

SocketStreamBuf::int_type SocketStreamBuf::underflow() {
    if (!in_buffer) {
        in_buffer.reset(new char[buffer_size]);
    }
    if (putback_count != 0) {
        in_buffer[0] = putback_char;
    }
    char* const read_at = in_buffer.get() + putback_count;
    const unsigned int room = static_cast<unsigned int>(buffer_size) - putback_count;
    if (room == 0) {
        return traits_type::eof();
    }

    int received;
    if (socket->isConnected()) {
        received = socket->recv(read_at, room, 0, Socket::CHECK);
    } else {
        Addr from;
        received = socket->recv(read_at, room, from, 0, Socket::CHECK);
        if (!fixed_peer && received > 0) {
            socket->connect(from);
        }
    }

    if (received < 0) {
        *read_at = static_cast<char>(end_marker);
        return traits_type::eof();
    }
    if (received == 1 && static_cast<unsigned char>(*read_at) == end_marker) {
        return traits_type::eof();
    }
    const unsigned int filled = putback_count + static_cast<unsigned int>(received);
    setg(in_buffer.get(), in_buffer.get(), in_buffer.get() + filled);
    putback_count = 0;
    if (filled == 0) {
        // A closed connection (or an empty datagram) ends the stream.
        return traits_type::eof();
    }
    return traits_type::to_int_type(*gptr());
}

} // namespace orvo::net
