// The record line syntax: how a line becomes fields, how fields become a line.
#include <random>

#include "tests/TestSupport.h"
#include "tests/record/LineModel.h"

using namespace TestSupport;

namespace {

using Strings = std::vector<std::string>;

std::vector<LineModel::Line> readLines(const Strings& lines) {
    Lines file(lines);
    std::vector<LineModel::Line> result;
    dbrecord record(0);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const int count = record.read(file);
        result.push_back({fieldsOf(record), count});
    }
    return result;
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

std::string randomLine(std::mt19937& random, std::string_view alphabet, std::size_t length) {
    std::string line;
    while (line.size() < length) line += alphabet[random() % alphabet.size()];
    return line;
}

const std::string specialBytes = bytes("\"\\n, \t\r\0a\x7F\x80\xFF");

}  // namespace

TEST(RecordLineReading, GivesTheFieldsAndTheCountOfEveryOddForm) {
    const std::string longest(4095, 'x');
    const std::vector<std::pair<std::string, LineModel::Line>> cases = {
        {R"("a, b",, c ,"say ""hi""")", {{"a, b", "", "c", R"(say "hi")"}, 4}},
        // A comma at the end of a line begins no field.
        {R"("a",,)", {{"a", ""}, 2}},
        // Quotes where a field did not begin with one are dropped, and do not begin a quoted stretch.
        {R"(a"b,c"d)", {{"ab", "cd"}, 2}},
        {R"(a, "b,c")", {{"a", "b", "c"}, 3}},
        // Text between the closing quote and the comma is kept; a third quote does not quote again.
        {R"("a"b"c,d")", {{"abc", "d"}, 2}},
        // White space goes inside quotes too, but what follows a dropped quote is not leading any more.
        {"\" \t a\t\r\v\f \",\"\" b", {{"a", " b"}, 2}},
        // Backslashes stand for themselves, but before an n; two stay two.
        {R"("\na\\n\","b:\t")", {{"\na\\\\n\\", "b:\\t"}, 2}},
        // Control characters between fields count and give no field; inside one they are kept.
        {bytes("\t\ra\0b,\0\0c"), {{bytes("a\0b"), "c"}, 6}},
        {"\x01", {{}, 1}},
        // Only ASCII is white space or control.
        {"\xA0 a \xA0,\x85", {{"\xA0 a \xA0", "\x85"}, 2}},
        // Nothing but white space is no line at all.
        {" \t\v\f\r", {{}, 0}},
        // Fields are cut at 4095 bytes; the byte a field was cut at is as good as read, be it a comma or a
        // quote.
        {longest + ",b", {{longest, "b"}, 2}},
        {'"' + longest + "\",b", {{longest, "", "b"}, 3}},
        // The rest of a quoted field is not quoted any more.
        {'"' + longest + "yz,w\",b", {{longest, "z", "w", "b"}, 4}},
        // A line feed and a doubled quote take one byte, whole; two backslashes are cut apart.
        {longest.substr(1) + R"(""yz)", {{longest.substr(1) + '"', "z"}, 2}},
        {longest.substr(2) + R"(\nyzw)", {{longest.substr(2) + "\ny", "w"}, 2}},
        {longest.substr(1) + R"(\\yz)", {{longest.substr(1) + '\\', "yz"}, 2}},
        // White space at the end of the cut field goes as well; dropped quotes take no room.
        {std::string(4090, 'x') + "     yy", {{std::string(4090, 'x'), "y"}, 2}},
        {std::string(4095, '"') + "a", {{std::string(2047, '"') + "a"}, 1}},
    };
    for (const auto& [line, expected] : cases) {
        const LineModel::Line read = readLines({line}).front();
        EXPECT_EQ(read.fields, expected.fields) << testing::PrintToString(line);
        EXPECT_EQ(read.count, expected.count) << testing::PrintToString(line);
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
    const std::vector<LineModel::Line> read = readLines(lines);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const LineModel::Line expected = LineModel::readLine(lines[i]);
        ASSERT_EQ(read[i].count, expected.count) << testing::PrintToString(lines[i]);
        ASSERT_EQ(read[i].fields, expected.fields) << testing::PrintToString(lines[i]);
    }
}

TEST(RecordLineReading, TakesOneLineAtATimeAndMarksTheRecordChangedUnlessTheLineIsBlank) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a"});
    const Zr::Ptr<dbrecord> record = database->newRecord();
    record->set_tag(7);
    struct Step {
        std::string line;
        int count;
        int fields;  // counted in 16 bits
    };
    const Step steps[] = {
        {R"("a","b")", 2, 2},
        {"", 0, 0},
        {"   ", 0, 0},
        {"\x01", 1, 0},
        {std::string(70000, ','), 70000, 4464},
    };
    Lines file;
    for (const Step& step : steps) file.appendLine(text(step.line));
    for (const Step& step : steps) {
        database->clear_changed();
        record->clear_changed();
        EXPECT_EQ(record->read(file), step.count);
        EXPECT_EQ(record->get_num_fields(), step.fields);
        EXPECT_EQ(record->get_changed(), step.count != 0) << step.count;
        EXPECT_EQ(database->get_changed(), step.count != 0) << step.count;
    }
    EXPECT_EQ(record->get_tag(), 7);
    EXPECT_EQ(record->get_container(), database.get());

    record->clear_changed();
    EXPECT_EQ(record->read(file), 0) << "there are no more lines";
    EXPECT_EQ(record->get_num_fields(), 0);
    EXPECT_FALSE(record->get_changed());
}

TEST(RecordLineWriting, QuotesEveryFieldAndEscapesOnlyQuotesAndLineFeeds) {
    std::vector<Fields> rows = {
        {"Reel 1", "", R"(say "hi")"}, {}, {" a\rb\r"}, {std::string(9000, 'x'), "\n"}};
    EXPECT_EQ(writeLines(rows), (Strings{R"("Reel 1","","say ""hi""")", "", R"(" ab")",
                                         '"' + std::string(9000, 'x') + R"(","\n")"}));

    std::mt19937 random(11);
    rows.resize(20000);
    for (Fields& fields : rows) {
        fields.resize(random() % 5);
        for (std::string& field : fields) field = randomLine(random, specialBytes + "\n", random() % 40);
    }
    const Strings lines = writeLines(rows);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        ASSERT_EQ(lines[i], LineModel::writeLine(rows[i])) << testing::PrintToString(rows[i]);
    }
}
