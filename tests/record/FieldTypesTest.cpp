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

struct StandardColumn {
    const char* name;
    int width;
};

// The first, the last and what lies between: one of each width, and names that begin alike.
constexpr StandardColumn standardColumns[] = {
    {"Cookie", 12},  {"Type", 6},         {"Name", 32},    {"Reel", 10},          {"Reel Type", 30},
    {"Scene", 24},   {"Duration", 16},    {"chans", 64},   {"Notes", 100},        {"film_origin", 3},
    {"sequence", 2}, {"end keycode", 17}, {"cam_date", 6}, {"start inkcode", 15}, {"film duration", 9},
    {"Mdrive", 4},   {"Flags", 8},        {"Tag", 1},
};

std::string inCapitals(std::string name) {
    for (char& c : name) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return name;
}

}  // namespace

TEST(FieldTypes, TokensNameTheirCodesInAnyCase) {
    const std::pair<const char*, int> tokens[] = {
        {"timecode", 116},   {"timecode_s", 84}, {"text", 97},     {"text_s", 65},
        {"time_of_day", 68}, {"date", 100},      {"dos_date", 77}, {"char", 99},
        {"numeric", 110},    {"long", 108},      {"double", 102},
    };
    for (const auto& [token, code] : tokens) {
        EXPECT_EQ(codeOf(token), code);
        EXPECT_EQ(codeOf(inCapitals(token)), code);
        EXPECT_EQ(codeOf(std::string(token) + " "), 0);
    }
}

TEST(FieldTypes, AnyOtherSingleByteIsItsOwnSignedCodeAndLongerTextIsNone) {
    for (int code = 1; code < 256; ++code) {
        const char byte = static_cast<char>(code);
        EXPECT_EQ(codeOf(std::string_view(&byte, 1)), code < 128 ? code : code - 256);
    }
    EXPECT_EQ(codeOf(""), 0);
    EXPECT_EQ(codeOf("xy"), 0);
    EXPECT_EQ(codeOf("tex"), 0);
}

TEST(FieldTypes, HeaderNamesKnownTypesByTokenAndOthersByTheirCharacter) {
    const std::pair<int, const char*> tokens[] = {
        {116, "timecode"}, {84, "timecode_s"}, {97, "text"}, {65, "text_s"}, {68, "time_of_day"},
        {100, "date"},     {77, "dos_date"},   {99, "c"},    {66, "B"},      {110, "numeric"},
        {108, "long"},     {102, "double"},    {117, "u"},   {64, "@"},      {1, "\x01"},
        {127, "\x7F"},     {-1, "\xFF"},       {34, "\"\""}, {10, "text"},
    };
    for (const auto& [code, token] : tokens) {
        Lines header;
        makeDatabase({{"x", type(code)}, {"y", DBFieldTypes::eText}})->save_column_header(header, false);
        EXPECT_EQ(str(header[2]), '"' + std::string(token) + R"(","text")") << code;
    }
}

TEST(FieldTypes, SettingAndReadingATypeMindsTheColumnAndStoresTextForNone) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a", "b"});
    EXPECT_TRUE(database->set_fieldtype(1, DBFieldTypes::eDate));
    EXPECT_EQ(columnTypes(*database), (std::vector<int>{97, 100}));
    EXPECT_EQ(database->get_field_type(1), 100);
    EXPECT_TRUE(database->set_fieldtype(1, DBFieldTypes::eNone));
    EXPECT_EQ(database->get_field_type(1), 97);
    EXPECT_TRUE(database->set_fieldtype(0, type(66)));
    EXPECT_EQ(database->get_fieldtype(0), 66);

    for (const unsigned bad : {2U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(database->set_fieldtype(bad, DBFieldTypes::eDate));
        EXPECT_EQ(database->get_field_type(bad), 0);
        EXPECT_EQ(database->get_fieldtype(bad), 0);
    }
    EXPECT_EQ(columnTypes(*database), (std::vector<int>{66, 97}));
}

TEST(FieldWidths, StandardColumnsHaveTheirLeastWidthInAnyCaseAndOthersFour) {
    for (const StandardColumn& column : standardColumns) {
        EXPECT_EQ(kesta::getMinFieldSize(column.name), column.width) << column.name;
        EXPECT_EQ(kesta::getMinFieldSize(inCapitals(column.name).c_str()), column.width) << column.name;
    }
    for (const char* const other : {"Comment", "", "Note", "Notess", "Tag "}) {
        EXPECT_EQ(kesta::getMinFieldSize(other), 4) << other;
    }
    EXPECT_EQ(kesta::getMinFieldSize(nullptr), 4);
}

TEST(FieldWidths, TheWidthOfAColumnIsItsLongestTextInBytes) {
    const Zr::Ptr<kesta> database = makeTextDatabase(
        {"a", "b", "c"}, {{"four", "x", ""}, {"\xC3\xA9\xC3\xA9\xC3\xA9", "", ""}, {"abc", "xy", ""}});
    EXPECT_EQ(database->get_fieldsize(0), 6U);
    EXPECT_EQ(database->get_fieldsize(1), 2U);
    EXPECT_EQ(database->get_fieldsize(2), 0U);
    EXPECT_EQ(database->get_fieldsize(3), 0U);
    EXPECT_EQ(database->get_fieldsize(0xFFFFFFFF), 0U);
    EXPECT_EQ(makeTextDatabase({"a"})->get_fieldsize(0), 0U);

    // Rows with fewer fields or without a record add nothing.
    int one = 1;
    database->get_record(1)->resizeRecord(0, &one, true);
    database->insert_records(0, 2);
    EXPECT_EQ(database->get_fieldsize(0), 4U);
}

TEST(LabelColumns, AreTheTwelveCodeColumnsInTheirExactSpelling) {
    const std::vector<std::string> labels = {
        "Start time",    "End time",    "snd start",     "snd end",     "start 24P code", "end 24P code",
        "start keycode", "end keycode", "start camcode", "end camcode", "start inkcode",  "end inkcode",
    };
    const Zr::Ptr<kesta> database = makeTextDatabase(labels);
    for (unsigned i = 0; i < labels.size(); ++i) {
        EXPECT_TRUE(database->isSpecialLabelField(i)) << labels[i];
        ASSERT_TRUE(database->set_fieldname(i, inCapitals(labels[i]).c_str()));
        EXPECT_FALSE(database->isSpecialLabelField(i)) << labels[i];
    }
    EXPECT_FALSE(database->isSpecialLabelField(12));
    EXPECT_FALSE(database->isSpecialLabelField(0x100000000UL));

    const Zr::Ptr<kesta> others =
        makeTextDatabase({"start time", "Start time ", "", "Duration", "Start tim"});
    for (unsigned i = 0; i < others->get_num_fields(); ++i) EXPECT_FALSE(others->isSpecialLabelField(i)) << i;
}
