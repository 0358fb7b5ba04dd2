// Records what a real server's monitor port sends while robots of two teams
// swing their joints (and fall, and go on swinging) and the ball rolls: the
// stream monitor_bench reads. One message per line, as the server sent it,
// from the whole scene that holds every robot on: the joining before it is
// a stream of few robots and of a scene sent again for every one.
//
//   record_monitor_game OUT.txt [ROBOTS_PER_TEAM=4] [GAME_SECONDS=12]
#include <orvo/monitor/monitor_client.h>
#include <orvo/net/addr.h>
#include <orvo/net/frame_reader.h>
#include <orvo/net/tcp_socket.h>

#include "sim_robot.h"
#include "sim_server.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

/// Joint speeds that keep every limb moving, out of step between robots.
std::string swing(int robot, int cycle) {
    static const char* const joints[] = {"he1",  "he2",  "lae1", "rae1", "lae2", "rae2", "lae4",
                                         "rae4", "lle1", "rle1", "lle3", "rle3", "lle4", "rle4",
                                         "lle5", "rle5", "lle2", "rle2", "lle6", "rle6"};
    std::string commands;
    char one[48];
    int k = 0;
    for (const char* joint : joints) {
        const double speed = 3.0 * std::sin(0.07 * cycle + 0.9 * robot + 0.5 * k++);
        std::snprintf(one, sizeof one, "(%s %.3f)", joint, speed);
        commands += one;
    }
    return commands;
}

/// Robot `index` joins after every robot before it has joined (in sync mode
/// a robot still joining holds up the others), then swings until `stop`.
void play(const orvo::sim::SimServer& server, int index, std::atomic<int>& joined,
          const std::atomic<bool>& stop) {
    while (joined < index && !stop) {
        std::this_thread::sleep_for(1ms);
    }
    try {
        const std::string team = index % 2 == 0 ? "probeA" : "probeB";
        orvo::sim::SimRobot robot("127.0.0.1", server.agent_port(),
                                  {index % 5, index / 2 + 1, team, 20000ms});
        robot.join(400);
        ++joined;
        for (int cycle = 0; !stop; ++cycle) {
            robot.step(swing(index, cycle));
        }
    } catch (const std::exception& error) {
        if (!stop) {
            std::fprintf(stderr, "robot %d: %s\n", index, error.what());
        }
    }
}

// Writes the monitor stream from the first scene that holds every robot on,
// rolling the ball from a new spot every two seconds, until `seconds` of game
// time have passed.
void record(orvo::net::TCPSocket& socket, orvo::monitor::MonitorClient& trainer, int robots,
            double seconds, std::ostream& out, orvo::monitor::SceneReader& reader) {
    orvo::net::FrameReader frames(8u << 20);
    std::string payload;
    std::string scene; // the latest whole scene, written once every robot is in it
    bool started = false;
    int kicks = 0;
    while (frames.read(socket.getFD(), payload, 20000ms) == orvo::net::Received::message) {
        const long scenes = reader.counts().scenes;
        reader.read(payload);
        trainer.update(0ms);
        const auto& truth = reader.truth();
        if (reader.counts().scenes != scenes) {
            scene = payload;
        }
        if (!started && static_cast<int>(truth.robots.size()) == robots) {
            trainer.play_mode("PlayOn");
            started = true;
            out << scene << '\n';
            if (scene == payload) {
                continue;
            }
        }
        if (started) {
            out << payload << '\n';
        }
        if (started && truth.time >= kicks * 2.0 && truth.play_mode_name() == "PlayOn") {
            // The ball rolls from a new spot every two seconds.
            trainer.place_ball(-4.0 + kicks, 2.0 - kicks, 0.042, 1.5, -1.0 + 0.3 * kicks, 0.0);
            ++kicks;
        }
        if (truth.time >= seconds) {
            break;
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s OUT.txt [ROBOTS_PER_TEAM] [GAME_SECONDS]\n", argv[0]);
        return 2;
    }
    const int robots = 2 * (argc > 2 ? std::atoi(argv[2]) : 4);
    const double seconds = argc > 3 ? std::atof(argv[3]) : 12.0;
    orvo::sim::SimServer server;
    orvo::monitor::MonitorClient trainer("127.0.0.1", server.monitor_port());
    orvo::net::TCPSocket socket(orvo::net::Addr(0, orvo::net::Addr::ANY),
                                orvo::net::Addr(static_cast<unsigned short>(server.monitor_port()),
                                                std::string("127.0.0.1")));
    std::atomic<bool> stop{false};
    std::atomic<int> joined{0};
    std::vector<std::thread> players;
    for (int i = 0; i < robots; ++i) {
        players.emplace_back(play, std::cref(server), i, std::ref(joined), std::cref(stop));
    }
    std::ofstream out(argv[1]);
    orvo::monitor::SceneReader reader;
    record(socket, trainer, robots, seconds, out, reader);
    stop = true;
    server.stop();
    for (auto& player : players) {
        player.join();
    }
    std::printf("%ld messages read, %ld scenes, game time %.2f s, %zu robots\n",
                reader.counts().messages, reader.counts().scenes, reader.truth().time,
                reader.truth().robots.size());
    return 0;
}
