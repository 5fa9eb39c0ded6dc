// The record line syntax: how a line becomes fields, how fields become a line.
#include <random>

#include "tests/TestSupport.h"
#include "tests/record/LineModel.h"

using namespace TestSupport;

namespace {

LineModel::Line readLine(const std::string& line) {
    Lines file({line});
    dbrecord record(0);
    const int count = record.read(file);
    return {fieldsOf(record), count};
}

std::string writeLine(const Fields& fields) {
    Lines file;
    makeRecord(fields)->write(file);
    return file.size() == 1 ? str(file[0]) : "no line";
}

std::string randomText(std::mt19937& random, std::string_view alphabet, std::size_t length) {
    std::string text;
    while (text.size() < length) text += alphabet[random() % alphabet.size()];
    return text;
}

const std::string specialBytes = bytes("\"\\n, \t\r\0a\x7F\x80\xFF");

}  // namespace

TEST(RecordLineReading, GivesTheFieldsAndTheCountOfEveryOddForm) {
    constexpr std::size_t most = dbrecord::longestField;
    const std::string longest(most, 'x');
    const std::vector<std::pair<std::string, LineModel::Line>> cases = {
        {R"("a, b",, c ,"say ""hi""")", {{"a, b", "", "c", R"(say "hi")"}, 4}},
        // A comma at the end of a line begins no field.
        {R"("a",,)", {{"a", ""}, 2}},
        // Quotes where a field did not begin with one are dropped, and do not begin a quoted stretch.
        {R"(a"b,c"d, "e,f")", {{"ab", "cd", "e", "f"}, 4}},
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
        // Nothing but white space is no line at all; two quotes are a field.
        {" \t\v\f\r", {{}, 0}},
        {R"("")", {{""}, 1}},
        // Long fields are cut, the byte they were cut at goes, and the rest is not quoted any more.
        {longest + ",b", {{longest, "b"}, 2}},
        {'"' + longest + "yz,w\",b", {{longest, "z", "w", "b"}, 4}},
        // A line feed and a doubled quote take one byte, whole; two backslashes are cut apart.
        {longest.substr(1) + R"(""yz)", {{longest.substr(1) + '"', "z"}, 2}},
        {longest.substr(2) + R"(\nyzw)", {{longest.substr(2) + "\ny", "w"}, 2}},
        {longest.substr(1) + R"(\\yz)", {{longest.substr(1) + '\\', "yz"}, 2}},
        // White space at the end of the cut field goes as well; dropped quotes take no room.
        {longest.substr(5) + "     yy", {{longest.substr(5), "y"}, 2}},
        {std::string(2 * (most / 2) + 1, '"') + "a", {{std::string(most / 2, '"') + "a"}, 1}},
    };
    for (const auto& [line, expected] : cases) {
        const LineModel::Line read = readLine(line);
        EXPECT_TRUE(same(read.fields, expected.fields)) << line.substr(0, 80);
        EXPECT_EQ(read.count, expected.count) << line.substr(0, 80);
        EXPECT_TRUE(same(LineModel::readLine(line).fields, expected.fields)) << "the model itself";
    }
}

TEST(RecordLines, AgreeWithTheModelOnRandomBytes) {
    std::mt19937 random(20240607);
    const std::string mostlyPlain = specialBytes + "\n" + std::string(60, 'p');
    for (int i = 0; i < 40000; ++i) {
        std::string line = i % 4 != 0 ? randomText(random, specialBytes, random() % 81)
                                      : randomText(random, mostlyPlain, random() % 200);
        if (i % 50 == 0) {
            // Plain up to just before one of the limits, so that every special byte meets it.
            const std::size_t limit = (i % 100 == 0 ? 1 : 2) * (dbrecord::longestField + 1);
            line.insert(random() % 2 * !line.empty(), limit - 12 + random() % 12, 'x');
        }
        const LineModel::Line read = readLine(line);
        const LineModel::Line expected = LineModel::readLine(line);
        ASSERT_EQ(read.count, expected.count) << "line " << i;
        ASSERT_TRUE(same(read.fields, expected.fields)) << "line " << i;

        Fields fields = {line.substr(0, random() % 70), line.substr(line.size() / 2), ""};
        fields.resize(random() % 4);
        ASSERT_TRUE(same(writeLine(fields), LineModel::writeLine(fields))) << "line " << i;
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
    const Step steps[] = {{R"("a","b")", 2, 2},
                          {"", 0, 0},
                          {"   ", 0, 0},
                          {"\x01", 1, 0},
                          {std::string(70000, ','), 70000, 4464}};
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
    EXPECT_EQ(record->read(file) + record->get_num_fields(), 0) << "there are no more lines";
}
