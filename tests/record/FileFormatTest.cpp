// The database file: what is written, what is read, and what becomes of files that are not as they should be.
#include <random>
#include <set>
#include <sstream>

#include "tests/TestSupport.h"
#include "tests/record/LineModel.h"

using namespace TestSupport;

namespace {

const char* const exampleFile = R"("KESTA:Rev 1"
"Mode:x"
"KESTA"
"32","12","1"
"text","timecode","text"
"Name","Start time","Tag"
"Shot 1","01:00:00:00","0"
"Shot 2","01:00:10:00","1"
)";

constexpr auto wrongCount = "kesta::add_text: returning because not all fields filled\n";
constexpr auto noMoreLines = "kesta::add_text: returning because no more lines\n";

Zr::Ptr<kesta> makeExample() {
    const Zr::Ptr<kesta> database = makeTextDatabase(
        {"Name", "Start time", "Tag"}, {{"Shot 1", "01:00:00:00", ""}, {"Shot 2", "01:00:10:00", ""}});
    database->set_fieldtype(1, DBFieldTypes::eTimecode);
    database->add_param("Mode", "x");
    database->set_tag(1, 1);
    return database;
}

// A file with a header of columns a, b, c ... and these lines after it.
std::string fileOf(unsigned columns, const std::vector<std::string>& lines) {
    std::string types;
    std::string names;
    for (unsigned i = 0; i < columns; ++i) {
        types += "text,";
        names += {static_cast<char>('a' + i % 26), ','};
    }
    std::string content = "KESTA:Rev 1\nKESTA\n1\n" + types + '\n' + names + '\n';
    for (const std::string& line : lines) content += line + '\n';
    return content;
}

class File : public TempFolderTest {
 protected:
    Zr::Ptr<kesta> load(std::string_view content, int maxRecords = 1 << 30, bool strict = true) {
        return loadDatabase(folder.with("a.kst", content), maxRecords, strict);
    }

    int save(kesta& database, const std::filesystem::path& name = "a.kst") {
        database.set_filename(wide(folder / name));
        return database.save_text();
    }

    std::string saved(kesta& database) {
        save(database);
        return readFile(folder / "a.kst");
    }

    // Loads the content in the library and in the model, and compares all there is to see.
    testing::AssertionResult loadsAsTheModel(const std::string& content, int maxRecords, bool strict) {
        const LineModel::Database expected = LineModel::Loader(content).load(maxRecords, strict);
        log.clear();
        const Zr::Ptr<kesta> database = load(content, maxRecords, strict);
        const LineModel::Database actual = LineModel::contentsOf(*database);
        if (actual.seen() == expected.seen() && log.messages() == expected.messages &&
            !database->get_changed()) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << testing::PrintToString(actual.seen()) << "\nnot\n"
                                           << testing::PrintToString(expected.seen()) << "\nin\n"
                                           << testing::PrintToString(content);
    }

    CapturedLog log;
};

using FileLoading = File;
using FileSaving = File;
using CSVInput = File;

}  // namespace

// --- Saving ---

TEST_F(FileSaving, WritesParametersHeaderAndRecordsAndClearsTheRecordsMarks) {
    const Zr::Ptr<kesta> database = makeExample();
    database->get_record(1)->set_field(1, "01:00:10:00", true);
    EXPECT_EQ(save(*database), 2);
    EXPECT_EQ(readFile(folder / "a.kst"), exampleFile);
    EXPECT_EQ(columnOf(*database, 2), (Fields{"0", "1"})) << "storing the tags is part of saving";
    EXPECT_FALSE(database->get_record(0)->get_changed() || database->get_record(1)->get_changed());
    EXPECT_TRUE(database->get_changed());
    database->clear_changed();
    database->set_tag(0, 2);
    save(*database);
    EXPECT_EQ(columnOf(*database, 2), (Fields{"2", "1"}));
    EXPECT_FALSE(database->get_changed()) << "the mark is as it was before";

    database->set_tag(0, 0);
    EXPECT_EQ(database->save_text_without_header(), 2);
    EXPECT_EQ(readFile(folder / "a.kst"), R"("KESTA:Rev 1"
"Mode:x"
"Name","Start time","Tag"
"Shot 1","01:00:00:00","0"
"Shot 2","01:00:10:00","1"
)");

    // All records whatever is shown, and no line for a row without one.
    database->insert_records(1, 3);
    database->set_show_tags_only(1);
    EXPECT_EQ(save(*database), 3);
    EXPECT_EQ(columnOf(*loadDatabase(folder / "a.kst"), 0), (Fields{"Shot 1", "", "Shot 2"}));

    // Saving an empty database returns zero though it is written.
    EXPECT_EQ(save(*makeTextDatabase({"a"})) + save(*Zr::Ptr<kesta>(new kesta), "b.kst"), 0);
    EXPECT_EQ(readFile(folder / "a.kst"), "\"KESTA\"\n\"4\"\n\"text\"\n\"a\"\n");
    EXPECT_EQ(readFile(folder / "b.kst"), "\"KESTA\"\n\n\n\n");
    EXPECT_EQ(folder.names(), (Fields{"a.kst", "b.kst"}));
}

