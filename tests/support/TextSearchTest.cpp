// Text matching, against a slow and obvious model of it.
#include <memory>
#include <random>

#include "support/TextSearch.h"
#include "tests/TestSupport.h"

using namespace TestSupport;
using TextSearch::Criteria;
using TextSearch::Criterion;
using TextSearch::eMatchMethod;

namespace {

std::string canonical(std::string_view text, unsigned options) {
    std::string result(text);
    for (char& c : result) {
        if (!(options & TextSearch::eMatchCase) && c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
        if ((options & TextSearch::eSeparatorsEqual) && (c == ';' || c == '.' || c == ',')) c = ':';
    }
    return result;
}

bool modelMatches(std::string_view text, std::string_view query, eMatchMethod method, unsigned options) {
    const std::string t = canonical(text, options);
    const std::string q = canonical(query, options);
    if (q.empty()) return true;
    if (method == TextSearch::eContains) return t.find(q) != t.npos;
    if (t.size() < q.size()) return false;
    if (method == TextSearch::eBeginsWith) return t.substr(0, q.size()) == q;
    if (method == TextSearch::eEndsWith) return t.substr(t.size() - q.size()) == q;
    return t == q;
}

bool contains(std::string_view text, std::string_view query) {
    return Criterion(Text(query), TextSearch::eContains).matches(text, 0);
}

}  // namespace

TEST(TextSearch, AgreesWithTheModelOnRandomTexts) {
    std::mt19937 random(1);
    const auto below = [&](std::size_t bound) { return static_cast<unsigned>(random() % bound); };
    // Of few characters, so that much matches.
    const auto make = [&](unsigned length) {
        constexpr std::string_view characters("aAbB;:.,\0\xC1\xE1@[`{zZ", 18);
        const unsigned kinds = 1 + below(characters.size());
        std::string text(length, '\0');
        for (char& c : text) c = characters[below(kinds)];
        return text;
    };
    for (int i = 0; i < 200000; ++i) {
        const std::string made = make(below(i % 10 == 0 ? 201 : 51));
        // A block of its own, so that reading beyond the text is seen by tools that watch memory.
        const std::unique_ptr<char[]> block(new char[made.size()]);
        made.copy(block.get(), made.size());
        const std::string_view shown(block.get(), made.size());

        // Mostly a piece of the text, written otherwise or with one character changed.
        const std::size_t at = below(made.size() + 1);
        std::string query = made.substr(at, below(i % 4 == 0 ? 201 : 7));
        if (i % 3 == 0) query = canonical(query, below(4));
        if (i % 5 == 0 && !query.empty()) query[below(query.size())] = 'b';
        if (i % 7 == 0) query = make(below(6));

        const auto method = static_cast<eMatchMethod>(below(5));  // of an unknown one, the whole text
        const unsigned options = below(4);
        ASSERT_EQ(Criterion(text(query), method).matches(shown, options),
                  modelMatches(shown, query, method, options))
            << "text " << made << ", query " << query << ", method " << method << ", options " << options;
    }
}

TEST(TextSearch, RepetitiveTextsStayLinear) {
    const std::string text(2000000, 'a');
    const std::string half(1000000, 'a');
    EXPECT_FALSE(contains(text, half + 'b' + half.substr(1)));
    EXPECT_TRUE(contains(text + 'b', half + 'B'));
}

TEST(TextSearch, LongTextsThatOnlyHashAlikeDoNotMatch) {
    // Each step appends the text with its letters exchanged: pairs of such texts defeat hashes modulo 2^64.
    std::string text = "a";
    std::string exchanged = "b";
    while (text.size() < 4096) {
        const std::string longer = text + exchanged;
        exchanged += text;
        text = longer;
    }
    EXPECT_FALSE(contains(text, exchanged));
    EXPECT_TRUE(contains('-' + exchanged, exchanged));
}

TEST(TextSearch, AllCriteriaMustMatch) {
    const Text reel("Reel 12;04");
    Criteria criteria;
    criteria.add(Criterion("", TextSearch::eWhole));
    EXPECT_TRUE(criteria.empty());
    EXPECT_TRUE(TextSearch::match(reel, criteria, 0));

    criteria.add(Criterion("reel", TextSearch::eBeginsWith));
    EXPECT_FALSE(criteria.empty());
    EXPECT_TRUE(TextSearch::match(reel, criteria, ~3U)) << "unknown options are harmless";
    EXPECT_FALSE(TextSearch::match(reel, criteria, TextSearch::eMatchCase));
    criteria.add(Criterion("12:04", TextSearch::eEndsWith));
    EXPECT_FALSE(TextSearch::match(reel, criteria, 0));
    EXPECT_TRUE(TextSearch::match(reel, criteria, TextSearch::eSeparatorsEqual));
    EXPECT_EQ(criteria.getCriterion(1).text(), "reel");
    EXPECT_EQ(criteria.getCriterion(2).method(), TextSearch::eEndsWith);
    EXPECT_TRUE(criteria.getCriterion(3).text().empty());
}
