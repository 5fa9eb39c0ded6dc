// What views promise beyond the plain model: attachment, the record-source interface, field specifications,
// cursors, bad arguments, sources that refuse.
#include <climits>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>

#include "support/SystemWatchdog.h"
#include "tests/view/Views.h"
#include "view/KSTViewCursor.h"

namespace {

using namespace TestSupport;

constexpr unsigned none = static_cast<unsigned>(-1);

Zr::Ptr<kesta> fiveRows() {
    return makeTextDatabase(
        {"Name", "Scene", "Tag"},
        {{"a", "1", ""}, {"b", "2", "1"}, {"c", "2", "0"}, {"d", "1", "x"}, {"e", "", "7"}});
}

std::string described(const KSTViewRep& view) {
    GrowString out;
    view.asString(out);
    return static_cast<const char*>(out);
}

TEST(View, HasParametersOfItsOwnThatChangeWithWhatItStandsOn) {
    const auto first = fiveRows();
    const auto second = makeTextDatabase({"Other"}, {{"z"}});
    first->set_filename(L"log.kst");
    first->add_param("Mode", "x");
    second->set_param_val("KESTA", "Rev 7");
    const KSTView base(new KSTViewRep(first.get()));
    base->add_param("Base", "b");
    EXPECT_STREQ("", first->get_param_val("Base"));

    const KSTView view = viewOfAll(*first);
    EXPECT_TRUE(view->get_filename() == L"log.kst");
    EXPECT_EQ((Pairs{{"KESTA", "Rev 1"}, {"Mode", "x"}}), paramsOf(*view));
    view->baseView(base.rep());
    EXPECT_EQ((Pairs{{"KESTA", "Rev 1"}, {"Mode", "x"}, {"Base", "b"}}), paramsOf(*view));
    view->baseView(nullptr);
    EXPECT_EQ(Pairs{}, paramsOf(*view));

    view->baseView(base.rep());
    view->kst(second.get());
    EXPECT_EQ(second.get(), view->db());
    EXPECT_EQ(0u, view->get_num_records());
    EXPECT_EQ((Pairs{{"KESTA", "Rev 7"}}), paramsOf(*view));
    EXPECT_EQ(1u, base->useCount());

    view->displayAllRecords();
    first->delete_records(0, 5);
    EXPECT_EQ(1u, view->get_num_records()) << "it hears of another database";
    view->kst(second.get());
    EXPECT_EQ(1u, view->get_num_records()) << "attaching to the present database is no change";
    view->add_param("Own", "y");
    view->kst(first.get());
    EXPECT_EQ((Pairs{{"KESTA", "Rev 1"}, {"Mode", "x"}}), paramsOf(*view));
    EXPECT_EQ((Pairs{{"KESTA", "Rev 1"}}), paramsOf(KSTViewRep(nullptr)));
    view->init();
    EXPECT_EQ(nullptr, view->db());
    EXPECT_EQ("fieldSpec: Name,Scene,Tag\n", described(*view))
        << "the text of the fields stays, their list goes";
}

TEST(View, HasNothingWithoutADatabase) {
    const KSTView view(new KSTViewRep(nullptr, "Name"));
    const auto database = fiveRows();
    EXPECT_EQ(0u, view->get_num_fields());
    EXPECT_EQ(0u, view->get_fieldnum("Name")) << "not the -1 of a name that is not found";
    EXPECT_STREQ("", view->get_fieldname(0));
    EXPECT_EQ(0, view->baseIndex(0));
    EXPECT_EQ(-1, view->find(database->get_record(0).get()));
    EXPECT_EQ(-1, view->findFirst("Name", "a", 0));
    EXPECT_EQ(none, view->findViewIndexForBaseRow(0));
    EXPECT_EQ(-1, view->dbFieldIndex("Name"));
    EXPECT_FALSE(view->make_dummy_record());
    EXPECT_EQ(0, view->displayRecordsAt(0, 3, 0) + static_cast<int>(view->add_records(2)));
    EXPECT_EQ(0, view->tagDuplicates(0) + view->deleteTagged() + view->get_valid());
    EXPECT_EQ(nullptr, view->newTagSubview());
    EXPECT_FALSE(view.copy() || view.copyWithNewBaseView());
    view->sort(1, 0);
    EXPECT_EQ(0u, view->get_num_records());
}

TEST(View, ReadsAndWritesFieldsThroughTheRowsOfItsSource) {
    const auto database = fiveRows();
    database->addField({"Cookie", DBFieldTypes::eText});
    const KSTView base(new KSTViewRep(database.get()));
    base->displayRecordsAt(2, 3, 0);
    const KSTView view = viewOfAll(*database, base);
    view->remove(0, 1);
    EXPECT_EQ(1u, view->findViewIndexForBaseRow(2));
    EXPECT_EQ(database->get_record(4).get(), (*view)[1]);
    EXPECT_EQ(nullptr, (*view)[-1]);

    int whole = 0;
    double real = 0;
    bool flag = false;
    char buffer[] = "####";
    EXPECT_EQ(1, view->set_field(1, 0, "new"));
    EXPECT_TRUE(view->set_field(0, 1, 17) && view->in_field(0, 1, whole));
    EXPECT_EQ(17, whole);
    EXPECT_TRUE(view->set_field(0, 1, true) && view->in_field(0, 1, flag));
    EXPECT_TRUE(flag);
    EXPECT_TRUE(view->set_field(0, 1, 1.5) && view->in_field(0, 1, real));
    EXPECT_EQ(1.5, real);
    EXPECT_TRUE(view->in_field(0, 1, buffer, 3));
    EXPECT_STREQ("1.5", buffer);
    EXPECT_TRUE(view->set_field(1, Cookie("id", false)));
    EXPECT_EQ(4u, database->getRowIndexByID(Cookie("id", false)));
    EXPECT_EQ((Fields{"a", "b", "c", "d", "new"}), columnOf(*database, 0));
    EXPECT_EQ((Fields{"1", "2", "2", "1.50000000", ""}), columnOf(*database, 1));
    EXPECT_TRUE(view->getField(0, 65536) == "d") << "field numbers are cut to 16 bits";

    EXPECT_TRUE(view->set_fieldtype(1, DBFieldTypes::eDate) && view->set_fieldname(1, "Take"));
    EXPECT_EQ(DBFieldTypes::eDate, database->get_field_type(1));
    EXPECT_STREQ("Take", view->get_fieldname(1));
    EXPECT_EQ(1u, view->get_fieldnum("take"));
    EXPECT_EQ(database->get_fieldsize(0), view->get_fieldsize(0));

    for (const KSTView& nowhere : {view, KSTView(new KSTViewRep(nullptr, ""))}) {
        for (const unsigned bad : {2u, none}) {
            EXPECT_FALSE(nowhere->set_field(bad, 0, "x") || nowhere->set_field(bad, Cookie()));
            EXPECT_FALSE(nowhere->set_field(bad, 0, 1) || nowhere->set_field(bad, 0, 1.0) ||
                         nowhere->set_field(bad, 0, true));
            EXPECT_FALSE(nowhere->in_field(bad, 0, whole) || nowhere->in_field(bad, 0, real) ||
                         nowhere->in_field(bad, 0, flag) || nowhere->in_field(bad, 0, buffer, 3));
            EXPECT_TRUE(nowhere->getField(bad, 0).empty());
            nowhere->set_tag(bad, 1);
            nowhere->invert_tag(bad);
            EXPECT_EQ(0, nowhere->get_tag(bad));
        }
        EXPECT_FALSE(nowhere->set_fieldtype(5, DBFieldTypes::eDate) || nowhere->set_fieldname(5, "x"));
        EXPECT_EQ(DBFieldTypes::eNone, nowhere->get_field_type(5));
        EXPECT_EQ(0, nowhere->countTags());
    }
}

TEST(View, SearchesAndMatchesRowsOfItsSource) {
    const auto database = fiveRows();
    const KSTView view(new KSTViewRep(database.get()));
    view->displayRecordsAt(3, 2, 0);
    EXPECT_EQ(1, view->findFirst("Scene", "2", 4)) << "from the first row, however it is asked";
    dbrecord query(3);
    query.set_field(0, "e", false);
    view->set_query(&query);
    EXPECT_EQ(0, view->match_record(1)) << "database row 1, not view row 1";
    EXPECT_EQ(1, view->match_record(4));
    view->tagAll(true);
    EXPECT_EQ(1, view->tagMatches(1));
    EXPECT_EQ(2, view->countTags());
    EXPECT_EQ(1, view->tag_matching_records(1)) << "and other tags go, whatever is asked";
    EXPECT_EQ(1, view->countTags());
}

TEST(View, TakesTagsFromTheFieldOrTheDatabase) {
    const auto database = fiveRows();
    database->set_tag(3, 9);
    const KSTView view(new KSTViewRep(database.get()));
    view->setupViewTagsFromKestaTagField();
    EXPECT_EQ((std::vector<bool>{false, true, false, false, true}),
              (std::vector<bool>{view->tag(0), view->tag(1), view->tag(2), view->tag(3), view->tag(4)}));
    view->buildIndex();
    EXPECT_EQ(5u, view->get_num_records());
    view->displayAllRecordsWithBaseTagStatus();
    EXPECT_EQ(1, view->countTags());
    EXPECT_TRUE(view->tag(3));

    view->set_show_tags_only(0);
    EXPECT_EQ(0, view->get_show_tags_only());
    EXPECT_EQ((Fields{"d"}), columnOf(*view, 0));
    EXPECT_EQ(0u, view->delete_tagged_records());
    EXPECT_EQ(0u, view->get_num_records());
    EXPECT_EQ(5u, database->get_num_records());
}

TEST(View, TagsTheFirstOfEachValue) {
    const auto database = fiveRows();
    KSTViewRep unheld(database.get());
    unheld.displayAllRecords();
    EXPECT_EQ(3, unheld.tag_all_different(1)) << "a view that nobody holds survives it";
    EXPECT_EQ(0u, unheld.useCount());
    EXPECT_EQ((Fields{"a", "b", "c", "d", "e"}), columnOf(unheld, 0)) << "the view itself is not sorted";
    EXPECT_FALSE(unheld.tag(2) || unheld.tag(3));
}

TEST(View, AnnouncesRemovalsOfNothingAndReadsJunkAsRow0) {
    const auto database = fiveRows();
    const KSTView view = viewOfAll(*database);
    CapturedNotifications deleted(*view);
    view->remove(1, 0);
    view->remove(3, INT_MAX);
    EXPECT_EQ((Fields{"", "3 4 "}), deleted.texts());
    EXPECT_FALSE(deleted.anyWithObject());
    EXPECT_EQ(0, view->recordsDeletedNotify(NotifyMsg("junk -1 99999999999999999999 ", Zr::Ptr<iObject>())));
    EXPECT_EQ((Fields{"b", "c"}).size(), view->get_num_records());
}

TEST(View, NumbersOutOfRangeAndNullsDoNothing) {
    const auto database = fiveRows();
    const KSTView view = viewOfAll(*database);
    for (const int row : {INT_MIN, -1, 5, INT_MAX}) {
        for (const int count : {INT_MIN, -1, 0, 1, INT_MAX}) {
            view->remove(row, count);
            view->deleteRecords(row, count);
            view->removeRecordsFromBaseView(row, count);
            view->delete_records(static_cast<unsigned>(row), static_cast<unsigned>(count));
            view->deleteRecords(0, std::min(count, 0));
            view->insertBlankRecords(row, std::min(count, 0));
            EXPECT_EQ(0, view->displayRecordsAt(row < 0 ? INT_MIN : 5, count, row));
        }
    }
    EXPECT_EQ(0, view->removeSome(nullptr));
    EXPECT_EQ(0, view->displayAllFromAt(nullptr, 0));
    EXPECT_EQ(0, view->displayMatchAt(nullptr, nullptr, 0));
    view->set_sortfields(nullptr);
    view->set_query(nullptr);
    view->addParamsFrom(static_cast<kesta*>(nullptr));
    EXPECT_EQ((Fields{"a", "b", "c", "d", "e"}), columnOf(*view, 0));

    EXPECT_EQ(5, view->displayRecordsAt(0, INT_MAX, INT_MAX)) << "rows that the source has";
    EXPECT_EQ(2, view->displayRecordsAt(-3, 5, INT_MIN));
    EXPECT_EQ(11, view->tagDuplicatesOrdered(9)) << "fields that are not there are all equal";
}

TEST(View, RowsThatTheSourceHasNoMoreAreMissingRecords) {
    const auto database = fiveRows();
    const KSTView view = viewOfAll(*database);
    database->free();
    database->setFields(textColumns({"Name"}));
    fill(*database, {{"z"}, {"y"}});
    view->set_tag(4, 1);
    view->sort(1, 0);
    EXPECT_EQ((Fields{"y", "z", "", "", ""}), columnOf(*view, 0));
    EXPECT_FALSE(view->get_record(4));
    EXPECT_FALSE(view->set_field(4, 0, "x"));
    EXPECT_EQ(2, KSTView(view->copy())->displayAllFromAt(view.rep(), 0) + 2);
    EXPECT_EQ((Fields{"y", "z"}), columnOf(*view.copyWithNewBaseView(), 0));
    EXPECT_EQ(1, view->deleteTagged());
    EXPECT_EQ(5u, view->get_num_records());
}

TEST(View, RowsThatAViewBetweenHasNoMoreSortAsMissingRecords) {
    const auto database = fiveRows();
    auto bottom = std::make_unique<KSTViewRep>(database.get());
    bottom->displayAllRecords();
    const KSTView middle(new KSTViewRep(database.get()));
    middle->baseView(bottom.get());
    middle->displayAllRecords();
    const KSTView top = viewOfAll(*database, middle);
    top->sort(-1, 0);
    middle->clear();
    middle->displayRecordsAt(1, 3, 0);
    top->set_sortfield(0);
    top->sort(1, 0);
    EXPECT_EQ((Fields{"b", "c", "d", "", ""}), columnOf(*top, 0));
    bottom.reset();
    top->sort(-1, 0);
    EXPECT_EQ(Fields(5), columnOf(*top, 0));
}

TEST(View, SortsByTheRecordsThatItsSourceReturns) {
    class Reversed : public KSTViewRep {
     public:
        using KSTViewRep::KSTViewRep;
        Zr::Ptr<dbrecord> get_record(unsigned row) const override {
            return KSTViewRep::get_record(get_num_records() - 1 - row);
        }
    };
    const auto database = makeTextDatabase({"Name"}, {{"c"}, {"a"}, {"e"}, {"b"}, {"d"}});
    const KSTView base(new Reversed(database.get()));
    base->displayAllRecords();
    const KSTView top = viewOfAll(*database, base);
    top->set_sortfield(0);
    top->sort(1, 0);
    EXPECT_EQ((Fields{"a", "b", "c", "d", "e"}), columnOf(*top, 0));
}

// When it is asked for a record the third time, it returns none and does something to itself.
class Fickle : public kesta {
 public:
    using kesta::get_record;
    using kesta::kesta;