TEST_F(FileSaving, WidthsAreTheLongestTextsWhereThoseExceedTheLeastWidth) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"TAG", "comment"}, {{"", "12345"}, {"", "1234"}});
    database->set_tag(0, 200);
    EXPECT_EQ(saved(*database), R"("KESTA"
"1","5"
"text","text"
"TAG","comment"
"200","12345"
"0","1234"
)") << "widths are taken before the tags are stored, and there are no parameters to write";
}

TEST_F(FileSaving, WritesParametersAsTheyAreAndCutsHeaderFieldsAt254Bytes) {
    const std::string cut(253, 'c');
    const Zr::Ptr<kesta> database = makeTextDatabase({cut.substr(1), "say \"x\"", cut, cut + "CCC", "d"});
    const std::string longest = "a \"value\"" + std::string(300, 'p');
    database->set_param_val("a\"key", longest.c_str());
    Lines lines;
    database->save_params(lines);
    database->save_column_header(lines, true);
    EXPECT_EQ(lines.all(), (std::vector<std::string>{
                               "\"KESTA:Rev 1\"", "\"a\"key:" + longest + '"',
                               '"' + cut.substr(1) + R"(","say "x"",")" + cut + R"(,")" + cut + R"(,"d")"}));
}

TEST_F(FileSaving, FailureReturnsZeroAndLeavesTheOldFileWhole) {
    const Zr::Ptr<kesta> database = makeExample();
    EXPECT_EQ(save(*database, "missing/a.kst"), 0);
    std::filesystem::create_directory(folder / "a.kst");
    EXPECT_EQ(save(*database) + database->save_text_without_header(), 0);
    database->set_filename(WideText());
    EXPECT_EQ(database->save_text(), 0);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.kst"}));
    EXPECT_TRUE(std::filesystem::is_empty(folder / "a.kst"));
}

TEST_F(FileSaving, AsksADerivedClass) {
    struct Derived : kesta {
        using kesta::kesta;
        unsigned get_fieldsize(unsigned field) const override { return 70 + field; }
        unsigned get_fieldnum(const Text& name) const override {
            return kesta::get_fieldnum(name == "Tag" ? Text("b") : name);
        }
        using kesta::set_field;
        int set_field(unsigned row, unsigned field, const char* value) override {
            return kesta::set_field(row, field, ('<' + std::string(value) + '>').c_str());
        }
    };
    Derived database(textColumns({"a", "b", "Notes"}));
    fill(database, {{"x", "y", "z"}});
    EXPECT_EQ(saved(database),
              "\"KESTA\"\n\"70\",\"71\",\"100\"\n\"text\",\"text\",\"text\"\n\"a\",\"b\",\"Notes\"\n"
              "\"x\",\"<0>\",\"z\"\n");
}

// --- Loading ---

TEST_F(FileLoading, GivesBackWhatWasSavedUnchanged) {
    const Zr::Ptr<kesta> database = load(exampleFile);
    EXPECT_EQ(str(toUTF8(database->get_filename())), (folder / "a.kst").string());
    const Zr::Ptr<dbrecord> record = database->get_record(1);
    EXPECT_FALSE(record->get_changed() || record->get_tag()) << "tags are text in a column";
    EXPECT_EQ(record->get_container(), database.get());
    database->set_tag(1, 1);
    EXPECT_EQ(saved(*database), exampleFile);
}

TEST_F(FileLoading, ReplacesColumnsAndParametersAndKeepsRecords) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"old"}, {{"held before"}});
    database->set_param_val("old", "1");
    database->loadFromFile(wide(folder.with("b.kst", exampleFile)), 1 << 30, true);
    EXPECT_EQ(columnNames(*database), (Fields{"Name", "Start time", "Tag"}));
    EXPECT_EQ(paramsOf(*database), (Pairs{{"KESTA", "Rev 1"}, {"Mode", "x"}}));
    database->loadFromFile(1, true);  // the same file again, one record of it
    EXPECT_EQ(columnOf(*database, 0), (Fields{"held before", "Shot 1", "Shot 2", "Shot 1"}));
    for (const std::filesystem::path& name : {folder / "missing", folder.path(), std::filesystem::path()}) {
        database->loadFromFile(wide(name), 1, true);
        EXPECT_FALSE(database->get_valid() || database->get_num_fields() || !database->params().empty());
        EXPECT_EQ(database->get_num_records(), 4U);
    }
}

