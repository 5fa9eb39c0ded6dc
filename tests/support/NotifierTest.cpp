// Notifiers: order of delivery, what listeners may do while a message is being delivered, and how
// registrations end.
#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "support/Notifier.h"
#include "tests/TestSupport.h"

namespace {

using GuardPtr = Zr::Ptr<Zr::Guard>;

constexpr int deleted = 3;
constexpr int changed = -4;

const NotifyMsg message("text", Zr::Ptr<iObject>());

class NotifierTest : public ::testing::Test {
 protected:
    /// Registers a listener that notes its name, then acts.
    GuardPtr listen(char name, std::function<void()> act = {}, int type = deleted) {
        return notifier->registerNotification(type, [this, name, act](const NotifyMsg&) {
            heard += name;
            if (act) act();
            return 0;
        });
    }

    std::string heardAfterIssue(int type = deleted) {
        heard.clear();
        notifier->issueNotification(message, type);
        return heard;
    }

    std::string heard;
    std::unique_ptr<Notifier> notifier = std::make_unique<Notifier>();
};

class NotingClient : public Notifier::Client {
 public:
    explicit NotingClient(std::string& heard) : m_heard(heard) {}
    int notify(const NotifyMsg& received, int type) override {
        m_heard += received.text().c_str() + std::to_string(type) + " ";
        return 0;
    }

 private:
    std::string& m_heard;
};

}  // namespace

TEST_F(NotifierTest, DeliversByTypeInOrderOfRegistrationUntilTheLastGuardGoes) {
    const GuardPtr a = listen('a');
    const GuardPtr b = listen('b', {}, changed);
    GuardPtr c = listen('c');
    GuardPtr d = listen('d');
    EXPECT_EQ(heardAfterIssue(deleted), "acd");
    EXPECT_EQ(heardAfterIssue(changed), "b");
    EXPECT_EQ(heardAfterIssue(0), "");
    const GuardPtr again = c;
    c.reset();
    EXPECT_EQ(heardAfterIssue(), "acd");
    const GuardPtr left = d;
    notifier->deregisterNotification(d);
    EXPECT_FALSE(d);
    d = listen('e');
    EXPECT_EQ(heardAfterIssue(), "ace") << "although a copy of the guard is left";

    // Foreign and null guards are only emptied.
    Notifier other;
    GuardPtr copy = a;
    other.deregisterNotification(copy);
    EXPECT_FALSE(copy);
    other.deregisterNotification(copy);
    EXPECT_EQ(heardAfterIssue(), "ace");
    EXPECT_FALSE(notifier->registerNotification(0, nullptr));
    EXPECT_FALSE(notifier->registerNotification(0, static_cast<Notifier::Client*>(nullptr)));
    EXPECT_FALSE(notifier->hasListeners(0));
}

TEST_F(NotifierTest, ClientsListenToSeveralTypesUntilTheirStampIsDeregistered) {
    NotingClient client(heard);
    NotingClient other(heard);
    GuardPtr guards[] = {notifier->registerNotification(1, &client),
                         notifier->registerNotification(2, &client),
                         notifier->registerNotification(2, &other)};
    EXPECT_EQ(heardAfterIssue(2), "text2 text2 ");

    notifier->deregisterNotification(client.id());
    EXPECT_EQ(heardAfterIssue(1), "");
    EXPECT_EQ(heardAfterIssue(2), "text2 ");
    guards[0].reset();
    EXPECT_EQ(heardAfterIssue(2), "text2 ");
}

TEST_F(NotifierTest, ListenersRegisteredDuringADeliveryWaitForTheNext) {
    std::vector<GuardPtr> late;
    const auto registerAndIssueAnother = [&] {
        late.push_back(listen('b'));
        if (late.size() < 3) notifier->issueNotification(message, deleted);
    };
    const GuardPtr guard = listen('a', registerAndIssueAnother);
    EXPECT_EQ(heardAfterIssue(), "aaabbb");
}

TEST_F(NotifierTest, ListenersDeregisteredDuringADeliveryAreNotReached) {
    GuardPtr a, b, c;
    a = listen('a', [&] { b.reset(); });
    b = listen('b');
    c = listen('c', [&] { c.reset(), a.reset(); });  // it lives until it returns
    const GuardPtr d = listen('d');
    EXPECT_EQ(heardAfterIssue(), "acd");
    EXPECT_EQ(heardAfterIssue(), "d");
}

TEST_F(NotifierTest, TheNotifierMayBeDestroyedDuringADelivery) {
    GuardPtr a = listen('a');
    GuardPtr b = listen('b', [&] { notifier.reset(); });
    GuardPtr c = listen('c');
    notifier->issueNotification(message, deleted);
    EXPECT_EQ(heard, "ab");
    a.reset();

    notifier = std::make_unique<Notifier>();
    const GuardPtr d = listen('d');
    notifier->deregisterNotification(b);
    c.reset();
    EXPECT_TRUE(notifier->hasListeners(deleted));
}

TEST_F(NotifierTest, CallbacksMayOwnGuardsOfTheirNotifier) {
    auto owner = std::make_shared<std::vector<GuardPtr>>();
    NotingClient client(heard);
    for (int i = 0; i < 3; ++i) {
        owner->push_back(listen('a', [owner] {}));
        owner->push_back(notifier->registerNotification(deleted, &client));
    }
    const std::weak_ptr<std::vector<GuardPtr>> watched = owner;
    notifier->deregisterNotification(client.id());
    EXPECT_EQ(heardAfterIssue(), "aaa");
    owner.reset();
    notifier.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(NotifierTest, WhatAListenerThrowsIsPassedOnAndKeepsNoOtherFromHearing) {
    const GuardPtr a = listen('a', [] { throw Zr::Exception::BadAlloc(); });
    const GuardPtr b = listen('b', [] { throw std::runtime_error("later"); });
    EXPECT_THROW(notifier->issueNotification(message, deleted), Zr::Exception::BadAlloc);
    EXPECT_EQ(heard, "ab");
}

TEST_F(NotifierTest, DeliveryNeedsNoMemoryAndRegistrationFailsCleanly) {
    GuardPtr guard;
    TestSupport::failEachRequest([&] { guard = listen('a'); },
                                 [&] { EXPECT_FALSE(notifier->hasListeners(deleted)); });
    const TestSupport::CountingAllocator memory;
    EXPECT_EQ(heardAfterIssue(), "a");
    EXPECT_EQ(memory.requests(), 0U);
}

TEST_F(NotifierTest, ListenersComeAndGoOnOtherThreads) {
    std::atomic<int> calls{0};
    const auto comeAndGo = [&] {
        for (int i = 0; i < 2000; ++i) {
            const GuardPtr guard =
                notifier->registerNotification(deleted, [&](const NotifyMsg&) { return ++calls; });
            notifier->issueNotification(message, deleted);
        }
    };
    std::thread other(comeAndGo);
    comeAndGo();
    other.join();
    EXPECT_GE(calls, 4000);
    EXPECT_FALSE(notifier->hasListeners(deleted));
}
