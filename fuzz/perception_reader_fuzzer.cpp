// Feeds arbitrary bytes to the perception reader as one message. Besides
// crashes and sanitizer reports, a finding is: a failure without a fault or
// with an offset past the message; a value the reader promises to refuse (a
// number that is not finite); a result that depends on what the reused
// Perception held before (the same input read into a fresh one must agree);
// a message that reads but reads again with one more ')' at its end; and lost
// elements (values that are not numbers) counted unlike the message says.
#include <orvo/perception/perception_reader.h>

#include "fuzz_input.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace orvo::perception;

[[noreturn]] void finding(const char* what) {
    fuzz::finding("perception reader", what);
}

bool finite(const orvo::math::Vector3d& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

bool finite(const orvo::math::Polar& p) {
    return std::isfinite(p.distance) && std::isfinite(p.azimuth) && std::isfinite(p.elevation);
}

void check_values(const Perception& p) {
    if ((p.has_time && !std::isfinite(p.time)) || (p.has_gyroscope && !finite(p.gyroscope)) ||
        (p.has_accelerometer && !finite(p.accelerometer)) ||
        (p.has_position && !finite(p.position)) || !std::isfinite(p.game_state.time)) {
        finding("a value that is not a finite number");
    }
    for (std::size_t i = 0; i < orvo::robot::joint_count; ++i) {
        if (!std::isfinite(p.joints[static_cast<orvo::robot::Joint>(i)])) {
            finding("a joint angle that is not a finite number");
        }
    }
    if (p.vision.sees_ball && !finite(p.vision.ball)) {
        finding("a ball position that is not finite");
    }
    for (const SeenPlayer& player : p.vision.players) {
        if (player.seen >= 1u << body_part_count) {
            finding("a body part that does not exist");
        }
    }
    for (const SeenLine& line : p.vision.lines) {
        if (!finite(line.begin) || !finite(line.end)) {
            finding("a line that is not finite");
        }
    }
}

bool same(const Perception& a, const Perception& b) {
    const GameState& x = a.game_state;
    const GameState& y = b.game_state;
    bool equal = a.lost_elements == b.lost_elements && a.has_time == b.has_time &&
                 a.has_game_state == b.has_game_state && x.unum == y.unum && x.side == y.side &&
                 x.play_mode == y.play_mode && x.play_mode_name == y.play_mode_name &&
                 a.joints.count() == b.joints.count() && a.has_vision == b.has_vision &&
                 a.has_position == b.has_position &&
                 a.vision.landmarks_seen == b.vision.landmarks_seen &&
                 a.vision.sees_ball == b.vision.sees_ball &&
                 a.vision.players.size() == b.vision.players.size() &&
                 a.vision.lines.size() == b.vision.lines.size() && a.heard.size() == b.heard.size();
    for (std::size_t i = 0; equal && i < foot_count; ++i) {
        equal = a.feet[i].touches == b.feet[i].touches;
    }
    for (std::size_t i = 0; equal && i < a.vision.players.size(); ++i) {
        equal = a.vision.players[i].team == b.vision.players[i].team &&
                a.vision.players[i].id == b.vision.players[i].id &&
                a.vision.players[i].seen == b.vision.players[i].seen;
    }
    for (std::size_t i = 0; equal && i < a.heard.size(); ++i) {
        equal = a.heard[i].team == b.heard[i].team && a.heard[i].text == b.heard[i].text &&
                a.heard[i].self == b.heard[i].self;
    }
    return equal;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // An exact-size copy, so that any read past the message is out of bounds.
    const std::string message(reinterpret_cast<const char*>(data), size);
    static const PerceptionReader reader;
    static Perception reused; // holds whatever the previous inputs left
    Perception fresh;

    const ReadResult result = reader.read(message, reused);
    const ReadResult again = reader.read(message, fresh);
    if (result.fault != again.fault || result.offset != again.offset || result.lost != again.lost ||
        result.lost_offset != again.lost_offset) {
        finding("the result depends on the Perception's past");
    }
    if (result.lost != reused.lost_elements || (result.lost == 0 && result.lost_offset != 0) ||
        result.lost_offset > size) {
        finding("lost elements miscounted or placed past the message");
    }
    if (!result.ok()) {
        if (result.offset > size) {
            finding("a fault offset past the message");
        }
        return 0;
    }
    if (result.offset != 0) {
        finding("an offset without a fault");
    }
    check_values(reused);
    if (!same(reused, fresh)) {
        finding("the content depends on the Perception's past");
    }
    const ReadResult closed = reader.read(message + ")", fresh);
    if (closed.fault != ReadFault::unopened || closed.offset != size) {
        finding("a ')' after a whole message is not refused where it is");
    }
    return 0;
}
