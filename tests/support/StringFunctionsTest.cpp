#include <random>

#include "tests/TestSupport.h"

using namespace TestSupport;

TEST(Utf8, DecodesTheFourLengthsAndEachByteOutsideWellFormedTextToOneCharacter) {
    const std::pair<std::string, std::wstring> texts[] = {
        {"A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC", L"A\u00E9\u20AC\U0001F3AC"},
        {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F"
         "\xBF\xBF",
         {0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0x10000, 0x10FFFF}},
        {bytes("a\0b"), std::wstring(L"a\0b", 3)},
        {"a\x80z", {L'a', 0xDC80, L'z'}},
        {"\xC3", {0xDCC3}},                          // cut off
        {"\xE2\x82z", {0xDCE2, 0xDC82, L'z'}},       // interrupted
        {"\xC0\xAF", {0xDCC0, 0xDCAF}},              // overlong
        {"\xE0\x9F\xBF", {0xDCE0, 0xDC9F, 0xDCBF}},  // overlong
        {"\xED\xB2\x80", {0xDCED, 0xDCB2, 0xDC80}},  // a surrogate
        {"\xF0\x8F\xBF\xBF", {0xDCF0, 0xDC8F, 0xDCBF, 0xDCBF}},
        {"\xF4\x90\x80\x80", {0xDCF4, 0xDC90, 0xDC80, 0xDC80}},  // beyond the last character
    };
    for (const auto& [encoded, decoded] : texts) {
        EXPECT_EQ(std::wstring(fromUTF8(text(encoded)).view()), decoded) << testing::PrintToString(encoded);
    }
    for (const wchar_t c : {0xD800, 0xDC7F, 0xDD00, 0xDFFF, 0x110000, -1}) {  // not in Unicode
        EXPECT_EQ(toUTF8(WideText(&c, 1)), "\xEF\xBF\xBD") << std::hex << static_cast<long>(c);
    }
    EXPECT_EQ(std::wstring(Zr::WStringFromAscii("plain").view()), L"plain");
    EXPECT_TRUE(Zr::WStringFromAscii(nullptr).empty());
}

TEST(Utf8, AnyBytesSurviveTheWayThereAndBack) {
    // Bytes at the borders of the encoding's ranges, where sequences begin, end and break.
    const std::string borders = "az\x80\x8F\x90\x9F\xA0\xBF\xC0\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF4\xF5\xFF";
    std::mt19937 random(1);
    for (unsigned i = 0; i < 100000; ++i) {
        std::string bytes(random() % 9, '\0');
        for (char& c : bytes) c = borders[random() % borders.size()];
        ASSERT_EQ(str(toUTF8(fromUTF8(text(bytes)))), bytes);
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
        bool opposite = true;
        const bool isRead = BoolFromString(text, flag);
        EXPECT_EQ(BoolFromString(text, opposite), isRead) << text;
        EXPECT_EQ(flag == opposite, isRead) << text;
        return isRead ? str(BoolAsString(flag)) : "refused";
    };
    for (const char* text : {"t", "true", "Y", "yes", "1", " TRUE\n"}) EXPECT_EQ(read(text), "true") << text;
    for (const char* text : {"f", "False", "n", "NO", "0", "\tno "}) EXPECT_EQ(read(text), "false") << text;
    for (const char* text : {"", " ", "tr", "truely", "2", "10", "on"}) {
        EXPECT_EQ(read(text), "refused") << text;
    }
}

TEST(StringFunctions, StripFolderAndLastExtension) {
    const std::pair<const wchar_t*, const char*> names[] = {
        {L"/logs/day.1/reel.7.kst", "reel.7"},
        {L"/logs/day.1/reel", "reel"},
        {L"reel.", "reel"},
        {L"/logs/.hidden.kst", ".hidden"},
        {L".hidden", ".hidden"},
        {L"..", ".."},
        {L"logs/", ""},
        {L"", ""},
    };
    for (const auto& [name, stripped] : names) EXPECT_EQ(toUTF8(stripPathAndExt(name)), stripped);
}

TEST(StringFunctions, WhiteSpaceIsEssentiallyEmpty) {
    for (const char* empty : {"", " \t\r\n\v\f"}) EXPECT_TRUE(isEssentiallyEmpty(empty));
    for (const Text& other : {Text("  x "), Text("\0", 1), Text("\xC2\xA0")}) {
        EXPECT_FALSE(isEssentiallyEmpty(other));
    }
}

TEST(StringFunctions, DictionaryOrderPutsEqualButForCaseTogether) {
    // In ascending order.
    const std::vector<const char*> sorted = {"",  "1", "[",  "Abc",  "aBc",  "abc",      "ABD",      "abd",
                                             "B", "b", "zz", "\x80", "\xC3", "\xC3\x84", "\xC3\xA4", "\xFF"};
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        for (std::size_t j = 0; j < sorted.size(); ++j) {
            const int order = strxcmp(sorted[i], sorted[j]);
            EXPECT_EQ(order < 0, i < j) << sorted[i] << " / " << sorted[j];
            EXPECT_EQ(order > 0, i > j) << sorted[i] << " / " << sorted[j];
        }
    }
    EXPECT_EQ(strxcmp(nullptr, ""), 0);
    EXPECT_LT(strxcmp(nullptr, "a"), 0);
    EXPECT_GT(strxcmp("a", nullptr), 0);
}
