// Container files: what a Writer saves, what a Reader answers, and what stays when a save fails.
#include "container/ZRContainerFile.h"
#include "tests/TestSupport.h"

using namespace TestSupport;
using Reader = ZRContainerFile::Reader;
using Writer = ZRContainerFile::Writer;

namespace {

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
void fillClips(Writer& writer, unsigned count) {
    writer.setName(Zr::StringFromInteger(static_cast<int>(count)));
    for (unsigned i = 0; i < count; ++i) addClip(writer, name(("clip " + std::to_string(i)).c_str()), "A1");
}

void saveClips(const std::filesystem::path& path, unsigned count) {
    Writer writer(clipColumns);
    fillClips(writer, count);
    writer.save(wide(path));
}

/// Whether the file is a container of that many clips.
bool holdsClips(const std::filesystem::path& path, unsigned count) {
    const Reader reader(wide(path), false);
    return reader.valid() && reader.getAttrib("Name", -1) == static_cast<int>(count) &&
           reader.getNumItems() == count && reader.getContents().size() == count;
}

class ContainerReading : public TempFolderTest {};
class ContainerWriting : public TempFolderTest {};
class ContainerSavedOver : public TempFolderTest {};

}  // namespace

TEST(ContainerIdentifier, IsTheBareFileNameWithTheKindOfItsEnding) {
    struct Case {
        const wchar_t* fileName;
        char kind;
        int qualifier;
        const char* bareName;
    };
    const Case cases[] = {
        {L"/bins/clip.RAK", 'B', 255, "clip"},
        {L"clip.rak", 'B', 255, "clip"},
        {L"shots.sg", 'M', 255, "shots"},
        {L"a/b.c/shots.Sg", 'M', 255, "shots"},
        {L"sg.txt", 'N', 0, "sg"},
        {L"g", 'N', 0, "g"},
        {L"sg", 'M', 255, "sg"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ZRContainerFile::getCookieFromFilename(c.fileName),
                  Cookie(name(c.bareName).uuid(), c.kind, static_cast<unsigned char>(c.qualifier)))
            << c.bareName;
    }
    EXPECT_TRUE(ZRContainerFile::getCookieFromFilename({}).isNull());
}

TEST_F(ContainerReading, AFileThatIsNoContainerGivesDefaults) {
    const std::string columns =
        "\"KESTA:Rev 1\"\n\"Name:Box\"\n\"Permanent:true\"\n\"KESTA\"\n\"4\"\n\"text\"\n";
    const std::pair<std::filesystem::path, unsigned> cases[] = {
        {folder / "missing.sg", 0},
        {folder.path(), 0},
        {{}, 0},
        {folder.with("empty.sg", ""), 0},
        {folder.with("prose.sg", "Dear all,\nno container here.\n"), 0},
        {folder.with("headless.sg", "\"KESTA:Rev 1\"\n\"Name:Box\"\n"), 0},
        {folder.with("uneven.sg", columns + "\"Cookie\",\"Reel\"\n\"a\"\n"), 0},
        {folder.with("other.sg", columns + "\"Reel\"\n\"a\"\n\"b\"\n"), 2},  // a database, but no container
    };
    for (const auto& [path, records] : cases) {
        const Reader reader(wide(path), false);
        EXPECT_FALSE(reader.valid()) << path;
        EXPECT_EQ(reader.getNumItems(), records) << path;
        EXPECT_TRUE(reader.getItem(0).getCookie().isNull()) << path;
        EXPECT_EQ(reader.getItem(0).getAttrib(0), "") << path;
        EXPECT_EQ(reader.getItem(0).getAttrib(0, 7), 7) << path;
        EXPECT_EQ(reader.getItemAttribIndex("Reel"), -1) << path;
        EXPECT_TRUE(reader.getContents().empty()) << path;
        EXPECT_FALSE(reader.contains(Cookie())) << path;
        EXPECT_FALSE(reader.contains(name("a"))) << path;
        EXPECT_EQ(reader.getName(), "") << path;
        EXPECT_EQ(reader.getAttrib("Name", 7), 7) << path;
        EXPECT_FALSE(reader.isPermanent()) << path;
    }
}

