#include "standin_server.h"

#include "perception.h"

#include <orvo/protocol/constants.h>
#include <orvo/protocol/framing.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace standin {

namespace {

constexpr std::size_t max_agents = 22;
using orvo::protocol::cycle_seconds;

Clock::duration seconds(double value) {
    return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(value));
}

} // namespace

StandinServer::StandinServer(Options options_) : options(std::move(options_)) {}

StandinServer::~StandinServer() {
    for (int fd : {listener, drawing_socket, monitor_listener}) {
        if (fd >= 0) {
            ::close(fd);
        }
    }
}

void StandinServer::open() {
    ports[0] = options.port;
    ports[1] = options.drawing_port;
    ports[2] = options.monitor_port;
    listener = open_loopback(SOCK_STREAM, ports[0]);
    drawing_socket = open_loopback(SOCK_DGRAM, ports[1]);
    monitor_listener = open_loopback(SOCK_STREAM, ports[2]);
    if (options.live) {
        try {
            live = std::make_unique<field_view::PageThread>(
                static_cast<unsigned short>(options.http_port));
        } catch (const std::exception& error) {
            throw std::runtime_error("live page on port " + std::to_string(options.http_port) +
                                     ": " + error.what());
        }
    }
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
            << ports[0] << ' ' << ports[1] << ' ' << ports[2] << '\n';
        if (std::rename(temporary.c_str(), options.ports_file.c_str()) != 0) {
            throw system_error("cannot write " + options.ports_file);
        }
    }
}

int StandinServer::run(std::ostream& messages) {
    started = Clock::now();
    const auto period = seconds(cycle_seconds * options.slowdown);
    const auto start_deadline = started + seconds(options.start_timeout);
    auto next_cycle = started;
    int status = 0;
    bool someone_joined = false;
    unsigned played = 0;
    for (cycle = 1; cycle <= options.cycles; ++cycle) {
        begin_cycle();
        played = cycle;
        next_cycle += period;
        if (stepping_on_answers(start_deadline)) {
            if (!service(Clock::now() + seconds(options.cycle_timeout), true)) {
                messages << "stand-in server: cycle " << cycle
                         << ": an agent did not answer within " << options.cycle_timeout << " s\n";
            }
            next_cycle = Clock::now(); // the real-time pace resumes from here
        } else {
            service(next_cycle, false);
        }
        if (live) {
            read_drawings();
            live->show(picture());
        }
        if (options.svg_every != 0 && cycle % options.svg_every == 0) {
            write_cycle_picture();
        }
        someone_joined = someone_joined || std::any_of(agents.begin(), agents.end(),
                                                       [](const auto& a) { return a->joined(); });
        if (someone_joined && open_agents() == 0) {
            break;
        }
        if (agents.empty() && Clock::now() >= start_deadline) {
            messages << "stand-in server: no agent connected within " << options.start_timeout
                     << " s\n";
            status = 1;
            break;
        }
    }
    cycle = played;
    finished = Clock::now();
    finish_run(period);
    return status;
}

void StandinServer::write_cycle_picture() {
    read_drawings();
    char suffix[32];
    std::snprintf(suffix, sizeof suffix, "-%06u", cycle);
    std::string path = options.svg_path;
    const auto dot = path.rfind(".svg");
    path.insert(dot == std::string::npos ? path.size() : dot, suffix);
    write_picture(path);
}

void StandinServer::finish_run(Clock::duration period) {
    // The last answers (and the drawings sent before them) may still be on their way.
    if (!options.sync) {
        service(Clock::now() + period, true);
    }
    read_drawings();
    write_picture(options.svg_path);
    for (auto& agent : agents) {
        agent->link.close();
    }
    if (log.is_open()) {
        log.flush();
    }
}

