// Memory that runs out at each allocation of each operation: it is reported as BadAlloc or done without,
// nothing leaks, and what the operation worked on is as it was before or as it should be after.
#include <climits>

#include "container/ZRContainerFile.h"
#include "fieldmap/FieldMap.h"
#include "tests/TestSupport.h"
#include "view/KSTViewCursor.h"

using namespace TestSupport;

namespace {

constexpr int rows = 12;

/// What operations work on: a log, a view on it, a view on that view, shown columns, a container, and a log
/// that no view stands on.
struct Subject {
    explicit Subject(const TempFolder& folder)
        : logName(wide(folder / "log")), otherName(wide(folder / "other")), saved(wide(folder / "saved")) {
        log->loadFromFile(logName, INT_MAX, true);
        base->displayAllRecords();
        top->baseView(base.rep());
        top->displayRecordsAt(1, 9, 0);
        for (const unsigned row : {1U, 2U, 6U}) top->set_tag(row, 1);
        columns = FieldMap(base);
        alone->loadFromFile(logName, INT_MAX, true);
        container.setName("Low Water");
        container.addItem(Cookie("a clip", false));
    }

    /// Everything that shows.
    std::vector<Fields> state() {
        std::vector<Fields> all = {columnNames(*log), {"shown", str(columns.asString())}};
        for (const auto& [name, value] : paramsOf(*log)) all.push_back({"parameter", name, value});
        for (const auto& shown : {rowsOf(*log), rowsOf(*alone)})
            all.insert(all.end(), shown.begin(), shown.end());
        for (const KSTView& view : {base, top}) {
            for (int row = 0; row < int(view->get_num_records()); ++row) {
                all.push_back(
                    {"row of a view", std::to_string(view->baseIndex(row)), view->tag(row) ? "tagged" : ""});
            }
        }
        return all;
    }

    /// Every row of a view names a record, and the view can go on.
    void expectWhole() const {
        for (const KSTView& view : {base, top}) {
            for (int row = 0; row < int(view->get_num_records()); ++row) {
                ASSERT_LT(unsigned(view->baseIndex(row)), log->get_num_records());
            }
        }
        base->displayAllRecords();
        ASSERT_EQ(base->get_num_records(), log->get_num_records());
    }

    const WideText logName;
    const WideText otherName;
    const WideText saved;
    Zr::Ptr<kesta> log{new kesta};
    Zr::Ptr<kesta> alone{new kesta};
    KSTView base{new KSTViewRep(log.get())};
    KSTView top{new KSTViewRep(log.get(), "Name,Start time")};
    FieldMap columns;
    ZRContainerFile::Writer container{std::vector<DBFieldDesc>{{"Cookie", DBFieldTypes::eText}, {}}.data()};
};

/// How much of an operation that failed may be done.
enum Leaves {
    oldState,   // nothing
    wholeState  // some of its steps: its parts hold together
};

struct Operation {
    const char* name;
    Leaves leaves;
    void (*run)(Subject&);
};

const Operation operations[] = {
    {"add_records", oldState, [](Subject& s) { s.log->add_records(40); }},
    {"insert_records", oldState, [](Subject& s) { s.log->insert_records(1, 40); }},
    {"delete_records", oldState,
     [](Subject& s) {
         const CapturedNotifications heard(*s.alone);
         s.alone->delete_records(2, 3);
     }},
    {"delete_records under views", wholeState, [](Subject& s) { s.log->delete_records(2, 3); }},
    {"addRecord", wholeState, [](Subject& s) { s.log->addRecord(Cookie("a new clip", false)); }},
    {"set_field", oldState,
     [](Subject& s) { s.log->set_field(2, 1, "a text that needs a body of its own"); }},
    {"set_field, identifier", wholeState, [](Subject& s) { s.log->set_field(1, Cookie("another", false)); }},
    {"addField", wholeState,
     [](Subject& s) {
         s.log->addField({"Many letters", DBFieldTypes::eText});
     }},
    {"removeField", wholeState, [](Subject& s) { s.log->removeField("Start time"); }},
    {"set_fieldname", wholeState, [](Subject& s) { s.log->set_fieldname(1, "Com&ment on a clip"); }},
    {"add_param", oldState, [](Subject& s) { s.log->add_param("Another", "a value to keep"); }},
    {"set_param_val", oldState, [](Subject& s) { s.log->set_param_val("mode", "another long value"); }},
    {"copy", oldState, [](Subject& s) { const kesta copy(*s.log, 1); }},
    {"getRowIndexByID", oldState, [](Subject& s) { s.log->getRowIndexByID(Cookie("clip 3", false)); }},
    {"findFirst", oldState, [](Subject& s) { s.log->findFirst("Name", "none", 0); }},
    {"sort", wholeState,
     [](Subject& s) {
         s.log->set_sortfield(2);
         s.log->sort(1, 0);
     }},
    {"set_query", oldState, [](Subject& s) { s.log->set_query(s.log->get_record(2).get()); }},
    {"add_kesta", oldState,
     [](Subject& s) {
         kesta other(s.otherName, INT_MAX, true);
         s.log->add_kesta(&other);
     }},
    {"merge_all_matching", wholeState,
     [](Subject& s) {
         kesta other(s.otherName, INT_MAX, true);
         s.log->merge_all_matching(&other);
     }},
    {"view: displayAllRecords", wholeState, [](Subject& s) { s.top->displayAllRecords(); }},
    {"view: displayRecordsAt", oldState, [](Subject& s) { s.top->displayRecordsAt(0, 11, 3); }},
    {"view: query, tagMatches", wholeState,
     [](Subject& s) {
         const Zr::Ptr<dbrecord> query = s.base->make_dummy_record();
         query->set_field(1, "name", true);
         s.base->set_query(query.get());
         s.base->tagMatches(0);
     }},
    {"view: tagDuplicates", wholeState, [](Subject& s) { s.base->tagDuplicates(2); }},
    {"view: sort", wholeState,
     [](Subject& s) {
         s.top->set_sortfield(2);
         s.top->sort(1, 0);
     }},
    {"view: deleteTagged", wholeState, [](Subject& s) { s.top->deleteTagged(); }},
    {"view: insertBlankRecords", wholeState, [](Subject& s) { s.top->insertBlankRecords(2, 3); }},
    {"view: cursor", wholeState, [](Subject& s) { KSTViewCursor(s.top).remove(); }},
    {"view: subview and copies", wholeState,
     [](Subject& s) {
         const KSTView sub(s.top->newTagSubview());
         const KSTView copied = s.base.copy();
         copied->removeTagged();
         s.base->displayAllFromAt(copied.rep(), 3);
         s.top.copyWithNewBaseView()->deleteRecords(0, 4);
     }},
    {"columns: append", oldState, [](Subject& s) { s.columns.append("Notes of many letters", true); }},
    {"columns: setName", oldState, [](Subject& s) { s.columns.setName(1, "a name of many letters"); }},
    {"columns: copy", oldState, [](Subject& s) { const FieldMap copy(s.columns); }},
    {"view: save", oldState, [](Subject& s) { s.top->saveAsText(s.saved, false); }},
    {"save", wholeState,
     [](Subject& s) {
         s.log->set_filename(s.saved);
         s.log->save_text();
     }},
    {"container: save", oldState, [](Subject& s) { s.container.save(s.saved); }},
    {"container: read", oldState,
     [](Subject& s) {
         const ZRContainerFile::Reader reader(s.logName, false);
         reader.contains(Cookie("clip 3", false));
         reader.getContents();
         reader.getNameW();
     }},
};

class OutOfMemory : public TempFolderTest {
 protected:
    OutOfMemory() {
        set_log_sink([](const char*, void*) {}, nullptr);  // messages need no memory then
        std::string content =
            "\"KESTA:Rev 1\"\n\"Mode:a longer value of a parameter\"\n\"KESTA\"\n\"1\",\"1\",\"1\",\"1\"\n"
            "\"text\",\"text\",\"timecode\",\"text\"\n\"Cookie\",\"Name\",\"Start time\",\"Tag\"\n";
        folder.with("other", content + "\"clip 3\",\"another name\",\"01:00:00:09\",\"\"\n");
        for (int row = 0; row < rows; ++row) {
            const std::string number = std::to_string(row);
            content += "\"clip " + number + "\",\"a \"\"name\"\" of more than a few bytes " + number +
                       "\",\"01:00:00:0" + std::to_string(row % 3) + "\",\"\"\n";
        }
        folder.with("log", content);
        folder.with("saved", oldFile);
    }
    ~OutOfMemory() override { set_log_sink(nullptr, nullptr); }

