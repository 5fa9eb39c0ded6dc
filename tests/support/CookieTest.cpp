#include "support/Cookie.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

const char plain[] = "M00112233445566778899aabbccddeeff5a";
const char grouped[] = "M00112233-4455-6677-8899-aabbccddeeff5a";

Cookie read(const std::string& text) {
    return Cookie(text.c_str(), false);
}

}  // namespace

TEST(Cookie, BothSpellingsReadBackToAnEqualCookie) {
    const Cookie cookie = read(plain);
    EXPECT_EQ(cookie.type(), 'M');
    EXPECT_EQ(cookie.qualifier(), 0x5A);
    EXPECT_EQ(cookie.uuid().bytes[15], 0xFF);
    EXPECT_EQ(cookie.asString(false), plain);
    EXPECT_EQ(cookie.asString(true), grouped);

    for (const char* text :
         {grouped, "m00112233445566778899AABBCCDDEEFF5A", "M00112233-4455-6677-8899-AABBCCDDEEFF5A\n"}) {
        for (const bool flag : {false, true}) EXPECT_EQ(Cookie(text, flag), cookie) << text;
    }
    EXPECT_EQ(Cookie(fromUTF8(grouped), false), cookie);

    EXPECT_FALSE(read("M0000000000000000000000000000000000").isNull());
    for (const char* blank : {static_cast<const char*>(nullptr), "", " \t\n"}) {
        EXPECT_TRUE(Cookie(blank, false).isNull());
    }
    EXPECT_EQ(Cookie().asString(true), "");
}

TEST(Cookie, OtherTextIsAName) {
    // The hash is stored in files: it must never change.
    const Cookie fox = read("The quick brown fox jumps over the lazy dog");
    EXPECT_EQ(fox.asString(false), "Ne34bbc7bbc071b6c7a433ca9c49a934700");
    EXPECT_EQ(read(" The quick brown fox jumps over the lazy dog\n"), fox);
    EXPECT_EQ(Cookie(LightweightString<wchar_t>(L"h\u00E9"), false), read("h\xC3\xA9"));

    // Almost, but not, a text form.
    for (const char* text : {"M00112233445566778899aabbccddeeff5", "M00112233445566778899aabbccddeeff5aa",
                             "M00112233445566778899aabbccddeefg5a", "M00112233445566778899aabbccddeegf5a",
                             "700112233445566778899aabbccddeeff5a", "M00112233+4455-6677-8899-aabbccddeeff5a",
                             "M0011223-34455-6677-8899-aabbccddeeff5a"}) {
        EXPECT_EQ(read(text).type(), 'N') << text;
        EXPECT_NE(read(text), read(plain)) << text;
    }
}

TEST(Cookie, DifferentNamesAreDifferentIdentifiers) {
    std::unordered_set<std::string> seen = {str(read("Clip 1").asString(false))};
    for (int i = 0; i < 20000; ++i) seen.insert(str(read("clip " + std::to_string(i)).asString(false)));
    for (std::size_t length = 1; length < 100; ++length) {
        seen.insert(str(read(std::string(length, 'x')).asString(false)));
    }
    EXPECT_EQ(seen.size(), 20100U);
}

TEST(Cookie, OrderIsByUuidThenKindThenQualifier) {
    const std::string zeros(30, '0');
    const std::string ascending[] = {"",
                                     "A" + zeros + "0000",
                                     "A" + zeros + "0001",
                                     "A" + zeros + "00ff",
                                     "B" + zeros + "0000",
                                     "A" + zeros + "0100",
                                     "A7f00" + zeros,
                                     "A8000" + zeros};
    for (const std::string& a : ascending) {
        for (const std::string& b : ascending) {
            const int order = read(a).compare(read(b));
            EXPECT_EQ(order < 0, &a < &b) << a << " / " << b;
            EXPECT_EQ(order > 0, &a > &b) << a << " / " << b;
        }
    }
}

TEST(Cookie, EveryCookieThatCanBeMadeReadsBack) {
    const Zr::UUID uuid = read(plain).uuid();
    for (int type = 0; type < 256; ++type) {
        const Cookie cookie(uuid, static_cast<char>(type), 200);
        EXPECT_EQ(read(str(cookie.asString(false))), cookie) << type;
    }
    EXPECT_EQ(convertCookie(read(plain), 'B', 255).asString(false), "B00112233445566778899aabbccddeeffff");
    EXPECT_EQ(Cookie(uuid, 'b', 1), Cookie(uuid, 'B', 1));
    EXPECT_TRUE(Cookie(uuid, '?', 1).isNull());
}