bool StandinServer::stepping_on_answers(Clock::time_point start_deadline) const {
    // Until the expected agents perceive, a synchronous server keeps the
    // real-time pace, so that they connect in cycles of their own.
    const auto perceiving =
        std::count_if(agents.begin(), agents.end(), [](const auto& a) { return a->perceives(); });
    return options.sync && !all_answered() &&
           (static_cast<unsigned>(perceiving) >= options.agents || Clock::now() >= start_deadline);
}

void StandinServer::begin_cycle() {
    admit_agents();
    const bool by_option = options.kickoff_after != 0 && cycle == options.kickoff_after;
    if (kickoff_side >= 0 || by_option) {
        referee.kick_off(std::max(kickoff_side, 0), cycle, agents);
        kickoff_side = -1;
    }
    referee.advance(cycle);
    const Moment moment{cycle, cycle * cycle_seconds, referee.game_time(cycle), referee.mode()};
    for (auto& agent : agents) {
        if (agent->perceives()) {
            agent->body.advance(cycle_seconds);
        }
    }
    for (auto& agent : agents) {
        if (agent->perceives()) {
            std::string frame;
            orvo::protocol::append_frame(frame, write_perception(*agent, moment, agents));
            agent->heard.clear();
            agent->announce = false;
            // A real server in real time now and then writes two perceptions at once.
            if (!options.sync && options.pairs > 0) {
                if (agent->held.empty() && std::bernoulli_distribution(options.pairs)(random)) {
                    agent->held = std::move(frame);
                    continue;
                }
                if (!agent->held.empty()) {
                    frame.insert(0, agent->held);
                    agent->held.clear();
                    ++agent->pairs;
                    ++agent->perceptions;
                }
            }
            ++agent->perceptions;
            agent->awaiting = true;
            agent->perception_sent = Clock::now();
            agent->link.send(frame);
        }
    }
}

void StandinServer::admit_agents() {
    // Connections of the cycle before: one alone joins the game, several at
    // once none, as a real server has them.
    std::vector<Agent*> arrived;
    for (auto& agent : agents) {
        if (agent->connected_cycle + 1 == cycle && !agent->link.closed()) {
            arrived.push_back(agent.get());
        }
    }
    for (Agent* agent : arrived) {
        if (arrived.size() == 1) {
            agent->in_game = true;
            continue;
        }
        std::string others;
        for (const Agent* other : arrived) {
            if (other != agent) {
                others += (others.empty() ? " " : ", ") + std::to_string(other->number);
            }
        }
        agent->note(agent->connected_cycle, std::string("connected in the same cycle as ") +
                                                (arrived.size() > 2 ? "agents" : "agent") + others +
                                                ": not taken into the game");
    }
}

bool StandinServer::service(Clock::time_point until, bool stop_when_answered) {
    std::vector<pollfd> fds;
    std::vector<Link*> links;
    for (;;) {
        if (stop_when_answered && all_answered()) {
            return true;
        }
        const auto now = Clock::now();
        if (now >= until) {
            return !stop_when_answered || all_answered();
        }
        poll_set(fds, links);
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(until - now).count();
        const int ready = poll(fds.data(), fds.size(), static_cast<int>(std::max<long>(wait, 0)));
        if (ready < 0 && errno != EINTR) {
            throw system_error("poll");
        }
        if (ready <= 0) {
            continue;
        }
        handle_ready(fds, links);
    }
}

void StandinServer::poll_set(std::vector<pollfd>& fds, std::vector<Link*>& links) {
    fds.assign({pollfd{listener, POLLIN, 0}, pollfd{drawing_socket, POLLIN, 0},
                pollfd{monitor_listener, POLLIN, 0}});
    monitors.erase(std::remove_if(monitors.begin(), monitors.end(),
                                  [](const auto& link) { return link->closed(); }),
                   monitors.end());
    links.clear();
    for (auto& agent : agents) {
        links.push_back(&agent->link);
    }
    for (auto& monitor : monitors) {
        links.push_back(monitor.get());
    }
    for (Link* link : links) {
        // A closed link polls nothing: a negative descriptor is skipped.
        const short events = link->wants_to_write() ? POLLIN | POLLOUT : POLLIN;
        fds.push_back(pollfd{link->fd(), events, 0});
    }
}

