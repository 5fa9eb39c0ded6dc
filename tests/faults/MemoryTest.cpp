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
        std::vector<Fields> all = rowsOf(*log);
        const std::vector<Fields> others = rowsOf(*alone);
        all.insert(all.end(), others.begin(), others.end());
        all.push_back(columnNames(*log));
        for (const auto& [name, value] : paramsOf(*log)) all.push_back({"parameter", name, value});
        all.push_back({"shown", str(columns.asString())});
        for (const KSTView& view : {base, top}) {
            for (unsigned row = 0; row < view->get_num_records(); ++row) {
                all.push_back({"row of a view", std::to_string(view->baseIndex(static_cast<int>(row))),
                               view->get_tag(row) != 0 ? "tagged" : ""});
            }
        }
        return all;
    }

    /// Every row of a view names a record, and the view can go on.
    void expectWhole() const {
        for (const KSTView& view : {base, top}) {
            for (unsigned row = 0; row < view->get_num_records(); ++row) {
                ASSERT_LT(static_cast<unsigned>(view->baseIndex(static_cast<int>(row))),
                          log->get_num_records());
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
enum class Leaves {
    oldState,   // nothing
    wholeState  // some of its steps: its parts hold together
};

struct Operation {
    const char* name;
    Leaves leaves;
    void (*run)(Subject&);
};

const Operation operations[] = {
    {"add_records", Leaves::oldState, [](Subject& s) { s.log->add_records(40); }},
    {"insert_records", Leaves::oldState, [](Subject& s) { s.log->insert_records(1, 40); }},
    {"delete_records", Leaves::oldState,
     [](Subject& s) {
         const CapturedNotifications heard(*s.alone);
         s.alone->delete_records(2, 3);
     }},
    {"delete_records under views", Leaves::wholeState, [](Subject& s) { s.log->delete_records(2, 3); }},
    {"addRecord", Leaves::wholeState, [](Subject& s) { s.log->addRecord(Cookie("a new clip", false)); }},
    {"set_field", Leaves::oldState,
     [](Subject& s) { s.log->set_field(2, 1, "a text that needs a body of its own"); }},
    {"set_field of an identifier", Leaves::wholeState,
     [](Subject& s) { s.log->set_field(1, Cookie("another clip", false)); }},
    {"addField", Leaves::wholeState,
     [](Subject& s) {
         s.log->addField({"Comment of many letters", DBFieldTypes::eText});
     }},
    {"removeField", Leaves::wholeState, [](Subject& s) { s.log->removeField("Start time"); }},
    {"set_fieldname", Leaves::wholeState,
     [](Subject& s) { s.log->set_fieldname(1, "Com&ment on the clip"); }},
    {"add_param", Leaves::oldState, [](Subject& s) { s.log->add_param("Another", "value of a parameter"); }},
    {"set_param_val", Leaves::oldState,
     [](Subject& s) { s.log->set_param_val("mode", "another long value"); }},
    {"copy", Leaves::oldState, [](Subject& s) { const kesta copy(*s.log, 1); }},
    {"getRowIndexByID", Leaves::oldState,
     [](Subject& s) { s.log->getRowIndexByID(Cookie("clip 3", false)); }},
    {"findFirst", Leaves::oldState, [](Subject& s) { s.log->findFirst("Name", "none", 0); }},
    {"sort", Leaves::wholeState,
     [](Subject& s) {
         s.log->set_sortfield(2);
         s.log->sort(1, 0);
     }},
    {"set_query", Leaves::oldState, [](Subject& s) { s.log->set_query(s.log->get_record(2).get()); }},
    {"add_kesta", Leaves::oldState,
     [](Subject& s) {
         kesta other(s.otherName, INT_MAX, true);
         s.log->add_kesta(&other);
     }},
    {"merge_all_matching", Leaves::wholeState,
     [](Subject& s) {
         kesta other(s.otherName, INT_MAX, true);
         s.log->merge_all_matching(&other);
     }},
    {"view: displayAllRecords", Leaves::wholeState, [](Subject& s) { s.top->displayAllRecords(); }},
    {"view: displayRecordsAt", Leaves::oldState, [](Subject& s) { s.top->displayRecordsAt(0, 11, 3); }},
    {"view: query and tagMatches", Leaves::wholeState,
     [](Subject& s) {
         const Zr::Ptr<dbrecord> query = s.base->make_dummy_record();
         query->set_field(1, "name", true);
         s.base->set_query(query.get());
         s.base->tagMatches(0);
     }},
    {"view: tagDuplicates", Leaves::wholeState, [](Subject& s) { s.base->tagDuplicates(2); }},
    {"view: sort", Leaves::wholeState,
     [](Subject& s) {
         s.top->set_sortfield(2);
         s.top->sort(1, 0);
     }},
    {"view: deleteTagged", Leaves::wholeState, [](Subject& s) { s.top->deleteTagged(); }},
    {"view: insertBlankRecords", Leaves::wholeState, [](Subject& s) { s.top->insertBlankRecords(2, 3); }},
    {"view: cursor", Leaves::wholeState, [](Subject& s) { KSTViewCursor(s.top).remove(); }},
    {"view: subview and copies", Leaves::wholeState,
     [](Subject& s) {
         const KSTView sub(s.top->newTagSubview());
         const KSTView copied = s.base.copy();
         copied->removeTagged();
         s.base->displayAllFromAt(copied.rep(), 3);
         s.top.copyWithNewBaseView()->deleteRecords(0, 4);
     }},
    {"columns: append", Leaves::oldState,
     [](Subject& s) { s.columns.append("Notes of many letters", true); }},
    {"columns: setName", Leaves::oldState,
     [](Subject& s) { s.columns.setName(1, "a name of many letters"); }},
    {"columns: copy", Leaves::oldState, [](Subject& s) { const FieldMap copy(s.columns); }},
    {"view: save", Leaves::oldState, [](Subject& s) { s.top->saveAsText(s.saved, false); }},
    {"save", Leaves::wholeState,
     [](Subject& s) {
         s.log->set_filename(s.saved);
         s.log->save_text();
     }},
    {"container: save", Leaves::oldState, [](Subject& s) { s.container.save(s.saved); }},
    {"container: read", Leaves::oldState,
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
                if (!failed || operation.leaves == Leaves::oldState) {
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
    const unsigned failures = failEachRequest([&] { database.loadFromFile(INT_MAX, true); },
                                              [&] {
                                                  EXPECT_EQ(database.get_valid(), 0);
                                                  EXPECT_EQ(database.get_num_fields(), 0U);
                                                  EXPECT_EQ(database.get_num_records(), 0U);
                                                  EXPECT_TRUE(database.params().empty());
                                              });
    EXPECT_GT(failures, 10U);
    EXPECT_EQ(database.get_num_records(), unsigned(rows));
}