TEST_F(FileLoading, ScratchRecordHoldsTheMarkerLineAfterTheParameters) {
    Lines file({"KESTA:Rev 1", "Mode:x", "\"kesta\",\"more\"", "\"32\""});
    kesta database;
    dbrecord line(24);
    database.read_params(file, &line);
    EXPECT_EQ(fieldsOf(line), (Fields{"kesta", "more"}));
    EXPECT_TRUE(file.cursor() == 3 && database.params().size() == 2);
    database.read_params(file, &line);
    EXPECT_EQ(fieldsOf(line), (Fields{"32"}));
    EXPECT_TRUE(database.params().empty()) << "emptied even when there are none to read";
}

TEST_F(FileLoading, AddingTextBeginsAtTheCursorAndMaySkipItsFirstLine) {
    const Zr::Ptr<kesta> database = makeTextDatabase({"a", "b"});
    Lines file({"0,0", "1,2", "3,4", "5,6"});
    file.setCursor(1);
    EXPECT_EQ(database->add_text(file, 0, 2), 2);
    EXPECT_TRUE(file.cursor() == 3 && database->get_changed());
    for (const int none : {0, -1}) EXPECT_EQ(database->add_text(file, 0, none), 0);
    EXPECT_EQ(database->add_text(file, 0, 9), 1);
    EXPECT_EQ(database->add_text(file, 0, 9), 0);

    // The second line takes the first one's place, whatever its number of fields. But the first must have the
    // right number, and the second must be there.
    Lines named({"a,b", "7,8,9", "9,0", "6,7"});
    EXPECT_EQ(database->add_text(named, 1, 2), 2);
    EXPECT_TRUE(log.messages().empty());
    Lines wrong({"a", "1,2"});
    EXPECT_EQ(database->add_text(wrong, 1, 9), 0);
    Lines alone({"a,b"});
    EXPECT_EQ(database->add_text(alone, 1, 9), 0);
    EXPECT_EQ(log.messages(), (std::vector<std::string>{wrongCount, noMoreLines}));
    EXPECT_EQ(rowsOf(*database)[3], (Fields{"7", "8", "9"}));

    // So a plain file is loaded from the line after its names on.
    database->set_filename(wide(folder.with("plain", "a,b\n11,12\n")));
    EXPECT_EQ(database->load_text(9), 1);
    database->set_filename(wide(folder / "missing"));
    EXPECT_EQ(database->load_text(9), 0);
    EXPECT_EQ(columnOf(*database, 1), (Fields{"2", "4", "6", "8", "0", "12"}));
}

