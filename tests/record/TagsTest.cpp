// Tags, deleting by tag, and showing only what is tagged.
#include <gtest/gtest.h>

#include "tests/AllocationFailures.h"

namespace {

using namespace TestSupport;

template <class Database = kesta>
Zr::Ptr<Database> sixRows() {
    Zr::Ptr<Database> database(new Database(textColumns({"Name"})));
    fill(*database, {{"r0"}, {"r1"}, {"r2"}, {"r3"}, {"r4"}, {"r5"}});
    return database;
}

std::vector<int> tagsOf(kesta& database) {
    std::vector<int> tags;
    for (unsigned row = 0; row < database.get_num_records(); ++row) tags.push_back(database.get_tag(row));
    return tags;
}

void tag(kesta& database, const std::vector<unsigned>& rows, int value = 1) {
    for (const unsigned row : rows) database.set_tag(row, value);
}

TEST(Tags, AreOneByteAndInvertToZeroOrOne) {
    const auto database = sixRows();
    database->set_tag(0, 5);
    database->set_tag(1, 0x1FF);
    database->set_tag(2, 256);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{5, 255, 0, 0, 0, 0}));
    EXPECT_EQ(database->get_num_tags(), 2);
    database->invert_tag(0);
    database->invert_tag(2);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{0, 255, 1, 0, 0, 0}));
    database->invert_all_tags();
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{1, 0, 0, 1, 1, 1}));
    EXPECT_FALSE(database->get_changed());

    // Rows without a record read as minus one and take none, yet count as tagged.
    EXPECT_EQ(database->get_tag(6), -1);
    database->set_tag(6, 1);
    database->invert_tag(0xFFFFFFFF);
    database->insert_records(2, 3);
    database->set_all_tags(-1);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{255, 255, 255, -1, -1, 255, 255, 255, 255}));
    EXPECT_EQ(database->get_num_tags(), 9);
    database->invert_all_tags();
    EXPECT_EQ(database->get_num_tags(), 2);
    database->set_all_tags(1);
    EXPECT_EQ(database->delete_tagged_records(), 7U);
    EXPECT_EQ(rowsOf(*database), (std::vector<Fields>{{"no record"}, {"no record"}}));
}

class DeletionLog : public kesta {
 public:
    using kesta::kesta;
    void delete_records(unsigned first, unsigned count) override {
        calls.emplace_back(first, count);
        if (!refuse) kesta::delete_records(first, count);
    }
    std::vector<std::pair<unsigned, unsigned>> calls;
    bool refuse = false;
};

TEST(DeletingTagged, DeletesRunByRunWhatIsTaggedWithExactlyOne) {
    const auto database = sixRows<DeletionLog>();
    const CapturedNotifications deletions(*database);
    tag(*database, {1, 2, 4});
    tag(*database, {3}, 2);
    EXPECT_EQ(database->delete_tagged_records(), 3U);
    EXPECT_EQ(deletions.texts(), (std::vector<std::string>{"1 2 ", "2 "}));
    EXPECT_EQ(columnOf(*database, 0), (Fields{"r0", "r3", "r5"}));
    EXPECT_EQ(database->get_num_tags(), 1);

    tag(*database, {0, 2});
    EXPECT_EQ(database->delete_tagged_records(), 2U);  // the last run reaches the end
    EXPECT_EQ(columnOf(*database, 0), Fields{"r3"});
    EXPECT_EQ(database->calls, (std::vector<std::pair<unsigned, unsigned>>{{1, 2}, {2, 1}, {0, 1}, {1, 1}}));

    // It ends when an heir deletes nothing.
    const auto refusing = sixRows<DeletionLog>();
    refusing->refuse = true;
    tag(*refusing, {0, 1});
    EXPECT_EQ(refusing->delete_tagged_records(), 3U);
    EXPECT_EQ(refusing->calls, (std::vector<std::pair<unsigned, unsigned>>{{0, 2}, {1, 1}}));
}

