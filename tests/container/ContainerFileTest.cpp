// Container files: what a Writer saves, what a Reader answers, and what stays when a save fails.
#include "container/ZRContainerFile.h"
#include "tests/TestSupport.h"

using namespace TestSupport;
using Reader = ZRContainerFile::Reader;
using Writer = ZRContainerFile::Writer;

namespace {

namespace fs = std::filesystem;

const DBFieldDesc clipColumns[] = {
    {"Cookie", DBFieldTypes::eText}, {"Reel", DBFieldTypes::eText}, {"Count", DBFieldTypes::eNumeric}, {}};

Cookie name(const char* text) {
    return Cookie(text, false);
}

void addClip(Writer& writer, const Cookie& id, const std::string& reel, const std::string& count = {}) {
    dbrecord* const item = writer.addItem(id);
    ASSERT_TRUE(item);
    item->setField(1, text(reel));
    item->setField(2, text(count));
}

/// That many clips, and their number for a name.
void saveClips(const fs::path& path, unsigned count) {
    Writer writer(clipColumns);
    writer.setName(std::to_string(count).c_str());
    for (unsigned i = 0; i < count; ++i) addClip(writer, name(std::to_string(i).c_str()), "A1");
    writer.save(wide(path));
}

/// Whether the file is a container of that many clips.
bool holdsClips(const fs::path& path, unsigned count) {
    const Reader reader(wide(path), false);
    return reader.valid() && reader.getAttrib("Name", -1) == static_cast<int>(count) &&
           reader.getNumItems() == count && reader.getContents().size() == count;
}

class ContainerFile : public TempFolderTest {
 protected:
    const fs::path box = folder / "box.sg";
};

}  // namespace

TEST(ContainerIdentifier, IsTheBareFileNameWithTheKindOfItsEnding) {
    const std::tuple<const wchar_t*, char, const char*> cases[] = {
        {L"/bins/clip.RAK", 'B', "clip"},
        {L"a/b.c/shots.Sg", 'M', "shots"},
        {L"sg.txt", 'N', "sg"},
        {L"g", 'N', "g"},
        {L"sg", 'M', "sg"},
    };
    for (const auto& [fileName, kind, bareName] : cases) {
        EXPECT_EQ(ZRContainerFile::getCookieFromFilename(fileName),
                  Cookie(name(bareName).uuid(), kind, kind == 'N' ? 0 : 255))
            << bareName;
    }
    EXPECT_TRUE(ZRContainerFile::getCookieFromFilename({}).isNull());
}

TEST_F(ContainerFile, AFileThatIsNoContainerGivesDefaults) {
    const std::string columns =
        "\"KESTA:Rev 1\"\n\"Name:Box\"\n\"Permanent:true\"\n\"KESTA\"\n\"4\"\n\"text\"\n";
    const struct {
        fs::path path;
        int error;  // that the system reports
        unsigned records;
    } cases[] = {
        {folder / "missing.sg", ENOENT, 0},
        {folder.path(), EISDIR, 0},
        {"/dev/zero", EINVAL, 0},
        {{}, ENOENT, 0},
        {folder.with("empty.sg", ""), 0, 0},
        {folder.with("prose.sg", "Dear all,\nno container here.\n"), 0, 0},
        {folder.with("headless.sg", "\"KESTA:Rev 1\"\n\"Name:Box\"\n"), 0, 0},
        {folder.with("uneven.sg", columns + "\"Cookie\",\"Reel\"\n\"a\"\n"), 0, 0},
        {folder.with("other.sg", columns + "\"Reel\"\n\"a\"\n\"b\"\n"), 0,
         2},  // a database, but no container
        {folder.with(".csv", "Reel\na\nb\n"), 0, 2},
    };
    for (const auto& [path, error, records] : cases) {
        errno = 0;
        const Reader reader(wide(path), false);
        EXPECT_EQ(errno, error) << path;
        EXPECT_FALSE(reader.valid()) << path;
        EXPECT_EQ(reader.getNumItems(), records) << path;
        EXPECT_TRUE(reader.getItem(0).getCookie().isNull()) << path;
        EXPECT_EQ(reader.getItem(0).getAttrib(0, 7), 7) << path;
        EXPECT_EQ(reader.getItemAttribIndex("Reel"), -1) << path;
        EXPECT_TRUE(reader.getContents().empty()) << path;
        EXPECT_FALSE(reader.contains(Cookie()) || reader.contains(name("a"))) << path;
        EXPECT_EQ(reader.getName(), "") << path;
        EXPECT_EQ(reader.getAttrib("Name", 7), 7) << path;
        EXPECT_FALSE(reader.isPermanent()) << path;
    }
}