    Zr::Ptr<dbrecord> get_record(unsigned row) const override {
        if (!act || ++asked != 3) return kesta::get_record(row);
        act(*holder);
        return {};
    }

    void (*act)(Zr::Ptr<Fickle>&) = nullptr;
    Zr::Ptr<Fickle>* holder = nullptr;
    mutable int asked = 0;
};

TEST(View, SortsNothingWhenTheDatabaseTakesRowsAwayOrEndsMeanwhile) {
    for (void (*const act)(Zr::Ptr<Fickle>&) : {
             +[](Zr::Ptr<Fickle>& self) { self->delete_records(0, 2); },
             +[](Zr::Ptr<Fickle>& self) { self.reset(); },
         }) {
        Zr::Ptr<Fickle> database(new Fickle(textColumns({"Name"})));
        fill(*database, {{"c"}, {"a"}, {"e"}, {"b"}, {"d"}});
        const KSTView view = viewOfAll(*database);
        view->set_sortfield(0);
        database->act = act;
        database->holder = &database;
        view->sort(1, 0);
        const Fields left = database ? Fields{"e", "b", "d"} : Fields(5);
        EXPECT_EQ(left, columnOf(*view, 0));
    }
}

// A base view that sees how many long operations are announced while it works, and fails on demand.
class Watched : public KSTViewRep {
 public:
    using KSTViewRep::findFirst;
    using KSTViewRep::KSTViewRep;

