// Saves that fail, and savers that are killed, at every file operation: the answer is honest, nothing is left
// over, and the file is wholly the old one or wholly the new one. Loads that fail, likewise: all or nothing.
#include <climits>
#include <functional>
#include <set>
#include <sys/wait.h>

#include "container/ZRContainerFile.h"
#include "tests/FileFaults.h"
#include "tests/TestSupport.h"

using namespace TestSupport;
using FileFaults::Armed;
using FileFaults::Kind;

namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

std::ptrdiff_t openDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

/// What errno says after an attempt whose `at`-th file operation fails.
template <class Attempt>
int withErrorAt(unsigned at, int error, const Attempt& attempt) {
    const Armed armed({Kind::error, error, at});
    errno = 0;
    attempt();
    return errno;
}

/// Rows of a log or container of some 100 KB.
constexpr unsigned manyRows = 2000;

/// What owner, group and others may do with a file differs.
constexpr auto unusual = fs::perms(0642);

class Files : public TempFolderTest {
 protected:
    struct Subject {
        const char* name;
        std::function<bool()> save;  // whether the operation says that it saved; a container does not say
        bool tells = true;
    };

    Files() {
        m_log->add_param("Title", "Low Water");
        m_log->set_filename(wide(target));
        m_container.setName("Low Water");
        for (unsigned row = 0; row < manyRows; ++row) {
            m_text.appendLine(text("line " + std::to_string(row) + std::string(50, '.')));
            m_log->set_field(m_log->add_records(1), 0, std::string(50, 'x').c_str());
            m_container.addItem(Cookie(std::to_string(row).c_str(), false));
        }
    }

    std::vector<Subject> subjects() {
        return {{"text file", [this] { return m_text.save(wide(target), TextFile::eLF); }},
                {"carriage returns", [this] { return m_text.save(wide(target), TextFile::eCRLF); }},
                {"log", [this] { return m_log->save_text() == manyRows; }},
                {"container", [this] { return m_container.save(wide(target)), false; }, false}};
    }

    /// Puts the old file there, or none.
    void prepare(bool exists) const {
        fs::remove(target);
        if (!exists) return;
        writeFile(target, oldContent);
        fs::permissions(target, unusual);
    }

    std::string contentOrNone() const { return fs::exists(target) ? readFile(target) : ""; }

    /// What a save that nothing disturbs makes.
    std::string undisturbed(const Subject& subject) const {
        prepare(false);
        subject.save();
        return readFile(target);
    }

    // Takes away what a killed saver may leave, which nobody else may read or write than may the file.
    void removeLeftOvers() const {
        for (const std::string& name : folder.names()) {
            const auto permissions = fs::status(folder / name).permissions();
            EXPECT_EQ(permissions & ~unusual, fs::perms::none) << name;
            if (name.rfind(".kesta-", 0) == 0 || name == "target.tmp") fs::remove(folder / name);
        }
        EXPECT_EQ(folder.names(), Fields{"target"});
    }

    const fs::path target = folder / "target";
    const std::string oldContent = "what was there before\n";

 private:
    TextFile m_text;
    Zr::Ptr<kesta> m_log = makeTextDatabase({"Name", "Notes"});
    ZRContainerFile::Writer m_container{std::vector<DBFieldDesc>{{"Cookie", DBFieldTypes::eText}, {}}.data()};
};

}  // namespace

TEST_F(Files, AnErrorAnywhereIsReportedOrOvercomeAndLeavesTheOldOrTheNewFile) {
    Names reported;
    Names overcome;
    for (const Subject& subject : subjects()) {
        const std::string fresh = undisturbed(subject);
        for (const bool exists : {true, false}) {
            for (const int error : {EIO, ENOSPC, EINTR}) {
                FileFaults::state.struck = "nothing yet";
                for (unsigned at = 1; FileFaults::state.struck; ++at) {
                    SCOPED_TRACE(std::string(subject.name) + ", operation " + std::to_string(at));
                    prepare(exists);
                    const std::ptrdiff_t descriptors = openDescriptors();
                    bool saved = false;
                    const int reason = withErrorAt(at, error, [&] { saved = subject.save(); });
                    if (!subject.tells) saved = contentOrNone() == fresh;
                    const char* const struck = FileFaults::state.struck;
                    ASSERT_EQ(openDescriptors(), descriptors);
                    ASSERT_EQ(folder.names().size(), exists || saved ? 1U : 0U);
                    ASSERT_TRUE(contentOrNone() == (saved ? fresh : exists ? oldContent : ""));
                    ASSERT_TRUE(!exists || fs::status(target).permissions() == unusual) << struck;
                    ASSERT_TRUE(saved || struck);
                    ASSERT_EQ(saved ? error : reason, error) << struck;
                    if (struck) (saved ? overcome : reported).insert(struck);
                }
            }
        }
    }
    EXPECT_EQ(reported, (Names{"close", "faccessat", "fchmod", "fstat", "fsync", "getrandom", "open",
                               "readlink", "rename", "stat", "write"}));
    // Another owner is kept where it can be; an interrupted write goes on; the folder is flushed where it can
    // be; where it cannot be seen whether a container is there, it is replaced like any file.
    EXPECT_EQ(overcome, (Names{"access", "close", "fchown", "fsync", "open", "write"}));
}

