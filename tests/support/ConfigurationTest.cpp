#include <climits>

#include "support/Configuration.h"
#include "tests/TestSupport.h"

TEST(Configuration, ComesFromTheEnvironmentUnlessSetAndStaysInItsRange) {
    const auto fromEnvironment = [](const char* text, int lowest = INT_MIN, int highest = INT_MAX) {
        setenv("KESTA_TEST_NUMBER", text, 1);
        const int value = config_int("test_number", -1, lowest, highest);
        unsetenv("KESTA_TEST_NUMBER");
        return value;
    };
    EXPECT_EQ(fromEnvironment(" -42 "), -42);
    EXPECT_EQ(fromEnvironment("99999999999999999999"), INT_MAX);
    EXPECT_EQ(fromEnvironment("-99999999999999999999"), INT_MIN);
    EXPECT_EQ(fromEnvironment("-42", 0, 9), 0);
    for (const char* text : {"", "x", "4x", "4.5", "4 2", "0x10"}) {
        EXPECT_EQ(fromEnvironment(text), -1) << text;
    }
    EXPECT_EQ(config_int("test_unset", 50, 0, 10), 10);
    EXPECT_EQ(config_int(nullptr, 5, 0, 10), 5);

    config_set_int("test_number", 2);
    EXPECT_EQ(fromEnvironment("1"), 2);
    EXPECT_EQ(fromEnvironment("1", 3), 3);
}

TEST(Configuration, ABlockKeepsTheLastValueOfEachKey) {
    configb block;
    strp_field value;
    for (const char* const text : {"first", "second"}) {
        value.set(text);
        block.set("name", value);
    }
    EXPECT_EQ(block.find("name")->get(), "second");
    EXPECT_EQ(block.find("Name"), nullptr);
    EXPECT_EQ(block.find(nullptr), nullptr);
    block.set(nullptr, value);
    EXPECT_EQ(block.find("")->get(), "second");
}
