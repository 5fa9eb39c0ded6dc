#include <climits>
#include <thread>
#include <vector>

#include "support/LightweightString.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

TEST(LightweightString, EmptyTextIsTheSameWithAndWithoutABody) {
    const Text none;
    const Text null(static_cast<const char*>(nullptr));
    Text body;
    body.resizeFor(10);

    for (const Text& text : {none, null, body, Text(""), Text(nullptr, 5)}) {
        EXPECT_STREQ(text.c_str(), "");
        EXPECT_EQ(text.length(), 0u);
        EXPECT_EQ(text, none);
        EXPECT_EQ(text, static_cast<const char*>(nullptr));
        EXPECT_EQ(text.icompare(""), 0);
        EXPECT_EQ(text.icompare(nullptr), 0);
    }
    EXPECT_EQ(body.writableText(), nullptr);
}

TEST(LightweightString, CopiesNeverSeeEachOthersChanges) {
    const Text original("Reel One");
    const auto changed = [&](auto change, const char* expected) {
        Text copy = original;
        change(copy);
        EXPECT_EQ(copy, expected);
        EXPECT_EQ(original, "Reel One");
    };
    changed([](Text& t) { t += "!"; }, "Reel One!");
    changed([](Text& t) { t += '!'; }, "Reel One!");
    changed([](Text& t) { t += -7; }, "Reel One-7");
    changed([](Text& t) { t.writableText()[0] = 'F'; }, "Feel One");
    changed([](Text& t) { t.resizeFor(4); }, "Reel");
    changed([](Text& t) { Zr::toLower(t); }, "reel one");
    changed([](Text& t) { t = "Two"; }, "Two");

    Text copy = original;
    EXPECT_EQ(copy.c_str(), original.c_str()) << "shared until one is written";
    copy.writableText();
    EXPECT_NE(copy.c_str(), original.c_str());
}

TEST(LightweightString, AppendsItsOwnText) {
    Text roomy("abc");
    roomy.resizeFor(100);
    roomy += roomy;
    EXPECT_EQ(roomy, "abcabc");

    Text full("0123456789");
    for (int i = 0; i < 5; ++i) full.append(full.view().substr(1));  // grows out of its body while being read
    EXPECT_EQ(full.length(), 10u + 9 + 18 + 36 + 72 + 144);
    EXPECT_EQ(full.view().substr(0, 28), "0123456789123456789123456789");

    const Text copy = full;
    full += copy;
    EXPECT_EQ(full.length(), 2 * copy.length());
    EXPECT_EQ(full.view().substr(copy.length()), copy.view());
}

TEST(LightweightString, AppendingInPlaceAllocatesSeldom) {
    const CountingAllocator memory;
    Text text;
    for (int i = 0; i < 100000; ++i) text += 'x';
    EXPECT_EQ(text.length(), 100000u);
    EXPECT_LT(memory.requests(), 30u);

    text.resizeFor(200000);
    const unsigned before = memory.requests();
    for (int i = 0; i < 100000; ++i) text += 'x';
    EXPECT_EQ(memory.requests(), before);
}

TEST(LightweightString, ComparesIgnoringAsciiCaseOnlyAndOrdersByUnsignedBytes) {
    EXPECT_EQ(Text("Start TC").icompare("sTART tc"), 0);
    EXPECT_LT(Text("abc").icompare("ABD"), 0);
    EXPECT_GT(Text("abcd").icompare("ABC"), 0);
    EXPECT_LT(Text("ab").icompare("ABC"), 0);
    EXPECT_NE(Text("\xC4").icompare("\xE4"), 0);
    EXPECT_GT(Text("\xC4").icompare("z"), 0);  // bytes of 128 and above follow ASCII
    EXPECT_EQ(LightweightString<wchar_t>(L"Clip.RAK").icompare(L"clip.rak"), 0);
    EXPECT_LT(Text("z"), Text("\x80"));
    EXPECT_LT(Text(), Text("a"));
    EXPECT_LT(Text("a"), Text("a\0", 2));
}

TEST(LightweightString, JoinsTextsAndNumbers) {
    const Text a("a");
    EXPECT_EQ(a + "b" + Text("c"), "abc");
    EXPECT_EQ("x" + a, "xa");
    EXPECT_EQ(a, "a");

    Text numbers("\0", 1);
    EXPECT_NE(numbers, "");
    numbers += 0;
    numbers += ' ';
    numbers += INT_MIN;
    numbers += ' ';
    numbers += UINT_MAX;
    EXPECT_EQ(numbers.view(), std::string_view("\0000 -2147483648 4294967295", 25)) << "zero characters stay";
    EXPECT_EQ(Zr::StringFromInteger(-15), "-15");
}

TEST(LightweightString, TextsMadeTogetherShareABlockAndNothingElse) {
    const std::vector<std::string_view> texts = {"12-1", "a longer text than that", "01:00:00:00", "x"};
    CountingAllocator allocator;
    const std::size_t heldBefore = allocator.held();
    std::vector<Text> strings;
    strings.reserve(texts.size());
    Text::makeTogether(texts.data(), texts.data() + texts.size(),
                       [&](Text&& text) { strings.push_back(std::move(text)); });
    EXPECT_EQ(allocator.held(), heldBefore + 1);
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(strings[i].c_str(), texts[i]);

    Text kept = strings[1];
    strings[1] += "!";
    strings[2].writableText()[0] = '9';
    strings[3].resizeFor(0);
    EXPECT_EQ(kept, "a longer text than that");
    EXPECT_EQ(strings[1], "a longer text than that!");
    EXPECT_EQ(strings[2], "91:00:00:00");
    EXPECT_EQ(strings[3], "");
    EXPECT_EQ(strings[0], "12-1");

    strings.clear();
    EXPECT_EQ(kept, "a longer text than that");  // the block lives on for the last of its texts
    EXPECT_EQ(allocator.held(), heldBefore + 1);
    kept.resizeFor(0);  // nobody else is left to see it: in place
    EXPECT_EQ(kept, "");
    kept = {};
    EXPECT_EQ(allocator.held(), heldBefore);
}

TEST(LightweightString, RunningOutOfMemoryLeavesItAsItWas) {
    Text text("kept");
    const Text copy = text;
    const auto isKept = [&] {
        EXPECT_EQ(text, "kept");
        EXPECT_EQ(text.c_str(), copy.c_str());
    };
    EXPECT_GT(failEachRequest([&] { Text(text) += "!"; }, isKept), 0u);

    CountingAllocator memory;
    memory.failAt(1, true);
    EXPECT_THROW(text += "!", Zr::Exception::BadAlloc);
    EXPECT_THROW(text += 12345, std::bad_alloc);
    EXPECT_THROW(text += copy, Zr::Exception::Base);
    EXPECT_THROW(text.resizeFor(100), Zr::Exception::BadAlloc);
    EXPECT_THROW(text.writableText(), Zr::Exception::BadAlloc);
    EXPECT_THROW(text = "another", Zr::Exception::BadAlloc);
    EXPECT_THROW(text.resizeFor(UINT_MAX), Zr::Exception::BadAlloc);
    isKept();
    EXPECT_EQ(memory.held(), 0u);
}

TEST(LightweightString, SharedBodiesMayBeWrittenOnDifferentThreads) {
    Text original("from the first thread");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([mine = original, i]() mutable {
            for (int n = 0; n < 1000; ++n) {
                Text copy = mine;
                copy += i;
                mine = copy;
                mine.resizeFor(21);
            }
            EXPECT_EQ(mine, "from the first thread");
        });
    }
    original += ", which goes on";
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(original, "from the first thread, which goes on");
}
