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

TEST(Record, AnswersNothingForFieldsItDoesNotHave) {
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
    EXPECT_FALSE(record->setField(3, "y"));
    EXPECT_FALSE(record->get_changed());
    EXPECT_EQ(fieldsOf(*record), (Fields{"x", "", "z"}));
}

TEST(Record, CopiesAFieldIntoABufferWithAClosingZero) {
    const Zr::Ptr<dbrecord> record = makeRecord({"abcdef", ""});
    char buffer[11];
    const auto copied = [&](int field, int length) {
        std::fill(std::begin(buffer), std::end(buffer), '#');
        EXPECT_TRUE(record->in_field(field, buffer, length));
        return std::string(buffer, sizeof buffer);
    };
    EXPECT_EQ(copied(0, 3), bytes("abc\0#######"));
    EXPECT_EQ(copied(0, 0), bytes("\0##########"));
    EXPECT_EQ(copied(0, 10).substr(0, 7), bytes("abcdef\0"));
    EXPECT_EQ(buffer[10], '\0') << "the last byte of the room is always a zero";
    EXPECT_EQ(copied(1, 10)[0], '\0') << "an empty field is a field";

    std::fill(std::begin(buffer), std::end(buffer), '#');
    for (const int bad : {-1, 2, 65536}) EXPECT_FALSE(record->in_field(bad, buffer, 10)) << bad;
    EXPECT_FALSE(record->in_field(0, buffer, -1));
    EXPECT_FALSE(record->in_field(0, nullptr, 10));
    EXPECT_EQ(std::string(buffer, 11), std::string(11, '#'));
}

TEST_F(RecordInDatabase, TextIsTrimmedInFrontOnDemandAndMarksEvenWhenNothingChanges) {
    struct Case {
        const char* text;
        const char* trimmed;
        const char* whole;
    };
    const Case cases[] = {
        {"   abc  ", "abc  ", "   abc  "},
        {" \t\n\v\f\r x", "x", " \t\n\v\f\r x"},
        {"\xA0x", "\xA0x", "\xA0x"},  // only ASCII is white space
        {"  ", "", "  "},
        {"", "", ""},
        {nullptr, "", ""},
    };
    for (const Case& c : cases) {
        EXPECT_TRUE(marks(record->set_field(0, c.text, true)));
        EXPECT_STREQ(record->get_field(0), c.trimmed);
        EXPECT_TRUE(marks(record->set_field(0, c.text, false)));
        EXPECT_STREQ(record->get_field(0), c.whole);
    }
}

TEST_F(RecordInDatabase, StoringAStringMarksOnlyWhenItDiffers) {
    for (const std::string& value :
         {std::string("  x "), std::string("  X "), bytes("x\0y"), bytes("x\0z"), std::string()}) {
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
    Fields values;
    for (const std::string& column : columns) values.push_back("of " + column);
    const Zr::Ptr<kesta> database = makeTextDatabase(columns, {values});
    configb block;
    EXPECT_EQ(database->get_record(0)->update(&block), 12);

    const std::pair<const char*, const char*> expected[] = {
        {"slate/take", "of NAME"},   {"name", "of NAME"},        {"notes", "of notes"},
        {"who", "of who"},           {"scene", "of Scene"},      {"description", "of Description"},
        {"shot", "of shot"},         {"reelid", "of REEL"},      {"reelid1", "of snd reel"},
        {"24P_reel", "of 24p REEL"}, {"camreel", "of cam reel"}, {"comp_reel", "of comp reel"},
        {"lab_reel", "of lab reel"}, {"duration", "unset"},      {"reel", "unset"},
    };
    for (const auto& [key, value] : expected) EXPECT_EQ(valueIn(block, key), value) << key;
}

TEST(RecordExport, NeedsAContainerWithANameColumn) {
    configb block;
    EXPECT_EQ(makeTextDatabase({"notes", "who"}, {{"x", "y"}})->get_record(0)->update(&block), 0);
    EXPECT_EQ(makeRecord({"x"})->update(&block), 0);
    EXPECT_EQ(valueIn(block, "notes"), "unset");

    const Zr::Ptr<dbrecord> named = makeTextDatabase({"notes", "Name"}, {{"x", ""}})->get_record(0);
    EXPECT_EQ(named->update(&block), 0) << "its database has gone";
    const Zr::Ptr<kesta> database = makeTextDatabase({"notes", "Name"}, {{"x", ""}});
    EXPECT_EQ(database->get_record(0)->update(nullptr), 0);
    EXPECT_EQ(database->get_record(0)->update(&block), 1);
    EXPECT_EQ(valueIn(block, "name"), "") << "an empty name is exported too";

    // A record with fewer fields than its database exports those it has.
    int fill = 1;
    database->get_record(0)->resizeRecord(0, &fill, true);
    configb second;
    EXPECT_EQ(database->get_record(0)->update(&second), 0);
    EXPECT_EQ(valueIn(second, "notes"), "unset");
}
