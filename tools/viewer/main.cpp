// orvo_viewer: the agents' debug drawings, and the game a real server plays
// under them, live in a browser. See --help.

#include "drawing_listener.h"
#include "drawing_store.h"
#include "field_svg.h"
#include "live_page.h"
#include "monitor_feed.h"

#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>

namespace {

const char* const usage = R"usage(usage: orvo_viewer [options]

Shows the agents' debug drawings live: listens for their drawing datagrams on
a UDP port (the drawing port of their configuration) and serves a page on
127.0.0.1 with the field and every agent's latest drawings, updated as they
arrive (at most 25 times a second). The page needs nothing but this program.
With --monitor it also follows a simulation server's monitor port and draws
the game as the server has it: robots with side and number, the ball, score,
play mode and clock, with the agents' drawings (what they believe) on top.
Stops on SIGINT or SIGTERM and prints what it received; SIGUSR1 writes the
--svg picture at once.

options:
  --drawing-port N   UDP port of the drawings (default 15096; 0 picks a free one)
  --listen ADDRESS   address the UDP port is bound to (default 127.0.0.1; 0.0.0.0
                     takes drawings from other machines too)
  --http-port N      port of the page on 127.0.0.1 (default 15080; 0 picks a free one)
  --monitor HOST:PORT  the server's monitor port (e.g. 127.0.0.1:3200); the
                     viewer connects again while the server is not there
  --svg FILE         write the picture there at the end (and on SIGUSR1)
  --ports-file FILE  write "UDP-PORT HTTP-PORT" there once listening
  --seconds S        stop by itself after S seconds
  --help             this text
)usage";

struct Options {
    std::string listen = "127.0.0.1";
    unsigned drawing_port = 15096;
    unsigned http_port = 15080;
    std::string svg_path;
    std::string ports_file;
    std::string monitor_host;
    int monitor_port = 0;
    double seconds = 0;
};

unsigned to_port(const std::string& option, const char* text) {
    char* end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(text, &end, 10);
    if (*text == '\0' || *end != '\0' || errno != 0 || value > 65535 || text[0] == '-') {
        throw std::invalid_argument(option + ": not a port (0 to 65535): " + text);
    }
    return static_cast<unsigned>(value);
}

/// Longer runs than a year are meant to be stopped by a signal; the bound also
/// keeps the timer's duration within its integer range.
constexpr double max_seconds = 365.0 * 24 * 3600;

double to_seconds(const std::string& option, const char* text) {
    char* end = nullptr;
    const double value = std::strtod(text, &end);
    if (*text == '\0' || *end != '\0' || !(value > 0 && value <= max_seconds)) {
        throw std::invalid_argument(option + ": not a number of seconds (above 0, at most " +
                                    std::to_string(static_cast<long>(max_seconds)) + "): " + text);
    }
    return value;
}

Options parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (i + 1 >= argc || option.rfind("--", 0) != 0) {
            throw std::invalid_argument(option.rfind("--", 0) != 0
                                            ? "unexpected argument: " + option
                                            : option + " needs a value");
        }
        const char* value = argv[++i];
        if (option == "--drawing-port") {
            options.drawing_port = to_port(option, value);
        } else if (option == "--listen") {
            options.listen = value;
        } else if (option == "--http-port") {
            options.http_port = to_port(option, value);
        } else if (option == "--svg") {
            options.svg_path = value;
        } else if (option == "--monitor") {
            const std::string address = value;
            const auto colon = address.rfind(':');
            if (colon == std::string::npos || colon == 0) {
                throw std::invalid_argument(option + ": not HOST:PORT: " + address);
            }
            options.monitor_host = address.substr(0, colon);
            options.monitor_port = static_cast<int>(to_port(option, address.c_str() + colon + 1));
        } else if (option == "--ports-file") {
            options.ports_file = value;
        } else if (option == "--seconds") {
            options.seconds = to_seconds(option, value);
        } else {
            throw std::invalid_argument("unknown option: " + option);
        }
    }
    return options;
}

/// Written whole or not at all, so that a script polling for it never reads half.
void write_ports(const std::string& path, unsigned udp, unsigned http) {
    const std::string temporary = path + ".tmp";
    std::ofstream(temporary) << udp << ' ' << http << '\n';
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        throw std::runtime_error("cannot write " + path);
    }
}

std::size_t drawing_agents(const field_view::DrawingStore& store) {
    std::size_t agents = 0;
    for (const auto& entry : store.drawings()) {
        agents += entry.second.empty() ? 0 : 1;
    }
    return agents;
}

