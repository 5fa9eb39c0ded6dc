#include <gtest/gtest.h>
#include <thread>

#include "support/Ptr.h"
#include "support/iObject.h"

namespace {

int alive = 0;

class Base : public iObject {
 public:
    Base() { ++alive; }
    Base(const Base& other) : InternalRefCount(other), iVirtual(other), iObject(other) { ++alive; }
    Base& operator=(const Base&) = default;
    ~Base() override { --alive; }
};

class Left : public virtual Base {};
class Right : public virtual Base {};
class Joined : public Left, public Right {};

struct Plain {
    Plain() { ++alive; }
    ~Plain() { --alive; }
};
using PlainPtr = Zr::Ptr<Plain, Zr::DtorTraits, Zr::ExternalRefCountTraits>;

}  // namespace

TEST(Ptr, TheLastOneDestroysTheObjectOnWhateverRoadItIsHeld) {
    Zr::Ptr<Joined> joined(new Joined);
    Zr::Ptr<Left> left = joined;
    Zr::Ptr<iObject> object = left;
    EXPECT_EQ(joined->refCount(), 3);
    EXPECT_EQ(object.get(), joined.get());
    joined.reset();
    object = Zr::Ptr<Base>(left);
    EXPECT_EQ(left->refCount(), 2);
    left.reset();
    EXPECT_EQ(alive, 1);
    object.reset();
    EXPECT_EQ(alive, 0);
}

TEST(Ptr, AssigningAndMovingKeepTheObjectAndCopyingItDoesNotCopyItsCount) {
    Zr::Ptr<Base> a(new Base);
    Zr::Ptr<Base>& same = a;
    a = same;
    a = std::move(same);
    ASSERT_TRUE(a);
    Zr::Ptr<Base> b = std::move(a);
    EXPECT_FALSE(a);
    EXPECT_EQ(b->refCount(), 1);

    const Zr::Ptr<Base> also = b;
    Zr::Ptr<Base> copy(new Base(*b));
    *copy = *b;
    EXPECT_EQ(copy->refCount(), 1);
    EXPECT_EQ(b->refCount(), 2);
}

TEST(Ptr, CountsPlainObjectsInABlockOfTheirOwn) {
    PlainPtr a(new Plain);
    PlainPtr b = a;
    a.reset();
    EXPECT_EQ(alive, 1);
    b.reset();
    EXPECT_EQ(alive, 0);
    EXPECT_FALSE(PlainPtr(nullptr));
}

TEST(Ptr, CopiesMayLiveAndDieOnDifferentThreads) {
    Zr::Ptr<Base> object(new Base);
    const auto copyAgain = [](const Zr::Ptr<Base>& mine) {
        for (int n = 0; n < 10000; ++n) const Zr::Ptr<Base> copy = mine;
    };
    std::thread one(copyAgain, object);
    std::thread two(copyAgain, std::move(object));
    one.join();
    two.join();
    EXPECT_EQ(alive, 0);
}
