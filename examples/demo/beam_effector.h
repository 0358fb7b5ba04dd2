#ifndef ORVO_DEMO_BEAM_EFFECTOR_H
#define ORVO_DEMO_BEAM_EFFECTOR_H

#include <orvo/effectors/effector.h>

namespace demo {

/// "effector_beam": places the agent with "(beam X Y ROT)", in the team's frame.
class BeamEffector : public orvo::effectors::Effector {
public:
    std::string get_name() const override { return "effector_beam"; }
    void operator()(float x, float y, float rotation);
};

} // namespace demo

#endif
