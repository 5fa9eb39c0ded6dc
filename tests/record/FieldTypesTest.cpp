// Column types: their codes and tokens, the widths of standard columns, and the label columns.
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

DBFieldTypes::eType type(int code) {
    return static_cast<DBFieldTypes::eType>(code);
}

int codeOf(std::string_view token) {
    return kesta::fieldTypeFromString(text(token));
}

std::string inCapitals(std::string name) {
    for (char& c : name) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return name;
}

}  // namespace

TEST(FieldTypes, TokensNameTheirCodesInAnyCaseAndOtherSingleBytesThemselves) {
    const std::pair<const char*, int> tokens[] = {
        {"timecode", 116}, {"timecode_s", 84}, {"text", 97}, {"text_s", 65},   {"time_of_day", 68},
        {"date", 100},     {"dos_date", 77},   {"char", 99}, {"numeric", 110}, {"long", 108},
        {"double", 102},   {"B", 66},          {"\xFF", -1}, {"", 0},          {"tex", 0},
        {"text ", 0},
    };
    for (const auto& [token, code] : tokens) {
        EXPECT_EQ(codeOf(token), code) << token;
        EXPECT_EQ(codeOf(inCapitals(token)), code) << token;
    }
}

TEST(FieldTypes, HeaderNamesKnownTypesByTokenAndOthersByTheirCharacter) {
    const std::pair<int, const char*> tokens[] = {
        {116, "timecode"},   {84, "timecode_s"}, {97, "text"},     {65, "text_s"},
        {68, "time_of_day"}, {100, "date"},      {77, "dos_date"}, {99, "c"},
        {110, "numeric"},    {108, "long"},      {102, "double"},  {1, "\x01"},
        {127, "\x7F"},       {-1, "\xFF"},       {34, "\"\""},     {10, "text"},
    };
    for (const auto& [code, token] : tokens) {
        Lines header;
        makeDatabase({{"x", type(code)}, {"y", DBFieldTypes::eText}})->save_column_header(header, false);
        EXPECT_EQ(str(header[2]), '"' + std::string(token) + R"(","text")") << code;
    }
}

TEST(FieldTypes, SettingAndReadingATypeMindsTheColumnAndStoresTextForNone) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a", "b"});
    EXPECT_TRUE(database->set_fieldtype(0, type(66)));
    EXPECT_TRUE(database->set_fieldtype(1, DBFieldTypes::eDate));
    EXPECT_EQ(columnTypes(*database), (std::vector<int>{66, 100}));
    EXPECT_TRUE(database->set_fieldtype(1, DBFieldTypes::eNone));
    EXPECT_EQ(database->get_field_type(1), 97);
    for (const unsigned bad : {2U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(database->set_fieldtype(bad, DBFieldTypes::eDate));
        EXPECT_EQ(database->get_field_type(bad), 0);
        EXPECT_EQ(database->get_fieldtype(bad), 0);
    }
}

TEST(FieldWidths, StandardColumnsHaveTheirLeastWidthInAnyCaseAndOthersFour) {
    // The first, the last, and names that begin alike.
    const std::pair<const char*, int> columns[] = {
        {"Cookie", 12}, {"Reel", 10},   {"Reel Type", 30}, {"Notes", 100}, {"sequence", 2},
        {"Tag", 1},     {"Comment", 4}, {"Note", 4},       {"Tag ", 4},    {"", 4},
    };
    for (const auto& [name, width] : columns) {
        EXPECT_EQ(kesta::getMinFieldSize(name), width) << name;
        EXPECT_EQ(kesta::getMinFieldSize(inCapitals(name).c_str()), width) << name;
    }
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

TEST(LabelColumns, AreTheTwelveCodeColumnsInTheirExactSpelling) {
    const Zr::Ptr<kesta> database =
        makeTextDatabase({"Start time", "End time", "snd start", "snd end", "start 24P code", "end 24P code",
                          "start keycode", "end keycode", "start camcode", "end camcode", "start inkcode",
                          "end inkcode", "start time", "Start time ", "", "Duration"});
    for (unsigned i = 0; i < 17; ++i) EXPECT_EQ(database->isSpecialLabelField(i), i < 12) << i;
    EXPECT_FALSE(database->isSpecialLabelField(0x100000000UL));
    EXPECT_TRUE(database->set_fieldname(0, "START TIME"));
    EXPECT_FALSE(database->isSpecialLabelField(0));
}
