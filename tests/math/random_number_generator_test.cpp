#include <orvo/math/random_number_generator.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <sys/time.h>
#include <vector>

using orvo::math::Random_Number_Generator;

namespace {

long long microseconds(const timeval& tv) {
    return static_cast<long long>(tv.tv_sec) * 1000000 + tv.tv_usec;
}

std::vector<unsigned long> draw(gsl_rng* r, int n) {
    std::vector<unsigned long> values;
    for (int i = 0; i < n; ++i) {
        values.push_back(gsl_rng_get(r));
    }
    return values;
}

} // namespace

TEST(Random_Number_Generator, IsAComponentWithoutAGeneratorUntilInit) {
    std::unique_ptr<orvo::Constructable> component(create_random_number_generator());
    EXPECT_EQ(component->get_name(), "random_number_generator");
    auto* generator = dynamic_cast<Random_Number_Generator*>(component.get());
    ASSERT_NE(generator, nullptr);
    orvo::Class_Map classes;
    generator->link(classes);
    EXPECT_FALSE(generator->rng);
    generator->init();
    ASSERT_TRUE(generator->rng);
    EXPECT_EQ(std::string(gsl_rng_name(generator->rng.get())), "taus2");
}

TEST(Random_Number_Generator, IsSeededWithTheMicrosecondsOfInit) {
    Random_Number_Generator generator;
    timeval before{}, after{};
    gettimeofday(&before, nullptr);
    generator.init();
    gettimeofday(&after, nullptr);
    const std::vector<unsigned long> drawn = draw(generator.rng.get(), 8);

    // The seed is the microsecond part of some instant between the two
    // readings; one of them must reproduce the sequence.
    bool reproduced = false;
    gsl_rng* reference = gsl_rng_alloc(gsl_rng_taus2);
    for (long long t = microseconds(before); t <= microseconds(after) && !reproduced; ++t) {
        gsl_rng_set(reference, static_cast<unsigned long>(t % 1000000));
        reproduced = draw(reference, 8) == drawn;
    }
    gsl_rng_free(reference);
    EXPECT_TRUE(reproduced);
}

TEST(Random_Number_Generator, InitAgainReplacesTheGeneratorAndCopiesOutliveIt) {
    boost::shared_ptr<gsl_rng> kept;
    {
        Random_Number_Generator generator;
        generator.init();
        kept = generator.rng;
        generator.init();
        EXPECT_NE(generator.rng.get(), kept.get());
        EXPECT_EQ(kept.use_count(), 1);
    }
    // Still usable after the component is gone; freed when `kept` goes.
    EXPECT_LE(gsl_rng_uniform(kept.get()), 1.0);
}
