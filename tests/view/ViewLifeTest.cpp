// Who outlives whom: handles, chains, databases that go first, listeners that end what is talking to them.
#include <functional>
#include <gtest/gtest.h>
#include <optional>

#include "tests/TestSupport.h"
#include "view/KSTView.h"

namespace {

using TestSupport::columnOf;
using TestSupport::Fields;
using TestSupport::makeTextDatabase;

Zr::Ptr<kesta> rows(int count) {
    auto database = makeTextDatabase({"Name"});
    for (int i = 0; i < count; ++i) {
        const unsigned row = database->add_records(1);
        database->set_field(row, 0, i);
    }
    return database;
}

KSTView viewOfAll(kesta& database, const KSTView& base = KSTView()) {
    KSTView view(new KSTViewRep(&database));
    view->baseView(base.rep());
    view->displayAllRecords();
    return view;
}

// Says when it goes.
class Mortal : public KSTViewRep {
 public:
    Mortal(kesta* database, bool& gone) : KSTViewRep(database), m_gone(gone) { m_gone = false; }
    Mortal(const Mortal&) = delete;
    Mortal& operator=(const Mortal&) = delete;
    ~Mortal() override { m_gone = true; }

 private:
    bool& m_gone;
};

TEST(ViewLife, AViewGoesWithItsLastUse) {
    const auto database = rows(3);
    bool gone = false;
    std::optional<KSTView> first(new Mortal(database.get(), gone));
    KSTView second(*first);
    KSTView& alias = second;
    second = alias;
    EXPECT_EQ(2u, second->useCount());
    first.reset();
    EXPECT_FALSE(gone);

    KSTView chained(new KSTViewRep(database.get()));
    chained->baseView(second.rep());
    second = KSTView();
    EXPECT_FALSE(gone) << "the chained view holds it";
    chained->displayAllRecords();
    chained->baseView(nullptr);
    EXPECT_TRUE(gone);

    auto* const unheld = new Mortal(database.get(), gone);
    chained->baseView(unheld);
    chained = KSTView();
    EXPECT_TRUE(gone) << "chaining was its only use";
    database->delete_records(0, 1);
}

TEST(ViewLife, ABaseViewHeldOnlyByTheOneItReplacesIsKept) {
    const auto database = rows(3);
    bool gone = false;
    KSTView bottom(new Mortal(database.get(), gone));
    KSTView middle = viewOfAll(*database, bottom);
    const KSTView top = viewOfAll(*database, middle);
    KSTViewRep* const kept = bottom.rep();
    bottom = KSTView();
    middle = KSTView();
    top->baseView(kept);
    EXPECT_FALSE(gone);
    EXPECT_EQ(kept, top->db());
}

TEST(ViewLife, NoViewStandsOnItself) {
    const auto database = rows(3);
    const KSTView bottom = viewOfAll(*database);
    const KSTView middle = viewOfAll(*database, bottom);
    const KSTView top = viewOfAll(*database, middle);
    for (const KSTView& base : {bottom, middle, top}) {
        bottom->baseView(base.rep());
        EXPECT_EQ(database.get(), bottom->db());
    }
    EXPECT_EQ(3u, top->get_num_records());
    EXPECT_EQ(2u, bottom->useCount());
}

TEST(ViewLife, AChainHasAnEnd) {
    const auto database = rows(2);
    KSTView top = viewOfAll(*database);
    for (int i = 0; i < 1200; ++i) {
        KSTView next(new KSTViewRep(database.get()));
        next->baseView(top.rep());
        if (next->db() != top.rep()) break;
        next->displayRecordsAt(0, 1, 0);
        top = next;
    }
    EXPECT_EQ(0, top->baseIndex(0));
    EXPECT_EQ(0, top->tagDuplicates(0));
    EXPECT_EQ(nullptr, top->newTagSubview()) << "a thousand views";
    database->delete_records(0, 1);
    EXPECT_EQ(0u, top->get_num_records());
}

TEST(ViewLife, AViewWhoseDatabaseHasGoneHasNoSource) {
    auto database = rows(3);
    const KSTView view = viewOfAll(*database);
    const KSTView chained = viewOfAll(*database, view);
    const KSTView other = viewOfAll(*database);
    database.reset();
    EXPECT_EQ(nullptr, view->db());
    EXPECT_EQ(nullptr, (*chained)[0]);
    EXPECT_FALSE(chained->set_field(0, 0, "x"));
    EXPECT_FALSE(view->make_dummy_record());
    chained->deleteRecords(0, 3);
    chained->displayAllRecords();
    EXPECT_EQ(0, view->saveAsText("nowhere", false));
    EXPECT_EQ(nullptr, view->copy());
    GrowString out;
    view->asString(out);
    EXPECT_STREQ("fieldSpec: Name\nfields: (voidref)\n", out);
    other->kst(nullptr);

    const auto next = rows(2);
    view->kst(next.get());
    view->displayAllRecords();
    EXPECT_EQ((Fields{"0", "1"}), columnOf(*view, 0));
}

TEST(ViewLife, AFieldListDoesNotReachForABaseViewThatHasGone) {
    const auto database = rows(1);
    KSTView base = viewOfAll(*database);
    const KSTView view = viewOfAll(*database, base);
    view->fieldSpec("Name");
    view->baseView(nullptr);
    base = KSTView();
    GrowString out;
    view->asString(out);
    EXPECT_STREQ("fieldSpec: Name\nfields: (Name voidref)\n", out);
}

TEST(ViewLife, ACopiedDatabaseLivesAsLongAsAViewStandsOnIt) {
    auto database = rows(3);
    KSTView apart = viewOfAll(*database).copyWithNewBaseView();
    database.reset();
    apart->set_tag(1, 1);
    const KSTView sub(apart->newTagSubview());
    const KSTView sibling = apart.copy();
    apart = KSTView();
    EXPECT_EQ((Fields{"1"}), columnOf(*sub, 0));
    sibling->deleteRecords(0, 3);
    EXPECT_EQ(0u, sibling->db()->get_num_records());
    EXPECT_EQ(0u, sub->get_num_records());
}

// A listener that, at the n-th announcement it hears, ends something: whatever it is and whenever it comes,
// the deletion goes on with what is left.
class EndsSomething : public ::testing::TestWithParam<int> {
 protected:
    EndsSomething() {
        base = viewOfAll(*database);
        top = viewOfAll(*database, base);
        for (unsigned row = 0; row < 8; row += 2) top->set_tag(row, 1), database->set_tag(row, 1);
        for (Notifier* const source : {static_cast<Notifier*>(base.rep()), static_cast<Notifier*>(top.rep()),
                                       static_cast<Notifier*>(database.get())}) {
            for (const char* const type : {"recordsDeleted", "recordsChanged"}) {
                guards.push_back(source->registerNotification(
                    NotifyMsgTypeDictionary::instance().intern(type), [this](const NotifyMsg&) {
                        if (++heard == GetParam()) end();
                        return 0;
                    }));
            }
        }
    }