TEST_F(FileLoading, AgreesWithTheModelOnForeignCutAndDamagedFiles) {
    std::vector<std::string> contents = {
        "", "\xEF\xBB\xBF", "\n", "KESTA\n4\ntext\na\nx\n", "\"x\",\"KESTA:Rev 1\"\nKESTA\n4\ntext\na\n",
        // Parameters as they come.
        "  kesta:  Rev 1\n\"  Mode:  a value: with colons  \"\n\":no key\"\n\"  :no key either\"\n\"no "
        "colon\"\n\n"
        "empty:\nfirst:field\",\"second:field\"\nMODE:z\nKESTA:Rev 9\nKesta , whatever\n4\ntext\na\nx\n",
        // A blank line ends the records, and so does a wrong number of fields.
        fileOf(1, {"x", " \t", "z"}), fileOf(2, {"1,2", "3,4,", "x", "5,6"}), fileOf(2, {"1,2", "\x01"}),
        // With one column a repeated header leaves its names as a record; its third line must be there.
        fileOf(1, {"x", "\"kesta\"", "", "text", "Names,line", "y"}),
        fileOf(1, {"x", "KESTA", "4", "text", " ", "y"}), fileOf(1, {"x", "KESTA", "4", "text", "\x01", "y"}),
        fileOf(2, {"KESTA,x", "1,2"})};
    for (const char* const revision : {"Rev 2", "Rev 01.5", "Rev", "Rev -3", "x12y34"}) {
        contents.push_back("KESTA:" + std::string(revision) + "\nKESTA\n4\ntext\na\nx\n");
    }
    std::string cut = exampleFile;
    cut.insert(cut.find("\"KESTA\""), "\"Start:1\",\"End\"\r\n");
    for (; !cut.empty(); cut.pop_back()) contents.push_back(cut);
    for (const std::string& content : contents) {
        for (const int maxRecords : {-1, 1, 9}) {
            ASSERT_TRUE(loadsAsTheModel(content, maxRecords, false)) << maxRecords;
            ASSERT_TRUE(loadsAsTheModel(content, maxRecords, true)) << maxRecords;
        }
    }

    std::mt19937 random(5);
    const std::string bytesToPut = bytes("\"\"\",,\\:\n\n\r\t K\0\x7F\xFFn1");
    const std::vector<std::string> wholeFiles = {
        exampleFile, fileOf(1, {"x", "KESTA", "4", "text", "Name", "y", "z"}),
        fileOf(2, {"\"a\\nb\",\"c\"", "d,e", "f,\"g\"\"h\"", "a,b,c"}),
        "\"KESTA:Rev 2\"\nStart,Ending,other\n1,2,3\n"};
    for (int i = 0; i < 1500; ++i) {
        // A file some of whose lines are missing or there twice, some of whose bytes are others.
        std::string content;
        std::istringstream whole(wholeFiles[random() % wholeFiles.size()]);
        for (std::string line; std::getline(whole, line);) {
            static constexpr int copies[] = {0, 1, 1, 1, 1, 1, 1, 2};
            for (int n = copies[random() % std::size(copies)]; n != 0; --n) content += line + '\n';
        }
        for (auto changes = random() % 4; changes != 0 && !content.empty(); --changes) {
            content[random() % content.size()] = bytesToPut[random() % bytesToPut.size()];
        }
        ASSERT_TRUE(loadsAsTheModel(content, 1 + static_cast<int>(random() % 5), random() % 2))
            << "file " << i;
    }
}

TEST_F(FileLoading, TextsThatComeAgainAreSharedAndNoOthers) {
    // Few different texts in random order, many of which differ in one byte only, wherever it is. One column
    // repeats none before it begins to.
    std::mt19937 random(13);
    std::vector<std::string> texts = {"", "\"\"", "Reel 1", "\"Reel 1\"", "\"Reel 2\"", "\"01:00:00:00\""};
    for (const std::size_t length : {1U, 2U, 3U, 4U, 5U, 7U, 8U, 9U, 15U, 16U, 17U, 18U, 40U}) {
        for (std::size_t at = 0; at <= length; ++at) {
            texts.push_back(std::string(length, 'x'));
            if (at != length) texts.back()[at] = 'y';
        }
    }
    std::vector<std::string> lines;
    std::vector<Fields> expected;
    while (lines.size() < 20000) {
        const std::string name = "row " + std::to_string(lines.size());
        lines.push_back(texts[random() % texts.size()] + ',' + texts[random() % 8] + ',' +
                        (lines.size() < 12000 ? name : texts[1 + random() % 99]));
        expected.push_back(LineModel::readLine(lines.back()).fields);
    }
    const std::filesystem::path file = folder.with("many", fileOf(3, lines));
    CountingAllocator memory;
    const Zr::Ptr<kesta> database = loadDatabase(file);
    EXPECT_LT(memory.requests(), 22000U)
        << "a record takes a block, its fields and texts share one with others";
    ASSERT_TRUE(same(rowsOf(*database), expected));
    std::set<const char*> shared;
    for (unsigned row = 0; row < 20000; ++row) shared.insert(database->getField(row, 1).c_str());
    EXPECT_LT(shared.size(), 2000U) << "few texts, and few copies of each";

    // What was shared in loading is nobody else's when it changes.
    database->set_field(0, 0, "changed");
    expected[0][0] = "changed";
    ASSERT_TRUE(same(rowsOf(*database), expected));
}

