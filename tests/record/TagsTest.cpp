// Tags and showing only what is tagged, where a derived class has a say; the model of the operations has the
// rest.
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

using Runs = std::vector<std::pair<unsigned, unsigned>>;

const std::vector<Fields> sixRows = {{"r0"}, {"r1"}, {"r2"}, {"r3"}, {"r4"}, {"r5"}};

struct DeletionLog : kesta {
    using kesta::kesta;
    void delete_records(unsigned first, unsigned count) override {
        calls.emplace_back(first, count);
        if (!refuse) kesta::delete_records(first, count);
    }
    Runs calls;
    bool refuse = false;
};

// Says how many rows it has while the index is being built, as the application's own databases do.
struct Counted : kesta {
    using kesta::kesta;
    unsigned get_num_records() const override { return indexing ? rows : kesta::get_num_records(); }
    void set_tag(unsigned row, int value) override {
        tagged.push_back(row);
        kesta::set_tag(row, value);
    }
    unsigned rows = 10;
    bool indexing = false;
    std::vector<unsigned> tagged;
};

}  // namespace

TEST(DeletingTagged, IsDoneRunByRunThroughTheInterface) {
    DeletionLog database(textColumns({"Name"}));
    fill(database, sixRows);
    for (const unsigned row : {1U, 2U, 4U}) database.set_tag(row, 1);
    EXPECT_EQ(database.delete_tagged_records(), 3U);
    EXPECT_EQ(database.calls, (Runs{{1, 2}, {2, 1}}));
    EXPECT_EQ(columnOf(database, 0), (Fields{"r0", "r3", "r5"}));

    // It ends when a derived class deletes nothing.
    database.refuse = true;
    database.calls.clear();
    for (const unsigned row : {0U, 1U}) database.set_tag(row, 1);
    EXPECT_EQ(database.delete_tagged_records(), 3U);
    EXPECT_EQ(database.calls, (Runs{{0, 2}, {1, 1}}));
}

TEST(ShowingTagsOnly, ADerivedClassThatCountsItsRowsGetsAFilledIndex) {
    Counted database(textColumns({"Name"}));
    fill(database, sixRows);
    EXPECT_EQ(database.index_tags(), 6U);
    database.insert_records(5, 2);  // rows 5 and 6, the second without a record
    for (const unsigned row : {1U, 3U}) database.set_tag(row, 1);
    EXPECT_EQ(std::pair(database.get_new_row(3), database.get_raw_row(99)), std::pair(3U, 99U))
        << "all is shown";
    const auto indexing = [&](auto operation) {
        database.indexing = true;
        operation();
        database.indexing = false;
    };
    indexing([&] { database.set_show_tags_only(7); });
    EXPECT_EQ(database.get_show_tags_only(), 7);
    // Rows without a record and rows past the end are listed as well.
    EXPECT_EQ(rowsOf(database),
              (std::vector<Fields>{{"r1"}, {"r3"}, {"no record"}, {"no record"}, {"no record"}}));
    EXPECT_EQ(std::pair(database.get_raw_row(1), database.get_new_row(3)), std::pair(3U, 1U));
    for (const unsigned row : {database.get_raw_row(5), database.get_new_row(0), database.get_new_row(77)})
        EXPECT_EQ(row, 0xFFFFFFFF);
    EXPECT_EQ(rowsOf(kesta(database, 1)), (std::vector<Fields>{{"r1"}, {"r3"}, {""}, {""}, {""}}))
        << "a copy has the rows shown";

    database.tagged.clear();
    database.set_all_tags(0);
    EXPECT_EQ(database.tagged, (std::vector<unsigned>{0, 1, 2, 3, 4})) << "the rows that are shown";
    EXPECT_EQ(database.get_num_records(), 5U) << "the index stays until it is rebuilt";
    database.set_sortfield(0);
    for (const unsigned row : {0U, 1U}) database.set_tag(row, 1);
    indexing([&] { database.sort(-1, 0); });
    EXPECT_EQ(rowsOf(database)[0], Fields{"r3"});
    EXPECT_EQ(rowsOf(database)[1], Fields{"r1"});
}