    void deleteEverywhere() {
        const KSTViewRep* const deleting = top.rep();
        top.rep()->deleteTagged();
        if (top.rep() == deleting && top) top->removeTagged();
        if (database) database->delete_tagged_records();
        if (top) top->displayAllRecords();
        if (base) base->remove(0, 2);
    }

    void expectNoneTagged() { EXPECT_EQ(0, database->get_num_tags()); }

    Zr::Ptr<kesta> database = rows(8);
    KSTView base;
    KSTView top;
    std::vector<Zr::Ptr<Zr::Guard>> guards;
    int heard = 0;
    std::function<void()> end;
};

TEST_P(EndsSomething, TheTopView) {
    end = [this] { top = KSTView(); };
    deleteEverywhere();
    expectNoneTagged();
}

TEST_P(EndsSomething, TheBaseView) {
    end = [this] {
        top->baseView(nullptr);
        base = KSTView();
    };
    deleteEverywhere();
    expectNoneTagged();
}

TEST_P(EndsSomething, AllViews) {
    end = [this] {
        base = KSTView();
        top = KSTView();
    };
    deleteEverywhere();
    expectNoneTagged();
}

TEST_P(EndsSomething, TheDatabase) {
    end = [this] { database.reset(); };
    deleteEverywhere();
    EXPECT_TRUE(!database || heard < GetParam());
}

TEST_P(EndsSomething, EveryRowOfTheViews) {
    end = [this] {
        base->remove(0, 8);
        top->displayRecordsAt(0, 3, 1);
        top->sort(-1, 0);
    };
    deleteEverywhere();
    for (unsigned row = 0; row < top->get_num_records(); ++row) EXPECT_TRUE(top->get_record(row));
}

INSTANTIATE_TEST_SUITE_P(AtEachAnnouncement, EndsSomething, ::testing::Range(1, 26));

}  // namespace
