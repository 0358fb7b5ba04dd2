#ifndef ORVO_STANDIN_STANDIN_SERVER_H
#define ORVO_STANDIN_STANDIN_SERVER_H

#include "drawing_wire.h"
#include "field_svg.h"

#include <chrono>
#include <cstdint>
#include <fstream>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

struct Options {
    unsigned port = 3100;          ///< agents' TCP port on 127.0.0.1 (0: any free one)
    unsigned drawing_port = 15096; ///< debug drawings' UDP port on 127.0.0.1 (0: any free one)
    unsigned agents = 1;           ///< agents to wait for before the first cycle
    unsigned cycles = 500;         ///< cycles to run before stopping
    bool sync = false;             ///< step as soon as every agent sent "(syn)"
    double start_timeout = 30;     ///< seconds to wait for the agents
    double cycle_timeout = 1;      ///< seconds a synchronous cycle waits for stragglers
    std::string log_path;          ///< every received message, one line each
    std::string svg_path = "field.svg";
    unsigned svg_every = 0; ///< also write a picture every that many cycles
    std::string ports_file; ///< "TCP UDP" is written here once listening
};

using Clock = std::chrono::steady_clock;

/// One connected agent as the server sees it.
struct AgentLink {
    int fd = -1;
    int number = 0; ///< connection order, from 1
    std::string input;
    std::string output;
    bool closed = false;

    bool scene = false;
    std::string team;
    int side = 0;
    int unum = 0;
    float x = 0, y = 0, z = 0.35f, rotation = 0;
    float head_pan = 0, head_tilt = 0;             ///< degrees
    float head_pan_speed = 0, head_tilt_speed = 0; ///< rad/s, as the joints were last told

    bool awaiting = false;
    Clock::time_point perception_sent;

    unsigned cycles = 0, answered = 0, messages = 0, beams = 0, joint_commands = 0, ignored = 0,
             drawings = 0;
    std::uint64_t bytes = 0;
    std::vector<double> latencies_us;
};

/// A small stand-in for a 3D soccer simulation server: it speaks the agents'
/// framed s-expression protocol on loopback, moves agents by "beam", counts
/// what else they send, collects their debug drawings over UDP and draws the
/// field as SVG.
class StandinServer {
public:
    explicit StandinServer(Options options);
    ~StandinServer();
    StandinServer(const StandinServer&) = delete;
    StandinServer& operator=(const StandinServer&) = delete;

    /// Binds both ports; throws std::runtime_error with the reason on failure.
    void open();
    unsigned tcp_port() const { return bound_tcp_port; }
    unsigned udp_port() const { return bound_udp_port; }

    /// Waits for the agents, runs the cycles, writes the picture; progress and
    /// problems go to `messages`. Returns the process exit status.
    int run(std::ostream& messages);
    void print_summary(std::ostream& out) const;

private:
    bool service(Clock::time_point until, bool stop_when_answered);
    void accept_agents();
    void read_agent(AgentLink& agent);
    void flush_agent(AgentLink& agent);
    void handle_message(AgentLink& agent, std::string_view message);
    void handle_init(AgentLink& agent, std::string_view text);
    void read_drawings();
    void send_perception(AgentLink& agent);
    void advance_joints();
    void close_agent(AgentLink& agent);
    bool all_answered() const;
    unsigned live_agents() const;
    FieldPicture picture() const;
    void write_picture(const std::string& path);

    Options options;
    int listener = -1;
    int drawing_socket = -1;
    unsigned bound_tcp_port = 0;
    unsigned bound_udp_port = 0;
    std::vector<std::unique_ptr<AgentLink>> agents;
    std::vector<std::string> team_names;
    std::map<std::uint8_t, std::vector<demo::wire::Shape>> drawings;
    unsigned malformed_drawings = 0;
    unsigned cycle = 0;
    double simulation_time = 0;
    std::ofstream log;
    Clock::time_point started;
    Clock::time_point finished;
};

} // namespace standin

#endif
