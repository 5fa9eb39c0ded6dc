// What an observer hears of a load: every loss with its place, and where each parameter, the columns and each
// record come from.
#include <random>

#include "record/LoadObserver.h"
#include "tests/TestSupport.h"
#include "tests/record/LineModel.h"

using namespace TestSupport;

namespace {

using Heard = std::vector<std::string>;

/// Writes down what it hears.
class Listener : public LoadObserver {
 public:
    Heard heard;

    void lost(const LoadEvent& event) override {
        static const char* const names[] = {"cut",        "quote dropped",  "not closed",      "trimmed",
                                            "no colon",   "no key",         "more fields",     "no log",
                                            "revision",   "no marker",      "types",           "type unknown",
                                            "no columns", "as header",      "wrong count",     "blank",
                                            "limit",      "values dropped", "quote unmatched", "unreadable"};
        std::string words = names[event.kind] + (" " + std::to_string(event.line));
        if (event.field != 0) words += "." + std::to_string(event.field);
        if (event.count != 0) words += " of " + std::to_string(event.count);
        if (event.expected != 0) words += " for " + std::to_string(event.expected);
        if (event.linesAfter != 0) words += " before " + std::to_string(event.linesAfter);
        if (!event.text.empty()) words += " <" + std::string(event.text) + ">";
        heard.push_back(words);
    }
    void parameterRead(unsigned line, const Zr::AttribValuePair& parameter) override {
        heard.push_back("param " + std::to_string(line) + ' ' + str(parameter.name()));
    }
    void columnsRead(unsigned line, const std::vector<DBFieldDesc>& columns) override {
        heard.push_back("columns " + std::to_string(line) + ' ' + std::to_string(columns.size()));
    }
    void recordRead(unsigned line, std::string_view text, const dbrecord& record) override {
        heard.push_back("record " + std::to_string(line) + " <" + std::string(text) + "> " +
                        str(record.getField(0)));
    }
};

class LoadObserving : public TempFolderTest {
 protected:
    Heard hear(const std::string& name, const std::string& content, int maxRecords = 99, bool strict = true) {
        Listener listener;
        kesta database;
        database.set_filename(wide(folder.with(name, content)));
        database.loadFromFile(maxRecords, strict, listener);
        return listener.heard;
    }

    CapturedLog log;
};

const std::string oneColumn = "KESTA:Rev 1\nKESTA\n4\ntext\na\n";
const std::string twoColumns = "KESTA:Rev 1\nKESTA\n4,4\ntext,text\na,b\n";

}  // namespace

TEST_F(LoadObserving, TellsEveryLossWithItsPlace) {
    const std::string longest(dbrecord::longestField, 'x');
    struct Case {
        std::string content;
        Heard heard;  // after what the header of one or two columns tells
        int maxRecords = 99;
    };
    const Heard header = {"param 1 KESTA", "columns 5 1"};
    const Heard wideHeader = {"param 1 KESTA", "columns 5 2"};
    const Case records[] = {
        // Nothing is lost.
        {twoColumns + "\"say \"\"x\"\"\",\"\"\n ,b\\n\n \"1\" , \"2\"\n\n \n",
         {"record 6 <\"say \"\"x\"\"\",\"\"> say \"x\"", "trimmed 7.1", "trimmed 7.2", "record 7 < ,b\\n> ",
          "record 8 < \"1\" , \"2\"> 1"}},
        {twoColumns + "\" 1\",2 \n1,\"2 \" \n",
         {"trimmed 6.1", "trimmed 6.2", "record 6 <\" 1\",2 > 1", "trimmed 7.2", "record 7 <1,\"2 \" > 1"}},
        {twoColumns + "5\" reel,\"a\"b\"\n1,\"2\n",
         {"quote dropped 6.1", "quote dropped 6.2", "record 6 <5\" reel,\"a\"b\"> 5 reel", "not closed 7.2",
          "record 7 <1,\"2> 1"}},
        {twoColumns + longest + "yz\" \n", {"cut 6.1", "record 6 <" + longest + "yz\" > " + longest}},
        {twoColumns + longest + ",b\n", {"record 6 <" + longest + ",b> " + longest}},
        {twoColumns + "1,2\n1\n\n1,2\n3\n", {"record 6 <1,2> 1", "wrong count 7 of 1 for 2 before 2"}},
        {twoColumns + "1,2,3\n", {"wrong count 6 of 3 for 2"}},
        {twoColumns + "1,2\n \t\n3,4\n\n5,6", {"record 6 <1,2> 1", "blank 7 before 2"}},
        {twoColumns + "1,2\n3,4\n\n5,6\n", {"record 6 <1,2> 1", "limit 6 before 2"}, 1},
        {twoColumns + "1,2\n", {"record 6 <1,2> 1"}, 1},
        {twoColumns + "1,2\n", {"limit 5 before 1"}, 0},
        {oneColumn + "Kesta\n4\n\" t\nb \nc\n",
         {"as header 6.1", "trimmed 9.1", "record 9 <b > b", "record 10 <c> c"}},
        {oneColumn + "KESTA\n4\ntext\n\nb\n", {"as header 6.1", "blank 9 before 1"}},
    };
    for (const Case& c : records) {
        Heard expected = c.content.compare(0, twoColumns.size(), twoColumns) == 0 ? wideHeader : header;
        expected.insert(expected.end(), c.heard.begin(), c.heard.end());
        EXPECT_EQ(hear("a.log", c.content, c.maxRecords), expected) << testing::PrintToString(c.content);
    }

    const Case headers[] = {
        {"", {"no log 0"}},
        {"a,\"b\n", {"not closed 1.2", "no log 1"}},
        {"KESTA:Rev 2\nMode\n:x\n\nFPS: 24,b,\"c\n\"Title:\"x\"\nKESTA\n4\n\"t,x\n\" a\n",
         {"param 1 KESTA", "revision 1 <Rev 2>", "no colon 2", "no key 3", "not closed 5.3", "trimmed 5.1",
          "param 5 FPS", "more fields 5 of 2", "quote dropped 6.1", "param 6 Title", "not closed 10.1",
          "trimmed 10.1", "type unknown 9.1 <t,x>", "columns 10 1"}},
        {"KESTA:Rev 1\nKESTA\n4\ntext\na,b\n1,2\n", {"param 1 KESTA", "types 4 of 1 for 2"}},
        {"KESTA:Rev 1\nKESTA\n", {"param 1 KESTA", "no columns 2", "columns 2 0"}},
        {"KESTA:Rev 1\na:b\n\na,b:c\nd\n",
         {"param 1 KESTA", "param 2 a", "no colon 4", "no colon 5", "no marker 4"}},
        {"KESTA:Rev 1\na:b", {"param 1 KESTA", "param 2 a", "no marker 2"}},
    };
    for (const Case& c : headers) {
        EXPECT_EQ(hear("a.log", c.content), c.heard) << testing::PrintToString(c.content);
    }
    EXPECT_EQ(hear("a.log", "KESTA:Rev 1\na,b", 9, false),
              (Heard{"param 1 KESTA", "no colon 2", "no marker 2", "columns 2 2"}));
}