/// The viewer's parts, started in order and stopped together.
class Viewer {
public:
    explicit Viewer(const Options& options) : options(options) {}

    /// Opens the drawing port and the page; false (after saying why) when one cannot open.
    bool start() {
        try {
            listener.emplace(io, options.listen, static_cast<unsigned short>(options.drawing_port),
                             store, [this] { page->changed(); });
            page.emplace(io, static_cast<unsigned short>(options.http_port),
                         [this] { return field_view::field_svg(picture()); });
            if (!options.monitor_host.empty()) {
                feed.emplace(options.monitor_host, options.monitor_port,
                             [this] { page->changed(); });
            }
            if (!options.ports_file.empty()) {
                write_ports(options.ports_file, listener->port(), page->port());
            }
        } catch (const std::exception& error) {
            std::cerr << "orvo_viewer: " << error.what() << '\n';
            return false;
        }
        std::cout << "orvo_viewer: drawings on udp " << options.listen << ':' << listener->port()
                  << ", live page http://127.0.0.1:" << page->port() << '/' << std::endl;
        return true;
    }

    /// Serves until SIGINT, SIGTERM or the --seconds deadline.
    void run() {
        wait_for_signal();
        if (options.seconds > 0) {
            deadline.expires_after(std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                std::chrono::duration<double>(options.seconds)));
            deadline.async_wait([this](const boost::system::error_code& error) {
                if (!error) {
                    stop();
                }
            });
        }
        io.run();
        // Browsers get a second to acknowledge the close; then the viewer goes regardless.
        io.restart();
        io.run_for(std::chrono::seconds(1));
    }

    /// Writes the --svg picture, if asked for one.
    void write_svg() {
        if (!options.svg_path.empty() &&
            !field_view::write_field_svg(options.svg_path, picture())) {
            std::cerr << "orvo_viewer: cannot write " << options.svg_path << '\n';
            svg_failed = true;
        }
    }
    /// Whether any writing of the picture failed.
    bool failed() const { return svg_failed; }

    void print_summary() const {
        const auto& counts = store.counts();
        std::cout << "datagrams: " << counts.datagrams << " received, " << counts.batches
                  << " batches, " << counts.shapes << " shapes, " << counts.malformed
                  << " malformed, " << listener->overflowed() << " dropped by the system\n"
                  << "agents drawing: " << drawing_agents(store) << '\n'
                  << "page: " << page->pushes() << " pictures pushed\n";
        if (feed) {
            std::cout << "monitor: " << feed->messages() << " messages, " << feed->state() << '\n';
        }
    }

private:
    field_view::FieldPicture picture() const {
        field_view::FieldPicture result;
        result.title = feed ? "orvo live" : "orvo drawings";
        const auto& counts = store.counts();
        result.caption = std::to_string(drawing_agents(store)) + " agents drawing, " +
                         std::to_string(counts.datagrams) + " datagrams, " +
                         std::to_string(counts.malformed) + " malformed";
        if (feed) {
            result.game = feed->game();
            result.caption = "monitor " + feed->state() + ", " + result.caption;
        }
        result.drawings = store.drawings();
        return result;
    }

    /// SIGUSR1 writes the picture and keeps waiting; the others stop the viewer.
    void wait_for_signal() {
        signals.async_wait([this](const boost::system::error_code& error, int number) {
            if (error) {
                return;
            }
            if (number == SIGUSR1) {
                write_svg();
                wait_for_signal();
                return;
            }
            stop();
        });
    }

    void stop() {
        if (feed) {
            feed->stop(); // before the page it tells of changes
        }
        signals.cancel();
        deadline.cancel();
        listener->stop();
        page->stop();
        io.stop();
    }

    const Options& options;
    boost::asio::io_context io;
    field_view::DrawingStore store;
    std::optional<field_view::DrawingListener> listener;
    std::optional<field_view::LivePage> page;
    std::optional<viewer::MonitorFeed> feed;
    boost::asio::steady_timer deadline{io};
    boost::asio::signal_set signals{io, SIGINT, SIGTERM, SIGUSR1};
    bool svg_failed = false;
};

} // namespace

int main(int argc, char** argv) {
    Options options;
    try {
        if (argc == 2 && (std::string(argv[1]) == "--help" || std::string(argv[1]) == "-h")) {
            std::cout << usage;
            return 0;
        }
        options = parse(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "orvo_viewer: " << error.what() << " (see --help)\n";
        return 2;
    }
    Viewer viewer(options);
    if (!viewer.start()) {
        return 1;
    }
    viewer.run();
    viewer.write_svg();
    viewer.print_summary();
    return viewer.failed() ? 1 : 0;
}
