
#include "support/time_def.h"
#include "tests/TestSupport.h"

TEST(TimeDef, ReadsEverySpellingOfATimeCode) {
    const struct {
        const char *text, *stored, *shown;
    } forms[] = {
        {"01020304", "01020304", "01:02:03:04"},     {"01020304;", "01020304;", "01:02:03;04"},
        {"01:02:03:04", "01020304", "01:02:03:04"},  {"01:02:03;04", "01020304;", "01:02:03;04"},
        {"01:02:03,04", "01020304;", "01:02:03;04"}, {"01.02.03.04", "01020304", "01:02:03:04"},
        {"01;02,03:04", "01020304", "01:02:03:04"},
    };
    for (const auto& form : forms) {
        const time_def code(form.text, eTimecodeLabel);
        EXPECT_TRUE(code.valid()) << form.text;
        EXPECT_EQ(code.get_database_str(), form.stored) << form.text;
        EXPECT_EQ(code.get_punctuated_str(), form.shown) << form.text;
    }
}

TEST(TimeDef, OtherTextComesBackUnchanged) {
    for (const char* text : {"", " ", "0102030", "010203045", "01020304;;", "01020304:", "0102030a",
                             "01:02:03:4", "1:02:03:04", "01-02-03-04", "01::02:03:4", "01:02:03:04;",
                             "01:02:0x;04", "01020304 ", "KU 23 1234-5678+10", ":::::::::::"}) {
        const time_def code(text, eTimecodeLabel);
        EXPECT_FALSE(code.valid() || code.dropFrame()) << text;
        EXPECT_EQ(code.get_database_str(), text);
        EXPECT_EQ(code.get_punctuated_str(), text);
    }
    EXPECT_EQ(time_def(nullptr, eTimecodeLabel).get_database_str(), "");
    EXPECT_EQ(time_def("01:02:03:04", label_t(3)).get_database_str(), "01:02:03:04");
}
