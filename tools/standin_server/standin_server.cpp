#include "standin_server.h"

#include "commands.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace standin {

namespace {

constexpr unsigned max_agents = 22;
constexpr unsigned players_per_team = 11;
constexpr double cycle_seconds = 0.02;
// A frame longer than this is not an agent speaking the protocol.
constexpr std::uint32_t max_frame = 1u << 20;
// An agent that stopped reading is let go once this much waits for it.
constexpr std::size_t max_backlog = 1u << 20;
constexpr double degrees_per_radian = 57.29577951308232;

std::runtime_error system_error(const std::string& what) {
    return std::runtime_error(what + ": " + std::strerror(errno));
}

void set_non_blocking(int fd) {
    const int flags = fcntl(fd, F_GETFL, 0);
    if (flags < 0 || fcntl(fd, F_SETFL, flags | O_NONBLOCK) < 0) {
        throw system_error("fcntl");
    }
}

unsigned bind_loopback(int fd, unsigned port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) < 0) {
        throw system_error("cannot bind 127.0.0.1:" + std::to_string(port));
    }
    socklen_t size = sizeof address;
    if (getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) < 0) {
        throw system_error("getsockname");
    }
    return ntohs(address.sin_port);
}

double seconds_between(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double>(to - from).count();
}

float clamp_angle(float degrees, float limit) {
    return std::max(-limit, std::min(limit, degrees));
}

// Joint effectors are named like "he1", "lae3" or "rle6": letters ending in "e", then a digit.
bool is_joint(std::string_view name) {
    return name.size() >= 3 && name.size() <= 5 &&
           std::isdigit(static_cast<unsigned char>(name.back())) && name[name.size() - 2] == 'e';
}

} // namespace

StandinServer::StandinServer(Options options_) : options(std::move(options_)) {}

StandinServer::~StandinServer() {
    for (auto& agent : agents) {
        close_agent(*agent);
    }
    if (listener >= 0) {
        ::close(listener);
    }
    if (drawing_socket >= 0) {
        ::close(drawing_socket);
    }
}

void StandinServer::open() {
    if (options.port > 65535 || options.drawing_port > 65535) {
        throw std::runtime_error("port out of range (0-65535)");
    }
    listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0) {
        throw system_error("socket");
    }
    const int yes = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    bound_tcp_port = bind_loopback(listener, options.port);
    if (listen(listener, static_cast<int>(max_agents)) < 0) {
        throw system_error("listen");
    }
    set_non_blocking(listener);

    drawing_socket = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (drawing_socket < 0) {
        throw system_error("socket");
    }
    bound_udp_port = bind_loopback(drawing_socket, options.drawing_port);
    set_non_blocking(drawing_socket);

    if (!options.log_path.empty()) {
        log.open(options.log_path, std::ios::trunc);
        if (!log) {
            throw std::runtime_error("cannot write the log " + options.log_path);
        }
    }
    if (!options.ports_file.empty()) {
        // Written whole and then renamed, so a script polling for it never reads half.
        const std::string temporary = options.ports_file + ".tmp";
        std::ofstream(temporary, std::ios::trunc)
            << bound_tcp_port << ' ' << bound_udp_port << '\n';
        if (std::rename(temporary.c_str(), options.ports_file.c_str()) != 0) {
            throw system_error("cannot write " + options.ports_file);
        }
    }
}

