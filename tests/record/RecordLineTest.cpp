// The record line syntax: how a line becomes fields, how fields become a line.
#include <random>

#include "tests/TestSupport.h"
#include "tests/record/LineModel.h"

using namespace TestSupport;

namespace {

using Strings = std::vector<std::string>;

struct Outcome {
    Fields fields;
    int count;
};

std::vector<Outcome> readLines(const Strings& lines) {
    Lines file(lines);
    std::vector<Outcome> outcomes;
    dbrecord record(0);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const int count = record.read(file);
        outcomes.push_back({fieldsOf(record), count});
    }
    return outcomes;
}

Strings writeLines(const std::vector<Fields>& rows) {
    Lines file;
    for (const Fields& fields : rows) {
        dbrecord record(static_cast<unsigned short>(fields.size()));
        for (unsigned short i = 0; i < fields.size(); ++i) record.setField(i, text(fields[i]));
        record.write(file);
    }
    return file.all();
}

// What becomes of lines that are read and written.
Strings readAndWritten(const Strings& lines) {
    std::vector<Fields> rows;
    for (const Outcome& outcome : readLines(lines)) rows.push_back(outcome.fields);
    return writeLines(rows);
}

void expectSameAsModel(const Strings& lines) {
    const std::vector<Outcome> outcomes = readLines(lines);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const LineModel::Line expected = LineModel::readLine(lines[i]);
        ASSERT_EQ(outcomes[i].count, expected.count) << testing::PrintToString(lines[i]);
        ASSERT_EQ(outcomes[i].fields, expected.fields) << testing::PrintToString(lines[i]);
    }
}

std::string randomLine(std::mt19937& random, std::string_view alphabet, std::size_t length) {
    std::string line;
    while (line.size() < length) line += alphabet[random() % alphabet.size()];
    return line;
}

const std::string specialBytes = bytes("\"\\n, \t\r\0a\x7F\x80\xFF");

std::string quoted(const std::string& field) {
    return '"' + field + '"';
}

}  // namespace