TEST_F(ContainerReading, TheDefaultStandsInForAnEmptyAttributeOfTheContainerButNotOfAnItem) {
    Writer writer(clipColumns);
    writer.setAttrib("Empty", "");
    writer.setAttrib("Words", "many");
    writer.setAttrib("Seven", " 7.5 metres");
    addClip(writer, name("a"), " 7.5 metres", "");
    writer.save(wide(folder / "box.sg"));
    const Reader reader(wide(folder / "box.sg"), false);

    EXPECT_EQ(reader.getAttrib("Absent", 9), 9);
    EXPECT_EQ(reader.getAttrib("Empty", 9), 9);
    EXPECT_EQ(reader.getAttrib("Empty", 9.5), 9.5);
    EXPECT_EQ(reader.getAttrib("Words", 9), 0);
    EXPECT_EQ(reader.getAttrib("SEVEN", 9), 7);
    EXPECT_EQ(reader.getAttrib("seven", 9.0), 7.5);
    EXPECT_EQ(reader.getAttrib({}, 9), 9);

    const Reader::Item item = reader.getItem(0);
    const auto field = [&](const char* column) {
        return static_cast<unsigned>(reader.getItemAttribIndex(column));
    };
    EXPECT_EQ(item.getAttrib(field("REEL"), 9), 7);
    EXPECT_EQ(item.getAttrib(field("Reel"), 9.0), 7.5);
    EXPECT_EQ(item.getAttrib(field("Count"), 9), 0);
    EXPECT_EQ(item.getAttrib(field("Count"), 9.5), 0.0);
    for (const unsigned absent : {field("Scene"), 3U, 0x10001U}) {
        EXPECT_EQ(item.getAttrib(absent), "");
        EXPECT_EQ(item.getAttrib(absent, 9), 9);
        EXPECT_EQ(item.getAttrib(absent, 9.5), 9.5);
    }
}

TEST_F(ContainerWriting, WhatIsWrittenComesBackAlsoFromASecondGeneration) {
    const Cookie ids[] = {Cookie("m0123456789abcdef0123456789abcdefff", true), name("name, with \"quotes\""),
                          Cookie(name("x").uuid(), 'B', 3), Cookie(), name("x")};
    const Fields reels = {"A1", "comma, \"quote\"", "back\\slash\\", "",
                          "r\xC3\xA9"
                          "el"};
    const std::filesystem::path first = folder / "clips.sg";
    const std::filesystem::path second = folder / "again.sg";
    {
        Writer writer(clipColumns);
        writer.setName("Low W\xC3\xA4ter");
        writer.setPermanent(false);
        writer.setAttrib("Note", "a: b, c");
        for (std::size_t i = 0; i < reels.size(); ++i) addClip(writer, ids[i], reels[i], std::to_string(i));
        writer.setAttrib("PERMANENT", "Yes");
        writer.setAttrib("", "no key");
        writer.save(wide(first));
    }
    {
        const Reader reader(wide(first), false);
        Writer writer(clipColumns);
        for (const char* key : {"Name", "Permanent", "Note"}) writer.setAttrib(key, reader.getAttrib(key));
        for (unsigned i = 0; i < reader.getNumItems(); ++i) {
            const Reader::Item item = reader.getItem(i);
            addClip(writer, item.getCookie(), str(item.getAttrib(1)), str(item.getAttrib(2)));
        }
        writer.save(wide(second));
    }
    EXPECT_EQ(readFile(second), readFile(first));

    const Reader::Item kept = [&] {
        const Reader reader(wide(second), false);
        EXPECT_EQ(reader.getCookie(), name("again"));
        EXPECT_EQ(reader.getName(), "Low W\xC3\xA4ter");
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
        const Reader::Item past = reader.getItem(reader.getNumItems());
        EXPECT_TRUE(past.getCookie().isNull());
        EXPECT_EQ(past.getAttrib(1, 9), 9);
        return past;
    }();
    EXPECT_EQ(kept.getAttrib(0), "");  // an invalid item needs no Reader

    Reader header(wide(first), false);
    header = Reader(wide(second), true);
    EXPECT_TRUE(header.valid());
    EXPECT_TRUE(header.isPermanent());
    EXPECT_EQ(header.getItemAttribIndex("count"), 2);
    EXPECT_EQ(header.getNumItems(), 0U);
    EXPECT_FALSE(header.contains(ids[0]));
}

