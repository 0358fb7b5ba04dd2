#ifndef ORVO_DEMO_TAKE_POSITION_H
#define ORVO_DEMO_TAKE_POSITION_H

#include <orvo/behaviors/behavior.h>

namespace orvo::knowledgebase::injectors {
class Injector_Action;
}
namespace orvo::math {
class Random_Number_Generator;
}

namespace demo {

class BeamTo;
class Posture;
class WorldModel;

/// "behavior_take_position": before kick-off, beams the player to its spot of
/// the formation, a little off at random so that no two games look the same,
/// and takes up its posture.
class TakePosition : public orvo::behaviors::Behavior {
public:
    void link(orvo::Class_Map& classes) override;
    std::string get_name() const override { return "behavior_take_position"; }
    void operator()() override;

    /// Metres, at most, in x and in y (0: on the spot).
    void set_jitter(float metres) { jitter = metres; }

private:
    /// Within a metre of the spot, so on its leash.
    float jitter = 0.7f;
    orvo::knowledgebase::injectors::Injector_Action* actions = nullptr;
    orvo::math::Random_Number_Generator* random = nullptr;
    WorldModel* world = nullptr;
    BeamTo* beam = nullptr;
    Posture* posture = nullptr;
};

} // namespace demo

#endif
