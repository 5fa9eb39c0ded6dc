// Views saved as database files and loaded back.
#include <gtest/gtest.h>

#include "tests/TestSupport.h"
#include "view/KSTView.h"

namespace {

using namespace TestSupport;

class ViewFile : public TempFolderTest {
 protected:
    ViewFile() {
        view->displayAllRecords();
        view->set_sortfield(0);
        view->sort(-1, 0);
        view->set_tag(0, 1);
        view->add_param("Mode", "x");
        database->set_tag(1, 1);
        database->set_tag(2, 1);
    }

    const Zr::Ptr<kesta> database =
        makeTextDatabase({"Name", "Note", "Tag"},
                         {{"a", "say \"hi\"", "1"}, {"b", "", ""}, {"c", "x, y", "old"}, {"d", "z", ""}});
    const KSTView view{new KSTViewRep(database.get(), "Name")};
};

TEST_F(ViewFile, HoldsItsRowsInOrderWithItsOwnTags) {
    ASSERT_EQ(4, view->saveAsText(wide(folder / "view.kst"), false));
    const auto loaded = loadDatabase(folder / "view.kst");
    EXPECT_EQ(
        (std::vector<Fields>{{"d", "z", "1"}, {"c", "x, y", "0"}, {"b", "", "0"}, {"a", "say \"hi\"", "0"}}),
        rowsOf(*loaded));
    EXPECT_EQ((Pairs{{"KESTA", "Rev 1"}, {"Mode", "x"}}), paramsOf(*loaded));
    EXPECT_EQ((Fields{"", "old"}), (Fields{columnOf(*database, 2)[1], columnOf(*database, 2)[2]}))
        << "the records themselves keep their field";
}

TEST_F(ViewFile, HoldsTheTagsOfADerivedView) {
    class AllTagged : public KSTViewRep {
     public:
        using KSTViewRep::KSTViewRep;
        int get_tag(unsigned) override { return 1; }
    };
    const KSTView derived(new AllTagged(database.get()));
    derived->displayAllRecords();
    ASSERT_EQ(4, derived->saveAsText(wide(folder / "view.kst"), false));
    EXPECT_EQ((Fields{"1", "1", "1", "1"}), columnOf(*loadDatabase(folder / "view.kst"), 2));
}

TEST_F(ViewFile, HasTheWholeDatabasesColumnsUnderAChain) {
    const KSTView chained(new KSTViewRep(database.get()));
    chained->baseView(view.rep());
    chained->displayRecordsAt(1, 2, 0);
    chained->set_tag(1, 1);
    chained->set_filename(wide(folder / "chained.kst"));
    ASSERT_EQ(2, chained->save_text());
    EXPECT_EQ((std::vector<Fields>{{"c", "x, y", "0"}, {"b", "", "1"}}),
              rowsOf(*loadDatabase(folder / "chained.kst")));
}

TEST_F(ViewFile, HoldsTheDatabasesTaggedRecordsOnDemand) {
    ASSERT_EQ(4, view->saveOnlyTagged((folder / "tagged.kst").c_str())) << "the rows of the view";
    EXPECT_EQ((std::vector<Fields>{{"c", "x, y", "old"}, {"b", "", ""}}),
              rowsOf(*loadDatabase(folder / "tagged.kst")));
}

TEST_F(ViewFile, WithoutRowsIsAHeader) {
    EXPECT_EQ(0, view->saveAsText((folder / "header.kst").c_str(), true));
    const std::string header = readFile(folder / "header.kst");
    view->clear();
    EXPECT_EQ(0, view->saveAsText((folder / "empty.kst").c_str(), false));
    EXPECT_EQ(header, readFile(folder / "empty.kst"));
    EXPECT_EQ(0u, loadDatabase(folder / "empty.kst")->get_num_records());
    EXPECT_EQ((Fields{"Name", "Note", "Tag"}), columnNames(*loadDatabase(folder / "empty.kst")));
}

TEST_F(ViewFile, LeavesOutRowsWithoutARecord) {
    database->insert_records(0, 3);
    view->displayAllRecords();
    EXPECT_EQ(5, view->saveAsText(wide(folder / "view.kst"), false));
    EXPECT_EQ(7, view->saveOnlyTagged(wide(folder / "tagged.kst")));
}

TEST_F(ViewFile, IsNotSavedWithoutANameOrAPlace) {
    EXPECT_EQ(0, view->saveAsText("", false));
    EXPECT_EQ(0, view->saveAsText(static_cast<const char*>(nullptr), false));
    EXPECT_EQ(0, view->save_text());
    EXPECT_EQ(0, view->saveAsText((folder / "no/such/folder").c_str(), false));
    EXPECT_EQ(0, view->saveOnlyTagged((folder / "no/such/folder").c_str()));
    EXPECT_TRUE(folder.names().empty());
}

}  // namespace
