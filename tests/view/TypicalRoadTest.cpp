// The road of a typical use, file to file: load, view, query, tag, delete, order, save, load again. Walked by
// the example program.
#include <cstdlib>

#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

const std::string header =
    "\"KESTA:Rev 1\"\n\"Title:Low Water\"\n\"KESTA\"\n\"32\",\"10\",\"12\",\"100\",\"1\"\n"
    "\"text\",\"text\",\"timecode\",\"text\",\"text\"\n\"Name\",\"Reel\",\"Start time\",\"Notes\",\"Tag\"\n";
const std::string circled = "\"1-2\",\"A001\",\"01:00:20:00\",\"circle\",\"0\"\n";
const std::string otherReel = "\"2-1\",\"A002\",\"02:00:00:00\",\"\",\"0\"\n";
const std::string early = "\"1-3\",\"A001\",\"01:00:10:00\",\"\",\"0\"\n";

}  // namespace

TEST(TypicalRoad, FromFileToFileByTheExample) {
    const TempFolder folder;
    const auto log = folder.with("log", header + "\"1-1\",\"A001\",\"01:00:30:00\",\"NG, boom\",\"0\"\n" +
                                            circled + otherReel +
                                            "\"2-2\",\"A002\",\"02:00:10:00\",\"ng\",\"0\"\n"
                                            "\"2-3\",\"A002\",\"02:00:20:00\",\"focus NG\",\"0\"\n" +
                                            early);
    const auto selects = folder / "selects";
    const std::string command =
        std::string(KESTA_EXAMPLE) + " '" + log.string() + "' NG A001 '" + selects.string() + "' >/dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(readFile(log), header + circled + otherReel + early);
    EXPECT_EQ(readFile(selects), header + early + circled);
}
