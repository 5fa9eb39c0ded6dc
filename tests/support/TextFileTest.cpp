// Text files: how bytes become lines and lines become files, and that no file is ever damaged.
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

#include "support/TextFile.h"
#include "tests/TestSupport.h"

using namespace TestSupport;
namespace fs = std::filesystem;

namespace {

using Strings = std::vector<std::string>;

class TextFiles : public TempFolderTest {
 protected:
    Strings linesOf(std::string_view content, char separator = '\n') {
        Lines file;
        EXPECT_TRUE(file.load(wide(folder.with("in", content)), separator, false));
        EXPECT_EQ(file.cursor(), 0U);
        return file.all();
    }

    std::string saved(const TextFile& file, TextFile::eEOLStyle style = TextFile::eLF) {
        EXPECT_TRUE(file.save(wide(folder / "out"), style));
        return readFile(folder / "out");
    }
};

mode_t permissionsOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

}  // namespace

TEST_F(TextFiles, LinesEndAtLineFeedsWithOrWithoutCarriageReturns) {
    const std::pair<std::string, Strings> cases[] = {
        {"", {}},
        {"\n", {""}},
        {"a\r\nb\r\n", {"a", "b"}},
        {"a\n\nb\n\n", {"a", "", "b", ""}},
        {"a\r", {"a\r"}},
        {"a\r\r\n", {"a\r"}},
        {"a\rb\n\rc", {"a\rb", "\rc"}},
        {bytes("a\0b\n\0\n"), {bytes("a\0b"), bytes("\0")}},
        {"\xEF\xBB\xBF", {}},
        {"\xEF\xBB\xBF"
         "a\r\n",
         {"a"}},
        {"\xEF\xBB\xBF\xEF\xBB\xBF"
         "a",
         {"\xEF\xBB\xBF"
          "a"}},
        {"a\n\xEF\xBB\xBF"
         "b",
         {"a",
          "\xEF\xBB\xBF"
          "b"}},
        {"\xEF\xBB", {"\xEF\xBB"}},
        {"\xFF\xFE\x80", {"\xFF\xFE\x80"}},
    };
    for (const auto& [content, lines] : cases) {
        EXPECT_EQ(linesOf(content), lines) << testing::PrintToString(content);
    }
    EXPECT_EQ(linesOf("a;b\r;\nc;;", ';'), (Strings{"a", "b\r", "\nc", ""}));
}

TEST_F(TextFiles, LongFilesAndLongLinesComeThroughWhole) {
    std::mt19937 random(1);
    // Lengths around powers of two meet the ends of whatever blocks there are.
    Strings lines;
    std::string content;
    for (const std::size_t length :
         {std::size_t(5) << 20, std::size_t(0), (std::size_t(1) << 20) - 1, std::size_t(1) << 20,
          (std::size_t(1) << 20) + 1, std::size_t(3) << 19}) {
        lines.emplace_back(length, static_cast<char>('a' + random() % 26));
    }
    while (lines.size() < 30000) lines.emplace_back(random() % 150, static_cast<char>('a' + random() % 26));
    for (const std::string& line : lines) content += line + "\r\n";
    EXPECT_TRUE(linesOf(content) == lines);
    content.resize(content.size() - 2);
    EXPECT_TRUE(linesOf(content) == lines);

    Lines file(lines);
    EXPECT_TRUE(file.all() == lines);
    EXPECT_TRUE(saved(file, TextFile::eCRLF) == content + "\r\n");
    Lines loaded;
    ASSERT_TRUE(loaded.load(wide(folder / "out"), '\n', false));
    EXPECT_TRUE(saved(loaded, TextFile::eCRLF) == content + "\r\n");
}

TEST_F(TextFiles, CarriageReturnAndLineFeedBelongTogetherWhereverAFileIsCutIntoBlocks) {
    for (std::size_t extra = 0; extra < 4; ++extra) {
        const std::string first((std::size_t(1) << 20) - 3 + extra, 'x');
        EXPECT_TRUE(linesOf(first + "\r\n" + "second\r\n") == (Strings{first, "second"})) << extra;
    }
}

TEST_F(TextFiles, WhatCannotBeReadGivesNoLines) {
    for (const fs::path& name :
         {folder / "missing", folder.path(), fs::path(), folder / "in" / "a file is no folder"}) {
        folder.with("in", "x\n");
        Lines file({"before"});
        file.setCursor(1);
        EXPECT_FALSE(file.load(wide(name), '\n', false)) << name;
        EXPECT_EQ(file.size(), 0U);
        EXPECT_EQ(file.cursor(), 0U);
        EXPECT_TRUE(file[0].empty());
    }
    Lines file;
    EXPECT_FALSE(file.load(WideText((folder / "in").wstring().c_str()) + WideText(L"\0x", 2), '\n', false))
        << "a zero character ends no name";
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
    EXPECT_EQ(file.all(), (Strings{"a", "b", "c", "def", "", bytes("g\0\n")}));
    EXPECT_TRUE(file[6].empty());
    EXPECT_TRUE(file[0xFFFFFFFF].empty());
    EXPECT_EQ(file.lineView(3), "def");
    EXPECT_EQ(saved(file), bytes("a\nb\nc\ndef\n\ng\0\n\n"));
    EXPECT_EQ(saved(file, TextFile::eCRLF), bytes("a\r\nb\r\nc\r\ndef\r\n\r\ng\0\n\r\n"));
    EXPECT_EQ(saved(TextFile()), "");
}

