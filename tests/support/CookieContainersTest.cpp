#include <algorithm>
#include <climits>
#include <random>
#include <string>

#include "support/CookieContainers.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

Cookie clip(int number) {
    return Cookie(("clip " + std::to_string(number)).c_str(), false);
}

CookieSet setOf(int count) {
    CookieSet set;
    for (int i = 0; i < count; ++i) set.add(clip(i));
    return set;
}

}  // namespace

TEST(Array, DoesWhatAPlainListDoesAndIgnoresBadArguments) {
    std::mt19937 random(1);
    const auto below = [&](std::size_t bound) { return static_cast<unsigned>(random() % bound); };
    for (int sequence = 0; sequence < 500; ++sequence) {
        Array array;
        CookieVec list;
        for (int step = 0; step < 60; ++step) {
            const unsigned index = below(list.size() + 2);
            const Cookie other = clip(static_cast<int>(below(20)));
            const Cookie* const datum = index < list.size() && below(3) == 0 ? &array[index] : &other;
            const Cookie value = *datum;
            const auto same = std::find(list.begin(), list.end(), value);
            const auto at = static_cast<unsigned>(same - list.begin());
            unsigned found = 99;
            switch (below(5)) {
                case 0:
                    array.appendDatum(datum);
                    list.push_back(value);
                    break;
                case 1:
                    array.insertDatum(datum, index);
                    list.insert(list.begin() + std::min<std::ptrdiff_t>(index, list.end() - list.begin()),
                                value);
                    break;
                case 2:
                    array.replaceDatum(index, datum);
                    if (index < list.size()) list[index] = value;
                    break;
                case 3:
                    ASSERT_EQ(array.intern(datum, found), same == list.end());
                    ASSERT_EQ(found, at) << "of equal entries, the first";
                    if (same == list.end()) list.push_back(value);
                    break;
                default:
                    ASSERT_EQ(array.find(value), same == list.end() ? Array::notFound : at);
                    if (below(20) == 0) array.init(), list.clear();
                    if (below(10) == 0) array.sort(), std::sort(list.begin(), list.end());
            }
            ASSERT_EQ(CookieVec(array.begin(), array.end()), list) << sequence << ", step " << step;
        }
        array.appendDatum(nullptr);
        array.insertDatum(nullptr, 0);
        array.replaceDatum(0, nullptr);
        unsigned found = 99;
        ASSERT_FALSE(array.intern(nullptr, found));
        ASSERT_EQ(found, Array::notFound);
        ASSERT_EQ(CookieVec(array.begin(), array.end()), list);
        ASSERT_TRUE(array[array.size()].isNull());
    }
}

TEST(Array, PrintsTextFormsWithASpaceBetween) {
    Array array;
    const Cookie one = clip(1);
    const std::string form = str(one.asString(false));
    for (const std::string& expected : {std::string(), form, form + ' ' + form}) {
        GrowString text;
        array.printOn(text);
        EXPECT_STREQ(text, expected.c_str());
        array.appendDatum(&one);
    }
}

TEST(CookieSet, KeepsDistinctIdentifiersInTheOrderTheyCame) {
    constexpr int count = 200000;
    CookieSet set;
    for (int i = count; i-- > 0;) ASSERT_TRUE(set.add(clip(i)));
    for (int i = 0; i < count; ++i) ASSERT_FALSE(set.add(clip(i)));
    int next = count;
    for (const Cookie& cookie : set) ASSERT_EQ(cookie, clip(--next));
    EXPECT_EQ(next, 0);
    EXPECT_TRUE(set.contains(clip(7)));
    EXPECT_FALSE(set.contains(clip(count)));
    for (const int outside : {-1, count, INT_MIN, INT_MAX}) EXPECT_TRUE(set[outside].isNull()) << outside;
    EXPECT_TRUE(CookieSet()[0].isNull());
    EXPECT_FALSE(CookieSet().contains(Cookie()));
}

TEST(CookieSet, CopiesNeverSeeEachOthersChanges) {
    CookieSet set = setOf(3);
    CookieSet copy = set;
    EXPECT_FALSE(copy.add(clip(1)));
    EXPECT_EQ(copy.begin(), set.begin()) << "shared until one changes";
    EXPECT_TRUE(copy.add(clip(3)));
    EXPECT_EQ(set.size(), 3u);
    CookieSet own = copy;
    copy.purge();
    EXPECT_TRUE(copy.empty());
    EXPECT_TRUE(copy.add(clip(9)));
    copy.purge();
    EXPECT_FALSE(copy.contains(clip(9)));
    const CookieSet kept = own;
    own.unshare();
    EXPECT_NE(own.begin(), kept.begin());
    EXPECT_EQ(CookieVec(own.begin(), own.end()), (CookieVec{clip(0), clip(1), clip(2), clip(3)}));
}

TEST(CookieSet, RunningOutOfMemoryLeavesItAsItWas) {
    // More than the first table of positions holds, so that every kind of growth fails once.
    for (int count = 0; count < 40; ++count) {
        CookieSet set = setOf(count);
        const auto isWhole = [&] {
            ASSERT_EQ(set.size(), unsigned(count));
            for (int i = 0; i < count; ++i) ASSERT_EQ(set[i], clip(i));
            ASSERT_FALSE(set.contains(clip(count)));
        };
        const Cookie added = clip(count);
        const CookieSet copy = set;
        EXPECT_GT(failEachRequest([&] { CookieSet(set).add(added); }, isWhole), 0u);
        EXPECT_GT(failEachRequest([&] { set.add(added); }, isWhole), 0u);
        EXPECT_TRUE(set.contains(added));
        EXPECT_EQ(copy.size(), unsigned(count));
    }
}
