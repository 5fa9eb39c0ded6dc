// One record: its fields, its shape, its marks, and the labels it exports.
#include <limits>

#include "support/Configuration.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

std::string valueIn(const configb& block, const char* key) {
    const strp_field* const field = block.find(key);
    return field ? str(field->get()) : "unset";
}

// A record in a database, both unchanged, with a way to see which of them a store marks.
class RecordInDatabase : public ::testing::Test {
 protected:
    bool marks(bool stored) {
        EXPECT_TRUE(stored);
        EXPECT_EQ(record->get_changed(), database->get_changed());
        const bool marked = record->get_changed();
        database->clear_changed();
        EXPECT_FALSE(record->get_changed() || database->get_changed());
        return marked;
    }

    Zr::Ptr<kesta> database = makeTextDatabase({"a", "b", "c"}, {{"", "", ""}});
    Zr::Ptr<dbrecord> record = database->get_record(0);
};

}  // namespace

TEST(Record, GivesNothingForFieldsItDoesNotHave) {
    const Zr::Ptr<dbrecord> record = makeRecord({"x", "", "z"});
    EXPECT_STREQ(record->get_field(1), "");
    for (const unsigned short missing : {std::uint16_t(3), std::uint16_t(65535)}) {
        EXPECT_EQ(record->get_field(missing), nullptr);
        EXPECT_EQ(&record->getField(missing), &record->getField(3)) << "one string for all that are missing";
    }
    for (const int bad : {-1, 3, 65536, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_FALSE(record->set_field(bad, "y", true) || record->set_field(bad, nullptr, false) ||
                     record->set_field(bad, 1) || record->set_field(bad, 1U) || record->set_field(bad, 1.0) ||
                     record->set_field(bad, true))
            << bad;
    }
    char buffer[] = "###";
    for (const int bad : {-1, 3, 65536}) EXPECT_FALSE(record->in_field(bad, buffer, 2)) << bad;
    EXPECT_FALSE(record->in_field(0, buffer, -1) || record->in_field(0, nullptr, 2));
    EXPECT_STREQ(buffer, "###");
    EXPECT_TRUE(record->in_field(1, buffer, 2)) << "an empty field is a field";
    EXPECT_EQ(std::string(buffer, 3), bytes("\0#\0"));
    EXPECT_FALSE(record->setField(3, "y") || record->get_changed());
    EXPECT_EQ(fieldsOf(*record), (Fields{"x", "", "z"}));
}

TEST_F(RecordInDatabase, StoresTextsByReferenceAndNumbersAndFlagsAsText) {
    Text emptied("x");
    emptied.resizeFor(0);
    EXPECT_FALSE(marks(record->setField(0, emptied))) << "an empty body is the same as none";
    EXPECT_TRUE(marks(record->set_field(0, nullptr, true)));
    const Text shared = text(bytes("shared by reference\0, zero bytes and all"));
    EXPECT_TRUE(marks(record->setField(1, shared)));
    EXPECT_EQ(record->get_field(1), shared.c_str());
    EXPECT_EQ(record->getField(1), shared);

    const auto after = [this](auto value) {
        EXPECT_TRUE(marks(record->set_field(2, value)));
        return std::string(record->get_field(2));
    };
    EXPECT_EQ(after(-0.000000004), "-0.00000000");
    EXPECT_EQ(after(123456789.123456789), "123456789.12345679");
    EXPECT_EQ(after(true), "t");
    EXPECT_EQ(after(false), "f");
    EXPECT_EQ(after(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(after(std::numeric_limits<unsigned>::max()), "4294967295");
    EXPECT_EQ(after(std::numeric_limits<double>::infinity()), "inf");
    // The longest numbers do not fit the room that numbers get; what fits is stored.
    const std::string longest = after(std::numeric_limits<double>::max());
    EXPECT_EQ(longest.substr(0, 10), "1797693134");
    EXPECT_EQ(longest.size(), 255U);
}

TEST_F(RecordInDatabase, ClearingRemovingAndResizingMarkNothing) {
    const Zr::Ptr<dbrecord> full = makeRecord({"a", "b", "c"});
    full->set_container(database.get());
    int fill = 0;
    full->removeField(3);
    full->removeField(0);
    full->resizeRecord(4, &fill, false);
    EXPECT_EQ(fieldsOf(*full), (Fields{"b", "c", "", ""}));
    full->resizeRecord(1, nullptr, true);
    full->resizeRecord(-1, &fill, true);
    full->resizeField(0, 0);
    EXPECT_EQ(full->get_num_fields(), 4);
    full->resizeRecord(1, &fill, true);
    EXPECT_TRUE(fieldsOf(*full) == Fields{"b"} && !full->is_blank());
    full->clear();
    EXPECT_TRUE(fieldsOf(*full) == Fields{""} && full->is_blank());
    full->resizeRecord(0, &fill, true);
    EXPECT_TRUE(full->is_blank());
    EXPECT_FALSE(full->get_changed() || database->get_changed());
}

TEST_F(RecordInDatabase, ACopyIsFreeAndUnmarkedAndSharesTheTexts) {
    record->set_field(0, "  x", false);
    record->set_tag(9);
    const Zr::Ptr<dbrecord> copy(new dbrecord(*record));
    EXPECT_EQ(copy->get_field(0), record->get_field(0));
    EXPECT_FALSE(copy->get_container() || copy->get_changed() || copy->get_tag());
    copy->set_field(0, "y", true);
    EXPECT_STREQ(record->get_field(0), "  x");
}

TEST_F(RecordInDatabase, AssigningTakesShapeAndTrimmedTextsAndKeepsContainerAndTag) {
    record->set_tag(5);
    const Zr::Ptr<dbrecord> other = makeRecord({"  x", "y  ", "", "4"});
    *record = *other;
    EXPECT_EQ(fieldsOf(*record), (Fields{"x", "y  ", "", "4"}));
    EXPECT_TRUE(record->get_container() == database.get() && record->get_tag() == 5 && marks(true));
    const dbrecord& itself = *record;
    *record = itself;
    EXPECT_EQ(fieldsOf(*record), (Fields{"x", "y  ", "", "4"}));

    database->clear_changed();
    *record = dbrecord(0);
    EXPECT_EQ(record->get_num_fields(), 0);
    EXPECT_FALSE(marks(true)) << "once for each field, so not at all without any";
}

TEST(RecordExport, SetsTheLabelKeysOfItsColumns) {
    const std::vector<std::string> columns = {"NAME",      "Notes",    "who",      "Scene",    "Description",
                                              "shot",      "REEL",     "snd reel", "24p REEL", "cam reel",
                                              "comp reel", "lab reel", "Duration", "notes"};
    const Zr::Ptr<kesta> database = makeTextDatabase(columns, {columns});
    configb block;
    EXPECT_EQ(database->get_record(0)->update(&block), 12);

    std::string exported;
    for (const char* const key :
         {"slate/take", "name", "notes", "who", "scene", "description", "shot", "reelid", "reelid1",
          "24P_reel", "camreel", "comp_reel", "lab_reel", "duration", "reel"}) {
        exported += valueIn(block, key) + ',';
    }
    EXPECT_EQ(exported,
              "NAME,NAME,notes,who,Scene,Description,shot,REEL,snd reel,24p REEL,cam reel,comp reel,lab "
              "reel,unset,unset,");
}

TEST(RecordExport, NeedsAContainerWithANameColumn) {
    configb block;
    EXPECT_EQ(makeTextDatabase({"notes", "who"}, {{"x", "y"}})->get_record(0)->update(&block), 0);
    EXPECT_EQ(makeRecord({"x"})->update(&block), 0);
    EXPECT_EQ(valueIn(block, "notes"), "unset");

    const Zr::Ptr<dbrecord> named = makeTextDatabase({"notes", "Name"}, {{"x", ""}})->get_record(0);
    EXPECT_EQ(named->update(&block), 0) << "its database has gone";
    const Zr::Ptr<kesta> database = makeTextDatabase({"notes", "Name"}, {{"x", ""}});
    EXPECT_EQ(database->get_record(0)->update(nullptr) * 10 + database->get_record(0)->update(&block), 1);
    EXPECT_EQ(valueIn(block, "name"), "") << "an empty name is exported too";

    // A record with fewer fields than its database exports those it has.
    int fill = 1;
    database->get_record(0)->resizeRecord(0, &fill, true);
    configb second;
    EXPECT_EQ(database->get_record(0)->update(&second), 0);
    EXPECT_EQ(valueIn(second, "notes"), "unset");
}