TEST_F(TextFiles, NamesAreUTF8) {
    const fs::path name = folder / "Caf\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x8E\xAC";
    EXPECT_TRUE(Lines({"x"}).save(fromUTF8(text(name.string())), TextFile::eLF));
    EXPECT_EQ(readFile(name), "x\n");
    // Names that are no UTF-8 are names all the same.
    const fs::path latin = folder / "Caf\xE9";
    EXPECT_TRUE(Lines({"y"}).save(fromUTF8(text(latin.string())), TextFile::eLF));
    EXPECT_EQ(readFile(latin), "y\n");
}

TEST_F(TextFiles, SavingKeepsPermissionsAndGivesNewFilesTheUsualOnes) {
    const mode_t mask = umask(027);
    saved(Lines({"x"}));
    umask(mask);
    EXPECT_EQ(permissionsOf(folder / "out"), 0640U);
    for (const mode_t permissions : {0600U, 0664U, 0777U, 0604U}) {
        ASSERT_EQ(chmod((folder / "out").c_str(), permissions), 0);
        saved(Lines({"y"}));
        EXPECT_EQ(permissionsOf(folder / "out"), permissions);
    }
}

TEST_F(TextFiles, SavingFollowsSymbolicLinks) {
    fs::create_directories(folder / "far" / "away");
    folder.with("far/away/file", "old\n");
    fs::create_symlink(fs::path("far/away/link"), folder / "out");
    fs::create_symlink(fs::path("../away/file"), folder / "far" / "away" / "link");
    EXPECT_EQ(saved(Lines({"new"})), "new\n");
    EXPECT_EQ(readFile(folder / "far" / "away" / "file"), "new\n");
    EXPECT_TRUE(fs::is_symlink(folder / "out"));
    EXPECT_TRUE(fs::is_symlink(folder / "far" / "away" / "link"));
    EXPECT_FALSE(fs::is_symlink(folder / "far" / "away" / "file"));

    // A link to what is not there yet.
    fs::remove(folder / "far" / "away" / "file");
    EXPECT_EQ(saved(Lines({"made"})), "made\n");
    EXPECT_TRUE(fs::is_symlink(folder / "out"));

    fs::create_symlink(folder / "round", folder / "about");
    fs::create_symlink(folder / "about", folder / "round");
    EXPECT_FALSE(Lines({"x"}).save(wide(folder / "round"), TextFile::eLF));
    EXPECT_EQ(folder.names(), (Strings{"about", "far", "out", "round"}));
}

TEST_F(TextFiles, FailureLeavesEverythingAsItWas) {
    const Lines file(Strings(1000, std::string(1000, 'x')));
    folder.with("out", "old\n");
    fs::create_directory(folder / "folder");
    const auto fails = [&](const fs::path& name) {
        EXPECT_FALSE(file.save(wide(name), TextFile::eLF)) << name;
        EXPECT_EQ(readFile(folder / "out"), "old\n");
        EXPECT_EQ(folder.names(), (Strings{"folder", "out"}));
        EXPECT_TRUE(fs::is_empty(folder / "folder"));
    };
    fails(folder / "folder");
    fails(folder / "missing" / "file");
    fails(folder / "out" / "file");
    fails(folder / std::string(300, 'n'));
    fails(fs::path());
    EXPECT_TRUE(file.save(wide(folder / "out"), TextFile::eLF));
}

TEST_F(TextFiles, ASaveThatIsBegunTakesLinesAsTheyComeAndReplacesTheFileAtItsEnd) {
    const auto fill = [](TextFile& file, const std::string& line) {
        for (int i = 0; i < 300; ++i) file.appendLine(text(line));
        file.appendLine(text(std::string(200000, 'l')));  // longer than a block
        file.appendLine(text(line));
    };
    const fs::path out = folder.with("out", "old\n");
    for (const auto style : {TextFile::eLF, TextFile::eCRLF}) {
        TextFile whole;
        TextFile begun;
        whole.appendLine("header");
        begun.appendLine("header");
        begun.beginSave(wide(out), style);
        const std::string before = readFile(out);
        fill(whole, std::string(1000, 'x'));
        fill(begun, std::string(1000, 'x'));
        EXPECT_EQ(begun.size(), whole.size());
        EXPECT_TRUE(begun[0].empty()) << "what has been written is forgotten";
        EXPECT_EQ(begun[begun.size() - 1], whole[whole.size() - 1]);
        EXPECT_EQ(readFile(out), before);
        EXPECT_FALSE(begun.save(wide(folder / "other"), style)) << "begun under another name";
        EXPECT_TRUE(begun.save(wide(out), style));
        const std::string written = readFile(out);
        EXPECT_TRUE(written == saved(whole, style));
        EXPECT_FALSE(begun.save(wide(out), style)) << "once";
    }
    {
        TextFile abandoned;
        abandoned.beginSave(wide(out), TextFile::eLF);
        fill(abandoned, "y");
        TextFile nowhere;
        nowhere.beginSave(wide(folder / "missing" / "file"), TextFile::eLF);
        fill(nowhere, "y");
        errno = 0;
        EXPECT_FALSE(nowhere.save(wide(folder / "missing" / "file"), TextFile::eLF));
        EXPECT_EQ(errno, ENOENT);
    }
    EXPECT_EQ(readFile(out).substr(0, 7), "header\r");
    EXPECT_EQ(folder.names(), (Strings{"out"}));
}

TEST_F(TextFiles, APipeIsWrittenToAndNotReplaced) {
    const fs::path pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    EXPECT_TRUE(Lines({"through"}).save(wide(pipe), TextFile::eLF));
    char buffer[20] = {};
    EXPECT_EQ(read(reader, buffer, sizeof buffer), 8);
    EXPECT_STREQ(buffer, "through\n");
    close(reader);
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_EQ(folder.names(), (Strings{"pipe"}));
}
