#include "posture.h"

#include "team_configuration.h"
#include "world_model.h"

#include <orvo/skills/skill_joints.h>

#include <algorithm>

namespace demo {

void Posture::link(orvo::Class_Map& classes) {
    Skill::link(classes);
    joints = orvo::get_class<orvo::skills::Skill_Joints>(*this, "skill_joints", classes);
    world = orvo::get_class<WorldModel>(*this, "worldmodel", classes);
    configuration = orvo::get_class<TeamConfiguration>(*this, "configuration", classes);
}

void Posture::init() {
    const Settings& settings = configuration->settings;
    const std::string directory = settings.motions.empty() ? DEMO_MOTIONS : settings.motions;
    const auto load = [&](const char* name) {
        return std::make_shared<const orvo::skills::Motion>(
            orvo::skills::Motion::load(directory + "/" + name + ".motion"));
    };
    ready = load("ready");
    wave = load("wave");
    head_scan = load("head_scan");
    joints->set_robot_type(static_cast<int>(settings.type));
}

void Posture::operator()() {
    auto& player = joints->player();
    if (!started) {
        player.play(ready);
        player.play(head_scan, /*loop=*/true);
        started = true;
    }
    if (!waved && world->kicked_off()) {
        player.play(wave); // the arm only: the legs keep the stance, the head scans on
        waved = true;
    }
    (*joints)(world->joint_angles(), world->seconds());
    errors[cycles++ % window] = joints->worst_error();
}

double Posture::worst_recent_error() const {
    return *std::max_element(errors.begin(), errors.end());
}

} // namespace demo
