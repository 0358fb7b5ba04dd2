// What a robot may say, and numbers packed into it and read back.
#include <orvo/communication/say_codec.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using orvo::communication::SayField;
using orvo::communication::SayReader;
using orvo::communication::SayWriter;

TEST(SayCodec, TheServerCarriesOnlyShortTextsOfItsCharacters) {
    for (const std::string text : {"a", "12345678901234567890", "~!#$%&*+,-./:;<=>?@"}) {
        EXPECT_EQ(orvo::communication::say_fault(text), "") << text;
    }
    for (const std::string text : {"123456789012345678901", "", "x y", "x\"y", "x'y", "x(y", "x)y",
                                   "x\xc3\xa9y", "~!#$%&*+,-./:;<=>?@[\\]^_`{|}"}) {
        EXPECT_NE(orvo::communication::say_fault(text), "") << text;
    }
    EXPECT_EQ(orvo::communication::say_alphabet().size(), 90u);
    for (const char c : orvo::communication::say_alphabet()) {
        EXPECT_TRUE(orvo::communication::sayable(c)) << c;
    }
}

TEST(SayCodec, NumbersComeBackToTheirStepClampedToTheirRange) {
    const SayField x{-16, 16, 0.01}, flag{0, 3, 1}, wide{0, 1e6, 1};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        double value;
        SayField field;
        double back;
        std::size_t width;
    } cases[] = {{-16, x, -16, 2},  {16, x, 16, 2},  {3.14159, x, 3.14, 2},
                 {-0.004, x, 0, 2}, {40, x, 16, 2},  {-40, x, -16, 2},
                 {nan, x, -16, 2},  {2, flag, 2, 1}, {999999, wide, 999999, 4}};
    SayWriter writer;
    for (const auto& c : cases) {
        EXPECT_EQ(c.field.width(), c.width);
        writer.put(c.value, c.field);
    }
    ASSERT_TRUE(orvo::communication::say_fault(writer.text().substr(0, 20)).empty());
    SayReader reader(writer.text());
    for (const auto& c : cases) {
        double back = -99;
        ASSERT_TRUE(reader.get(back, c.field)) << c.value;
        EXPECT_NEAR(back, c.back, 1e-9) << c.value;
    }
    EXPECT_TRUE(reader.done());
    double left = 7;
    EXPECT_FALSE(reader.get(left, flag)); // nothing left
    EXPECT_EQ(left, 7);
    // A text of another kind: a space, or a value past the field's range.
    EXPECT_FALSE(SayReader("a b").get(left, x));
    EXPECT_FALSE(SayReader("~~").get(left, x));
}

} // namespace
