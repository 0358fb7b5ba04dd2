#include "monitor_feed.h"

#include <orvo/monitor/monitor_client.h>

#include <chrono>

namespace viewer {

namespace {
using namespace std::chrono_literals;
/// The longest the thread waits for the server before looking whether it
/// should stop.
constexpr auto poll = 100ms;
} // namespace

field_view::GameMarks game_marks(const orvo::monitor::GroundTruth& truth) {
    field_view::GameMarks game;
    game.time = truth.time;
    game.half = truth.half;
    game.play_mode = std::string(truth.play_mode_name());
    if (game.play_mode.empty()) {
        game.play_mode = "mode " + std::to_string(truth.play_mode);
    }
    game.team_left = truth.team_left;
    game.team_right = truth.team_right;
    game.score_left = truth.score_left;
    game.score_right = truth.score_right;
    game.ball_x = static_cast<float>(truth.ball[0]);
    game.ball_y = static_cast<float>(truth.ball[1]);
    for (const auto& robot : truth.robots) {
        game.robots.push_back({robot.number, robot.side == orvo::monitor::Side::left ? 0 : 1,
                               static_cast<float>(robot.x), static_cast<float>(robot.y),
                               static_cast<float>(robot.heading_deg), robot.fallen()});
    }
    return game;
}

MonitorFeed::MonitorFeed(std::string host, int port, std::function<void()> changed)
    : host(std::move(host)), port(port), changed(std::move(changed)), runner([this] { run(); }) {}

MonitorFeed::~MonitorFeed() {
    stop();
}

void MonitorFeed::stop() {
    stopping = true;
    if (runner.joinable()) {
        runner.join();
    }
}

std::optional<field_view::GameMarks> MonitorFeed::game() const {
    std::lock_guard<std::mutex> lock(mutex);
    return latest;
}

std::string MonitorFeed::state() const {
    std::lock_guard<std::mutex> lock(mutex);
    return status;
}

void MonitorFeed::set_state(std::string text) {
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (status == text) {
            return;
        }
        status = std::move(text);
    }
    changed();
}

void MonitorFeed::run() {
    while (!stopping) {
        std::string lost;
        try {
            orvo::monitor::MonitorClient monitor(host, port);
            monitor.tap([this](std::string_view) { ++count; });
            set_state("live");
            while (!stopping) {
                if (monitor.update(poll) && monitor.reader().has_scene()) {
                    auto game = game_marks(monitor.truth());
                    {
                        std::lock_guard<std::mutex> lock(mutex);
                        latest = std::move(game);
                    }
                    changed();
                }
            }
            return;
        } catch (const std::exception& error) {
            lost = error.what();
        }
        set_state("no server (" + lost + "), retrying");
        for (int i = 0; i < 10 && !stopping; ++i) {
            std::this_thread::sleep_for(poll);
        }
    }
}

} // namespace viewer