TEST_F(ContainerFile, TheDefaultStandsInForAnEmptyAttributeOfTheContainerButNotOfAnItem) {
    Writer writer(clipColumns);
    writer.setAttrib("Empty", "");
    writer.setAttrib("Words", "many");
    writer.setAttrib("Seven", " 7.5 metres");
    addClip(writer, name("a"), " 7.5 metres", "");
    writer.save(wide(box));
    const Reader reader(wide(box), false);

    EXPECT_EQ(reader.getAttrib("Absent", 9), 9);
    EXPECT_EQ(reader.getAttrib("Empty", 9), 9);
    EXPECT_EQ(reader.getAttrib("Empty", 9.5), 9.5);
    EXPECT_EQ(reader.getAttrib("Words", 9), 0);
    EXPECT_EQ(reader.getAttrib("SEVEN", 9), 7);
    EXPECT_EQ(reader.getAttrib("seven", 9.0), 7.5);
    EXPECT_EQ(reader.getAttrib({}, 9), 9);

    const Reader::Item item = reader.getItem(0);
    EXPECT_EQ(reader.getItemAttribIndex("REEL"), 1);
    EXPECT_EQ(item.getAttrib(1, 9), 7);
    EXPECT_EQ(item.getAttrib(1, 9.0), 7.5);
    EXPECT_EQ(item.getAttrib(2, 9), 0);
    EXPECT_EQ(item.getAttrib(2, 9.5), 0.0);
    for (const unsigned absent : {unsigned(-1), 3U, 0x10001U}) {
        EXPECT_EQ(item.getAttrib(absent), "");
        EXPECT_EQ(item.getAttrib(absent, 9), 9);
        EXPECT_EQ(item.getAttrib(absent, 9.5), 9.5);
    }
}

TEST_F(ContainerFile, WhatIsWrittenIsAKnownFileAndComesBack) {
    const Cookie ids[] = {Cookie("m0123456789abcdef0123456789abcdefff", true), name("name, with \"quotes\""),
                          Cookie(name("x").uuid(), 'B', 3), Cookie()};
    const Fields reels = {"A1", "comma, \"quote\"", "back\\slash\\", "r\xC3\xA9"};
    const fs::path file = folder / "clips.sg";
    {
        Writer writer(clipColumns);
        writer.setName("Low W\xC3\xA4ter");
        writer.setPermanent(false);
        writer.setAttrib("Note", "a: b, c");
        for (std::size_t i = 0; i < reels.size(); ++i) addClip(writer, ids[i], reels[i], std::to_string(i));
        writer.setAttrib("PERMANENT", "Yes");
        writer.setAttrib("", "no key");
        writer.save(wide(file));
    }
    EXPECT_EQ(readFile(file), R"("KESTA:Rev 1"
"Name:Low Wäter"
"Permanent:Yes"
"Note:a: b, c"
"KESTA"
"39","14","4"
"text","text","numeric"
"Cookie","Reel","Count"
"M01234567-89ab-cdef-0123-456789abcdefff","A1","0"
"N09a66678-c758-8d7d-91f1-f0fd2841680a00","comma, ""quote""","1"
"B6d16e801-ba1a-fee7-d7ed-6d966bae788c03","back\slash\","2"
"","ré","3"
)");

    const Reader::Item kept = [&] {
        const Reader reader(wide(file), false);
        EXPECT_EQ(reader.getCookie(), name("clips"));
        EXPECT_EQ(reader.getNameW(), L"Low W\u00E4ter");
        EXPECT_TRUE(reader.isPermanent());
        EXPECT_EQ(reader.getAttrib("note"), "a: b, c");
        EXPECT_EQ(reader.getNumItems(), reels.size());
        const CookieSet contents = reader.getContents();
        for (std::size_t i = 0; i < reels.size(); ++i) {
            const Reader::Item item = reader.getItem(static_cast<unsigned>(i));
            EXPECT_EQ(item.getCookie(), ids[i]);
            EXPECT_EQ(str(item.getAttrib(1)), reels[i]);
            EXPECT_EQ(item.getAttrib(2, -1), static_cast<int>(i));
            EXPECT_TRUE(reader.contains(ids[i]));
            EXPECT_EQ(contents[static_cast<int>(i)], ids[i]);
        }
        EXPECT_FALSE(reader.contains(Cookie(ids[0].uuid(), 'M', 0)));  // another qualifier
        return reader.getItem(reader.getNumItems());
    }();
    EXPECT_TRUE(kept.getCookie().isNull());
    EXPECT_EQ(kept.getAttrib(1, 9), 9);  // an invalid item needs no Reader

    Reader header(wide(folder.with(".csv", "Cookie\na\n")), true);
    EXPECT_TRUE(header.valid());
    EXPECT_EQ(header.getNumItems(), 1U) << "comma-separated text is always read whole";
    header = Reader(wide(file), true);
    EXPECT_TRUE(header.isPermanent());
    EXPECT_EQ(header.getItemAttribIndex("count"), 2);
    EXPECT_EQ(header.getNumItems(), 0U);
    EXPECT_FALSE(header.contains(ids[0]));
}