int StandinServer::run(std::ostream& messages) {
    started = Clock::now();
    const auto start_deadline = started + std::chrono::duration_cast<Clock::duration>(
                                              std::chrono::duration<double>(options.start_timeout));
    while (live_agents() < options.agents && Clock::now() < start_deadline) {
        service(std::min(start_deadline, Clock::now() + std::chrono::milliseconds(50)), false);
    }
    if (live_agents() == 0) {
        messages << "stand-in server: no agent connected within " << options.start_timeout
                 << " s\n";
        return 1;
    }
    if (live_agents() < options.agents) {
        messages << "stand-in server: starting with " << live_agents() << " of " << options.agents
                 << " agents\n";
    }
    // Let the agents' first messages (scene, init) arrive before the first
    // perception, as they would at a real server that is already running.
    service(Clock::now() + std::chrono::milliseconds(20), false);

    const auto period =
        std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(cycle_seconds));
    const auto straggler_wait = std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(options.cycle_timeout));
    auto next_cycle = Clock::now();
    for (cycle = 1; cycle <= options.cycles && live_agents() > 0; ++cycle) {
        simulation_time = cycle * cycle_seconds;
        advance_joints();
        for (auto& agent : agents) {
            if (!agent->closed) {
                send_perception(*agent);
            }
        }
        next_cycle += period;
        if (options.sync) {
            if (!service(Clock::now() + straggler_wait, true)) {
                messages << "stand-in server: cycle " << cycle
                         << ": an agent did not answer within " << options.cycle_timeout << " s\n";
            }
        } else {
            service(next_cycle, false);
        }
        if (options.svg_every != 0 && cycle % options.svg_every == 0) {
            read_drawings();
            char suffix[32];
            std::snprintf(suffix, sizeof suffix, "-%06u", cycle);
            std::string path = options.svg_path;
            const auto dot = path.rfind(".svg");
            path.insert(dot == std::string::npos ? path.size() : dot, suffix);
            write_picture(path);
        }
    }
    --cycle; // the loop stops one past the last cycle played
    finished = Clock::now();
    // The last answers (and the drawings sent before them) may still be on their way.
    if (!options.sync) {
        service(Clock::now() + period, true);
    }
    read_drawings();
    write_picture(options.svg_path);
    for (auto& agent : agents) {
        close_agent(*agent);
    }
    if (log.is_open()) {
        log.flush();
    }
    return 0;
}

bool StandinServer::service(Clock::time_point until, bool stop_when_answered) {
    std::vector<pollfd> fds;
    std::vector<AgentLink*> owners;
    for (;;) {
        if (stop_when_answered && all_answered()) {
            return true;
        }
        const auto now = Clock::now();
        if (now >= until) {
            return !stop_when_answered || all_answered();
        }
        fds.clear();
        owners.clear();
        fds.push_back(pollfd{listener, POLLIN, 0});
        fds.push_back(pollfd{drawing_socket, POLLIN, 0});
        for (auto& agent : agents) {
            if (!agent->closed) {
                const short events = agent->output.empty() ? POLLIN : POLLIN | POLLOUT;
                fds.push_back(pollfd{agent->fd, events, 0});
                owners.push_back(agent.get());
            }
        }
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(until - now).count();
        const int ready = poll(fds.data(), fds.size(), static_cast<int>(std::max<long>(wait, 0)));
        if (ready < 0 && errno != EINTR) {
            throw system_error("poll");
        }
        if (ready <= 0) {
            continue;
        }
        if ((fds[0].revents & POLLIN) != 0) {
            accept_agents();
        }
        if ((fds[1].revents & POLLIN) != 0) {
            read_drawings();
        }
        for (std::size_t i = 0; i < owners.size(); ++i) {
            const short revents = fds[i + 2].revents;
            if ((revents & POLLOUT) != 0) {
                flush_agent(*owners[i]);
            }
            if ((revents & (POLLIN | POLLHUP | POLLERR)) != 0) {
                read_agent(*owners[i]);
            }
        }
    }
}