    /// Makes the first allocation of the operation fail, then the second, and so on until it needs no more;
    /// with `lasting` all those after it fail too.
    void failEachAllocation(const Operation& operation, bool lasting) {
        std::vector<Fields> before;
        std::vector<Fields> after;
        {
            Subject subject(folder);  // what a process keeps for good is made now
            before = subject.state();
            operation.run(subject);
            after = subject.state();
            subject.expectWhole();
        }
        const std::string newFile = readFile(folder / "saved");
        bool isReached = true;
        for (unsigned request = 1; isReached; ++request) {
            SCOPED_TRACE(std::string(operation.name) + ", allocation " + std::to_string(request) +
                         (lasting ? " and all after" : ""));
            writeFile(folder / "saved", oldFile);
            CountingAllocator memory;
            {
                Subject subject(folder);
                memory.failAt(request, lasting);
                const bool failed = fails(operation, subject);
                isReached = memory.requests() >= request;
                memory.failNever();
                // A failure that is not reported, because the operation could do without, leaves no trace.
                if (!failed || operation.leaves == oldState) {
                    ASSERT_TRUE(same(subject.state(), failed ? before : after));
                }
                subject.expectWhole();
            }
            ASSERT_EQ(memory.held(), 0U) << "leaked";
            const std::string file = readFile(folder / "saved");
            ASSERT_TRUE(file == oldFile || file == newFile) << file;
            ASSERT_EQ(folder.names(), (Fields{"log", "other", "saved"}));
        }
    }

 private:
    static bool fails(const Operation& operation, Subject& subject) {
        try {
            operation.run(subject);
            return false;
        } catch (const Zr::Exception::BadAlloc&) {
            return true;
        }
    }

    const std::string oldFile = "what was there before\n";
};

}  // namespace

TEST_F(OutOfMemory, AnywhereInAnyOperationIsReportedLeaksNothingAndIsUndone) {
    for (const Operation& operation : operations) {
        for (const bool lasting : {false, true}) failEachAllocation(operation, lasting);
    }
}

TEST_F(OutOfMemory, ALoadThatCannotBeFinishedLeavesNothingToBeTakenForTheLog) {
    const WideText log = wide(folder / "log");
    kesta database(textColumns({"held before"}));
    database.set_filename(log);
    const auto load = [&] { database.loadFromFile(INT_MAX, true); };
    const auto isEmpty = [&] {
        EXPECT_EQ(database.get_valid(), 0);
        EXPECT_EQ(database.get_num_fields() + database.get_num_records(), 0U);
        EXPECT_TRUE(database.params().empty());
    };
    EXPECT_GT(failEachRequest(load, isEmpty), 10U);
    EXPECT_EQ(database.get_num_records(), unsigned(rows));
}
