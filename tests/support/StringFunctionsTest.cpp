#include <random>
#include <string>
#include <vector>

#include "support/StringFunctions.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

std::wstring decoded(const std::string& bytes) {
    return std::wstring(fromUTF8(text(bytes)).view());
}

void expectRoundTrip(const std::string& bytes) {
    ASSERT_EQ(str(toUTF8(fromUTF8(text(bytes)))), bytes);
}

int sign(int number) {
    return number < 0 ? -1 : number > 0 ? 1 : 0;
}

}  // namespace

TEST(Utf8, DecodesTheFourLengths) {
    EXPECT_EQ(decoded("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC"), L"A\u00E9\u20AC\U0001F3AC");
    EXPECT_EQ(decoded("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"),
              (std::wstring{0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0x10000, 0x10FFFF}));
    EXPECT_EQ(decoded(std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
    EXPECT_EQ(std::wstring(Zr::WStringFromAscii("plain").view()), L"plain");
    EXPECT_TRUE(Zr::WStringFromAscii(nullptr).empty());
}

TEST(Utf8, EachByteOutsideWellFormedTextIsOneCharacter) {
    EXPECT_EQ(decoded("a\x80z"), (std::wstring{L'a', 0xDC80, L'z'}));
    EXPECT_EQ(decoded("\xC3"), (std::wstring{0xDCC3}));                          // cut off
    EXPECT_EQ(decoded("\xE2\x82z"), (std::wstring{0xDCE2, 0xDC82, L'z'}));       // interrupted
    EXPECT_EQ(decoded("\xC0\xAF"), (std::wstring{0xDCC0, 0xDCAF}));              // overlong
    EXPECT_EQ(decoded("\xE0\x9F\xBF"), (std::wstring{0xDCE0, 0xDC9F, 0xDCBF}));  // overlong
    EXPECT_EQ(decoded("\xED\xB2\x80"), (std::wstring{0xDCED, 0xDCB2, 0xDC80}));  // a surrogate
    for (const char* beyond : {"\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80"}) EXPECT_EQ(decoded(beyond).size(), 4u);
}

TEST(Utf8, AnyBytesSurviveTheWayThereAndBack) {
    for (int first = 0; first < 256; ++first) {
        expectRoundTrip({static_cast<char>(first)});
        for (int second = 0; second < 256; ++second) {
            expectRoundTrip({static_cast<char>(first), static_cast<char>(second)});
        }
    }
    // Mostly bytes at the borders of the encoding's ranges, where sequences begin, end and break.
    const std::string borders = "az\x80\x8F\x90\x9F\xA0\xBF\xC0\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF4\xF5\xFF";
    std::mt19937 random(1);
    for (int i = 0; i < 100000; ++i) {
        std::string bytes(random() % 9, '\0');
        for (char& c : bytes) c = borders[random() % borders.size()];
        expectRoundTrip(bytes);
    }
}

TEST(Utf8, CharactersThatUnicodeDoesNotHaveBecomeTheReplacement) {
    for (const wchar_t c : {wchar_t(0xD800), wchar_t(0xDC7F), wchar_t(0xDD00), wchar_t(0xDFFF),
                            wchar_t(0x110000), wchar_t(-1)}) {
        EXPECT_EQ(toUTF8(WideText(&c, 1)), "\xEF\xBF\xBD") << std::hex << static_cast<long>(c);
    }
}

TEST(StringFunctions, ReadUnsignedNumbersOrFallBack) {
    EXPECT_EQ(Zr::UIntFromString("42", 7), 42u);
    EXPECT_EQ(Zr::UIntFromString(" \t0042\n", 7), 42u);
    EXPECT_EQ(Zr::UIntFromString("4294967295", 7), 4294967295u);
    for (const char* text : {"", " ", "4294967296", "-1", "+1", "1x", "1 2", "0x10", "1.0"}) {
        EXPECT_EQ(Zr::UIntFromString(text, 7), 7u) << text;
    }
    EXPECT_EQ(Zr::UIntFromString(Text("1\0", 2), 7), 7u);
}

TEST(StringFunctions, ReadFlagsAndWriteThem) {
    const auto read = [](const char* text) {
        bool flag = false;
        EXPECT_TRUE(BoolFromString(text, flag)) << text;
        return flag;
    };
    for (const char* text : {"t", "true", "Y", "yes", "1", " TRUE\n"}) EXPECT_TRUE(read(text)) << text;
    for (const char* text : {"f", "False", "n", "NO", "0", "\tno "}) EXPECT_FALSE(read(text)) << text;
    EXPECT_EQ(BoolAsString(true), "true");
    EXPECT_EQ(BoolAsString(false), "false");

    for (const char* text : {"", " ", "tr", "truely", "2", "10", "on"}) {
        for (const bool before : {false, true}) {
            bool flag = before;
            EXPECT_FALSE(BoolFromString(text, flag)) << text;
            EXPECT_EQ(flag, before) << text;
        }
    }
}

TEST(StringFunctions, StripFolderAndLastExtension) {
    const auto stripped = [](const wchar_t* name) { return toUTF8(stripPathAndExt(name)); };
    EXPECT_EQ(stripped(L"/logs/day.1/reel.7.kst"), "reel.7");
    EXPECT_EQ(stripped(L"reel"), "reel");
    EXPECT_EQ(stripped(L"/logs/day.1/reel"), "reel");
    EXPECT_EQ(stripped(L"reel."), "reel");
    EXPECT_EQ(stripped(L".hidden"), ".hidden");
    EXPECT_EQ(stripped(L"/logs/.hidden.kst"), ".hidden");
    EXPECT_EQ(stripped(L".."), "..");
    EXPECT_EQ(stripped(L"logs/"), "");
    EXPECT_EQ(stripped(L""), "");
}

TEST(StringFunctions, WhiteSpaceIsEssentiallyEmpty) {
    EXPECT_TRUE(isEssentiallyEmpty(""));
    EXPECT_TRUE(isEssentiallyEmpty(" \t\r\n\v\f"));
    EXPECT_FALSE(isEssentiallyEmpty("  x "));
    EXPECT_FALSE(isEssentiallyEmpty(Text("\0", 1)));
    EXPECT_FALSE(isEssentiallyEmpty("\xC2\xA0"));
}

TEST(StringFunctions, DictionaryOrderPutsEqualButForCaseTogether) {
    // In ascending order.
    const std::vector<const char*> sorted = {"",  "1", "[",  "Abc",  "aBc",  "abc",      "ABD",      "abd",
                                             "B", "b", "zz", "\x80", "\xC3", "\xC3\x84", "\xC3\xA4", "\xFF"};
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        for (std::size_t j = 0; j < sorted.size(); ++j) {
            const int expected = i < j ? -1 : i > j ? 1 : 0;
            EXPECT_EQ(sign(strxcmp(sorted[i], sorted[j])), expected) << sorted[i] << " / " << sorted[j];
        }
    }
    EXPECT_EQ(strxcmp(nullptr, ""), 0);
    EXPECT_LT(strxcmp(nullptr, "a"), 0);
    EXPECT_GT(strxcmp("a", nullptr), 0);
}
