// The road of a typical use, file to file: load, view, query, tag, delete, order, save, load again. Walked
// through the library and by the example program, which must come to the same files.
#include <climits>
#include <cstdlib>

#include "tests/TestSupport.h"
#include "view/KSTView.h"

using namespace TestSupport;

namespace {

constexpr const char* log =
    "\"KESTA:Rev 1\"\n\"Title:Low Water\"\n\"KESTA\"\n\"32\",\"10\",\"12\",\"100\",\"1\"\n"
    "\"text\",\"text\",\"timecode\",\"text\",\"text\"\n\"Name\",\"Reel\",\"Start time\",\"Notes\",\"Tag\"\n"
    "\"1-1\",\"A001\",\"01:00:30:00\",\"NG, boom in "
    "shot\",\"0\"\n\"1-2\",\"A001\",\"01:00:20:00\",\"circle\",\"0\"\n"
    "\"2-1\",\"A002\",\"02:00:00:00\",\"\",\"0\"\n\"2-2\",\"A002\",\"02:00:10:00\",\"ng\",\"0\"\n"
    "\"2-3\",\"A002\",\"02:00:20:00\",\"focus NG\",\"0\"\n\"1-3\",\"A001\",\"01:00:10:00\",\"\",\"0\"\n";

const std::string header =
    "\"KESTA:Rev 1\"\n\"Title:Low Water\"\n\"KESTA\"\n\"32\",\"10\",\"12\",\"100\",\"1\"\n"
    "\"text\",\"text\",\"timecode\",\"text\",\"text\"\n\"Name\",\"Reel\",\"Start time\",\"Notes\",\"Tag\"\n";
const std::string left =
    header +
    "\"1-2\",\"A001\",\"01:00:20:00\",\"circle\",\"0\"\n\"2-1\",\"A002\",\"02:00:00:00\",\"\",\"0\"\n"
    "\"1-3\",\"A001\",\"01:00:10:00\",\"\",\"0\"\n";
const std::string selects = header +
                            "\"1-3\",\"A001\",\"01:00:10:00\",\"\",\"0\"\n"
                            "\"1-2\",\"A001\",\"01:00:20:00\",\"circle\",\"0\"\n";

class TypicalRoad : public TempFolderTest {
 protected:
    void SetUp() override { folder.with("log", log); }

    static int tag(const KSTView& view, unsigned column, const char* wanted) {
        const Zr::Ptr<dbrecord> query = view->make_dummy_record();
        query->set_field(static_cast<int>(column), wanted, true);
        view->set_query(query.get());
        return view->tagMatches(0);
    }
};

TEST_F(TypicalRoad, FromFileToFileThroughTheLibrary) {
    const Zr::Ptr<kesta> database(new kesta(wide(folder / "log"), INT_MAX, true));
    ASSERT_EQ(database->get_num_records(), 6U);
    EXPECT_FALSE(database->get_changed());
    const KSTView view(new KSTViewRep(database.get()));
    view->displayAllRecords();
    CapturedNotifications heard(*database);

    EXPECT_EQ(tag(view, 3, "ng"), 3);
    EXPECT_EQ(view->deleteTagged(), 3);
    // Rows 2 and 3 stand side by side; yet a run that begins behind its own length goes row by row.
    EXPECT_EQ(heard.texts(), (std::vector<std::string>{"0 ", "2 ", "2 "}));
    EXPECT_EQ(columnOf(*view, 0), (Fields{"1-2", "2-1", "1-3"}));
    EXPECT_EQ(columnOf(*database, 0), columnOf(*view, 0));
    EXPECT_TRUE(database->get_changed());

    tag(view, 1, "A001");
    const KSTView ofReel(view->newTagSubview());
    ofReel->set_sortfield(2);
    ofReel->sort(1, 0);
    EXPECT_EQ(ofReel->saveAsText(wide(folder / "selects"), false), 2);
    EXPECT_EQ(database->save_text(), 3);
    EXPECT_EQ(readFile(folder / "log"), left);
    EXPECT_EQ(readFile(folder / "selects"), selects);
    EXPECT_EQ(rowsOf(*loadDatabase(folder / "log")), rowsOf(*view));
}

TEST_F(TypicalRoad, FromFileToFileByTheExample) {
    const std::string command = std::string(KESTA_EXAMPLE) + " '" + (folder / "log").string() +
                                "' NG A001 '" + (folder / "selects").string() + "' >/dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(readFile(folder / "log"), left);
    EXPECT_EQ(readFile(folder / "selects"), selects);
}

}  // namespace