TEST_F(ContainerFile, ItemsOfKindIAreRefusedAndNeedTheirColumn) {
    Writer writer(clipColumns);
    writer.setName("Box");
    EXPECT_FALSE(writer.addItem(Cookie(name("a").uuid(), 'I', 0)));
    EXPECT_FALSE(writer.addItem(Cookie("i0123456789abcdef0123456789abcdefff", false)));
    EXPECT_TRUE(writer.addItem(name("i")));
    writer.save(wide(box));
    EXPECT_EQ(Reader(wide(box), false).getNumItems(), 1U);

    Writer without(nullptr);
    without.setName("Box");
    EXPECT_TRUE(without.addItem(name("a")));
    without.save(wide(box));
    EXPECT_FALSE(Reader(wide(box), false).valid());
    EXPECT_NE(readFile(box).find("Name:Box"), std::string::npos);
}

TEST_F(ContainerFile, SavingOverOneGoesThroughATemporaryNameAndANewOneDoesNot) {
    const fs::path temporary = folder / "box.sg.tmp";
    // A folder in the way of the temporary name stops the save that goes there, and only that one.
    fs::create_directory(temporary);
    saveClips(box, 3);
    EXPECT_TRUE(holdsClips(box, 3));
    errno = 0;
    saveClips(box, 5);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_TRUE(holdsClips(box, 3));
    fs::remove(temporary);

    constexpr auto unusual = fs::perms(0642);
    fs::permissions(box, unusual);
    folder.with("precious", "kept");
    fs::create_symlink(folder / "precious", temporary);
    saveClips(box, 2);
    EXPECT_EQ(readFile(folder / "precious"), "kept") << "a link under the temporary name is not followed";
    fs::remove(folder / "precious");
    folder.with("box.sg.tmp", "left by a writer that was killed");
    for (const unsigned count : {5U, 0U, 1U}) {  // an empty container counts as written too
        saveClips(box, count);
        EXPECT_TRUE(holdsClips(box, count)) << count;
        EXPECT_EQ(fs::status(box).permissions(), unusual) << count;
        EXPECT_EQ(folder.names(), Fields{"box.sg"}) << count;
    }
    fs::permissions(box, fs::perms(01444));
    saveClips(box, 3);
    EXPECT_TRUE(holdsClips(box, 3)) << "replacing a file needs its folder only";
    EXPECT_EQ(fs::status(box).permissions(), fs::perms(01444));
}

TEST_F(ContainerFile, AFailedSaveLeavesTheOldFileAndNothingElseAndTheReason) {
    const fs::path longName = folder / std::string(253, 'x');  // the temporary one is too long
    saveClips(longName, 3);
    fs::create_directory(folder / "folder.sg");
    const Fields before = folder.names();
    const std::pair<fs::path, int> cases[] = {
        {longName, ENAMETOOLONG},
        {folder / "folder.sg", EISDIR},  // written, but cannot be moved there
        {folder / "absent" / "box.sg", ENOENT},
        {{}, ENOENT},
    };
    for (const auto& [path, error] : cases) {
        errno = 0;
        saveClips(path, 4);
        EXPECT_EQ(errno, error) << path;
        EXPECT_EQ(folder.names(), before) << path;
    }
    EXPECT_TRUE(holdsClips(longName, 3));
}