TEST_F(Files, ALinkThatCannotBeReadIsNotReplaced) {
    const fs::path real = folder.with("real", oldContent);
    fs::create_symlink(real, target);
    for (const Subject& subject : subjects()) {
        if (!subject.tells) continue;  // a container replaces a link
        const Armed armed({Kind::error, EIO, 1});
        EXPECT_FALSE(subject.save()) << subject.name;
        EXPECT_STREQ(FileFaults::state.struck, "readlink") << subject.name;
        EXPECT_TRUE(fs::is_symlink(target) && readFile(real) == oldContent) << subject.name;
    }
}

TEST_F(Files, WritesThatFallShortGoOn) {
    for (const Subject& subject : subjects()) {
        const std::string fresh = undisturbed(subject);
        FileFaults::state.struck = "nothing yet";
        for (unsigned at = 1; FileFaults::state.struck; ++at) {
            prepare(true);
            const Armed armed({Kind::shortWrite, 0, at});
            subject.save();
            ASSERT_TRUE(readFile(target) == fresh) << subject.name << ", write " << at;
        }
    }
}

TEST_F(Files, ASaverKilledAtAnyOperationLeavesTheOldOrTheNewFile) {
    for (const Subject& subject : subjects()) {
        const std::string fresh = undisturbed(subject);
        unsigned killed = 0;
        for (int status = -1; status == -1 || WIFSIGNALED(status); ++killed) {
            SCOPED_TRACE(std::string(subject.name) + ", operation " + std::to_string(killed + 1));
            prepare(true);
            const pid_t child = fork();
            if (child == 0) {
                const Armed armed({Kind::kill, 0, killed + 1});
                subject.save();
                _exit(0);
            }
            ASSERT_EQ(waitpid(child, &status, 0), child);
            const std::string content = readFile(target);
            ASSERT_TRUE(content == oldContent || content == fresh);
            removeLeftOvers();
        }
        EXPECT_GT(killed, 10U) << subject.name;
    }
}

TEST_F(Files, ALoadHasTheWholeLogOrNothingWhicheverOperationFails) {
    ASSERT_TRUE(subjects()[2].save());
    std::string records;
    while (records.size() < 200'000) records += "\"x\",\"" + std::string(50, 'y') + "\"\n";
    const fs::path csv = folder.with("log.csv", records);
    const fs::path rows = folder.with("rows", records);

    for (const fs::path& file : {target, csv, rows}) {
        const bool addsRecords = file == rows;  // to the columns that are there
        Names reported;
        for (unsigned at = 1;; ++at) {
            SCOPED_TRACE(file.string() + ' ' + std::to_string(at));
            const Zr::Ptr<kesta> log = makeTextDatabase({"Name", "Notes"}, {{"held before"}});
            log->set_filename(wide(file));
            const std::ptrdiff_t descriptors = openDescriptors();
            const int reason = withErrorAt(at, EIO, [&] {
                addsRecords ? void(log->load_text(INT_MAX)) : log->loadFromFile(INT_MAX, true);
            });
            ASSERT_EQ(openDescriptors(), descriptors);
            if (!FileFaults::state.struck) break;
            if (log->get_num_records() >= manyRows) continue;  // overcome
            ASSERT_EQ(columnOf(*log, 0), Fields{"held before"});
            EXPECT_EQ(log->get_num_fields(), addsRecords ? 2U : 0U);
            EXPECT_TRUE(reason == EIO && !log->get_changed());
            reported.insert(FileFaults::state.struck);
        }
        EXPECT_EQ(reported.count("fstat") + reported.count("read"), 2U) << file;
    }
}
