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

TEST(Array, InternsEachIdentifierOnce) {
    Array array;
    unsigned index = 99;
    const Cookie a = clip(1);
    const Cookie b = clip(2);
    EXPECT_TRUE(array.intern(&a, index));
    EXPECT_EQ(index, 0u);
    EXPECT_TRUE(array.intern(&b, index));
    EXPECT_EQ(index, 1u);
    EXPECT_FALSE(array.intern(&a, index));
    EXPECT_EQ(index, 0u);
    EXPECT_FALSE(array.intern(nullptr, index));
    EXPECT_EQ(index, Array::notFound);
    EXPECT_EQ(array.size(), 2u);

    array.init();
    EXPECT_EQ(array.size(), 0u);
    EXPECT_EQ(array.find(a), Array::notFound);
    EXPECT_TRUE(array.intern(&b, index));
    EXPECT_EQ(index, 0u);
}

TEST(Array, InternFindsEntriesThatOtherOperationsPlaced) {
    Array array;
    const Cookie one = clip(1);
    const Cookie two = clip(2);
    const Cookie three = clip(3);
    unsigned index = 0;
    array.intern(&one, index);
    array.appendDatum(&two);
    EXPECT_EQ(array.find(two), 1u);
    EXPECT_FALSE(array.intern(&two, index));
    array.insertDatum(&three, 0);
    EXPECT_EQ(entriesOf(array), (CookieVec{three, one, two}));
    EXPECT_FALSE(array.intern(&two, index));
    EXPECT_EQ(index, 2u);
    array.replaceDatum(0, &two);
    EXPECT_FALSE(array.intern(&two, index));
    EXPECT_EQ(index, 0u);  // of equal entries, the first
    EXPECT_TRUE(array.intern(&three, index));
    EXPECT_EQ(index, 3u);
    array.sort();
    EXPECT_TRUE(std::is_sorted(array.begin(), array.end()));
    EXPECT_FALSE(array.intern(&three, index));
    EXPECT_EQ(array[index], three);
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
    EXPECT_EQ(set.size(), unsigned(count));
    EXPECT_EQ(set[0], clip(count - 1));
    EXPECT_EQ(set[count - 1], clip(0));
    EXPECT_TRUE(set.contains(clip(7)));
    EXPECT_FALSE(set.contains(clip(count)));

    for (const int outside : {-1, count, INT_MIN, INT_MAX}) EXPECT_TRUE(set[outside].isNull()) << outside;
    EXPECT_TRUE(CookieSet()[0].isNull());
    EXPECT_FALSE(CookieSet().contains(Cookie()));
    EXPECT_EQ(CookieSet().begin(), CookieSet().end());

    int next = count;
    for (const Cookie& cookie : set) ASSERT_EQ(cookie, clip(--next));
    EXPECT_EQ(next, 0);
}

TEST(CookieSet, CopiesNeverSeeEachOthersChanges) {
    CookieSet set = setOf(3);
    CookieSet copy = set;
    EXPECT_EQ(copy.begin(), set.begin());  // shared until one changes
    EXPECT_FALSE(copy.add(clip(1)));
    EXPECT_EQ(copy.begin(), set.begin());
    EXPECT_TRUE(copy.add(clip(3)));
    EXPECT_EQ(set.size(), 3u);
    EXPECT_EQ(copy.size(), 4u);

    const CookieSet kept = set;
    set.purge();
    EXPECT_TRUE(set.empty());
    EXPECT_EQ(kept.size(), 3u);
    EXPECT_TRUE(set.add(clip(9)));
    set.purge();
    EXPECT_FALSE(set.contains(clip(9)));

    CookieSet own = kept;
    own.unshare();
    EXPECT_NE(own.begin(), kept.begin());
    EXPECT_EQ(CookieVec(own.begin(), own.end()), CookieVec(kept.begin(), kept.end()));
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