// Texts as short as they come use up a block's shares before its room.
TEST_F(FileLoading, ARejectedLineGivesItsMemoryBackHoweverManyTextsItHas) {
    std::string line;
    for (unsigned fields = 1; fields < 400; ++fields) {
        line += std::to_string(100 + fields) + ',';
        const WideText name = wide(folder.with("in", fileOf(1, {line + "x"})));
        CountingAllocator memory;
        {
            const kesta database(name, 10, true);
            EXPECT_EQ(database.get_num_records(), 0U);
        }
        EXPECT_EQ(memory.held(), 0U) << fields;
    }
}

TEST_F(FileLoading, MoreColumnsThan16BitsCountDoNoHarm) {
    const Zr::Ptr<kesta> database = load(fileOf(70000, {std::string(70000, ',')}));
    EXPECT_TRUE(database->get_valid() && database->get_num_fields() == 70000);
    EXPECT_EQ(database->get_num_records(), 0U) << "a record's number of fields is taken as 16 bits";
    EXPECT_EQ(log.messages(), (std::vector<std::string>{wrongCount}));

    database->add_records(1);
    EXPECT_EQ(database->set_field(0, 4463, "text") - database->set_field(0, 69999, "x"), 1);
    EXPECT_EQ(database->get_fieldsize(4463) + database->get_fieldsize(69999), 4U);
    EXPECT_EQ(save(*database), 1);
}

// --- Comma-separated files ---

TEST_F(CSVInput, TakesTheFirstLineForColumnsAndTheOthersForRecordsWithoutALimit) {
    constexpr auto content =
        "a,\"b\", c ,,c\r\n1,2\n\n1,2,3,4,5,6\n\"x,y\",\"say \\\"hi, you\\\"\", z \nlast";
    const Zr::Ptr<kesta> database = loadDatabase(folder.with("a.csv", content), 0);
    EXPECT_EQ(database->get_valid(), 1);
    EXPECT_EQ(columnNames(*database), (Fields{"a", "\"b\"", " c ", "", "c"}));
    EXPECT_EQ(columnTypes(*database), std::vector<int>(5, 65));
    EXPECT_EQ(rowsOf(*database), (std::vector<Fields>{{"1", "2", "", "", ""},
                                                      {"1", "2", "3", "4", "5"},
                                                      {"\"x,y\"", "\"say \\\"hi, you\\\"\"", " z ", "", ""},
                                                      {"last", "", "", "", ""}}));
    EXPECT_TRUE(database->get_changed() && database->params().empty() && log.messages().empty());
}

TEST_F(CSVInput, IsValidThoughEmptyWhenItsNameEndsInLowerCase) {
    for (const char* const content : {"", "\n", "\na,b\n1,2\n"}) {
        const Zr::Ptr<kesta> database = loadDatabase(folder.with("a.csv", content));
        EXPECT_TRUE(database->get_valid() && !database->get_num_fields() && !database->get_num_records());
    }
    EXPECT_EQ(loadDatabase(folder / "missing.csv")->get_valid(), 0);
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    EXPECT_EQ(loadDatabase(folder.with(".csv", "a,b\n1,2\n").filename())->get_num_fields(), 2U)
        << "its whole name";
    std::filesystem::current_path(before);
    for (const char* const name : {"a.CSV", "a.csv.kst", "acsv"}) {
        EXPECT_EQ(loadDatabase(folder.with(name, "a,b\n1,2\n"))->get_valid(), 0) << name;
    }
}

TEST_F(CSVInput, AddsRecordsThroughTheInterface) {
    struct Derived : kesta {
        unsigned add_records(int count) override { return refusing ? 0xFFFFFFFF : kesta::add_records(count); }
        bool refusing = false;
    };
    Derived database;
    const WideText name = wide(folder.with("a.csv", "a\nx\ny\n"));
    database.loadFromFile(name, 9, true);
    EXPECT_EQ(columnOf(database, 0), (Fields{"x", "y"}));
    database.refusing = true;
    database.loadFromFile(name, 9, true);
    EXPECT_EQ(database.get_num_records(), 2U);
}
