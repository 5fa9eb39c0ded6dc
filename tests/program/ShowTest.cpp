// kesta show and kesta info: tables and the other forms.
#include "tests/program/ProgramTest.h"

namespace {

class ShowTest : public ProgramTest {};

TEST_F(ShowTest, TablesAreAlignedByCellsAndHarmless) {
    table("a.log", {"Name,Notes,Reel", "\xE6\x98\xA0\xE7\x94\xBB,a\\nb\t\x1B[2J,A1",
                    "e\xCC\x81t\xC3\xA9,\xFF\x7F\xC2\x9B\xE2\x80\xAE,A2", "plain,,A3"});
    EXPECT_EQ(run("show a.log").out,
              "Row  Name   Notes                 Reel\n"
              "  1  \xE6\x98\xA0\xE7\x94\xBB   a\\nb\\t\\x1b[2J         A1\n"
              "  2  e\xCC\x81t\xC3\xA9    \\xff\\x7f\\u009b\\u202e  A2\n"
              "  3  plain                        A3\n");
    EXPECT_EQ(run("show a.log --columns reel,Name --columns Notes --rows 3,1-1").out,
              "Row  Reel  Name   Notes\n"
              "  1  A1    \xE6\x98\xA0\xE7\x94\xBB   a\\nb\\t\\x1b[2J\n"
              "  3  A3    plain\n");
}

TEST_F(ShowTest, OtherFormsHoldTheSelectedPart) {
    table("a.log", {"X,X", "\"1\",\"a,\"\"b\"\"\\nc\"", "2,\xFF\\", "3,x"}, "\"Mode:a:b\"\n");
    EXPECT_EQ(run("show a.log --format csv --rows -2").out, "X,X\r\n1,\"a,\"\"b\"\"\nc\"\r\n2,\xFF\\\r\n");
    const Outcome json = run("show a.log --format json --rows 1-2");
    EXPECT_EQ(json.out, R"({
  "parameters": [
    {"key": "KESTA", "value": "Rev 1"},
    {"key": "Mode", "value": "a:b"}
  ],
  "columns": [
    {"name": "X", "type": "text"},
    {"name": "X", "type": "text"}
  ],
  "records": [
    ["1", "a,\"b\"\nc"],
    ["2", ")"
                        "\xEF\xBF\xBD"
                        R"(\\"]
  ]
}
)");
    EXPECT_EQ(json.err, "kesta: warning: row 2, column 2 (X): bytes that are no UTF-8 become U+FFFD\n");
}

TEST_F(ShowTest, InfoTellsWhatALogIs) {
    table("a.log", {"Start time:timecode,Take:B", "01:00:00:00,twelve"}, "\"Mode:x\"\n");
    EXPECT_EQ(run("info a.log").out,
              "file:     a.log\nsize:     97 bytes\nrevision: 1\nrecords:  1\nparameters:\n  KESTA  Rev 1\n  "
              "Mode   x\n"
              "columns:\n  1  Start time  timecode  12\n  2  Take        B         6\n");
}

TEST_F(ShowTest, WrongRequestsNameWhatThereIs) {
    table("a.log", {"Name,Reel", "1,2", "3,4"});
    expectRefused({
        {"show a.log --columns Real", 2,
         "no column \"Real\"; did you mean \"Reel\"? The columns are: Name, Reel"},
        {"show a.log --rows 2-3", 2, "no row 3; the log's rows are 1 to 2"},
        {"show a.log --rows 0", 2, "no row 0; the log's rows are 1 to 2"},
        {"show a.log --rows 2-1", 64, "\"2-1\" names no rows; write them like 3,5-9"},
        {"show a.log --rows 1,,2", 64, "\"1,,2\" names no rows; write them like 3,5-9"},
        {"show a.log --format xml", 64, "--format: xml not in {table,csv,json}\nkesta: see kesta --help"},
        {"show", 64, "LOG is required\nkesta: see kesta --help"},
        {"", 64, "A subcommand is required\nkesta: see kesta --help"},
    });
}

TEST_F(ShowTest, AFullDiskIsNoticed) {
    table("a.log", {"Name", "1"});
    for (const char* const command : {"show a.log", "info a.log", "--help", "export a.log --format csv"}) {
        const Outcome full = run(command, "/dev/full");
        EXPECT_EQ(full.exitCode, 2);
        EXPECT_EQ(full.err, "kesta: standard output: No space left on device\n");
    }
    EXPECT_EQ(run("export a.log --format csv -o /dev/full").exitCode, 2);
}

TEST_F(ShowTest, HelpShowsAnExampleAndNotes) {
    const Outcome help = run("tag --help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("Example:\n  kesta tag day1.log --where"), std::string::npos) << help.out;
    EXPECT_EQ(run("--version").out, std::string(kestaDllVersionStr()) + '\n');
}

}  // namespace
