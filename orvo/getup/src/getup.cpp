#include <orvo/getup/getup.h>

#include <orvo/getup/getup_motions.h>
#include <orvo/protocol/constants.h>

#include <cmath>
#include <limits>
#include <utility>

namespace orvo::getup {

namespace {

skills::JointController::Gains gains_of(const params::ParamSet& set) {
    skills::JointController::Gains gains;
    gains.proportional = set["joint_p"];
    gains.derivative = set["joint_d"];
    return gains;
}

} // namespace

fall::FallParams senses_params(int type) {
    fall::FallParams params = fall::FallParams::for_type(type);
    params.accel_still_rate = std::numeric_limits<double>::infinity();
    return params;
}

fall::Posture lying_side(const perception::Perception& perception) {
    const auto& up = perception.accelerometer;
    if (std::fabs(up.y) >= std::fabs(up.x)) {
        return up.y < 0 ? fall::Posture::fallen_front : fall::Posture::fallen_back;
    }
    return up.x > 0 ? fall::Posture::fallen_left : fall::Posture::fallen_right;
}

GetUp::GetUp(int type, const params::ParamSet& params)
    : params_(params), own_joints_(robot::joints_of(type)),
      controller_(gains_of(params), robot::speed_limits_deg(type, params["joint_speed"])),
      senses_(body::BodyModel::for_type(type), senses_params(type)) {
    // Every motion and setting is read once here, so that a broken file fails
    // at once rather than on the field.
    for (const char* name : {"lie", "front", "back", "side"}) {
        (void)motion_from(params_, name);
        (void)LeanBalance(params_, name);
    }
    for (const char* name : {"back_rolls", "still_rate", "settle_max", "retry_after"}) {
        (void)params_[name];
    }
}

GetUp GetUp::for_type(int type) {
    return GetUp(type, params::ParamSet::load(params::params_path("getup", type)));
}

void GetUp::play(const std::string& name, bool mirrored) {
    name_ = name;
    mirrored_ = mirrored;
    play_from(1);
}

void GetUp::play_from(int frame) {
    int last = frame;
    while (set_has(name_, last, "time") && !set_has(name_, last, "lean") &&
           !set_has(name_, last, "risen")) {
        ++last;
    }
    next_frame_ = set_has(name_, last + 1, "time") ? last + 1 : 0;
    hold_from_ = -1;
    balance_ = LeanBalance(params_, name_);
    balance_after_ = balance_.starts_after(frame, last);
    part_start_ = -1;
    auto motion =
        std::make_shared<const skills::Motion>(motion_part(params_, name_, frame, last, mirrored_));
    motion_ = motion->name();
    player_.play(std::move(motion));
}

bool GetUp::set_has(const std::string& name, int frame, const char* what) const {
    return params_.has(name + "." + std::to_string(frame) + "." + what);
}

void GetUp::hold(double now) {
    if (next_frame_ == 0 || player_.playing(motion_)) {
        return;
    }
    hold_from_ = hold_from_ < 0 ? now : hold_from_;
    const std::string held = name_ + "." + std::to_string(next_frame_ - 1) + ".";
    // A hold waits for the torso to come forward ("lean") or to turn back up
    // from head down ("risen"): the rise from the front starts head down.
    const bool leaned = params_.has(held + "lean") && lean_back() <= params_[held + "lean"];
    const bool risen = params_.has(held + "risen") && lean_back() >= params_[held + "risen"];
    if (leaned || risen || now - hold_from_ >= params_[held + "wait"]) {
        play_from(next_frame_);
    }
}

bool GetUp::settled(const perception::Perception& perception) const {
    const auto& turn = perception.gyroscope;
    return std::sqrt(turn.x * turn.x + turn.y * turn.y + turn.z * turn.z) < params_["still_rate"];
}

double GetUp::plan(fall::Posture side) const {
    const double front = motion_from(params_, "front").duration();
    switch (side) {
    case fall::Posture::fallen_front:
        return front;
    case fall::Posture::fallen_left:
    case fall::Posture::fallen_right:
        // Where a roll from the side ends is the ground's say: count the front.
        return motion_from(params_, "side").duration() + front;
    default:
        return motion_from(params_, "back").duration() + (back_rolls() ? front : 0);
    }
}

void GetUp::start(fall::Posture posture) {
    player_.release_all();
    controller_.reset();
    // Started on a still robot: the first reading of the accelerometer says where up is.
    senses_.reset();
    if (!fall::lying(posture)) {
        posture = fall::Posture::fallen_back;
    }
    duration_ = motion_from(params_, "lie").duration() + plan(posture);
    play("lie", false);
    phase_ = Phase::lying_down;
}

void GetUp::go_on_from(fall::Posture side) {
    switch (side) {
    case fall::Posture::fallen_front:
        play("front", false);
        phase_ = Phase::standing;
        break;
    case fall::Posture::fallen_left:
    case fall::Posture::fallen_right:
        play("side", side == fall::Posture::fallen_right);
        phase_ = Phase::rolling;
        break;
    default:
        play("back", false);
        phase_ = back_rolls() ? Phase::rolling : Phase::standing;
        break;
    }
}

double GetUp::lean_back() const {
    const Eigen::Vector3d& up = senses_.up();
    return std::atan2(up.y(), up.z()) / protocol::radians_per_degree;
}

void GetUp::update(const perception::Perception& perception) {
    if (phase_ == Phase::idle) {
        return;
    }
    const double now = perception.time;
    if (stuck(senses_.update(perception), now)) {
        start(fall::Posture::getting_up);
    }
    hold(now);
    if (phase_ == Phase::rolling && !moving()) {
        // A roll leaves the robot rocking in the roll's last pose, and a roll
        // that did not turn it over leaves it where playing the roll again
        // moves nothing: every try starts over from the lying pose.
        start(lying_side(perception));
    }
    if (phase_ == Phase::lying_down && !moving()) {
        phase_ = Phase::settling;
        settle_from_ = now;
    }
    if (phase_ == Phase::settling &&
        (settled(perception) || now - settle_from_ >= params_["settle_max"])) {
        go_on_from(lying_side(perception));
        if (balance_.on()) {
            // The balance needs the lean to a few degrees from the start, and a
            // still robot's accelerometer points up well enough even where it
            // reads too little to be believed at once.
            senses_.level(perception);
        }
    }
    robot::JointValues angles{};
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        angles[i] = perception.joints[static_cast<robot::Joint>(i)];
    }
    player_.update(now, angles);
    part_start_ = part_start_ < 0 ? now : part_start_;
    robot::JointValues targets = player_.targets();
    if (phase_ == Phase::standing && balance_after_ >= 0 && now - part_start_ >= balance_after_) {
        // The gyroscope's x axis turns the torso's forward axis up: leaning back.
        balance_.apply(lean_back(), perception.gyroscope.x, targets);
    }
    // The controller writes only the joints the motion moves; the rest hold.
    speeds_ = {};
    controller_.step(targets, player_.rates(), angles, player_.driven() & own_joints_, speeds_);
}

bool GetUp::stuck(fall::Posture posture, double now) {
    if (phase_ != Phase::standing || moving() || posture != fall::Posture::getting_up) {
        short_since_ = -1;
        return false;
    }
    short_since_ = short_since_ < 0 ? now : short_since_;
    return now - short_since_ >= params_["retry_after"];
}

bool GetUp::active() const {
    return phase_ != Phase::idle && (phase_ != Phase::standing || moving());
}

} // namespace orvo::getup
