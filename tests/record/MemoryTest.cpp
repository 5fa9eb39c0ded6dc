// Running out of memory anywhere: it is always reported, nothing leaks, and no file is harmed.
#include <optional>

#include "support/Cookie.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

const std::string oldFile = "whatever was there before\n";

class OutOfMemory : public TempFolderTest {
 protected:
    // A small log with what a log has: parameters, repeated and long texts, identifiers, escapes.
    void SetUp() override {
        std::string content =
            "\"KESTA:Rev 1\"\n\"Mode:a longer value of a parameter\"\n\"KESTA\"\n\"1\",\"1\",\"1\",\"1\"\n"
            "\"text\",\"text\",\"timecode\",\"text\"\n\"Cookie\",\"Name\",\"Start time\",\"Tag\"\n";
        for (int row = 0; row < 12; ++row) {
            const std::string number = std::to_string(row);
            content += "\"clip " + number + "\",\"a \"\"name\"\" of more than a few bytes " + number +
                       "\",\"01:00:00:0" + std::to_string(row % 3) + "\",\"\"\n";
        }
        log = wide(folder.with("log", content));
        copy = wide(folder / "copy");
    }

    // Everything that a session does with it. Messages go nowhere, so that they need no memory.
    void session(bool& saved) {
        kesta database(log, 100, true);
        CapturedNotifications heard(database);
        database.set_param_val("Another", "parameter with a value");
        database.addField({"Comment", DBFieldTypes::eText});
        database.set_fieldname(4, "Com&ment on the clip");
        database.set_field(2, 4, "a comment that needs a body of its own");
        database.set_field(3, 4, 1.5);
        database.set_field(1, Cookie("another clip", false));
        database.addRecord(Cookie("a new clip", false));
        database.delete_records(4, 3);
        database.getRowIndexByID(Cookie("clip 3", false));
        database.findFirst("Name", "none", 0);
        database.insert_records(1, 2);
        database.add_records(2);
        database.removeField("Start time");
        const kesta other(database, 1);
        database.set_filename(copy);
        database.save_text();
        saved = true;
    }

    WideText log;
    WideText copy;
};

class SilentLog {
 public:
    SilentLog() {
        set_log_sink([](const char*, void*) {}, nullptr);
    }
    SilentLog(const SilentLog&) = delete;
    SilentLog& operator=(const SilentLog&) = delete;
    ~SilentLog() { set_log_sink(nullptr, nullptr); }
};

}  // namespace

TEST_F(OutOfMemory, IsReportedWhereverItHappensLeaksNothingAndHarmsNoFile) {
    const SilentLog silent;
    bool saved = false;
    session(saved);  // what a process keeps for good is made now
    const std::string expected = readFile(folder / "copy");
    ASSERT_EQ(std::count(expected.begin(), expected.end(), '\n'), 20);

    for (const bool lasting : {false, true}) {
        unsigned request = 0;
        for (bool finished = false; !finished;) {
            writeFile(folder / "copy", oldFile);
            saved = false;
            CountingAllocator allocator;
            allocator.failAt(++request, lasting);
            try {
                session(saved);
                finished = true;
            } catch (const Zr::Exception::BadAlloc&) {
            }
            EXPECT_EQ(finished, request > allocator.requests())
                << "a failure at request " << request << " went unreported";
            allocator.failNever();
            ASSERT_EQ(allocator.held(), 0U) << "leaked after request " << request;
            // The file is replaced in one step: it is the old or the new one.
            ASSERT_EQ(readFile(folder / "copy"), saved ? expected : oldFile) << "request " << request;
            ASSERT_EQ(folder.names(), (std::vector<std::string>{"copy", "log"})) << "request " << request;
        }
        EXPECT_GT(request, 60U);
    }
}

TEST_F(OutOfMemory, LeavesADatabaseThatCanGoOn) {
    const SilentLog silent;
    {
        bool saved = false;
        session(saved);
    }
    for (unsigned request = 1;; ++request) {
        kesta database(log, 100, true);
        const std::vector<Fields> before = rowsOf(database);
        CountingAllocator allocator;
        CapturedNotifications heard(database);
        bool finished = false;
        allocator.failAt(request, false);
        try {
            database.delete_records(2, 3);
            finished = true;
        } catch (const Zr::Exception::BadAlloc&) {
        }
        allocator.failNever();
        // Either the rows are there and nobody was told, or they are gone and everybody was.
        ASSERT_EQ(database.get_num_records(), finished ? before.size() - 3 : before.size()) << request;
        ASSERT_EQ(heard.texts().size(), finished ? 1U : 0U) << request;
        database.set_filename(copy);
        ASSERT_EQ(database.save_text(), static_cast<int>(database.get_num_records())) << request;
        if (finished) break;
    }
}

TEST_F(OutOfMemory, ALoadThatCannotBeFinishedLeavesNothingToBeTakenForTheLog) {
    const SilentLog silent;
    kesta database(textColumns({"held before"}));
    database.set_filename(log);
    const auto attempt = [&] { database.loadFromFile(100, true); };
    const unsigned failures = failEachRequest(attempt, [&] {
        EXPECT_EQ(database.get_valid(), 0);
        EXPECT_EQ(database.get_num_fields(), 0U);
        EXPECT_EQ(database.get_num_records(), 0U);
        EXPECT_TRUE(database.params().empty());
    });
    EXPECT_GT(failures, 10U);
    EXPECT_EQ(database.get_num_records(), 12U);
}
