// A working day in one process, with memory running out at each of its allocations: load, look through views,
// find, tag, sort, delete, merge, keep the shown columns, save, and pack and read a container.
#include <climits>

#include "container/ZRContainerFile.h"
#include "fieldmap/FieldMap.h"
#include "tests/AllocationFailures.h"
#include "view/KSTView.h"

using namespace TestSupport;

namespace {

const std::string header =
    "\"KESTA:Rev 1\"\n\"Title:Low Water\"\n\"KESTA\"\n\"32\",\"10\",\"12\",\"100\",\"1\"\n"
    "\"text\",\"text\",\"timecode\",\"text\",\"text\"\n\"Name\",\"Reel\",\"Start time\",\"Notes\",\"Tag\"\n";
const std::string oldContent = "what was there before\n";

class WorkingDay : public TempFolderTest {
 protected:
    void SetUp() override {
        folder.with("day1",
                    header +
                        "\"1-1\",\"A001\",\"01:00:30:00\",\"NG, boom in shot\",\"0\"\n"
                        "\"1-2\",\"A001\",\"01:00:20:00\",\"circle\",\"0\"\n"
                        "\"1-3\",\"A001\",\"01:00:10:00\",\"ng\",\"0\"\n"
                        "\"1-4\",\"A001\",\"01:00:00:00\",\"a note of more than a few bytes\",\"0\"\n");
        folder.with("day2", header + "\"2-1\",\"A002\",\"02:00:00:00\",\"\",\"0\"\n");
    }

    void work() const {
        kesta log(day1, INT_MAX, true);
        const KSTView all(new KSTViewRep(&log));
        all->displayAllRecords();
        const KSTView shown(new KSTViewRep(&log, "Reel,Start time"));
        shown->baseView(all.rep());
        shown->displayAllRecords();

        const Zr::Ptr<dbrecord> query = all->make_dummy_record();
        query->set_field(3, "ng", true);
        all->set_query(query.get());
        all->tagMatches(0);
        all->deleteTagged();

        kesta other(day2, INT_MAX, true);
        log.add_kesta(&other);
        log.merge_all_matching(&other);
        log.set_sortfield(2);
        log.sort(1, 0);
        shown->displayAllRecords();

        FieldMap columns(shown);
        columns.invertVisible(0);
        columns.append("Notes", true);
        log.set_param_val("Columns", columns.asString().c_str());
        log.set_filename(saved);
        log.save_text();

        const DBFieldDesc containerColumns[] = {{"Cookie", DBFieldTypes::eText}, {}};
        ZRContainerFile::Writer writer(containerColumns);
        writer.setName("Low Water");
        writer.addItem(Cookie("a clip of the day", false));
        writer.save(packed);
        const ZRContainerFile::Reader reader(packed, false);
        reader.contains(Cookie("a clip of the day", false));
        reader.getContents();
        reader.getName();
    }

    // Held here, so that making them is no part of the work.
    const WideText day1 = wide(folder / "day1");
    const WideText day2 = wide(folder / "day2");
    const WideText saved = wide(folder / "saved");
    const WideText packed = wide(folder / "packed");
};

}  // namespace

TEST_F(WorkingDay, RunningOutOfMemoryAnywhereLeaksNothingAndHarmsNoFile) {
    const char* const names[] = {"saved", "packed"};
    std::string fresh[2];
    work();
    for (int i = 0; i < 2; ++i) fresh[i] = readFile(folder / names[i]);
    EXPECT_NE(fresh[0].find("\"Columns:"), std::string::npos);
    EXPECT_EQ(fresh[0].substr(fresh[0].rfind("Notes")),
              "Notes\",\"Tag\"\n"
              "\"1-4\",\"A001\",\"01:00:00:00\",\"a note of more than a few "
              "bytes\",\"0\"\n\"1-2\",\"A001\",\"01:00:20:00\",\"circle\","
              "\"0\"\n\"2-1\",\"A002\",\"02:00:00:00\",\"\",\"0\"\n"
              "\"2-1\",\"A002\",\"02:00:00:00\",\"\",\"0\"\n");
    unsigned failures = 0;
    failEachAllocation(
        [&] {
            for (const char* const name : names) writeFile(folder / name, oldContent);
            return 0;
        },
        [&](int) { work(); },
        [&](int) {
            ++failures;
            for (int i = 0; i < 2; ++i) {
                const std::string content = readFile(folder / names[i]);
                ASSERT_TRUE(content == oldContent || content == fresh[i]) << names[i];
            }
            ASSERT_EQ(folder.names().size(), 4U);
        });
    EXPECT_GT(failures, 50U);
}