    int findFirst(const char* field, const char* value, int start) override {
        work();
        return KSTViewRep::findFirst(field, value, start);
    }
    void sortPrepare(int, int) override { work(); }

    bool fails = false;
    int announced = 0;

 private:
    void work() {
        announced = SystemWatchdog::openAnnouncements();
        if (fails) throw std::runtime_error("on demand");
    }
};

TEST(View, TellsTheWatchdogWhileItSortsAndLooksUpIdentifiers) {
    const auto database = makeTextDatabase({"Cookie"}, {{""}});
    const Cookie id("id", false);
    database->set_field(0, id);
    auto* const base = new Watched(database.get());
    const KSTView view = viewOfAll(*database, KSTView(base));
    CookieSet ids;
    ids.add(id);
    const KSTView detached(new KSTViewRep(nullptr));
    const std::function<void(KSTViewRep&)> operations[] = {
        [](KSTViewRep& of) { of.sort(1, 0); }, [&](KSTViewRep& of) { of.displayRecordsAt(ids, 0); },
        [&](KSTViewRep& of) { of.displayRecordsAt(CookieVec(1, id), 0); }};
    for (const auto& operation : operations) {
        base->announced = 0;
        base->fails = false;
        operation(*view);
        EXPECT_EQ(1, base->announced);
        base->fails = true;
        EXPECT_THROW(operation(*view), std::runtime_error);
        operation(*detached);
        EXPECT_EQ(0, SystemWatchdog::openAnnouncements()) << "ended on every path";
    }
}

TEST(View, DeletesWhatThereIsAfterARowThatTheSourceHasNoMore) {
    const auto database = fiveRows();
    const KSTView view(new KSTViewRep(database.get()));
    for (const int row : {4, 0, 1, 3}) view->displayRecordsAt(row, 1, INT_MAX);
    database->free();
    database->setFields(textColumns({"Name"}));
    fill(*database, {{"x"}, {"y"}, {"z"}});
    for (unsigned row = 0; row < 3; ++row) view->set_tag(row, 1);
    EXPECT_EQ(3 + 2, view->deleteTagged()) << "the run that could not go, then what was left of it";
    EXPECT_EQ((Fields{"z"}), columnOf(*database, 0));
    EXPECT_EQ(2u, view->get_num_records());
}

TEST(View, KeepsItsFieldSpecificationAsItWasGiven) {
    const auto database = makeTextDatabase({"Name", "Scene", "Take"});
    CapturedLog log;
    KSTViewRep view(database.get(), "Name,,Tape\tScene,");
    EXPECT_EQ("fieldSpec: Name,,Tape\tScene,\nfields: (Name Scene)\n", described(view));
    EXPECT_EQ((Fields{"Warning: KSTView::fieldSpec, non-existant fieldname \"Tape\".\n"}), log.messages());
    view.fieldSpec("Take");
    EXPECT_EQ("fieldSpec: Take\nfields: (Scene Name Take)\n", described(view));
    view.fieldSpec(nullptr);
    EXPECT_EQ("fieldSpec: \nfields: (Scene Name Take)\n", described(view));
    EXPECT_EQ(1, view.dbFieldIndex("Scene"));
    EXPECT_EQ(-1, view.dbFieldIndex("scene"));
    EXPECT_EQ(-1, view.dbFieldIndex(nullptr));

    const char* names[] = {"Take", "Name", nullptr};
    EXPECT_EQ("fieldSpec: Take,Name,\nfields: (Take Name)\n", described(KSTViewRep(database.get(), names)));
    EXPECT_EQ("fieldSpec: Name,Scene,Take\nfields: (Name Scene Take)\n",
              described(KSTViewRep(database.get(), static_cast<const char**>(nullptr))));
    kesta bare;
    EXPECT_EQ("fieldSpec: \n", described(KSTViewRep(&bare)));

    const KSTView sub(KSTViewRep(database.get(), names).newTagSubview());
    EXPECT_EQ("fieldSpec: Take,Name,\nfields: (Take Name)\n", described(*sub));
}

TEST(View, ItsCopiesHaveParametersAndFieldsOfTheirOwn) {
    const auto database = fiveRows();
    const KSTView view(new KSTViewRep(database.get(), "Scene"));
    view->displayRecordsAt(1, 2, 0);
    view->displayRecordsAt(1, 3, 0);
    view->set_tag(2, 1);
    view->add_param("Own", "y");
    const KSTView copied = view.copy();
    EXPECT_EQ("fieldSpec: Scene\nfields: (Scene)\n", described(*copied));
    EXPECT_STREQ("", copied->get_param_val("Own"));

    const KSTView apart = view.copyWithNewBaseView();
    EXPECT_NE(database.get(), apart->db());
    EXPECT_STREQ("y", apart->get_param_val("Own"));
    apart->set_field(0, 0, "new");
    database->delete_records(0, 5);
    EXPECT_EQ((Fields{"new", "c", "d", "new", "c"}), columnOf(*apart, 0));
    EXPECT_TRUE(apart->tag(2));
    EXPECT_EQ("fieldSpec: Name,Scene,Tag\nfields: (Name Scene Tag)\n", described(*apart));
}

TEST(ViewCursor, StepsOverAllRowsOrTheTaggedAndComesBack) {
    const auto database = fiveRows();
    const KSTView view = viewOfAll(*database);
    view->remove(3, 2);
    KSTViewCursor cursor(view);
    const auto indexAfter = [](const KSTViewCursor& moved) { return moved.index(); };
    EXPECT_EQ(nullptr, *cursor);
    EXPECT_EQ(2, indexAfter(--cursor));
    EXPECT_EQ(-1, indexAfter(++cursor));
    EXPECT_EQ(0, indexAfter(++cursor));
    EXPECT_EQ((*view)[0], *cursor);
    cursor.set_index(3);
    EXPECT_EQ(-1, cursor.index());
    EXPECT_EQ(1, cursor.find((*view)[1]));
    cursor.remove();
    EXPECT_EQ(1, cursor.index());
    cursor.remove();
    EXPECT_EQ(-1, cursor.index());
    cursor.remove();
    EXPECT_EQ(1u, view->get_num_records());
    EXPECT_EQ(-1, cursor.find(nullptr));

    view->displayRecordsAt(1, 4, 1);
    view->set_tag(1, 1);
    view->set_tag(3, 1);
    KSTViewCursor tagged(view, -1, true);
    for (const int row : {1, 3, -1, 1}) EXPECT_EQ(row, indexAfter(++tagged));
    tagged.set_index(2);
    EXPECT_EQ(2, tagged.index()) << "set by hand it stands where it is put";
    EXPECT_EQ(1, indexAfter(--tagged));
    EXPECT_EQ(-1, indexAfter(--tagged));

    KSTViewCursor stale(view, 4);
    view->remove(0, 5);
    EXPECT_EQ(nullptr, *stale);
    EXPECT_EQ(-1, indexAfter(--stale));
    KSTViewCursor empty((KSTView()));
    empty.remove();
    EXPECT_EQ(-1, indexAfter(++empty));
}

}  // namespace