void StandinServer::handle_ready(const std::vector<pollfd>& fds, const std::vector<Link*>& links) {
    if ((fds[0].revents & POLLIN) != 0) {
        accept_connections(listener);
    }
    if ((fds[1].revents & POLLIN) != 0) {
        read_drawings();
    }
    if ((fds[2].revents & POLLIN) != 0) {
        accept_connections(monitor_listener);
    }
    // The agents' links come first, in the order of `agents`.
    const std::size_t agent_links = agents.size();
    for (std::size_t i = 0; i < links.size(); ++i) {
        const short revents = fds[i + 3].revents;
        if ((revents & POLLOUT) != 0) {
            links[i]->flush();
        }
        if ((revents & (POLLIN | POLLHUP | POLLERR)) == 0) {
            continue;
        }
        if (i < agent_links) {
            Agent& agent = *agents[i];
            agent.link.receive([&](std::string_view frame) { handle_message(agent, frame); });
        } else {
            links[i]->receive([&](std::string_view frame) { handle_monitor(frame); });
        }
    }
}

void StandinServer::accept_connections(int from) {
    for (;;) {
        const int fd = accept4(from, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (fd < 0) {
            return;
        }
        if (from == monitor_listener) {
            monitors.push_back(std::make_unique<Link>(fd));
            continue;
        }
        if (agents.size() >= max_agents) {
            ::close(fd); // a full field: further agents are turned away
            continue;
        }
        const int yes = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        agents.push_back(std::make_unique<Agent>(fd, static_cast<int>(agents.size()) + 1, cycle));
        Agent& agent = *agents.back();
        // Until beamed, a robot waits at the touch line.
        agent.x = -14.0f + static_cast<float>(agent.number);
        agent.y = -field_view::field_width / 2 - 0.5f;
    }
}

void StandinServer::read_drawings() {
    for (;;) {
        // The buffer holds any datagram whole, so an oversize one is seen as such.
        const ssize_t n = recv(drawing_socket, datagram.data(), datagram.size(), 0);
        if (n < 0) {
            return;
        }
        if (drawings.add(datagram.data(), static_cast<std::size_t>(n)) !=
            field_view::DrawingStore::Outcome::shape) {
            continue;
        }
        const int side = datagram[1] >> 7;
        const int unum = datagram[1] & 0x7F;
        for (auto& agent : agents) {
            if (agent->joined() && agent->side == side && agent->unum == unum) {
                ++agent->drawings;
                break;
            }
        }
    }
}

bool StandinServer::all_answered() const {
    return std::none_of(agents.begin(), agents.end(),
                        [](const auto& a) { return a->awaiting && !a->link.closed(); });
}

unsigned StandinServer::open_agents() const {
    return static_cast<unsigned>(std::count_if(agents.begin(), agents.end(),
                                               [](const auto& a) { return !a->link.closed(); }));
}

field_view::FieldPicture StandinServer::picture() const {
    field_view::FieldPicture result;
    result.title = "stand-in server, cycle " + std::to_string(cycle);
    char caption[64];
    std::snprintf(caption, sizeof caption, "cycle %u, simulation time %.1f s", cycle,
                  cycle * cycle_seconds);
    result.caption = caption;
    for (const auto& agent : agents) {
        if (agent->joined()) {
            result.players.push_back(
                field_view::PlayerMark{agent->unum, agent->side, agent->x, agent->y});
        }
    }
    result.drawings = drawings.drawings();
    return result;
}

void StandinServer::write_picture(const std::string& path) {
    if (!path.empty() && !field_view::write_field_svg(path, picture())) {
        throw std::runtime_error("cannot write the picture " + path);
    }
}

} // namespace standin