void StandinServer::accept_agents() {
    for (;;) {
        const int fd = accept4(listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (fd < 0) {
            return;
        }
        if (agents.size() >= max_agents) {
            ::close(fd); // a full field: further agents are turned away
            continue;
        }
        const int yes = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        auto agent = std::make_unique<AgentLink>();
        agent->fd = fd;
        agent->number = static_cast<int>(agents.size()) + 1;
        // Until beamed, an agent waits at the touch line.
        agent->x = -14.0f + static_cast<float>(agent->number);
        agent->y = -field_width / 2 - 0.5f;
        agents.push_back(std::move(agent));
    }
}

void StandinServer::read_agent(AgentLink& agent) {
    char buffer[65536];
    for (;;) {
        const ssize_t n = recv(agent.fd, buffer, sizeof buffer, 0);
        if (n == 0 || (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) {
            close_agent(agent);
            return;
        }
        if (n < 0) {
            break;
        }
        agent.input.append(buffer, static_cast<std::size_t>(n));
        // Agents write each command as a frame of its own; acknowledging at
        // once keeps their small writes from waiting for a delayed ACK.
        const int yes = 1;
        setsockopt(agent.fd, IPPROTO_TCP, TCP_QUICKACK, &yes, sizeof yes);
        if (static_cast<std::size_t>(n) < sizeof buffer) {
            break;
        }
    }
    std::size_t at = 0;
    while (agent.input.size() - at >= 4) {
        const auto* prefix = reinterpret_cast<const unsigned char*>(agent.input.data() + at);
        const std::uint32_t length = (std::uint32_t{prefix[0]} << 24) |
                                     (std::uint32_t{prefix[1]} << 16) |
                                     (std::uint32_t{prefix[2]} << 8) | std::uint32_t{prefix[3]};
        if (length > max_frame) {
            close_agent(agent);
            return;
        }
        if (agent.input.size() - at - 4 < length) {
            break;
        }
        agent.bytes += 4 + length;
        handle_message(agent, std::string_view(agent.input).substr(at + 4, length));
        at += 4 + length;
    }
    agent.input.erase(0, at);
}

void StandinServer::flush_agent(AgentLink& agent) {
    while (!agent.output.empty()) {
        const ssize_t n = send(agent.fd, agent.output.data(), agent.output.size(), MSG_NOSIGNAL);
        if (n < 0) {
            if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
                close_agent(agent);
            }
            return;
        }
        agent.output.erase(0, static_cast<std::size_t>(n));
    }
}

void StandinServer::handle_message(AgentLink& agent, std::string_view message) {
    const auto received = Clock::now();
    ++agent.messages;
    if (log.is_open()) {
        log << agent.number << '\t' << agent.unum << '\t' << cycle << '\t' << message << '\n';
    }
    for (const Command& command : split_commands(message)) {
        if (command.name == "syn") {
            if (agent.awaiting) {
                agent.awaiting = false;
                ++agent.answered;
                agent.latencies_us.push_back(
                    std::chrono::duration<double, std::micro>(received - agent.perception_sent)
                        .count());
            }
        } else if (command.name == "scene") {
            agent.scene = true;
        } else if (command.name == "init") {
            handle_init(agent, command.text);
        } else if (command.name == "beam") {
            const auto args = arguments(command.text);
            const auto x = args.size() == 3 ? to_number(args[0]) : std::nullopt;
            const auto y = args.size() == 3 ? to_number(args[1]) : std::nullopt;
            const auto rotation = args.size() == 3 ? to_number(args[2]) : std::nullopt;
            if (x && y && rotation) {
                // Beams are given in the team's own frame.
                const float mirror = agent.side == 0 ? 1.0f : -1.0f;
                agent.x = mirror * static_cast<float>(*x);
                agent.y = mirror * static_cast<float>(*y);
                agent.rotation = static_cast<float>(*rotation) + (agent.side == 0 ? 0.0f : 180.0f);
                ++agent.beams;
            } else {
                ++agent.ignored;
            }
        } else if (is_joint(command.name)) {
            // Hinge joint speeds such as "(he1 0.5)" or "(lle3 -1)"; the head's are applied.
            const auto args = arguments(command.text);
            const auto speed = args.size() == 1 ? to_number(args[0]) : std::nullopt;
            ++agent.joint_commands;
            if (speed && command.name == "he1") {
                agent.head_pan_speed = static_cast<float>(*speed);
            } else if (speed && command.name == "he2") {
                agent.head_tilt_speed = static_cast<float>(*speed);
            }
        } else {
            ++agent.ignored;
        }
    }
}

void StandinServer::handle_init(AgentLink& agent, std::string_view text) {
    const auto team = value_of(text, "teamname");
    if (team && agent.team.empty()) {
        agent.team = std::string(*team);
        auto known = std::find(team_names.begin(), team_names.end(), agent.team);
        if (known == team_names.end()) {
            team_names.push_back(agent.team);
            known = team_names.end() - 1;
        }
        // A third team has no side of its own; it plays on the right.
        agent.side = std::min<int>(static_cast<int>(known - team_names.begin()), 1);
    }
    if (agent.unum != 0) {
        return;
    }
    const auto wanted = value_of(text, "unum");
    const auto number = wanted ? to_number(*wanted) : std::nullopt;
    const auto taken = [&](int unum) {
        return std::any_of(agents.begin(), agents.end(), [&](const auto& other) {
            return other.get() != &agent && other->side == agent.side && other->unum == unum &&
                   !other->team.empty();
        });
    };
    // Like a real server: 0 (or a taken number) asks for the next free one.
    int unum =
        number && *number >= 1 && *number <= players_per_team ? static_cast<int>(*number) : 0;
    if (unum == 0 || taken(unum)) {
        unum = 0;
        for (int candidate = 1; candidate <= static_cast<int>(players_per_team); ++candidate) {
            if (!taken(candidate)) {
                unum = candidate;
                break;
            }
        }
    }
    agent.unum = unum;
}

void StandinServer::read_drawings() {
    unsigned char buffer[2048];
    for (;;) {
        const ssize_t n = recv(drawing_socket, buffer, sizeof buffer, 0);
        if (n < 0) {
            return;
        }
        const auto size = static_cast<std::size_t>(n);
        if (demo::wire::is_opening(buffer, size)) {
            // A new batch replaces the sender's previous drawings.
            drawings[buffer[2]].clear();
            continue;
        }
        demo::wire::Shape shape;
        if (!demo::wire::decode(buffer, size, shape)) {
            ++malformed_drawings;
            continue;
        }
        const int side = shape.header >> 7;
        const int unum = shape.header & 0x7F;
        for (auto& agent : agents) {
            if (agent->side == side && agent->unum == unum && !agent->team.empty()) {
                ++agent->drawings;
                break;
            }
        }
        drawings[shape.header].push_back(std::move(shape));
    }
}

void StandinServer::advance_joints() {
    for (auto& agent : agents) {
        agent->head_pan = clamp_angle(
            agent->head_pan + agent->head_pan_speed * cycle_seconds * degrees_per_radian, 120.0f);
        agent->head_tilt = clamp_angle(
            agent->head_tilt + agent->head_tilt_speed * cycle_seconds * degrees_per_radian, 45.0f);
    }
}

void StandinServer::send_perception(AgentLink& agent) {
    std::string message;
    message.reserve(1024);
    char part[256];
    std::snprintf(part, sizeof part, "(time (now %.2f))(GS ", simulation_time);
    message += part;
    if (agent.unum != 0) {
        std::snprintf(part, sizeof part, "(unum %d) (team %s) ", agent.unum,
                      agent.side == 0 ? "left" : "right");
        message += part;
    }
    std::snprintf(part, sizeof part,
                  "(sl 0) (sr 0) (t 0.00) (pm BeforeKickOff))(GYR (n torso) (rt 0.00 0.00 0.00))"
                  "(ACC (n torso) (a 0.00 0.00 9.81))(HJ (n hj1) (ax %.2f))(HJ (n hj2) (ax %.2f))",
                  agent.head_pan, agent.head_tilt);
    message += part;
    // Only the stand-in tells an agent where it is; its own frame has its goal at negative x.
    const float mirror = agent.side == 0 ? 1.0f : -1.0f;
    std::snprintf(part, sizeof part, "(mypos %.2f %.2f %.2f)", mirror * agent.x, mirror * agent.y,
                  agent.z);
    message += part;
    // Like a real server, vision every third cycle; unlike one, all round.
    if (cycle % 3 == 1) {
        std::string seen;
        for (const auto& other : agents) {
            if (other.get() == &agent || other->closed || other->unum == 0) {
                continue;
            }
            const double dx = other->x - agent.x;
            const double dy = other->y - agent.y;
            const double distance = std::sqrt(dx * dx + dy * dy);
            double azimuth = std::atan2(dy, dx) * degrees_per_radian - agent.rotation;
            azimuth = std::remainder(azimuth, 360.0);
            std::snprintf(part, sizeof part, " (P (team %s) (id %d) (head (pol %.2f %.2f %.2f)))",
                          other->team.c_str(), other->unum, distance, azimuth, 0.0);
            seen += part;
        }
        if (!seen.empty()) {
            message += "(See";
            message += seen;
            message += ')';
        }
    }
    const auto length = static_cast<std::uint32_t>(message.size());
    const char prefix[4] = {static_cast<char>(length >> 24), static_cast<char>(length >> 16),
                            static_cast<char>(length >> 8), static_cast<char>(length)};
    if (agent.output.size() > max_backlog) {
        close_agent(agent);
        return;
    }
    agent.output.append(prefix, 4);
    agent.output += message;
    ++agent.cycles;
    agent.awaiting = true;
    agent.perception_sent = Clock::now();
    flush_agent(agent);
}

void StandinServer::close_agent(AgentLink& agent) {
    if (!agent.closed) {
        ::close(agent.fd);
        agent.closed = true;
        agent.awaiting = false;
    }
}

bool StandinServer::all_answered() const {
    return std::none_of(agents.begin(), agents.end(),
                        [](const auto& agent) { return !agent->closed && agent->awaiting; });
}

unsigned StandinServer::live_agents() const {
    return static_cast<unsigned>(std::count_if(agents.begin(), agents.end(),
                                               [](const auto& agent) { return !agent->closed; }));
}

FieldPicture StandinServer::picture() const {
    FieldPicture result;
    result.cycle = static_cast<int>(cycle);
    result.time = simulation_time;
    for (const auto& agent : agents) {
        if (agent->unum != 0) {
            result.players.push_back(PlayerMark{agent->unum, agent->side, agent->x, agent->y});
        }
    }
    result.drawings = drawings;
    return result;
}

void StandinServer::write_picture(const std::string& path) {
    if (!path.empty() && !write_field_svg(path, picture())) {
        throw std::runtime_error("cannot write the picture " + path);
    }
}

void StandinServer::print_summary(std::ostream& out) const {
    const double wall = seconds_between(started, finished);
    char line[256];
    std::snprintf(line, sizeof line,
                  "stand-in server: %u cycles (%.2f s simulated) in %.2f s wall time, %s mode, "
                  "%zu agents\n",
                  cycle, cycle * cycle_seconds, wall, options.sync ? "sync" : "real-time",
                  agents.size());
    out << line;
    out << "agent team         unum  cycles answered messages    bytes beams joints drawings"
           "   latency us min / median / max\n";
    std::vector<double> all;
    for (const auto& agent : agents) {
        std::vector<double> sorted = agent->latencies_us;
        std::sort(sorted.begin(), sorted.end());
        all.insert(all.end(), sorted.begin(), sorted.end());
        char latency[96] = "-";
        if (!sorted.empty()) {
            std::snprintf(latency, sizeof latency, "%.0f / %.0f / %.0f", sorted.front(),
                          sorted[sorted.size() / 2], sorted.back());
        }
        std::snprintf(line, sizeof line, "%5d %-12.12s %4d %7u %8u %8u %8llu %5u %6u %8u   %s\n",
                      agent->number, agent->team.empty() ? "-" : agent->team.c_str(), agent->unum,
                      agent->cycles, agent->answered, agent->messages,
                      static_cast<unsigned long long>(agent->bytes), agent->beams,
                      agent->joint_commands, agent->drawings, latency);
        out << line;
    }
    if (!all.empty()) {
        std::sort(all.begin(), all.end());
        std::snprintf(line, sizeof line,
                      "all agents: latency us min %.0f, median %.0f, max %.0f over %zu answers\n",
                      all.front(), all[all.size() / 2], all.back(), all.size());
        out << line;
    }
    if (malformed_drawings != 0) {
        out << "malformed drawing datagrams: " << malformed_drawings << '\n';
    }
    out << "picture: " << options.svg_path << '\n';
}

} // namespace standin
