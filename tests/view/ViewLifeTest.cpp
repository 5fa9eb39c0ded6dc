// What outlives what: handles, chains, databases that are destroyed first, listeners that end what is talking
// to them.
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tests/view/Views.h"

namespace {

using namespace TestSupport;

Zr::Ptr<kesta> rows(int count) {
    auto database = makeTextDatabase({"Name"});
    for (int i = 0; i < count; ++i) database->set_field(database->add_records(1), 0, i);
    return database;
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

TEST(ViewLife, AChainHasAnEnd) {
    const auto database = rows(2);
    KSTView top = viewOfAll(*database);
    for (int i = 0; i < 1200; ++i) {
        const KSTView next = viewOfAll(*database, top);
        if (next->db() == top.rep()) top = next;
    }
    EXPECT_EQ(nullptr, top->newTagSubview()) << "as long as it may be";
    EXPECT_EQ(0, top->tagDuplicates(0));
    database->delete_records(0, 1);
    EXPECT_EQ(0u, top->get_num_records()) << "the database and the base view both tell of it";
}

// Chains that are each short enough are not put under each other without end.
TEST(ViewLife, ChainsUnderChainsHaveAnEnd) {
    const auto database = rows(2);
    const auto chain = [&](int views) {
        std::vector<KSTView> made{viewOfAll(*database)};
        while (static_cast<int>(made.size()) < views) made.push_back(viewOfAll(*database, made.back()));
        return made;
    };
    KSTView top;
    KSTView bottom;
    {
        const std::vector<KSTView> upper = chain(150);
        const std::vector<KSTView> fits = chain(50);
        const std::vector<KSTView> tooLong = chain(1);
        upper.front()->baseView(fits.back().rep());
        EXPECT_EQ(fits.back().rep(), upper.front()->db());
        fits.front()->baseView(tooLong.back().rep());
        EXPECT_EQ(database.get(), fits.front()->db());
        top = upper.back();
        bottom = fits.front();
    }
    EXPECT_EQ(2u, bottom->useCount());
    top = KSTView();
    EXPECT_EQ(1u, bottom->useCount());
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
    EXPECT_EQ(0, view->tagDuplicatesOrdered(0));
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

// --- Listeners that do something to the view ---

Zr::Ptr<Zr::Guard> on(const char* type, Notifier& source, std::function<void()> action) {
    return source.registerNotification(NotifyMsgTypeDictionary::instance().intern(type),
                                       [action = std::move(action)](const NotifyMsg&) {
                                           action();
                                           return 0;
                                       });
}

class ViewListener : public ::testing::Test {
 protected:
    const Zr::Ptr<kesta> database = rows(10);
    const KSTView view = viewOfAll(*database);
};

TEST_F(ViewListener, MayRefreshTheViewAtEachLoss) {
    bool refreshing = false;
    int refreshes = 0;
    const auto guard = on("recordsDeleted", *view, [&] {
        if (std::exchange(refreshing, true)) return;
        view->displayAllRecords();
        ++refreshes;
        refreshing = false;
    });
    database->delete_records(2, 3);
    EXPECT_EQ(2, refreshes) << "at the first loss, after which none is left, and at the summary";
    EXPECT_EQ((Fields{"0", "1", "5", "6", "7", "8", "9"}), columnOf(*view, 0));
}

TEST_F(ViewListener, ThatShowsLostRowsAgainIsToldOnlySoOften) {
    int told = 0;
    const auto guard = on("recordsDeleted", *view, [&] {
        ++told;
        view->displayRecordsAt(2, 1, 5);
    });
    database->delete_records(2, 1);
    EXPECT_EQ(11, told) << "once for each entry, and the summary";
}

TEST(ViewLife, ADeletionEndsWhenAListenerAttachesTheChainToAnotherDatabase) {
    for (void (*const deletion)(KSTViewRep&) :
         {+[](KSTViewRep& top) { top.deleteRecords(0, 10); }, +[](KSTViewRep& top) { top.deleteTagged(); }}) {
        const auto database = rows(10);
        const auto other = rows(10);
        const KSTView base = viewOfAll(*database);
        const KSTView top = viewOfAll(*database, base);
        top->sort(-1, 0);
        top->tagAll(true);
        top->set_tag(5, 0);
        const auto guard = on("recordsDeleted", *base, [&] {
            if (base->db() == other.get()) return;
            base->kst(other.get());
            base->displayAllRecords();
        });
        deletion(*top);
        EXPECT_GT(10u, database->get_num_records());
        EXPECT_EQ(10u, other->get_num_records());
    }
}

TEST_F(ViewListener, ThatShowsAnotherRowDoesNotEndTheDeletion) {
    view->remove(5, 5);
    view->sort(-1, 0);
    int more = 2;
    const auto guard = on("recordsDeleted", *view, [&] {
        if (more-- > 0) {
            database->add_records(1);
            view->displayRecordsAt(0, 1, 5);
        }
    });
    view->deleteRecords(0, 4);
    EXPECT_EQ(8u, database->get_num_records());
}

TEST_F(ViewListener, ThatThrowsSilencesNobody) {
    const auto guard = on("recordsDeleted", *view, [] { throw std::runtime_error("first"); });
    const KSTView top = viewOfAll(*database, view);
    view->displayRecordsAt(0, 10, 0);
    top->displayAllRecords();
    int changed = 0;
    const auto changes = on("recordsChanged", *view, [&] { ++changed; });
    EXPECT_THROW(database->delete_records(2, 2), std::runtime_error);
    EXPECT_EQ(1, changed);
    EXPECT_EQ((Fields{"0", "1", "4", "5", "6", "7", "8", "9", "0", "1", "4", "5", "6", "7", "8", "9"}),
              columnOf(*view, 0));
    for (unsigned row = 0; row < top->get_num_records(); ++row) EXPECT_TRUE(top->get_record(row));
}

// As one that shows only tagged records does.
TEST(ViewLife, ManyRowsOfASourceThatRefusesCostLittle) {
    constexpr int many = 50000;
    const auto database = makeTextDatabase({"Name"});
    database->add_records(many);
    const KSTView view = viewOfAll(*database);
    for (unsigned row = 0; row < many - 1; ++row) view->set_tag(row, 1);
    database->set_show_tags_only(1);
    EXPECT_EQ(static_cast<int>((many - 1u) * many / 2), view->deleteTagged());
    EXPECT_EQ(static_cast<unsigned>(many), view->get_num_records());
    view->insertBlankRecords(3, 2);
    view->add_records(2);
    EXPECT_EQ(static_cast<unsigned>(many), view->get_num_records());
    EXPECT_EQ(3, view->baseIndex(3));
    EXPECT_EQ(many - 1, view->baseIndex(many - 1));
}

TEST(ViewLife, ManyIdentifiersAreFoundOneByOneOrTogether) {
    constexpr int many = 4000;
    const auto database = makeTextDatabase({"Cookie"});
    database->add_records(many);
    const KSTView single(new KSTViewRep(database.get()));
    const KSTView together(new KSTViewRep(database.get()));
    CookieVec all;
    CookieVec some;
    CookieSet set;
    for (int i = 0; i < many; ++i) {
        const std::string text = "id-" + std::to_string(i);
        database->set_field(static_cast<unsigned>(i), 0, (i % 3 == 0 ? text : "x" + text).c_str());
        all.emplace_back(text.c_str(), false);
        if (i % 50 != 0) continue;
        some.push_back(all.back());
        set.add(all.back());
    }
    int found = 0;
    for (const Cookie& id : some)
        found += single->displayMatchAt("Cookie", id.asString(false).c_str(), found);
    EXPECT_LT(0, found);
    EXPECT_EQ(found, together->displayRecordsAt(some, 0));
    EXPECT_EQ(columnOf(*single, 0), columnOf(*together, 0));
    together->clear();
    EXPECT_EQ(found, together->displayRecordsAt(set, 0));
    EXPECT_EQ(columnOf(*single, 0), columnOf(*together, 0));
    together->displayRecordsAt(all, 0);
}

// A listener that, at the n-th announcement it hears, ends something: whatever it is and whenever it comes,
// the deletion goes on with what is left.
class EndsSomething : public ::testing::TestWithParam<int> {
 protected:
    void deleteEverywhere(const std::function<void()>& end) {
        database = rows(8);
        base = viewOfAll(*database);
        top = viewOfAll(*database, base);
        for (unsigned row = 0; row < 8; row += 2) {
            top->set_tag(row, 1);
            database->set_tag(row, 1);
        }
        int heard = 0;
        std::vector<Zr::Ptr<Zr::Guard>> guards;
        for (Notifier* const source :
             std::initializer_list<Notifier*>{base.rep(), top.rep(), database.get()}) {
            for (const char* const type : {"recordsDeleted", "recordsChanged"}) {
                guards.push_back(on(type, *source, [&] {
                    if (++heard == GetParam()) end();
                }));
            }
        }
        top.rep()->deleteTagged();
        if (top) top->removeTagged();
        if (database) database->delete_tagged_records();
        if (top) top->displayAllRecords();
        if (base) base->remove(0, 2);
        EXPECT_LT(0, heard);
    }

    Zr::Ptr<kesta> database;
    KSTView base;
    KSTView top;
};

TEST_P(EndsSomething, AndTheRestGoesOn) {
    const std::function<void()> ends[] = {[this] { top = KSTView(); },
                                          [this] {
                                              top->baseView(nullptr);
                                              base = KSTView();
                                          },
                                          [this] {
                                              base = KSTView();
                                              top = KSTView();
                                          },
                                          [this] { database.reset(); },
                                          [this] {
                                              base->remove(0, 8);
                                              top->displayRecordsAt(0, 3, 1);
                                              top->sort(-1, 0);
                                          }};
    for (const auto& end : ends) {
        deleteEverywhere(end);
        if (!database) continue;
        EXPECT_EQ(0, database->get_num_tags());
        for (unsigned row = 0; top && row < top->get_num_records(); ++row) EXPECT_TRUE(top->get_record(row));
    }
}

INSTANTIATE_TEST_SUITE_P(AtEachAnnouncement, EndsSomething, ::testing::Range(1, 26));

}  // namespace