TEST_F(LoadObserving, TellsWhatPlainTablesLose) {
    EXPECT_EQ(hear("a.csv", "a,\"b\n\n1,2,\"3,4\"\n 5\n"),
              (Heard{"quote unmatched 1", "columns 1 2", "values dropped 3 of 1", "record 3 <1,2,\"3,4\"> 1",
                     "record 4 < 5>  5"}));
    EXPECT_EQ(hear("a.csv", "\n \na\n"), (Heard{"no columns 1 before 1"}));
}

TEST_F(LoadObserving, TellsOfAFileThatCannotBeRead) {
    kesta database;
    database.set_filename(wide(folder / "missing"));
    Listener listener;
    database.loadFromFile(9, true, listener);
    EXPECT_EQ(listener.heard, (Heard{"unreadable 0 of " + std::to_string(ENOENT)}));
}

TEST_F(LoadObserving, LoadsTheSameAsWithoutAndLeavesNothingMarked) {
    std::mt19937 random(3);
    const std::string alphabet = bytes("\"\"\\n, \t\r\0aKb:");
    for (int i = 0; i < 3000; ++i) {
        std::string content = random() % 8 == 0 ? oneColumn : twoColumns;
        for (auto lines = random() % 4; lines != 0; --lines) {
            for (auto length = random() % 12; length != 0; --length)
                content += alphabet[random() % alphabet.size()];
            content += random() % 4 == 0 ? "\n" : ",\"x\"\n";
        }
        if (random() % 4 == 0) content.erase(random() % content.size(), 1);
        const WideText name = wide(folder.with("a.log", content));
        const kesta plain(name, 9, true);
        Listener listener;
        kesta observed;
        observed.set_filename(name);
        observed.loadFromFile(9, true, listener);
        const std::string shown = testing::PrintToString(content);
        ASSERT_EQ(rowsOf(observed), rowsOf(plain)) << shown;
        ASSERT_EQ(columnNames(observed), columnNames(plain)) << shown;
        ASSERT_EQ(paramsOf(observed), paramsOf(plain)) << shown;
        ASSERT_EQ(observed.get_valid(), plain.get_valid()) << shown;
        for (unsigned row = 0; row < observed.get_num_records(); ++row) {
            ASSERT_FALSE(observed.get_record(row)->get_changed()) << shown;
        }
        const auto isRecord = [](const std::string& words) { return words.compare(0, 7, "record ") == 0; };
        ASSERT_EQ(std::count_if(listener.heard.begin(), listener.heard.end(), isRecord),
                  observed.get_num_records())
            << shown;
    }
}

TEST_F(LoadObserving, AnObserverThatThrowsTakesTheLoadBack) {
    class Refusing : public LoadObserver {
        void recordRead(unsigned line, std::string_view, const dbrecord&) override {
            if (line == 7) throw line;
        }
    } refusing;
    const Zr::Ptr<kesta> database = makeTextDatabase({"old"}, {{"held before"}});
    database->get_record(0)->set_field(0, "changed", true);
    database->set_filename(wide(folder.with("a.log", oneColumn + "1\n2\n3\n")));
    EXPECT_THROW(database->loadFromFile(9, true, refusing), unsigned);
    EXPECT_EQ(database->get_valid(), 0);
    EXPECT_EQ(database->get_num_fields(), 0U);
    EXPECT_EQ(database->get_num_records(), 1U);
    EXPECT_TRUE(database->get_record(0)->get_changed());

    database->loadFromFile(9, true);
    EXPECT_EQ(database->get_num_records(), 4U);
    EXPECT_FALSE(database->get_record(0)->get_changed()) << "held before the load";
    EXPECT_FALSE(database->get_changed());
}
