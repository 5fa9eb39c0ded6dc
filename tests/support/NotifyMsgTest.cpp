// Notification messages: type numbers and the words of a text.
#include <algorithm>
#include <gtest/gtest.h>
#include <set>
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
    EXPECT_EQ(wordsOf("  a\tb   10 "), (Words{"a\tb", "10"}));
    EXPECT_EQ(wordsOf("   "), Words());

    const NotifyMsg message("7", Zr::Ptr<iObject>());
    NotifyMsgTokenIterator word(message);
    ++ ++ ++word;
    EXPECT_FALSE(word) << "stepping past the last word stays there";
    EXPECT_EQ(*word, "");
}

TEST(NotifyMsg, EqualNamesAlwaysGetTheSameNumberOnAllThreads) {
    NotifyMsgTypeDictionary& types = NotifyMsgTypeDictionary::instance();
    EXPECT_NE(types.intern("recordsdeleted"), types.intern("recordsDeleted"));
    EXPECT_NE(types.intern(""), types.intern(LightweightString<char>("\0", 1)));

    std::vector<int> numbers[4];
    std::vector<std::thread> threads;
    for (std::vector<int>& mine : numbers) {
        threads.emplace_back([&mine, &types] {
            for (int i = 0; i < 200; ++i) mine.push_back(types.intern(std::to_string(i).c_str()));
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::vector<int>& other : numbers) EXPECT_EQ(other, numbers[0]);
    EXPECT_EQ(std::set<int>(numbers[0].begin(), numbers[0].end()).size(), 200U);
    EXPECT_GE(*std::min_element(numbers[0].begin(), numbers[0].end()), 0);
}
