#include <orvo/getup/getup.h>

#include <orvo/getup/getup_motions.h>

#include <cmath>
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

GetUp::GetUp(int type, const params::ParamSet& params)
    : params_(params), own_joints_(robot::joints_of(type)), controller_(gains_of(params)) {
    // Every motion is read once here, so that a broken file fails at once
    // rather than on the field.
    for (const char* name : {"front", "back", "side"}) {
        (void)motion_from(params_, name);
    }
    (void)params_["side_onto_front"];
    (void)params_["still_rate"];
}

GetUp GetUp::for_type(int type) {
    return GetUp(type, params::ParamSet::load(params::params_path("getup", type)));
}

void GetUp::play(const std::string& name, bool mirrored) {
    auto motion = std::make_shared<const skills::Motion>(motion_from(params_, name, mirrored));
    duration_ += motion->duration();
    motion_ = motion->name();
    player_.play(std::move(motion));
}

bool GetUp::settled(const perception::Perception& perception) const {
    const auto& turn = perception.gyroscope;
    return std::sqrt(turn.x * turn.x + turn.y * turn.y + turn.z * turn.z) < params_["still_rate"];
}

void GetUp::start(fall::Posture posture) {
    player_.release_all();
    controller_.reset();
    duration_ = 0;
    next_.clear();
    const std::string after_roll = params_["side_onto_front"] >= 0.5 ? "front" : "back";
    switch (posture) {
    case fall::Posture::fallen_front:
        play("front", false);
        break;
    case fall::Posture::fallen_left:
    case fall::Posture::fallen_right:
        play("side", posture == fall::Posture::fallen_right);
        next_ = after_roll;
        duration_ += motion_from(params_, next_).duration();
        break;
    default:
        play("back", false);
        break;
    }
}

void GetUp::update(const perception::Perception& perception) {
    if (motion_.empty()) {
        return;
    }
    if (!next_.empty() && !player_.playing(motion_)) {
        // The roll is over: the rest starts from wherever it left the joints.
        const double planned = duration_;
        play(next_, false);
        duration_ = planned;
        next_.clear();
    }
    robot::JointValues angles{};
    for (std::size_t i = 0; i < robot::joint_count; ++i) {
        angles[i] = perception.joints[static_cast<robot::Joint>(i)];
    }
    player_.update(perception.time, angles);
    controller_.step(player_.targets(), player_.rates(), angles, player_.driven() & own_joints_,
                     speeds_);
}

bool GetUp::active() const {
    return !motion_.empty() && (!next_.empty() || player_.playing(motion_));
}

} // namespace orvo::getup
