#include <algorithm>
#include <climits>
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

CookieVec entriesOf(const Array& array) {
    return CookieVec(array.begin(), array.end());
}

}  // namespace

TEST(Array, InternsEachIdentifierOnceWhereverOtherOperationsPlacedIt) {
    Array array;
    const Cookie one = clip(1);
    const Cookie two = clip(2);
    const Cookie three = clip(3);
    unsigned index = 99;
    // Whether it is new, and where it is.
    const auto interned = [&](const Cookie* cookie) {
        const bool isNew = array.intern(cookie, index);
        return std::pair(isNew, index);
    };
    EXPECT_EQ(interned(&one), std::pair(true, 0U));
    array.appendDatum(&two);
    EXPECT_EQ(interned(&two), std::pair(false, 1U));
    array.insertDatum(&three, 0);
    EXPECT_EQ(entriesOf(array), (CookieVec{three, one, two}));
    EXPECT_EQ(interned(&two), std::pair(false, 2U));
    array.replaceDatum(0, &two);
    EXPECT_EQ(interned(&two), std::pair(false, 0U)) << "of equal entries, the first";
    EXPECT_EQ(interned(&three), std::pair(true, 3U));
    array.sort();
    EXPECT_TRUE(std::is_sorted(array.begin(), array.end()));
    EXPECT_FALSE(interned(&three).first);
    EXPECT_EQ(array[index], three);
    EXPECT_EQ(interned(nullptr), std::pair(false, Array::notFound));

    array.init();
    EXPECT_EQ(array.find(one), Array::notFound);
    EXPECT_EQ(interned(&two), std::pair(true, 0U));
}

TEST(Array, TakesItsOwnEntriesAndIgnoresBadArguments) {
    Array array;
    const Cookie first = clip(0);
    array.insertDatum(&first, 1000);
    for (int i = 0; i < 100; ++i) {
        array.appendDatum(array.begin());
        array.insertDatum(array.begin(), 0);
        unsigned index = 99;
        EXPECT_FALSE(array.intern(array.end() - 1, index));
        EXPECT_EQ(index, 0u);
    }
    EXPECT_EQ(entriesOf(array), CookieVec(201, first));

    array.appendDatum(nullptr);
    array.insertDatum(nullptr, 0);
    array.replaceDatum(0, nullptr);
    const Cookie other = clip(1);
    array.replaceDatum(201, &other);
    EXPECT_EQ(entriesOf(array), CookieVec(201, first));
    EXPECT_TRUE(array[201].isNull());
}

TEST(Array, PrintsTextFormsWithASpaceBetween) {
    Array array;
    GrowString nothing;
    array.printOn(nothing);
    EXPECT_STREQ(nothing, "");

    const Cookie one = Cookie("M0000000000000000000000000000000001", false);
    const Cookie two = Cookie("B0000000000000000000000000000000002", false);
    array.appendDatum(&one);
    array.appendDatum(&two);
    GrowString text;
    array.printOn(text);
    EXPECT_STREQ(text, "M0000000000000000000000000000000001 B0000000000000000000000000000000002");
}

TEST(CookieSet, KeepsDistinctIdentifiersInTheOrderTheyCame) {
    constexpr int count = 200000;
    CookieSet set;
    for (int i = count; i-- > 0;) ASSERT_TRUE(set.add(clip(i)));
    for (int i = 0; i < count; ++i) ASSERT_FALSE(set.add(clip(i)));
    int next = count;
    for (const Cookie& cookie : set) ASSERT_EQ(cookie, clip(--next));
    EXPECT_EQ(next, 0);
    EXPECT_EQ(set[0], clip(count - 1));
    EXPECT_TRUE(set.contains(clip(7)));
    EXPECT_FALSE(set.contains(clip(count)));

    for (const int outside : {-1, count, INT_MIN, INT_MAX}) EXPECT_TRUE(set[outside].isNull()) << outside;
    EXPECT_TRUE(CookieSet()[0].isNull());
    EXPECT_FALSE(CookieSet().contains(Cookie()));
    EXPECT_EQ(CookieSet().begin(), CookieSet().end());
}

TEST(CookieSet, CopiesNeverSeeEachOthersChanges) {
    CookieSet set = setOf(3);
    CookieSet copy = set;
    EXPECT_FALSE(copy.add(clip(1)));
    EXPECT_EQ(copy.begin(), set.begin()) << "shared until one changes";
    EXPECT_TRUE(copy.add(clip(3)));
    EXPECT_EQ(set.size(), 3u);
    EXPECT_EQ(copy.size(), 4u);

    CookieSet own = copy;
    copy.purge();
    EXPECT_TRUE(copy.empty());
    EXPECT_TRUE(copy.add(clip(9)));
    EXPECT_FALSE(copy.contains(clip(1)));
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
