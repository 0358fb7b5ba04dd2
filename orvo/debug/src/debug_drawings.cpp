#include <orvo/debug/debug_drawings.h>

#include <algorithm>
#include <cstring>
#include <iostream>

namespace orvo {

namespace {

/// Bytes of the opening datagram: 0x03 0x00 <header>.
constexpr unsigned int opening_size = 3;
/// The buffer has room for every command's share plus a little slack, as the
/// viewer protocol has always sized it.
constexpr std::size_t buffer_slack = 6;
/// A reply is read as text into a buffer with room for its terminating NUL.
constexpr unsigned int reply_size = 1023;

} // namespace

DebugDrawings::DebugDrawings() = default;

DebugDrawings::~DebugDrawings() {
    clear();
    socket.close();
}

void DebugDrawings::init(const char* host, int port, int local_port) {
    local = std::make_unique<net::Addr>(static_cast<unsigned short>(local_port), net::Addr::ANY);
    destination = std::make_unique<net::Addr>(static_cast<unsigned short>(port), std::string(host));
    socket.setReuseAddress(true);
    socket.setNonBlocking(true);
    socket.bind(*local);
}

void DebugDrawings::setTeam(int team) {
    // Unsigned arithmetic: a negative team must not shift into undefined behaviour.
    header = static_cast<unsigned char>((header & 0x7Fu) + (static_cast<unsigned int>(team) << 7));
}

void DebugDrawings::setId(int id) {
    header = static_cast<unsigned char>((header & 0x80u) + static_cast<unsigned int>(id));
}

void DebugDrawings::addDrawing(DrawingCommand* command) {
    try {
        drawings.push_back(command);
    } catch (...) {
        delete command;
        throw;
    }
}

void DebugDrawings::activateDrawing(std::string name) {
    const auto position =
        std::lower_bound(active_drawings.begin(), active_drawings.end(), name,
                         [](const std::string& entry, const std::string& wanted) {
                             return std::strcmp(entry.c_str(), wanted.c_str()) < 0;
                         });
    active_drawings.insert(position, std::move(name));
}

void DebugDrawings::deactivateDrawing(std::string name) {
    const auto found = std::find(active_drawings.begin(), active_drawings.end(), name);
    if (found != active_drawings.end()) {
        active_drawings.erase(found);
    }
}

bool DebugDrawings::isDrawingActive(std::string /*name*/) {
    return true;
}

void DebugDrawings::send() {
    if (!destination) {
        return;
    }
    // One buffer shared by all commands, each serialised to its start in turn.
    std::vector<unsigned char> buffer(drawings.size() * DrawingCommand::max_size + buffer_slack);
    const char* bytes = reinterpret_cast<const char*>(buffer.data());

    buffer[0] = 0x03;
    buffer[1] = 0x00;
    buffer[2] = header;
    socket.send(bytes, opening_size, *destination, 0, net::Socket::CHECK);

    for (DrawingCommand* command : drawings) {
        if (command == nullptr) {
            continue;
        }
        const int length = command->serialize(header, buffer.data());
        // A length beyond the command's share would send bytes it never wrote,
        // or read past the buffer; such a datagram is dropped rather than cut.
        if (length < 0 || length > DrawingCommand::max_size) {
            continue;
        }
        socket.send(bytes, static_cast<unsigned int>(length), *destination, 0, net::Socket::CHECK);
    }
}

void DebugDrawings::clear() {
    user_flag = false;
    for (DrawingCommand* command : drawings) {
        delete command;
    }
    drawings.clear();
}

void DebugDrawings::receive() {
    // Before init the socket is neither bound nor non-blocking: a read would wait.
    if (!destination) {
        return;
    }
    char reply[reply_size + 1];
    const int received = socket.recv(reply, reply_size, 0, net::Socket::CHECK);
    if (received > 0) {
        reply[received] = '\0';
        std::cerr << "received: " << reply << std::endl;
    }
}

void DebugDrawings::execute() {
    send();
    clear();
    receive();
}

} // namespace orvo
