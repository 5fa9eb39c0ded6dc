#include <climits>
#include <cstdlib>

#include "support/Configuration.h"
#include "tests/TestSupport.h"

namespace {

/// The setting "test_number" as an environment variable of that text gives it; -1 is the fallback.
int fromEnvironment(const char* text, int lowest = INT_MIN, int highest = INT_MAX) {
    setenv("KESTA_TEST_NUMBER", text, 1);
    const int value = config_int("test_number", -1, lowest, highest);
    unsetenv("KESTA_TEST_NUMBER");
    return value;
}

}  // namespace

TEST(Configuration, UnsetSettingsFallBackWithinTheRange) {
    EXPECT_EQ(config_int("test_unset", 5, 0, 10), 5);
    EXPECT_EQ(config_int("test_unset", 50, 0, 10), 10);
    EXPECT_EQ(config_int("test_unset", -50, 0, 10), 0);
    EXPECT_EQ(config_int(nullptr, 5, 0, 10), 5);
}

TEST(Configuration, TheEnvironmentGivesWholeNumbers) {
    EXPECT_EQ(fromEnvironment("42"), 42);
    EXPECT_EQ(fromEnvironment(" -42 "), -42);
    EXPECT_EQ(fromEnvironment("42", 0, 9), 9);
    EXPECT_EQ(fromEnvironment("-42", 0, 9), 0);
    EXPECT_EQ(fromEnvironment("99999999999999999999"), INT_MAX);
    EXPECT_EQ(fromEnvironment("-99999999999999999999"), INT_MIN);
    for (const char* text : {"", "x", "4x", "4.5", "4 2", "0x10"})
        EXPECT_EQ(fromEnvironment(text), -1) << text;
}

TEST(Configuration, AValueThatIsSetGoesBeforeTheEnvironment) {
    setenv("KESTA_TEST_SET", "1", 1);
    config_set_int("test_set", 2);
    EXPECT_EQ(config_int("test_set", 0, 0, 10), 2);
    EXPECT_EQ(config_int("test_set", 0, 3, 10), 3);
    unsetenv("KESTA_TEST_SET");
}

TEST(Configuration, ABlockKeepsTheLastValueOfEachKey) {
    configb block;
    strp_field value;
    EXPECT_EQ(block.find("name"), nullptr);
    value.set("first");
    block.set("name", value);
    value.set("second");
    block.set("slate/take", value);
    EXPECT_EQ(block.find("name")->get(), "first");
    block.set("name", value);
    EXPECT_EQ(block.find("name")->get(), "second");
    EXPECT_EQ(block.find("Name"), nullptr);
    EXPECT_EQ(block.find(nullptr), nullptr);
    block.set(nullptr, value);
    EXPECT_EQ(block.find("")->get(), "second");
}
