// Column types: their codes and tokens, and the widths of standard columns.
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

DBFieldTypes::eType type(int code) {
    return static_cast<DBFieldTypes::eType>(code);
}

}  // namespace

TEST(FieldTypes, TokensNameTheirCodesInAnyCaseAndOtherSingleBytesThemselves) {
    // How each is written is told where it is not the token itself.
    const std::tuple<std::string, int, std::string> cases[] = {
        {"timecode", 116, ""},    {"timecode_s", 84, ""}, {"text", 97, ""},     {"time_of_day", 68, ""},
        {"Text_S", 65, "text_s"}, {"date", 100, ""},      {"dos_date", 77, ""}, {"char", 99, "c"},
        {"numeric", 110, ""},     {"long", 108, ""},      {"B", 66, ""},        {"DOUBLE", 102, "double"},
        {"\x01", 1, ""},          {"\x7F", 127, ""},      {"\xFF", -1, ""},     {"\"", 34, "\"\""},
        {"\n", 10, "text"},       {"", 0, "text"},        {"tex", 0, "text"},   {"text ", 0, "text"}};
    for (const auto& [token, code, written] : cases) {
        EXPECT_EQ(kesta::fieldTypeFromString(text(token)), code) << token;
        Lines header;
        makeDatabase({{"x", type(code)}, {"y", DBFieldTypes::eText}})->save_column_header(header, false);
        EXPECT_EQ(str(header[2]), '"' + (written.empty() ? token : written) + R"(","text")");
    }
}

TEST(FieldTypes, SettingAndReadingATypeMindsTheColumnAndStoresTextForNone) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a", "b"});
    EXPECT_TRUE(database->set_fieldtype(0, type(66)) && database->set_fieldtype(1, DBFieldTypes::eDate));
    EXPECT_EQ(columnTypes(*database), (std::vector<int>{66, 100}));
    EXPECT_TRUE(database->set_fieldtype(1, DBFieldTypes::eNone));
    EXPECT_EQ(database->get_field_type(1), 97);
    for (const unsigned bad : {2U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(database->set_fieldtype(bad, DBFieldTypes::eDate) || database->isSpecialLabelField(bad));
        EXPECT_EQ(database->get_field_type(bad) + database->get_fieldtype(bad), 0);
    }
}

TEST(FieldWidths, StandardColumnsHaveTheirLeastWidthAndOthersFour) {
    Lines header;
    makeTextDatabase({"Cookie",        "Type",          "Flags",          "Name",          "Date",
                      "Size",          "pic qual",      "aud qual",       "chans",         "Start time",
                      "End time",      "Duration",      "Reel",           "Reel Type",     "Scene",
                      "Shot",          "Who",           "Description",    "Notes",         "snd start",
                      "snd end",       "snd reel",      "start 24P code", "end 24P code",  "24P reel",
                      "film_origin",   "pulldown",      "sequence",       "start keycode", "end keycode",
                      "film duration", "start camcode", "end camcode",    "cam reel",      "comp reel",
                      "cam_date",      "start inkcode", "end inkcode",    "lab reel",      "Mdrive",
                      "Tag",           "NOTES",         "Note",           "Tag ",          ""})
        ->save_column_header(header, false);
    EXPECT_EQ(
        str(header[1]),
        R"("12","6","8","32","12","8","4","32","64","12","12","16","10","30","24","24","24","64","100","12","12",)"
        R"("10","12","12","10","3","3","2","17","17","9","12","12","10","10","6","15","15","10","4","1","100","4",)"
        R"("4","4")");
    EXPECT_EQ(kesta::getMinFieldSize(nullptr), 4);
}

TEST(FieldWidths, TheWidthOfAColumnIsItsLongestTextInBytes) {
    const Zr::Ptr<kesta> database = makeTextDatabase(
        {"a", "b", "c"}, {{"four", "x", ""}, {"\xC3\xA9\xC3\xA9\xC3\xA9", "", ""}, {"abc", "xy", ""}});
    const unsigned widths[] = {6, 2, 0, 0};
    for (unsigned field = 0; field < 4; ++field) EXPECT_EQ(database->get_fieldsize(field), widths[field]);
    EXPECT_EQ(database->get_fieldsize(0xFFFFFFFF), 0U);

    // Rows with fewer fields or without a record add nothing.
    int one = 1;
    database->get_record(1)->resizeRecord(0, &one, true);
    database->insert_records(0, 2);
    EXPECT_EQ(database->get_fieldsize(0), 4U);
}
