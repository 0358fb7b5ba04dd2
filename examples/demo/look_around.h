#ifndef ORVO_DEMO_LOOK_AROUND_H
#define ORVO_DEMO_LOOK_AROUND_H

#include <orvo/skills/skill.h>

namespace orvo::knowledgebase::extractors {
class Extractor_Action;
}

namespace demo {

class HeadEffector;
class WorldModel;

/// "skill_look": pans the head from side to side. It keeps no state of its
/// own: the previous action in the knowledge base tells which way it turned.
class LookAround : public orvo::skills::Skill {
public:
    void link(orvo::Class_Map& classes) override;
    std::string get_name() const override { return "skill_look"; }
    void operator()();

    static constexpr float pan_speed = 1.5f;  ///< rad/s
    static constexpr float pan_limit = 90.0f; ///< degrees

private:
    HeadEffector* head = nullptr;
    WorldModel* world = nullptr;
    orvo::knowledgebase::extractors::Extractor_Action* extractor = nullptr;
};

} // namespace demo

#endif
