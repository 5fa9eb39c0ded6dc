// One record: its fields, its shape, its marks, and the labels it exports.
#include <limits>

#include "support/Configuration.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

Zr::Ptr<dbrecord> makeRecord(const Fields& fields) {
    Zr::Ptr<dbrecord> record(new dbrecord(static_cast<unsigned short>(fields.size())));
    for (unsigned short i = 0; i < fields.size(); ++i) record->setField(i, text(fields[i]));
    record->clear_changed();
    return record;
}

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
        EXPECT_FALSE(record->get_changed());
        EXPECT_FALSE(database->get_changed());
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

TEST_F(RecordInDatabase, TextIsTrimmedInFrontOnDemandAndMarksEvenWhenNothingChanges) {
    const std::pair<const char*, const char*> cases[] = {{"   abc  ", "abc  "},
                                                         {" \t\n\v\f\r x", "x"},
                                                         {"\xA0x", "\xA0x"},  // only ASCII is white space
                                                         {"  ", ""},
                                                         {"", ""},
                                                         {nullptr, ""}};
    for (const auto& [stored, trimmed] : cases) {
        EXPECT_TRUE(marks(record->set_field(0, stored, true)));
        EXPECT_STREQ(record->get_field(0), trimmed);
        EXPECT_TRUE(marks(record->set_field(0, stored, false)));
        EXPECT_STREQ(record->get_field(0), stored ? stored : "");
    }
}

TEST_F(RecordInDatabase, StoringAStringMarksOnlyWhenItDiffers) {
    for (const std::string& value : {bytes("  x "), bytes("  X "), bytes("x\0y"), bytes("x\0z"), bytes("")}) {
        EXPECT_TRUE(marks(record->setField(0, text(value))));
        EXPECT_EQ(str(record->getField(0)), value);
        EXPECT_FALSE(marks(record->setField(0, text(value))));
    }
    Text emptied("x");
    emptied.resizeFor(0);
    EXPECT_FALSE(marks(record->setField(0, emptied))) << "an empty body is the same as none";

    const Text shared("shared by reference");
    EXPECT_TRUE(marks(record->setField(1, shared)));
    EXPECT_EQ(record->get_field(1), shared.c_str());
}

TEST_F(RecordInDatabase, NumbersAndFlagsAreStoredAsText) {
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
    EXPECT_EQ(fieldsOf(*full), (Fields{"b"}));
    EXPECT_FALSE(full->is_blank());
    full->clear();
    EXPECT_EQ(fieldsOf(*full), (Fields{""}));
    EXPECT_TRUE(full->is_blank());
    full->resizeRecord(0, &fill, true);
    EXPECT_TRUE(full->is_blank());
    EXPECT_FALSE(full->get_changed());
    EXPECT_FALSE(database->get_changed());
}

TEST_F(RecordInDatabase, ACopyIsFreeAndUnmarkedAndSharesTheTexts) {
    record->set_field(0, "  x", false);
    record->set_tag(9);
    const Zr::Ptr<dbrecord> copy(new dbrecord(*record));
    EXPECT_EQ(copy->get_field(0), record->get_field(0));
    EXPECT_EQ(copy->get_container(), nullptr);
    EXPECT_FALSE(copy->get_changed());
    EXPECT_EQ(copy->get_tag(), 0);
    copy->set_field(0, "y", true);
    EXPECT_STREQ(record->get_field(0), "  x");
}

TEST_F(RecordInDatabase, AssigningTakesShapeAndTrimmedTextsAndKeepsContainerAndTag) {
    record->set_tag(5);
    const Zr::Ptr<dbrecord> other = makeRecord({"  x", "y  ", "", "4"});
    *record = *other;
    EXPECT_EQ(fieldsOf(*record), (Fields{"x", "y  ", "", "4"}));
    EXPECT_EQ(record->get_container(), database.get());
    EXPECT_EQ(record->get_tag(), 5);
    EXPECT_TRUE(marks(true));

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
