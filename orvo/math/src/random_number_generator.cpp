#include <orvo/math/random_number_generator.h>

#include <sys/time.h>

namespace orvo {
namespace math {

Random_Number_Generator::~Random_Number_Generator() = default;

void Random_Number_Generator::link(Class_Map&) {}

void Random_Number_Generator::init() {
    rng.reset(gsl_rng_alloc(gsl_rng_taus2), gsl_rng_free);
    // GSL's default error handler aborts when allocation fails; with the
    // handler switched off the pointer stays null and there is nothing to seed.
    if (!rng) {
        return;
    }
    timeval now{};
    if (gettimeofday(&now, nullptr) == 0) {
        gsl_rng_set(rng.get(), static_cast<unsigned long>(now.tv_usec));
    }
}

std::string Random_Number_Generator::get_name() const {
    return "random_number_generator";
}

} // namespace math
} // namespace orvo

ORVO_COMPONENT_FACTORY(random_number_generator, orvo::math::Random_Number_Generator)
