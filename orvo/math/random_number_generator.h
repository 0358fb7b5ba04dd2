#ifndef ORVO_MATH_RANDOM_NUMBER_GENERATOR_H
#define ORVO_MATH_RANDOM_NUMBER_GENERATOR_H

#include <orvo/core/export.h>
#include <orvo/humanoid/base/constructable.h>

#include <boost/shared_ptr.hpp>
#include <gsl/gsl_rng.h>

#include <string>

namespace orvo {
namespace math {

/// The component "random_number_generator": one GSL Tausworthe generator
/// (taus2) that plug-ins share and pass to GSL's sampling functions.
class ORVO_API Random_Number_Generator : public Constructable {
public:
    ~Random_Number_Generator() override;
    /// Needs no collaborators.
    void link(Class_Map& classes) override;
    /// Allocates a new generator seeded with the microseconds of the current
    /// time (0 to 999999); the previous one is released once no copy of it is
    /// left.
    void init() override;
    std::string get_name() const override;

    /// Null until init(). Freed by gsl_rng_free when the last copy goes, so a
    /// plug-in that keeps a copy may outlive the component.
    boost::shared_ptr<gsl_rng> rng;
};

} // namespace math
} // namespace orvo

extern "C" ORVO_API orvo::Constructable* create_random_number_generator();

#endif
