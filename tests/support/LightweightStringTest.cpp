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
    Text text("0123456789");
    std::string expected = "0123456789";
    for (int i = 0; i < 6; ++i) {  // grows out of its body while being read
        text.append(text.view().substr(1));
        expected += expected.substr(1);
        EXPECT_EQ(str(text), expected);
    }
    text.resizeFor(4 * text.length());
    text += text;
    EXPECT_EQ(str(text), expected + expected);
}

TEST(LightweightString, AppendingInPlaceAllocatesSeldom) {
    const CountingAllocator memory;
    Text text;
    for (int i = 0; i < 100000; ++i) text += 'x';
    EXPECT_EQ(text.length(), 100000u);
    EXPECT_LT(memory.requests(), 30u);
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
    EXPECT_EQ("x" + a + "b" + Text("c"), "xabc");
    EXPECT_EQ(a, "a");

    Text numbers("\0", 1);
    EXPECT_NE(numbers, "");
    numbers += 0;
    numbers += ' ';
    numbers += INT_MIN;
    numbers += UINT_MAX;
    EXPECT_EQ(str(numbers), bytes("\0"
                                  "0 -21474836484294967295"))
        << "zero characters stay";
    EXPECT_EQ(Zr::StringFromInteger(-15), "-15");
}

TEST(LightweightString, TextsInOneBlockShareItAndNothingElse) {
    const std::string_view texts[] = {"12-1", "a longer text than that", "01:00:00:00", "x"};
    constexpr std::int32_t count = std::size(texts);
    std::size_t size = 0;
    for (const std::string_view text : texts) size += Text::sizeInBlock(text);
    std::vector<Text> strings;
    strings.reserve(count);
    CountingAllocator allocator;
    Zr::SharedBlock* const block = Zr::SharedBlock::make(size, count);
    char* place = block->room();
    for (const std::string_view text : texts) {
        strings.push_back(Text::makeInBlock(*block, place, text));
        place += Text::sizeInBlock(text);
    }
    for (std::size_t i = 0; i < strings.size(); ++i) EXPECT_EQ(strings[i].c_str(), texts[i]);

    Text kept = strings[1];
    strings[1] += "!";
    strings[2].writableText()[0] = '9';
    strings[3].resizeFor(0);
    EXPECT_EQ(strings, (std::vector<Text>{"12-1", "a longer text than that!", "91:00:00:00", ""}));
    strings.clear();
    EXPECT_EQ(kept, "a longer text than that") << "the block lives on for the last of its texts";
    kept.resizeFor(0);  // nobody else is left to see it: in place
    EXPECT_EQ(kept, "");
    kept = {};
    EXPECT_EQ(allocator.held(), 0U);
}

TEST(LightweightString, RunningOutOfMemoryLeavesItAsItWas) {
    Text text("kept");
    const Text copy = text;
    CountingAllocator memory;
    memory.failAt(1, true);
    EXPECT_THROW(text += "!", Zr::Exception::BadAlloc);
    EXPECT_THROW(text += 12345, std::bad_alloc);
    EXPECT_THROW(text += copy, Zr::Exception::Base);
    EXPECT_THROW(text.resizeFor(100), Zr::Exception::BadAlloc);
    EXPECT_THROW(text.writableText(), Zr::Exception::BadAlloc);
    EXPECT_THROW(text = "another", Zr::Exception::BadAlloc);
    EXPECT_THROW(text.resizeFor(UINT_MAX), Zr::Exception::BadAlloc);
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(text.c_str(), copy.c_str());
    EXPECT_EQ(memory.held(), 0u);
}

TEST(LightweightString, SharedBodiesMayBeWrittenOnDifferentThreads) {
    Text original("from the first thread");
    const auto work = [mine = original]() mutable {
        for (int n = 0; n < 1000; ++n) {
            Text copy = mine;
            copy += n;
            mine = copy;
            mine.resizeFor(21);
        }
        EXPECT_EQ(mine, "from the first thread");
    };
    std::thread one(work);
    std::thread two(work);
    original += ", which goes on";
    one.join();
    two.join();
    EXPECT_EQ(original, "from the first thread, which goes on");
}
