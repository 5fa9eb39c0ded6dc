// kesta import and kesta export: no value is lost on the way, or it is said where.
#include "tests/program/ProgramTest.h"

namespace {

class ExchangeTest : public ProgramTest {
 protected:
    Outcome import(const std::string& name, const std::string& content) {
        folder.with(name, content);
        return run("import " + name + " -o a.log --force");
    }
    std::string exported(const std::string& format) {
        const Outcome result = run("export a.log --format " + format);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        return result.out;
    }
};

TEST_F(ExchangeTest, AnExchangeFileComesBackAsItWas) {
    const std::string file =
        "Heading\nFIELD_DELIM\tTABS\nFPS\t23.98\nVIDEO_FORMAT\t1080\n\n"
        "Column\nName\tTape\tStart\tEnd\tShoot Date\tKN Start\tTake\tSoundroll\tComments\tMy own\n\n"
        "Data\n"
        "19A-1\tA001\t04:00:00:00\t04:00:46;16\t07/21/14\tKX654321-0000+00\t1\tS1\t\xC3\xA9tude, \"x\"\t\n"
        "19A-2\t\t\t\t\t\t2\t\tC:\\dir\tKESTA\n"
        "\t\t\t\t\t\t\t\t\t\n";
    const Outcome import = this->import("a.ale", file);
    EXPECT_EQ(import.exitCode, 0);
    EXPECT_EQ(import.err, "");
    EXPECT_EQ(import.out, "a.log: 3 records, 10 columns\n");
    EXPECT_EQ(content("a.log").substr(content("a.log").find("\"text\"")),
              R"("text","text","timecode","timecode","date","text","text","text","text","text"
"Name","Reel","Start time","End time","cam_date","start keycode","Take","snd reel","Notes","My own"
"19A-1","A001","04:00:00:00","04:00:46;16","07/21/14","KX654321-0000+00","1","S1",")"
              "\xC3\xA9"
              R"(tude, ""x""",""
"19A-2","","","","","","2","","C:\dir","KESTA"
"","","","","","","","","",""
)");
    EXPECT_EQ(exported("ale"), file);
    EXPECT_EQ(run("check a.log").exitCode, 0);
}

TEST_F(ExchangeTest, ReadsTheFormsInWhichExchangeFilesOccur) {
    const std::string tidy = "Heading\nFIELD_DELIM\tTABS\nFPS\t25\n\nColumn\nName\tReel\n\nData\n1\t2\n";
    for (const std::string& form : std::vector<std::string>{
             "Heading\nFIELD_DELIM\tTABS\tFPS\t25\n\nColumn\nName\tReel\n\nData\n1\t2\n",
             "\xEF\xBB\xBFHeading\r\nFIELD_"
             "DELIM\tTABS\r\nFPS\t25\r\nColumn\r\nName\tReel\t\r\nData\r\n1\t2\t\t\r\n\r\n",
             "heading \rFIELD_DELIM\tTABS\rFPS\t25\r\rcolumn\rName\tReel\r\rdata\r1\t2"}) {
        EXPECT_EQ(import("a.ale", form).err, "");
        std::string back = exported("ale");
        back.replace(back.find("Tape"), 4, "Reel");
        EXPECT_EQ(back, tidy);
    }
}

TEST_F(ExchangeTest, ACommaSeparatedFileComesBackAsItWas) {
    const std::string file =
        "Name,\"Say \",Notes\r\n"
        "1,\"a, b\",\"line one\nline two\"\r\n"
        ",,\r\n"
        "\"\"\"x\"\"\",=1+1,\xE6\x98\xA0\r\n";
    Outcome import = this->import("a.csv", file);
    EXPECT_EQ(import.err, "kesta: warning: a.csv:1: column 2: the name \"Say \" becomes \"Say\"\n");
    EXPECT_EQ(exported("csv"), "Name,Say,Notes" + file.substr(17));
    import = this->import("b.csv", "Only\n\"\"\nx\n");
    EXPECT_EQ(exported("csv"), "Only\r\n\"\"\r\nx\r\n") << "an empty value is no blank line";
    import = this->import("c.csv",
                          "\xEF\xBB\xBF"
                          "A,B\r1,x\"y\r2,\"p\"q\r");
    EXPECT_EQ(exported("csv"), "A,B\r\n1,\"x\"\"y\"\r\n2,pq\r\n");
}

TEST_F(ExchangeTest, EveryColumnKeepsItsValues) {
    EXPECT_EQ(import("a.csv", "Tape,Reel,tape,,Start,\"a\"\"b\",x,X,tag\n1,2,3,4,5,6,7,8,yes\n").exitCode, 0);
    EXPECT_EQ(exported("csv"),
              "Tape,Reel,tape 2,Column 4,Start time,a'b,x,X 2,tag 2\r\n1,2,3,4,5,6,7,8,yes\r\n");
    EXPECT_EQ(import("a.csv", "Tape,TAPE\n1,2\n").err, "");
    EXPECT_EQ(exported("csv"), "Reel,TAPE\r\n1,2\r\n");
    EXPECT_EQ(import("a.csv", "Name,Tag\n1,200\n2,0\n").err, "") << "tags that a log keeps stay tags";
    EXPECT_EQ(exported("csv"), "Name,Tag\r\n1,200\r\n2,0\r\n");

    const std::string kept = ": 1 value after the last named column, kept from column \"Column 3\" on\n";
    EXPECT_EQ(import("a.csv", "A,B\n1\n1,2,3,,\n1,2,,4\n").err,
              "kesta: warning: a.csv:3" + kept + "kesta: warning: a.csv:4" + kept);
    EXPECT_EQ(exported("csv"), "A,B,Column 3,Column 4\r\n1,,,\r\n1,2,3,\r\n1,2,,4\r\n");
}

TEST_F(ExchangeTest, ValuesThatALogCannotHoldAreNamed) {
    const std::string longer = "is longer than " + std::to_string(dbrecord::longestField - 1) +
                               " bytes, the most that a field takes";
    const std::string tooLong = std::string(dbrecord::longestField - 2, 'x') + "\xC3\xA9" + "tail";
    const Outcome import = this->import(
        "a.csv", "Name,Notes,X\n\" a\",b ,c\n\"1\r\n2\",\\n," + tooLong + "\n" + tooLong + ",\"q\"\"\",d\n");
    EXPECT_EQ(import.exitCode, 1);
    std::string said;
    for (const auto& [place, why] : std::vector<std::pair<std::string, std::string>>{
             {"2: column 1 (Name)", "begins with white space, which is dropped"},
             {"2: column 2 (Notes)", "ends with white space, which is dropped"},
             {"3: column 1 (Name)", "holds a carriage return, which is dropped"},
             {"3: column 2 (Notes)", "holds a backslash followed by n, which is read as a line end"},
             {"3: column 3 (X)", longer},
             {"5: column 1 (Name)", longer}})
        said += "kesta: warning: a.csv:" + place + ": the value is not kept exactly: it " + why + '\n';
    EXPECT_EQ(import.err, said);
    EXPECT_EQ(import.out, "a.log: 3 records, 3 columns, 6 values not kept exactly\n");
    const std::string cut(dbrecord::longestField - 2, 'x');
    EXPECT_EQ(exported("csv"),
              "Name,Notes,X\r\na,b,c\r\n\"1\n2\",," + cut + "\r\n" + cut + ",\"q\"\"\",d\r\n");
    EXPECT_EQ(run("check a.log").exitCode, 0);

    const Outcome heading = this->import(
        "a.ale", "Heading\nKESTA\tx\nFPS\t25\tFPS\t30\tfps\t50\na:b\t\"c\"\n\nColumn\nA\n\nData\n");
    EXPECT_EQ(exported("ale"),
              "Heading\nFIELD_DELIM\tTABS\nKESTA 2\tx\nFPS\t25\nFPS 2\t30\nfps 3\t50\n"
              "a'b\t'c'\n\nColumn\nA\n\nData\n");
    EXPECT_EQ(std::count(heading.err.begin(), heading.err.end(), '\n'), 4);
}

TEST_F(ExchangeTest, ManyWarningsAreCountedRatherThanListed) {
    std::string content = "A\n";
    for (int i = 0; i < 100; ++i) content += " x\n";
    const Outcome few = import("a.csv", content);
    EXPECT_EQ(std::count(few.err.begin(), few.err.end(), '\n'), 21);
    EXPECT_NE(few.err.find("and 80 more like these; --all-warnings lists them all"), std::string::npos);
    const Outcome all = run("import a.csv -o b.log --all-warnings");
    EXPECT_EQ(std::count(all.err.begin(), all.err.end(), '\n'), 100);
}

TEST_F(ExchangeTest, ExchangeFilesGetCodesWithPunctuationAndNoTabs) {
    table("a.log", {"Start time:timecode_s,Notes", "01000010,01000010", "01000010;,a\tb\\nc", "none"});
    EXPECT_EQ(run("export a.log --format ale -o b.ale").err,
              "kesta: warning: row 2, column 2 (Notes): tabs and line ends become spaces\n");
    EXPECT_EQ(content("b.ale"),
              "Heading\nFIELD_DELIM\tTABS\n\nColumn\nStart\tComments\n\nData\n"
              "01:00:00:10\t01000010\n01:00:00;10\ta b c\nnone\t\n");
    table("a.log", {"A", "1", "\"\""});
    const Outcome result = run("export a.log --format ale");
    EXPECT_EQ(result.err.find("kesta: warning: row 2: an empty value"), 0U) << result.err;
}

TEST_F(ExchangeTest, RefusesOrNamesWhatItCannotRead) {
    EXPECT_NE(
        import("s.csv", "A;B\n1;2\n").err.find("s.csv:1: the values seem to be separated by semicolons"),
        std::string::npos);
    std::filesystem::remove(path("a.log"));
    struct Unreadable {
        std::string name;
        std::string content;
        std::string why;
    };
    for (const Unreadable& file : std::vector<Unreadable>{
             {"a.txt", "x", "a name that ends in .csv or .ale"},
             {"a.csv", "", "has no line of column names"},
             {"a.csv", "A,B\n1,\"2\n3\n", ":2: the quoted value that begins here never ends"},
             {"a.csv", std::string("A\0B", 3), "is no text file"},
             {"a.csv", "\xFF\xFE", "is UTF-16 text"},
             {"a.csv", "A\nx\n kesta \n", ":3: column 1: a log of one column takes the value"},
             {"a.csv", std::string(65536, ',') + "A", "more columns than a log takes"},
             {"a.ale", "", "ends before Heading or Column"},
             {"a.ale", "Heading\nFPS\t25\n", "ends before Column"},
             {"a.ale", "Name\tTape\n", ":1: this is not where the section Column begins"},
             {"a.ale", "Heading\nFIELD_DELIM\tCOMMAS\n\nColumn\nA\n\nData\n",
              ":2: the fields are separated by COMMAS"},
             {"a.ale", "Column\nA\nB\nData\n", ":3: this is not where the section Data begins"},
         }) {
        folder.with(file.name, file.content);
        expectRefused({{"import " + file.name + " -o a.log", 2, file.why}});
    }
    folder.with("b.csv", "A\n1\n");
    folder.with("a.log", "precious");
    expectRefused({{"import b.csv -o a.log", 2, "is there already; --force replaces it"},
                   {"import b.csv -o c.csv", 2, "a log cannot have this name"}});
}

TEST_F(ExchangeTest, AnExportReplacesOtherFilesWhenAskedForButNeverItsLog) {
    table("a.log", {"A", "1"});
    std::filesystem::create_symlink("a.log", path("link.log"));
    folder.with("b.csv", "precious");
    expectRefused({{"export a.log --format csv -o a.log --force", 2, "is the log itself"},
                   {"export a.log --format csv -o link.log --force", 2, "is the log itself"},
                   {"export a.log --format csv -o b.csv", 2, "is there already"}});
    EXPECT_EQ(run("export a.log --format csv -o b.csv --force").exitCode, 0);
    EXPECT_EQ(content("b.csv"), "A\r\n1\r\n");
}

}  // namespace
