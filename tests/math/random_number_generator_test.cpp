#include <orvo/math/random_number_generator.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <sys/time.h>
#include <vector>

using orvo::math::Random_Number_Generator;

namespace {

std::vector<unsigned long> draw(gsl_rng* r) {
    std::vector<unsigned long> values(8);
    for (auto& v : values) {
        v = gsl_rng_get(r);
    }
    return values;
}

} // namespace

TEST(Random_Number_Generator, IsAComponentSeededWithTheMicrosecondsOfInit) {
    std::unique_ptr<orvo::Constructable> component(create_random_number_generator());
    EXPECT_EQ(component->get_name(), "random_number_generator");
    auto& generator = dynamic_cast<Random_Number_Generator&>(*component);
    orvo::Class_Map classes;
    generator.link(classes);
    EXPECT_FALSE(generator.rng);

    timeval before{}, after{};
    gettimeofday(&before, nullptr);
    generator.init();
    gettimeofday(&after, nullptr);
    ASSERT_TRUE(generator.rng);
    EXPECT_EQ(std::string(gsl_rng_name(generator.rng.get())), "taus2");
    const std::vector<unsigned long> drawn = draw(generator.rng.get());
    // The seed is the microsecond part of some instant between the two
    // readings; GSL seeded with one of them must reproduce the sequence.
    const auto microseconds = [](const timeval& tv) { return tv.tv_sec * 1000000LL + tv.tv_usec; };
    bool reproduced = false;
    std::unique_ptr<gsl_rng, void (*)(gsl_rng*)> reference(gsl_rng_alloc(gsl_rng_taus2),
                                                           gsl_rng_free);
    for (long long t = microseconds(before); t <= microseconds(after) && !reproduced; ++t) {
        gsl_rng_set(reference.get(), static_cast<unsigned long>(t % 1000000));
        reproduced = draw(reference.get()) == drawn;
    }
    EXPECT_TRUE(reproduced);
}