TEST(RecordLineReading, GivesTheFieldsAndTheCountOfEveryForm) {
    struct Case {
        std::string line;
        Fields fields;
        int count;
    };
    const std::vector<Case> cases = {
        // Plain forms.
        {R"("a","b")", {"a", "b"}, 2},
        {R"(a,"b",c)", {"a", "b", "c"}, 3},
        {R"(,)", {""}, 1},
        {R"(,a)", {"", "a"}, 2},
        {R"("a",,"c")", {"a", "", "c"}, 3},
        {R"("a",,)", {"a", ""}, 2},
        // Commas inside quotes.
        {R"("a,b","c")", {"a,b", "c"}, 2},
        {R"("a,b)", {"a,b"}, 1},
        // Doubled quotes, inside quotes and out.
        {R"("say ""hi""")", {R"(say "hi")"}, 1},
        {R"("""")", {R"(")"}, 1},
        {R"("""a,b""",c)", {R"("a,b")", "c"}, 2},
        {R"("""",""","b")", {R"(")", R"(",b)"}, 2},
        // Quotes where a field did not begin with one are dropped, and do not begin a quoted stretch.
        {R"(a"b"c)", {"abc"}, 1},
        {R"(a"b,c"d)", {"ab", "cd"}, 2},
        {R"(a, "b,c")", {"a", "b", "c"}, 3},
        // Text between the closing quote and the comma is kept; a third quote does not quote again.
        {R"("a"b,c)", {"ab", "c"}, 2},
        {R"("a"b"c,d")", {"abc", "d"}, 2},
        {R"(""abc"")", {R"(abc")"}, 1},
        // A quote at the end, and alone.
        {R"(")", {""}, 1},
        {R"(a,")", {"a", ""}, 2},
        // White space around a field goes, inside quotes too; between words it stays.
        {R"(  a  ,  b  )", {"a", "b"}, 2},
        {R"("  a  b  ")", {"a  b"}, 1},
        {"a, \t\v\f\r b", {"a", "b"}, 2},
        {"\" \t a\t\r\v\f \",b", {"a", "b"}, 2},
        // White space after a dropped quote is not leading any more.
        {R"("" a)", {" a"}, 1},
        // Backslashes.
        {R"("a\nb")", {"a\nb"}, 1},
        {R"("\na\n")", {"\na"}, 1},
        {R"("a\\b")", {R"(a\\b)"}, 1},
        {R"("a\\nb")", {R"(a\\nb)"}, 1},
        {R"("C:\temp")", {R"(C:\temp)"}, 1},
        {R"(a\\\)", {R"(a\\\)"}, 1},
        {R"(\,b)", {R"(\)", "b"}, 2},
        {R"("a\","b")", {R"(a\)", "b"}, 2},
        // Control characters between fields count and give no field; inside one they are kept.
        {"\"a\",\t\"b\"", {"a", "b"}, 3},
        {"\t\r\"a\"", {"a"}, 3},
        {"\"a\",\t\t", {"a"}, 3},
        {bytes("\0a,\0\0b"), {"a", "b"}, 5},
        {"\x01", {}, 1},
        {bytes("\"a\0b\",c"), {bytes("a\0b"), "c"}, 2},
        // Only ASCII is white space or control.
        {"\x80,\xFF,\xA0,\x85", {"\x80", "\xFF", "\xA0", "\x85"}, 4},
        {"\xA0 a \xA0", {"\xA0 a \xA0"}, 1},
        // Nothing but white space is no line at all.
        {"", {}, 0},
        {" \t\v\f\r", {}, 0},
    };
    for (const Case& c : cases) {
        const Outcome outcome = readLines({c.line}).front();
        EXPECT_EQ(outcome.fields, c.fields) << testing::PrintToString(c.line);
        EXPECT_EQ(outcome.count, c.count) << testing::PrintToString(c.line);
    }
}

TEST(RecordLineReading, FindsEverySpecialByteAtEveryPlaceOfALongRun) {
    const std::vector<std::string> specials = {"\"", "\"\"", ",",  "\",",  "\\",   "\\n",  "\\\\",     "\\\"",
                                               "\t", " ",    "\r", "\x7F", "\x80", "\xFF", bytes("\0")};
    Strings lines;
    for (std::size_t length = 0; length <= 70; ++length) {
        for (const std::string& special : specials) {
            const std::string run = std::string(length, 'x') + special;
            for (const std::string& rest : {std::string(), std::string("y"), std::string(33, 'y') + "\",z"}) {
                lines.push_back(run + rest);
                lines.push_back('"' + run + rest);
            }
        }
    }
    expectSameAsModel(lines);
}

TEST(RecordLineReading, CutsFieldsAt4095BytesAndGoesOnBehindTheByteItCutAt) {
    const std::string longest(4095, 'x');
    struct Case {
        std::string line;
        Fields fields;
        int count;
    };
    const std::vector<Case> cases = {
        {quoted(std::string(4094, 'x')) + ",b", {std::string(4094, 'x'), "b"}, 2},
        // The comma is the byte it was cut at, as good as read.
        {longest + ",b", {longest, "b"}, 2},
        // The closing quote is the byte it was cut at, so the comma ends an empty field.
        {quoted(longest), {longest}, 1},
        {quoted(longest) + ",b", {longest, "", "b"}, 3},
        {longest + "y\"z,w\"", {longest, "z,w"}, 2},
        // The rest of a quoted field is not quoted any more.
        {quoted(longest + "yz,w") + ",b", {longest, "z", "w", "b"}, 4},
        {std::string(3 * 4096, 'x'), {longest, longest, longest}, 3},
        // White space at the end of the cut field goes as well.
        {std::string(4090, 'x') + "     yy", {std::string(4090, 'x'), "y"}, 2},
        // A line feed and a doubled quote take one byte, whole, at the limit.
        {std::string(4094, 'x') + R"(""yz)", {std::string(4094, 'x') + '"', "z"}, 2},
        {std::string(4093, 'x') + R"(\nyzw)", {std::string(4093, 'x') + "\ny", "w"}, 2},
        // Two backslashes are cut apart, as a backslash before anything else is a byte of its own.
        {std::string(4094, 'x') + R"(\\yz)", {std::string(4094, 'x') + '\\', "yz"}, 2},
        // Dropped quotes take no room.
        {std::string(4095, '"') + "a", {std::string(2047, '"') + "a"}, 1},
    };
    for (const Case& c : cases) {
        const Outcome outcome = readLines({c.line}).front();
        EXPECT_EQ(outcome.fields, c.fields) << "length " << c.line.size();
        EXPECT_EQ(outcome.count, c.count) << "length " << c.line.size();
    }
}

TEST(RecordLineReading, AgreesWithTheSlowReadingOnRandomLines) {
    std::mt19937 random(20240607);
    Strings lines;
    while (lines.size() < 60000) lines.push_back(randomLine(random, specialBytes, random() % 81));
    // Longer runs of plain bytes between the special ones.
    const std::string mostlyPlain = specialBytes + std::string(60, 'p');
    while (lines.size() < 80000) lines.push_back(randomLine(random, mostlyPlain, random() % 200));
    // Plain up to just before a limit, so that every special byte meets it.
    for (const std::size_t limit : {4095U, 2U * 4096U}) {
        for (int i = 0; i < 1500; ++i) {
            const std::string begin =
                (random() % 2 ? "\"" : "") + std::string(limit - 12 + random() % 12, 'x');
            lines.push_back(begin + randomLine(random, specialBytes, random() % 24));
            lines.push_back(randomLine(random, mostlyPlain, limit - 8 + random() % 16));
        }
    }
    expectSameAsModel(lines);
}

TEST(RecordLineReading, TakesOneLineAtATimeAndMarksTheRecordChangedUnlessTheLineIsBlank) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a"});
    Lines file({R"("a","b","c")", "", "   ", "\x01", R"("")"});
    const Zr::Ptr<dbrecord> record = database->newRecord();

    EXPECT_EQ(record->read(file), 3);
    EXPECT_EQ(file.cursor(), 1U);
    EXPECT_TRUE(record->get_changed());
    EXPECT_TRUE(database->get_changed());

    record->clear_changed();
    database->clear_changed();
    for (const unsigned cursor : {2U, 3U}) {
        EXPECT_EQ(record->read(file), 0);
        EXPECT_EQ(record->get_num_fields(), 0);
        EXPECT_EQ(file.cursor(), cursor);
        EXPECT_FALSE(record->get_changed());
        EXPECT_FALSE(database->get_changed());
    }

    EXPECT_EQ(record->read(file), 1) << "a line of control characters gives no fields, but is no blank line";
    EXPECT_EQ(record->get_num_fields(), 0);
    EXPECT_TRUE(record->get_changed());

    EXPECT_EQ(record->read(file), 1);
    EXPECT_EQ(record->get_num_fields(), 1);

    record->clear_changed();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(record->read(file), 0);
        EXPECT_EQ(record->get_num_fields(), 0);
        EXPECT_FALSE(record->get_changed());
    }
}