TEST(ShowingTagsOnly, LeavesAPlainDatabaseWithoutRowsAndRefusing) {
    const auto database = sixRows();
    tag(*database, {1, 4});
    database->set_show_tags_only(7);
    EXPECT_EQ(database->get_show_tags_only(), 7);
    EXPECT_EQ(database->get_num_records(), 0U);
    EXPECT_EQ(database->index_tags(), 0U);
    for (const unsigned refused :
         {database->delete_tagged_records(), database->get_new_row(1), database->get_raw_row(0)}) {
        EXPECT_EQ(refused, 0xFFFFFFFF);
    }
    database->set_all_tags(1);
    database->invert_all_tags();
    database->set_show_tags_only(0);
    EXPECT_EQ(tagsOf(*database), (std::vector<int>{1, 0, 1, 1, 0, 1}));
    EXPECT_EQ(database->get_new_row(3), 3U);
    EXPECT_EQ(database->get_raw_row(99), 99U);
    EXPECT_EQ(database->index_tags(), 6U);
}

// Says how many rows it has while the index is being built, as the application's own databases do.
class Counted : public kesta {
 public:
    using kesta::kesta;
    unsigned get_num_records() const override { return indexing ? rows : kesta::get_num_records(); }
    void set_tag(unsigned row, int value) override {
        tagged.push_back(row);
        kesta::set_tag(row, value);
    }
    unsigned rows = 0;
    bool indexing = false;
    std::vector<unsigned> tagged;
};

TEST(ShowingTagsOnly, AnHeirThatCountsItsRowsGetsAFilledIndex) {
    const auto database = sixRows<Counted>();
    database->insert_records(5, 2);  // rows 5 and 6, the second without a record
    tag(*database, {1, 3});
    database->rows = 10;
    database->indexing = true;
    database->set_show_tags_only(1);
    database->indexing = false;
    // Rows without a record and rows past the end are listed as well.
    EXPECT_EQ(rowsOf(*database),
              (std::vector<Fields>{{"r1"}, {"r3"}, {"no record"}, {"no record"}, {"no record"}}));
    EXPECT_EQ(database->get_raw_row(1), 3U);
    EXPECT_EQ(database->get_new_row(3), 1U);
    EXPECT_EQ(database->get_raw_row(5), 0xFFFFFFFF);
    for (const unsigned hidden : {0U, 77U}) EXPECT_EQ(database->get_new_row(hidden), 0xFFFFFFFF);

    database->tagged.clear();
    database->set_all_tags(0);
    EXPECT_EQ(database->tagged, (std::vector<unsigned>{0, 1, 2, 3, 4})) << "the rows that are shown";
    EXPECT_EQ(database->get_num_records(), 5U) << "the index stays until it is rebuilt";
    database->set_sortfield(0);
    database->set_tag(0, 1);
    database->indexing = true;
    database->sort(-1, 0);
    database->indexing = false;
    EXPECT_EQ(str(database->getField(0, 0)), "r1");
}

TEST(Tags, SurviveRunningOutOfMemory) {
    const auto prepare = [] {
        auto database = sixRows<Counted>();
        tag(*database, {0, 2});
        database->rows = 6;
        return database;
    };
    const auto operation = [](const Zr::Ptr<Counted>& database) {
        database->indexing = true;
        database->set_show_tags_only(1);
        database->set_show_tags_only(0);
        database->indexing = false;
        const CapturedNotifications listener(*database);
        database->delete_tagged_records();
    };
    failEachAllocation(prepare, operation, [](const Zr::Ptr<Counted>& database) {
        database->indexing = false;
        database->set_show_tags_only(0);
        database->delete_tagged_records();
        EXPECT_EQ(columnOf(*database, 0), (Fields{"r1", "r3", "r4", "r5"}));
    });
}

}  // namespace
