// kesta check, and what the other commands say about logs that cannot be read.
#include "tests/program/ProgramTest.h"

namespace {

const std::string head = "\"KESTA:Rev 1\"\n\"KESTA\"\n\"4\",\"4\"\n\"text\",\"text\"\n\"A\",\"B\"\n";

struct Case {
    const char* what;
    std::string content;
    std::vector<std::string> findings;  // after the file's name, each the beginning of a line
};

class CheckTest : public ProgramTest {
 protected:
    /// Each line of what the check says begins with the file's name and the next of these findings.
    void expectFindings(const std::string& file, const std::vector<std::string>& findings) {
        const Outcome check = run({"check", file});
        EXPECT_EQ(check.exitCode, findings.empty() ? 0 : 1) << check.err;
        std::size_t at = 0;
        for (const std::string& finding : findings) {
            const std::string begin = file + finding;
            EXPECT_EQ(check.out.substr(at, begin.size()), begin);
            at = check.out.find('\n', at) + 1;
        }
        EXPECT_EQ(check.out.substr(at), "");
    }
};

TEST_F(CheckTest, NamesThePlaceOfEverythingTheLoaderWouldStopAtDropOrWarnOf) {
    const std::string longest(dbrecord::longestField - 1, 'x');
    const std::vector<Case> cases = {
        {"a clean log", head + "\"1\",\"say \"\"x\"\"\"\n\"2\",\"a\\nb\"\n", {}},
        {"blank lines at the end", head + "\"1\",\"2\"\n\n  \n", {}},
        {"unquoted and spaced fields", head + "1,2\n \"1\" , \"2\"\n", {}},
        {"padded fields, told after all else",
         "\"KESTA:Rev 1\"\n\"Mode: x\"\n" + head.substr(14) + "1, 2\n\" 1 \",\"2\"\n\"3\"\n",
         {":9: column 2 (B): 1 field",
          ":2: the white space around the value, and around 2 further values, is not read; saving"}},
        {"a padded field",
         head + "\"1\", \"2  \"\n",
         {":6: column 2 (B): the white space around the value is not"}},
        {"widths that are no numbers", "\"KESTA:Rev 1\"\n\"KESTA\"\n\"?\"\n\"text\"\n\"A\"\n\"1\"\n", {}},
        {"a field of the greatest length", head + '"' + longest + "\",\"2\"\n", {}},
        {"too few fields",
         head + "\"1\",\"2\"\n\"1\"\n\"3\",\"4\"\n",
         {":7: column 2 (B): 1 field where the log has 2 columns; reading stops here and 1 line after it"}},
        {"too many fields",
         head + "\"1\",\"2\",\"3\"\n",
         {":6: column 3: 3 fields where the log has 2 columns"}},
        {"a long field",
         head + '"' + longest + "yyyy\",\"2\"\n",
         {":6: column 1 (A): the field is longer", ":6: column 3: 3 fields"}},
        {"a long field whose rest happens to give the right number",
         head + '"' + longest + "  \",\"2\"\n",
         {":6: column 1 (A): the field is longer"}},
        {"a blank line with records after it",
         head + "\"1\",\"2\"\n\n\"3\",\"4\"\n\"5\",\"6\"\n",
         {":7: a blank line ends the log; 2 lines"}},
        {"a file that has been cut off",
         head + "\"1\",\"2\"\n\"3\",\"hello th",
         {":7: column 2 (B): the quoted field never ends"}},
        {"stray quotes",
         head + "\"5\" reel\",\"2\"\n",
         {":6: column 1 (A): a double quote inside the field is dropped"}},
        {"an escaped quote in the place of the last one",
         head + "1,\"2\"\"",
         {":6: column 2 (B): the quoted field never ends"}},
        {"names that never end",
         "\"KESTA:Rev 1\"\n\"KESTA\"\n\"4\"\n\"text\"\n\"A",
         {":5: column 1 (A): the quoted field never ends"}},
        {"a value that saving would change",
         head + "\"1\",\"a\rb\"\n\"\\\"n,\"2\"\n",
         {":6: column 2 (B): the value would change when the log is saved: it holds a carriage return",
          ":7: column 1 (A): a double quote inside the field is dropped",
          ":7: column 1 (A): the value would change when the log is saved"}},
        {"a header among the records",
         "\"KESTA:Rev 1\"\n\"KESTA\"\n\"4\"\n\"text\"\n\"A\"\n\"Kesta\"\n\"1\"\n\"2\"\n\"3\"\n\"4\"\n",
         {":6: column 1 (A): the value is read as the beginning of a header"}},
        {"columns of one name",
         std::string(head).replace(head.size() - 3, 1, "a"),
         {":5: column 2 (a): the name is that of column 1 too"}},
        {"a value that only reads like one", head + "\"KESTA\",\"2\"\n", {}},
        {"another revision", "\"KESTA:Rev 2\"" + head.substr(13), {":1: the log has revision 2"}},
        {"types and names that do not fit",
         "\"KESTA:Rev 1\"\n\"KESTA\"\n\"4\"\n\"text\"\n\"A\",\"B\"\n\"1\",\"2\"\n",
         {":4: 1 type for the 2 names"}},
        {"an unknown type",
         "\"KESTA:Rev 1\"\n\"KESTA\"\n\"4\"\n\"integer\"\n\"A\"\n",
         {":4: column 1 (A): the type \"integer\" is unknown"}},
        {"no marker",
         "\"KESTA:Rev 1\"\n\"Mode:x\"\n\"A\",\"B\"\n\"1\",\"01:00:00:00\"\n",
         {":3: the line \"KESTA\" in front of the column header is missing"}},
        {"no revision", head.substr(14), {":1: this is no log"}},
        {"an empty file", "", {":1: the file is empty"}},
        {"parameters that are not read",
         "\"KESTA:Rev 1\"\n\"Mode\"\n\":x\"\n\"a:b\",\"c\"\n" + head.substr(14),
         {":2: a parameter without a colon", ":3: a parameter without a name",
          ":4: 1 field after the parameter"}},
        {"a parameter that saving would change",
         "\"KESTA:Rev 1\"\n\"Mode:\"\"x\"\"\"\n" + head.substr(14),
         {":2: the parameter \"Mode\" would change"}},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.what);
        expectFindings(folder.with("a.log", test.content).string(), test.findings);
    }
}

