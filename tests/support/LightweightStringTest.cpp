#include <climits>
#include <random>
#include <thread>

#include "tests/TestSupport.h"
#include "tests/support/StringsModel.h"

using namespace TestSupport;

TEST(LightweightString, StringsThatShareWhatTheyHoldDoWhatPlainOnesDoAndGiveBackTheirMemory) {
    std::mt19937 random(1);
    const CountingAllocator memory;
    for (int sequence = 0; sequence < 300; ++sequence) {
        std::vector<std::uint8_t> steps(3000);
        for (std::uint8_t& byte : steps) byte = static_cast<std::uint8_t>(random());
        {
            Fuzz::Input input(steps.data(), steps.size());
            StringsModel model(input);
            for (int step = 1; !input.empty(); ++step) {
                model.step();
                ASSERT_TRUE(model.holds()) << "sequence " << sequence << ", step " << step;
            }
        }
        Zr::SharedBlock::make(8, 3)->release(3);
        ASSERT_EQ(memory.held(), 0U) << "sequence " << sequence;
    }
}

TEST(LightweightString, EmptyTextIsTheSameWithAndWithoutABody) {
    Text body;
    body.resizeFor(10);
    EXPECT_EQ(body.writableText(), nullptr);
    for (const Text& text : {Text(), Text(static_cast<const char*>(nullptr)), body, Text(nullptr, 5)}) {
        EXPECT_STREQ(text.c_str(), "");
        EXPECT_EQ(text.length(), 0u);
        EXPECT_EQ(text, Text());
        EXPECT_EQ(text, static_cast<const char*>(nullptr));
        EXPECT_EQ(text.icompare(nullptr), 0);
    }
}

TEST(LightweightString, CopyingAndAppendingInPlaceAllocateSeldom) {
    const CountingAllocator memory;
    Text text;
    for (int i = 0; i < 100000; ++i) text += 'x';
    EXPECT_EQ(text.length(), 100000u);
    EXPECT_LT(memory.requests(), 30u);
    Text copy = text;
    EXPECT_EQ(copy.c_str(), text.c_str()) << "shared until one is written";
    Zr::toLower(copy += 'X');
    EXPECT_EQ(copy.view().substr(99999), "xx");
    EXPECT_EQ(text.length(), 100000u);
}

TEST(LightweightString, ComparesIgnoringAsciiCaseOnlyAndOrdersByUnsignedBytes) {
    EXPECT_EQ(Text("Start TC").icompare("sTART tc"), 0);
    EXPECT_LT(Text("abc").icompare("ABD"), 0);
    EXPECT_GT(Text("abcd").icompare("ABC"), 0);
    EXPECT_LT(Text("ab").icompare("ABC"), 0);
    EXPECT_GT(Text("\xC4").icompare("\xC3"), 0);
    EXPECT_NE(Text("\xC4").icompare("\xE4"), 0);
    EXPECT_GT(Text("\xC4").icompare("z"), 0);  // bytes of 128 and above follow ASCII
    EXPECT_EQ(WideText(L"Clip.RAK").icompare(L"clip.rak"), 0);
    EXPECT_LT(Text("z"), Text("\x80"));
    EXPECT_LT(Text("a"), Text("a\0", 2));
}

TEST(LightweightString, JoinsTextsAndNumbers) {
    const Text a("a");
    EXPECT_EQ("x" + a + "b" + Text("c"), "xabc");
    EXPECT_EQ(a, "a");

    Text numbers("\0", 1);
    EXPECT_NE(numbers, "");
    ((numbers += 0) += ' ') += INT_MIN;
    numbers += UINT_MAX;
    EXPECT_EQ(numbers.view().substr(1), "0 -21474836484294967295") << "zero characters stay";
    EXPECT_EQ(Zr::StringFromInteger(-15), "-15");
}

TEST(LightweightString, RunningOutOfMemoryLeavesItAsItWas) {
    Text text("kept");
    const Text copy = text;
    CountingAllocator memory;
    memory.failAt(1, true);
    EXPECT_THROW(text += "!", Zr::Exception::BadAlloc);
    EXPECT_THROW(text += 12345, std::bad_alloc);
    EXPECT_THROW(text += copy, Zr::Exception::Base);
    EXPECT_THROW(text.writableText(), Zr::Exception::BadAlloc);
    EXPECT_THROW(text = "another", Zr::Exception::BadAlloc);
    EXPECT_THROW(text.resizeFor(UINT_MAX), Zr::Exception::BadAlloc);
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(text.c_str(), copy.c_str());
}

TEST(LightweightString, SharedBodiesMayBeWrittenOnDifferentThreads) {
    Text original("from the first thread");
    const auto work = [mine = original]() mutable {
        for (int n = 0; n < 1000; ++n) {
            const Text copy = mine;
            mine += n;
            mine.resizeFor(copy.length());
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
