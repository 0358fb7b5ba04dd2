#include "team_talk.h"

#include <orvo/communication/say_codec.h>

#include <cmath>

namespace demo {

namespace {

using orvo::communication::SayField;

// Field positions to the centimetre, a little past the lines, where a robot
// or the ball may stray.
const SayField number_field{0, TeamTalk::max_number, 1};
const SayField flag_field{0, 3, 1};
const SayField x_field{-16, 16, 0.01};
const SayField y_field{-11, 11, 0.01};
const SayField age_field{0, 9, 0.1};
const SayField distance_field{0, 40, 0.01};
constexpr int ball_seen = 1, chasing = 2;

constexpr double cycle_s = 0.02;

} // namespace

std::string encode(const MateReport& report) {
    orvo::communication::SayWriter out;
    const int flags = (report.ball_age ? ball_seen : 0) | (report.chasing ? chasing : 0);
    out.put(report.number, number_field)
        .put(flags, flag_field)
        .put(report.self.x, x_field)
        .put(report.self.y, y_field)
        .put(report.ball_age.value_or(0), age_field)
        .put(report.ball.x, x_field)
        .put(report.ball.y, y_field)
        .put(report.ball_distance, distance_field);
    return out.text();
}

std::optional<MateReport> decode(std::string_view text) {
    orvo::communication::SayReader in(text);
    MateReport out;
    double number = 0, flags = 0, age = 0;
    const bool read = in.get(number, number_field) && in.get(flags, flag_field) &&
                      in.get(out.self.x, x_field) && in.get(out.self.y, y_field) &&
                      in.get(age, age_field) && in.get(out.ball.x, x_field) &&
                      in.get(out.ball.y, y_field) && in.get(out.ball_distance, distance_field);
    if (!read || !in.done() || number < 1) {
        return std::nullopt;
    }
    out.number = static_cast<int>(number);
    const int bits = static_cast<int>(flags);
    if (bits & ball_seen) {
        out.ball_age = age;
    }
    out.chasing = (bits & chasing) != 0;
    return out;
}

bool TeamTalk::my_turn(int number, double now) const {
    const long long cycle = std::llround(now / cycle_s);
    return cycle % turn_cycles_ == 0 && (cycle / turn_cycles_) % max_number == number - 1;
}

int TeamTalk::listen(const orvo::perception::Perception& perception, const std::string& team,
                     int own_number, double now) {
    int kept = 0;
    for (const orvo::perception::Heard& heard : perception.heard) {
        if (heard.self || heard.team != team) {
            continue;
        }
        std::optional<MateReport> report = decode(heard.text);
        if (report && report->number != own_number) {
            report->heard_at = now;
            reports_[static_cast<std::size_t>(report->number)] = *report;
            ++kept;
        }
    }
    return kept;
}

void TeamTalk::forget() {
    reports_.fill(MateReport{});
}

} // namespace demo
