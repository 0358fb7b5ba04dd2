#ifndef ORVO_DEMO_HEAD_EFFECTOR_H
#define ORVO_DEMO_HEAD_EFFECTOR_H

#include <orvo/effectors/effector.h>

namespace demo {

/// "effector_head": sets the speeds of the neck's two joints, in radians per
/// second, with "(he1 PAN)(he2 TILT)". The speeds persist until changed.
class HeadEffector : public orvo::effectors::Effector {
public:
    std::string get_name() const override { return "effector_head"; }
    void operator()(float pan, float tilt);
};

} // namespace demo

#endif
