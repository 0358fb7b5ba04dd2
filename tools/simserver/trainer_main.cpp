// orvo_trainer: sends commands to a real server's monitor port, each as one
// frame, e.g. "(kickOff Left)" to start the game or "(playMode PlayOn)".
#include <iostream>
#include <string>

#include <orvo/net/comm_unit.h>

namespace {

constexpr const char* usage =
    "usage: orvo_trainer [--host HOST] --port PORT COMMAND...\n"
    "Connects to the server's monitor port and sends every COMMAND as one frame,\n"
    "e.g. orvo_trainer --port 3200 '(kickOff Left)'.\n";

} // namespace

int main(int argc, char** argv) {
    std::string host = "127.0.0.1";
    long port = 0;
    int first = 1;
    try {
        for (; first + 1 < argc && argv[first][0] == '-'; first += 2) {
            const std::string arg = argv[first];
            if (arg == "--host") {
                host = argv[first + 1];
            } else if (arg == "--port") {
                port = std::stol(argv[first + 1]);
            } else {
                port = 0;
                break;
            }
        }
    } catch (const std::exception&) {
        port = 0;
    }
    if (port <= 0 || port > 65535 || first >= argc) {
        std::cerr << usage;
        return 2;
    }
    orvo::net::CommUnit monitor;
    if (!monitor.open_connection(host, static_cast<unsigned int>(port))) {
        std::cerr << "orvo_trainer: nothing answers on " << host << ":" << port << '\n';
        return 1;
    }
    for (int i = first; i < argc; ++i) {
        monitor.write_message(argv[i]);
    }
    monitor.close_connection();
    return 0;
}