TEST_F(ContainerWriting, ItemsOfKindIAreRefusedAndNeedTheirColumn) {
    Writer writer(clipColumns);
    writer.setName("Box");
    EXPECT_FALSE(writer.addItem(Cookie(name("a").uuid(), 'I', 0)));
    EXPECT_FALSE(writer.addItem(Cookie("i0123456789abcdef0123456789abcdefff", false)));
    EXPECT_TRUE(writer.addItem(name("i")));
    writer.save(wide(folder / "box.sg"));
    EXPECT_EQ(Reader(wide(folder / "box.sg"), false).getNumItems(), 1U);

    Writer without(nullptr);
    without.setName("Box");
    EXPECT_TRUE(without.addItem(name("a")));
    without.save(wide(folder / "box.sg"));
    EXPECT_FALSE(Reader(wide(folder / "box.sg"), false).valid());
    EXPECT_NE(readFile(folder / "box.sg").find("Name:Box"), std::string::npos);
}

TEST_F(ContainerSavedOver, GoesThroughATemporaryNameAndANewOneDoesNot) {
    // A folder in the way of the temporary name stops the save that goes there, and only that one.
    std::filesystem::create_directory(folder / "box.sg.tmp");
    saveClips(folder / "box.sg", 3);
    EXPECT_TRUE(holdsClips(folder / "box.sg", 3));
    saveClips(folder / "box.sg", 5);
    EXPECT_TRUE(holdsClips(folder / "box.sg", 3));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "box.sg.tmp"));

    std::filesystem::remove(folder / "box.sg.tmp");
    std::filesystem::permissions(folder / "box.sg", std::filesystem::perms::owner_all);
    folder.with("precious", "kept");
    std::filesystem::create_symlink(folder / "precious", folder / "box.sg.tmp");
    saveClips(folder / "box.sg", 2);
    EXPECT_EQ(readFile(folder / "precious"), "kept") << "a temporary name never leads out of the folder";
    std::filesystem::remove(folder / "precious");
    folder.with("box.sg.tmp", "left by a writer that was killed");
    for (const unsigned count : {5U, 0U, 1U}) {  // an empty container counts as written too
        saveClips(folder / "box.sg", count);
        EXPECT_TRUE(holdsClips(folder / "box.sg", count)) << count;
        EXPECT_EQ(folder.names(), std::vector<std::string>{"box.sg"});
    }
    EXPECT_EQ(std::filesystem::status(folder / "box.sg").permissions(), std::filesystem::perms::owner_all);
}

TEST_F(ContainerSavedOver, AFailedSaveLeavesTheOldFileAndNothingElse) {
    const std::string longName(253, 'x');  // no room for the temporary name's ending
    for (const std::string& fileName : {std::string("box.sg"), longName}) saveClips(folder / fileName, 3);
    for (const char* taken : {"folder.sg", "other.sg", "other.sg.tmp"}) {
        std::filesystem::create_directory(folder / taken);
    }
    const std::vector<std::string> before = folder.names();

    saveClips(folder / longName, 4);
    EXPECT_TRUE(holdsClips(folder / longName, 3));
    saveClips(folder / "folder.sg", 4);  // written, but cannot be moved there
    saveClips(folder / "other.sg", 4);   // cannot be written; the folder must not be moved instead
    saveClips(folder / "absent" / "box.sg", 4);
    saveClips({}, 4);
    EXPECT_EQ(folder.names(), before);
}

TEST_F(ContainerSavedOver, RunningOutOfMemoryAnywhereLeavesTheOldOrTheNewFile) {
    const std::filesystem::path path = folder / "box.sg";
    saveClips(path, 3);
    Writer writer(clipColumns);
    fillClips(writer, 1);
    const WideText fileName = wide(path);

    bool saved = false;
    for (unsigned request = 1; !saved; ++request) {
        {
            CountingAllocator allocator;
            allocator.failAt(request, true);
            try {
                writer.save(fileName);
                saved = true;
            } catch (const Zr::Exception::BadAlloc&) {
            }
        }
        ASSERT_TRUE(holdsClips(path, saved ? 1 : 3)) << request;
        ASSERT_EQ(folder.names(), std::vector<std::string>{"box.sg"}) << request;
    }
}
