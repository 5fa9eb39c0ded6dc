// Text files: how bytes become lines and lines become files, and that no file is ever damaged.
#include <random>
#include <sys/stat.h>

#include "support/TextFile.h"
#include "tests/TestSupport.h"

using namespace TestSupport;
namespace fs = std::filesystem;

namespace {

class TextFiles : public TempFolderTest {
 protected:
    Fields linesOf(std::string_view content, char separator = '\n') {
        Lines file;
        EXPECT_TRUE(file.load(wide(folder.with("in", content)), separator, false));
        EXPECT_EQ(file.cursor(), 0U);
        return file.all();
    }

    // The lines as a reader gets them who goes through the file once.
    Fields linesByCursor(std::string_view content) {
        TextFile file;
        EXPECT_TRUE(file.beginLoad(wide(folder.with("in", content)), '\n'));
        Fields lines;
        for (; file.cursor() < file.size(); file.nextLine()) {
            lines.emplace_back(file.lineView(file.cursor()));
        }
        EXPECT_EQ(file.size(), lines.size());
        EXPECT_EQ(file.lineView(file.cursor()), "");
        EXPECT_FALSE(file.save(wide(folder / "out"), TextFile::eLF)) << "its lines are not there";
        EXPECT_TRUE(file.endLoad());
        EXPECT_EQ(file.size(), 0U);
        return lines;
    }

    std::string saved(const TextFile& file, TextFile::eEOLStyle style = TextFile::eLF) {
        EXPECT_TRUE(file.save(wide(folder / "out"), style));
        return readFile(folder / "out");
    }
};

}  // namespace

TEST_F(TextFiles, LinesEndAtLineFeedsWithOrWithoutCarriageReturns) {
    const std::string mark = "\xEF\xBB\xBF";
    const std::pair<std::string, Fields> cases[] = {
        {"", {}},
        {"\n", {""}},
        {"a\r\n\nb\n\n", {"a", "", "b", ""}},
        {"a\r", {"a\r"}},
        {"a\r\r\n", {"a\r"}},
        {"a\rb\n\rc", {"a\rb", "\rc"}},
        {bytes("a\0b\n\0\n"), {bytes("a\0b"), bytes("\0")}},
        {mark, {}},
        {mark + mark + "a\n" + mark + "b", {mark + "a", mark + "b"}},
        {"\xEF\xBB", {"\xEF\xBB"}},
        {"\xFF\xFE\x80", {"\xFF\xFE\x80"}},
    };
    for (const auto& [content, lines] : cases) {
        EXPECT_EQ(linesOf(content), lines) << testing::PrintToString(content);
        EXPECT_EQ(linesByCursor(content), lines) << testing::PrintToString(content);
    }
    EXPECT_EQ(linesOf("a;b\r;\nc;;", ';'), (Fields{"a", "b\r", "\nc", ""}));
}

TEST_F(TextFiles, LongFilesAndLongLinesComeThroughWhole) {
    std::mt19937 random(1);
    // Lengths around powers of two meet the ends of whatever blocks there are.
    constexpr std::size_t block = std::size_t(1) << 20;
    Fields lines;
    for (const std::size_t length : {5 * block, std::size_t(0), block - 1, block, block + 1, block / 2 * 3}) {
        lines.emplace_back(length, static_cast<char>('a' + random() % 26));
    }
    while (lines.size() < 30000) lines.emplace_back(random() % 150, static_cast<char>('a' + random() % 26));
    std::string content;
    for (const std::string& line : lines) content += line + "\r\n";
    Lines loaded;
    ASSERT_TRUE(loaded.load(wide(folder.with("in", content)), '\n', false));
    EXPECT_TRUE(same(loaded.all(), lines));
    EXPECT_TRUE(same(linesByCursor(content), lines));
    EXPECT_TRUE(saved(loaded, TextFile::eCRLF) == content);
    EXPECT_TRUE(saved(Lines(lines), TextFile::eCRLF) == content);

    // A carriage return and its line feed belong together wherever a file is cut into blocks.
    for (std::size_t length = block - 3; length <= block; ++length) {
        const Fields two = {std::string(length, 'x'), "second"};
        EXPECT_TRUE(same(linesOf(two[0] + "\r\nsecond\r\n"), two)) << length;
        EXPECT_TRUE(same(linesByCursor(two[0] + "\r\nsecond\r\n"), two)) << length;
    }
}

TEST_F(TextFiles, WhatCannotBeReadGivesNoLines) {
    const fs::path in = folder.with("in", "x\n");
    for (const WideText& name : {wide(folder / "missing"), wide(folder.path()), WideText(),
                                 wide(in / "a file is no folder"), wide(in) + WideText(L"\0x", 2)}) {
        Lines file({"before"});
        file.setCursor(1);
        EXPECT_FALSE(file.load(name, '\n', false) || file.beginLoad(name, '\n')) << toUTF8(name).c_str();
        EXPECT_EQ(file.size(), 0U);
        EXPECT_EQ(file.cursor(), 0U);
    }
}