TEST(RecordLineReading, KeepsContainerAndTagAndTakesMoreFieldsThan16BitsCount) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a"});
    const Zr::Ptr<dbrecord> record = database->newRecord();
    record->set_tag(7);
    Lines file({std::string(70000, ',')});
    EXPECT_EQ(record->read(file), 70000);
    EXPECT_EQ(record->get_num_fields(), 70000 % 65536);
    EXPECT_EQ(record->get_tag(), 7);
    EXPECT_EQ(record->get_container(), database.get());
    EXPECT_EQ(record->get_field(4463), std::string());
    EXPECT_EQ(record->get_field(4464), nullptr);
}

TEST(RecordLineWriting, QuotesEveryFieldAndEscapesOnlyQuotesAndLineFeeds) {
    const std::vector<std::pair<Fields, std::string>> cases = {
        {{"Reel 1", "", R"(say "hi")"}, R"("Reel 1","","say ""hi""")"},
        {{}, ""},
        {{"  x  "}, R"("  x  ")"},
        {{"a\rb\r"}, R"("ab")"},
        {{"a\nb", "\n"}, R"("a\nb","\n")"},
        {{bytes("a\0\t\x7F\x80\xFF")}, bytes("\"a\0\t\x7F\x80\xFF\"")},
        {{std::string(9000, 'x')}, quoted(std::string(9000, 'x'))},
    };
    for (const auto& [fields, line] : cases) EXPECT_EQ(writeLines({fields}).front(), line);
}

TEST(RecordLineWriting, AgreesWithTheSlowWritingOnRandomFields) {
    std::mt19937 random(11);
    std::vector<Fields> rows(20000);
    for (Fields& fields : rows) {
        fields.resize(random() % 5);
        for (std::string& field : fields) field = randomLine(random, specialBytes + "\n", random() % 40);
    }
    const Strings lines = writeLines(rows);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ASSERT_EQ(lines[i], LineModel::writeLine(rows[i])) << testing::PrintToString(rows[i]);
    }
}

TEST(RecordLineRoundTrip, IsStableOnceALineHasBeenWrittenAndReadBack) {
    std::mt19937 random(3);
    Strings lines;
    while (lines.size() < 20000) lines.push_back(randomLine(random, specialBytes, random() % 81));
    const Strings settled = readAndWritten(readAndWritten(lines));
    const Strings again = readAndWritten(settled);
    for (std::size_t i = 0; i < lines.size(); ++i)
        ASSERT_EQ(again[i], settled[i]) << testing::PrintToString(lines[i]);
}