TEST_F(CheckTest, FindsIdentifiersThatComeTwiceAndCodesThatEndBeforeTheyStart) {
    const std::string file =
        log("a.log", "\"Cookie\",\"Start time\",\"End time\",\"snd start\",\"snd end\",\"Tag\"",
            "\"clip a\",\"01:00:00:00\",\"01:00:00:00\",\"\",\"\",\"0\"\n"
            "\"clip b\",\"01:00:00:01\",\"01000000\",\"02:00:00;00\",\"01:59:59;29\",\"256\"\n"
            "\"\",\"none\",\"01:00:00:00\",\"\",\"\",\"1\"\n"
            "\"\",\"\",\"\",\"\",\"\",\"x\"\n"
            "\"clip a\",\"\",\"\",\"\",\"\",\"\"\n");
    expectFindings(file, {":7: column 6 (Tag): the tag \"256\" is no number from 0 to 255",
                          ":7: column 3 (End time): 01:00:00:00 is before the start, 01:00:00:01; ",
                          ":7: column 5 (snd end): 01:59:59;29 is before the start, 02:00:00;00; ",
                          ":9: column 6 (Tag): the tag \"x\" is no number from 0 to 255",
                          ":10: column 1 (Cookie): the identifier is that of line 6 too, "});
}

TEST_F(CheckTest, FindsWhatPlainCommaSeparatedFilesLose) {
    const auto table = [&](const char* content) { return folder.with("a.csv", content).string(); };
    expectFindings(table("a,b\n1,\"2,3\"\n1\n"), {});
    expectFindings(table("\na,b\n1,2\n"), {":1: the line names no columns; 2 lines"});
    expectFindings(table("a,b\n1,2,3\n1,\"x\ny\"\n"),
                   {":2: 1 value after the last column", ":3: a double quote", ":4: a double quote"});
}

TEST_F(CheckTest, UnreadableFilesDoNotKeepTheOthersFromBeingChecked) {
    const std::string bad = log("bad.log", "\"A\"", "\"1\",\"2\"\n");
    const Outcome check = run({"check", path("none.log"), bad, folder.path().string()});
    EXPECT_EQ(check.exitCode, 2);
    EXPECT_EQ(check.out.find(bad + ":6: "), 0U);
    EXPECT_EQ(check.err, "kesta: " + path("none.log") + ": No such file or directory\nkesta: " +
                             folder.path().string() + ": Is a directory\n");
}

TEST_F(CheckTest, ReadingCommandsSayWhatWasNotRead) {
    const std::string file = log("a.log", "\"A\",\"B\"", "\"1\",\"2\"\n\n\"3\",\"4\"\n");
    for (const Arguments& command : std::vector<Arguments>{
             {"show", file}, {"info", file}, {"find", file, "A=1"}, {"export", file, "--format", "csv"}}) {
        const Outcome shown = run(command);
        EXPECT_EQ(shown.exitCode, 1);
        EXPECT_NE(shown.out, "");
        EXPECT_EQ(shown.err.find("kesta: warning: " + file + ":7: a blank line ends the log; 1 line"), 0U);
    }
    const std::string binary = folder.with("binary", TestSupport::bytes("\177ELF\0\x1B[2J")).string();
    expectRefused({{{"show", binary}, 2, "kesta: " + binary + ":1: this is no log"}});
}

}  // namespace
