// Notification messages: type numbers and the words of a text.
#include <set>
#include <thread>

#include "tests/TestSupport.h"

using namespace TestSupport;

TEST(NotifyMsg, WordsAreSeparatedBySpaces) {
    const std::pair<const char*, Fields> texts[] = {
        {"  a\tb   10 ", {"a\tb", "10"}}, {"7", {"7"}}, {"   ", {}}};
    for (const auto& [text, words] : texts) {
        const NotifyMsg message(text, Zr::Ptr<iObject>());
        Fields found;
        NotifyMsgTokenIterator word(message);
        for (; word; ++word) found.emplace_back(*word);
        EXPECT_EQ(found, words) << text;
        EXPECT_FALSE(++word) << "stepping past the last word stays there";
        EXPECT_EQ(*word, "");
    }
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
    const std::set<int> distinct(numbers[0].begin(), numbers[0].end());
    EXPECT_EQ(distinct.size(), 200U);
    EXPECT_GE(*distinct.begin(), 0);
}
