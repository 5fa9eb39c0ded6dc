// Notification messages: type numbers and the words of a text.
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "support/NotifyMsg.h"

namespace {

using Words = std::vector<std::string>;

Words wordsOf(const char* text) {
    const NotifyMsg message(text, Zr::Ptr<iObject>());
    Words words;
    for (NotifyMsgTokenIterator word(message); word; ++word) words.emplace_back(*word);
    return words;
}

}  // namespace

TEST(NotifyMsg, WordsAreSeparatedBySpaces) {
    EXPECT_EQ(wordsOf("3 4 10 "), (Words{"3", "4", "10"}));
    EXPECT_EQ(wordsOf("  a\tb   c"), (Words{"a\tb", "c"}));
    EXPECT_EQ(wordsOf(""), Words());
    EXPECT_EQ(wordsOf("   "), Words());

    const NotifyMsg message("7", Zr::Ptr<iObject>());
    NotifyMsgTokenIterator word(message);
    ++ ++ ++word;
    EXPECT_FALSE(word) << "stepping past the last word stays there";
    EXPECT_EQ(*word, "");
}

TEST(NotifyMsg, EqualNamesAlwaysGetTheSameNumber) {
    NotifyMsgTypeDictionary& types = NotifyMsgTypeDictionary::instance();
    EXPECT_EQ(&types, &NotifyMsgTypeDictionary::instance());
    const int deleted = types.intern("recordsDeleted");
    EXPECT_GE(deleted, 0);
    EXPECT_NE(types.intern("recordsdeleted"), deleted);
    EXPECT_NE(types.intern(""), types.intern(LightweightString<char>("\0", 1)));
    EXPECT_EQ(types.intern(LightweightString<char>(std::string_view("recordsDeleted"))), deleted);
}

TEST(NotifyMsg, ThreadsAgreeOnTypeNumbers) {
    std::vector<int> numbers[4];
    std::vector<std::thread> threads;
    for (std::vector<int>& mine : numbers) {
        threads.emplace_back([&mine] {
            for (int i = 0; i < 200; ++i) {
                const std::string name = "thread type " + std::to_string(i);
                mine.push_back(NotifyMsgTypeDictionary::instance().intern(name.c_str()));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::vector<int>& other : numbers) EXPECT_EQ(other, numbers[0]);
}