TEST_F(TextFiles, LoadingReplacesLinesAndAppendingFollowsThem) {
    Lines file({"before"});
    file.setCursor(1);
    ASSERT_TRUE(file.load(wide(folder.with("in", "a\r\nb")), '\n', false));
    EXPECT_EQ(file.cursor(), 0U);
    file.appendLine("c");
    char* const line = file.beginLine(100);
    std::copy_n("def", 3, line);
    file.endLine(line + 3);
    file.beginLine(100);
    file.appendLine("");
    file.appendLine(text(bytes("g\0\n")));
    EXPECT_EQ(file.all(), (Fields{"a", "b", "c", "def", "", bytes("g\0\n")}));
    EXPECT_TRUE(file[6].empty());
    EXPECT_TRUE(file[0xFFFFFFFF].empty());
    EXPECT_EQ(file.lineView(3), "def");
    EXPECT_EQ(saved(file, TextFile::eCRLF), bytes("a\r\nb\r\nc\r\ndef\r\n\r\ng\0\n\r\n"));
    EXPECT_EQ(saved(TextFile()), "");
}

TEST_F(TextFiles, ANewFileGetsTheUsualPermissionsAndKeepsThoseItIsGiven) {
    const mode_t mask = umask(027);
    saved(Lines({"x"}));
    umask(mask);
    EXPECT_EQ(fs::status(folder / "out").permissions(), fs::perms(0640));
    fs::permissions(folder / "out", fs::perms(0777));
    saved(Lines({"y"}));
    EXPECT_EQ(fs::status(folder / "out").permissions(), fs::perms(0777));
}

TEST_F(TextFiles, SavingFollowsSymbolicLinksAndLeavesEverythingAsItWasWhereItFails) {
    const fs::path away = folder / "far" / "away";
    fs::create_directories(away);
    fs::create_symlink("far/away/link", folder / "out");
    fs::create_symlink("../away/file", away / "link");
    for (const char* const line : {"made", "replaced"}) {
        EXPECT_EQ(saved(Lines({line})), std::string(line) + '\n');
        EXPECT_EQ(readFile(away / "file"), std::string(line) + '\n');
    }
    EXPECT_TRUE(fs::is_symlink(folder / "out"));
    EXPECT_TRUE(fs::is_symlink(away / "link"));
    fs::create_symlink(folder / "round", folder / "about");
    fs::create_symlink(folder / "about", folder / "round");
    for (const fs::path& name : {folder / "round", folder / "far", folder / "missing" / "file",
                                 folder / "out" / "file", folder / std::string(300, 'n'), fs::path()}) {
        EXPECT_FALSE(Lines({"x"}).save(wide(name), TextFile::eLF)) << name;
    }
    EXPECT_EQ(folder.names(), (Fields{"about", "far", "out", "round"}));
    EXPECT_EQ(readFile(folder / "out"), "replaced\n");
}

TEST_F(TextFiles, ASaveThatIsBegunTakesLinesAsTheyComeAndReplacesTheFileAtItsEnd) {
    const auto fill = [](TextFile& file) {
        for (int i = 0; i < 300; ++i) file.appendLine(text(std::string(1000, 'x')));
        file.appendLine(text(std::string(200000, 'l')));  // longer than a block
        file.appendLine("last");
    };
    const fs::path out = folder.with("begun", "old\n");
    for (const auto style : {TextFile::eLF, TextFile::eCRLF}) {
        const std::string before = readFile(out);
        TextFile whole;
        TextFile begun;
        whole.appendLine("header");
        begun.appendLine("header");
        begun.beginSave(wide(out), style);
        fill(whole);
        fill(begun);
        EXPECT_EQ(begun.size(), whole.size());
        EXPECT_TRUE(begun[0].empty() && begun[begun.size() - 1].empty()) << "its lines are forgotten";
        EXPECT_TRUE(readFile(out) == before);
        EXPECT_FALSE(begun.save(wide(folder / "other"), style)) << "begun under another name";
        EXPECT_TRUE(begun.save(wide(out), style));
        EXPECT_TRUE(readFile(out) == saved(whole, style));
        EXPECT_FALSE(begun.save(wide(out), style)) << "once";
    }
    fs::create_directory(folder / "taken");
    for (const auto& [name, error] :
         {std::pair(folder / "taken", EISDIR), {folder / "missing" / "x", ENOENT}}) {
        TextFile hopeless;
        TextFile abandoned;
        hopeless.beginSave(wide(name), TextFile::eLF);
        abandoned.beginSave(wide(out), TextFile::eLF);
        fill(hopeless);
        fill(abandoned);
        errno = 0;
        EXPECT_FALSE(hopeless.save(wide(name), TextFile::eLF));
        EXPECT_EQ(errno, error);
    }
    EXPECT_EQ(readFile(out).substr(0, 7), "header\r");
    EXPECT_EQ(folder.names(), (Fields{"begun", "out", "taken"})) << "no temporary file is left";
}

TEST_F(TextFiles, APipeIsWrittenToAndNotReplaced) {
    const fs::path pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::fstream reader(pipe);  // read and write, so that neither end waits
    EXPECT_TRUE(Lines({"through"}).save(wide(pipe), TextFile::eLF));
    std::string line;
    EXPECT_EQ(std::getline(reader, line) ? line : "nothing", "through");
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_EQ(folder.names(), (Fields{"pipe"}));
}
