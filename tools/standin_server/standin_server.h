#ifndef ORVO_STANDIN_STANDIN_SERVER_H
#define ORVO_STANDIN_STANDIN_SERVER_H

#include "agent.h"
#include "drawing_store.h"
#include "field_svg.h"
#include "options.h"
#include "page_thread.h"
#include "referee.h"

#include <poll.h>

#include <cstdint>
#include <fstream>
#include <map>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// A small stand-in for a 3D soccer simulation server that keeps a real
/// one's rules: it speaks the agents' framed s-expression protocol on
/// loopback, runs its clock from start-up, lets agents join and beam as a
/// real server does, moves every joint, takes the kick-off from its monitor
/// port, collects the agents' debug drawings over UDP and draws the field as SVG
/// (and, when asked, on a live page).
class StandinServer {
public:
    explicit StandinServer(Options options);
    ~StandinServer();
    StandinServer(const StandinServer&) = delete;
    StandinServer& operator=(const StandinServer&) = delete;

    /// Binds the three ports; throws std::runtime_error with the reason on failure.
    void open();
    unsigned tcp_port() const { return ports[0]; }
    unsigned udp_port() const { return ports[1]; }
    unsigned monitor_port() const { return ports[2]; }
    /// The live page's port; 0 without one.
    unsigned http_port() const { return live ? live->port() : 0; }

    /// Runs the cycles, writes the picture; progress and problems go to
    /// `messages`. Returns the process exit status.
    int run(std::ostream& messages);
    void print_summary(std::ostream& out) const;

private:
    void begin_cycle();
    void admit_agents();
    bool service(Clock::time_point until, bool stop_when_answered);
    /// The descriptors to wait on: the three listeners, then every link's.
    void poll_set(std::vector<pollfd>& fds, std::vector<Link*>& links);
    void handle_ready(const std::vector<pollfd>& fds, const std::vector<Link*>& links);
    void write_cycle_picture();
    void finish_run(Clock::duration period);
    void accept_connections(int listener);
    void handle_message(Agent& agent, std::string_view message);
    void handle_scene(Agent& agent, std::string_view command);
    void say(Agent& speaker, std::string_view command);
    void handle_monitor(std::string_view message);
    void read_drawings();
    void send_perception(Agent& agent);
    bool all_answered() const;
    unsigned open_agents() const;
    bool stepping_on_answers(Clock::time_point start_deadline) const;
    field_view::FieldPicture picture() const;
    void write_picture(const std::string& path);
    /// The summary's opening: the run, missing agents, play modes.
    void print_run(std::ostream& out) const;

    Options options;
    int listener = -1;
    int drawing_socket = -1;
    int monitor_listener = -1;
    unsigned ports[3] = {0, 0, 0};
    Agents agents;
    std::vector<std::unique_ptr<Link>> monitors;
    Referee referee;
    int kickoff_side = -1; ///< a monitor's kick-off, for the next cycle
    field_view::DrawingStore drawings;
    std::vector<unsigned char> datagram = std::vector<unsigned char>(1 << 16);
    std::unique_ptr<field_view::PageThread> live;
    unsigned cycle = 0;
    std::mt19937 random{20260622};
    std::ofstream log;
    Clock::time_point started;
    Clock::time_point finished;
};

} // namespace standin

#endif
