// Saves that fail, and savers that are killed, at every file operation: the answer is honest, nothing is left
// over, and the file is wholly the old one or wholly the new one. Loads that fail, likewise: all or nothing.
#include <chrono>
#include <climits>
#include <functional>
#include <optional>
#include <random>
#include <set>
#include <sys/wait.h>

#include "container/ZRContainerFile.h"
#include "tests/FileFaults.h"
#include "tests/TestSupport.h"

using namespace TestSupport;
using FileFaults::Armed;
using FileFaults::Kind;

namespace {

using Names = std::set<std::string>;

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

constexpr auto ownerOnly = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;

/// Rows of a log or container of some 100 KB.
constexpr unsigned manyRows = 2000;

class Files : public TempFolderTest {
 protected:
    struct Subject {
        std::string name;
        std::function<bool()> save;  // answers what the operation says of itself, as far as it does
    };

    Files() {
        for (unsigned line = 0; line < manyRows; ++line) {
            m_text.appendLine(text("line " + std::to_string(line) + std::string(50, '.')));
        }
        m_log->add_param("Title", "Low Water");
        m_log->set_filename(wide(target));
        for (unsigned row = 0; row < manyRows; ++row) {
            m_log->set_field(m_log->add_records(1), 0, std::string(50, 'x').c_str());
        }
        const DBFieldDesc columns[] = {{"Cookie", DBFieldTypes::eText}, {}};
        m_container.emplace(columns);
        m_container->setName("Low Water");
        for (unsigned row = 0; row < manyRows; ++row) {
            m_container->addItem(Cookie(std::to_string(row).c_str(), false));
        }
    }

    std::vector<Subject> subjects() {
        const auto saveText = [this](TextFile::eEOLStyle style) { return m_text.save(wide(target), style); };
        return {{"text file", [saveText] { return saveText(TextFile::eLF); }},
                {"text file with carriage returns", [saveText] { return saveText(TextFile::eCRLF); }},
                {"log", [this] { return m_log->save_text() == manyRows; }}};
    }

    std::string contentOrNone() const { return std::filesystem::exists(target) ? readFile(target) : ""; }

    void saveContainer() { m_container->save(wide(target)); }

    /// What a save that nothing disturbs makes.
    std::string undisturbed(const std::function<bool()>& save) {
        save();
        std::string content = readFile(target);
        std::filesystem::remove(target);
        return content;
    }

    bool allArePrivate() const {
        const std::vector<std::string> names = folder.names();
        return std::all_of(names.begin(), names.end(), [this](const std::string& name) {
            return std::filesystem::status(folder / name).permissions() == ownerOnly;
        });
    }

    // Takes away what a killed saver may leave.
    void removeLeftOvers() {
        for (const std::string& name : folder.names()) {
            const bool isLeftOver = name.rfind(".kesta-", 0) == 0 || name == "target.tmp";
            if (isLeftOver) std::filesystem::remove(folder / name);
        }
    }

    /// Kills a child of ours at each operation of the save in turn. Answers how many were killed.
    unsigned killAtEachOperation(const Subject& subject) {
        const std::string fresh = undisturbed(subject.save);
        for (unsigned at = 1;; ++at) {
            writeFile(target, oldContent);
            std::filesystem::permissions(target, ownerOnly);
            const pid_t child = fork();
            if (child == 0) {
                const Armed armed({Kind::kill, 0, at});
                subject.save();
                _exit(0);
            }
            int status = 0;
            waitpid(child, &status, 0);
            const std::string content = readFile(target);
            EXPECT_TRUE(content == oldContent || content == fresh) << subject.name << ", operation " << at;
            EXPECT_TRUE(allArePrivate()) << subject.name << ", operation " << at;
            removeLeftOvers();
            EXPECT_EQ(folder.names(), std::vector<std::string>{"target"}) << subject.name << at;
            if (WIFEXITED(status)) return at - 1;
        }
    }

    const std::filesystem::path target = folder / "target";
    const std::string oldContent = "what was there before\n";

 private:
    TextFile m_text;
    Zr::Ptr<kesta> m_log = makeTextDatabase({"Name", "Notes"});
    std::optional<ZRContainerFile::Writer> m_container;
};

}  // namespace

TEST_F(Files, EachFailingOperationIsReportedAndLeavesTheOldFile) {
    Names reported;
    Names overcome;
    for (const Subject& subject : subjects()) {
        const std::string fresh = undisturbed(subject.save);
        for (const bool exists : {true, false}) {
            for (const int error : {EIO, ENOSPC, EINTR}) {
                for (unsigned at = 1;; ++at) {
                    SCOPED_TRACE(subject.name + ", operation " + std::to_string(at));
                    std::filesystem::remove(target);
                    if (exists) writeFile(target, oldContent);
                    const std::ptrdiff_t descriptors = openDescriptors();
                    bool saved = false;
                    int reason = 0;
                    {
                        const Armed armed({Kind::error, error, at});
                        saved = subject.save();
                        reason = errno;
                    }
                    ASSERT_EQ(openDescriptors(), descriptors);
                    ASSERT_EQ(folder.names().size(), exists || saved ? 1U : 0U);
                    ASSERT_TRUE(contentOrNone() == (saved ? fresh : exists ? oldContent : ""));
                    if (!FileFaults::state.struck) {
                        ASSERT_TRUE(saved);
                        break;
                    }
                    ASSERT_EQ(saved ? error : reason, error) << FileFaults::state.struck;
                    (saved ? overcome : reported).insert(FileFaults::state.struck);
                }
            }
        }
        std::filesystem::remove(target);
    }
    EXPECT_EQ(reported, (Names{"close", "faccessat", "fchmod", "fsync", "getrandom", "open", "readlink",
                               "rename", "stat", "write"}));
    // Another owner is kept where it can be; an interrupted write goes on; the folder is flushed where it can
    // be.
    EXPECT_EQ(overcome, (Names{"close", "fchown", "fsync", "open", "write"}));
}

TEST_F(Files, ALinkThatCannotBeReadIsNotReplaced) {
    const std::filesystem::path real = folder.with("real", oldContent);
    std::filesystem::create_symlink(real, target);
    for (const Subject& subject : subjects()) {
        const Armed armed({Kind::error, EIO, 1});
        EXPECT_FALSE(subject.save());
        EXPECT_STREQ(FileFaults::state.struck, "readlink");
        EXPECT_TRUE(std::filesystem::is_symlink(target));
        EXPECT_EQ(readFile(real), oldContent);
    }
}

TEST_F(Files, WritesThatFallShortGoOn) {
    for (const Subject& subject : subjects()) {
        const std::string fresh = undisturbed(subject.save);
        for (unsigned at = 1;; ++at) {
            const Armed armed({Kind::shortWrite, 0, at});
            ASSERT_TRUE(subject.save());
            ASSERT_TRUE(readFile(target) == fresh) << subject.name << ", write " << at;
            if (!FileFaults::state.struck) break;
        }
        std::filesystem::remove(target);
    }
}

TEST_F(Files, AContainerIsTheOldOneOrTheNewOneWhicheverOperationFails) {
    const std::string fresh = undisturbed([this] { return saveContainer(), true; });
    Names kept;
    for (unsigned at = 1;; ++at) {
        SCOPED_TRACE(at);
        writeFile(target, oldContent);
        std::filesystem::permissions(target, std::filesystem::perms::owner_read);
        const std::ptrdiff_t descriptors = openDescriptors();
        int reason = 0;
        {
            const Armed armed({Kind::error, EIO, at});
            errno = 0;
            saveContainer();
            reason = errno;
        }
        const std::string content = readFile(target);
        ASSERT_TRUE(content == oldContent || content == fresh);
        ASSERT_EQ(folder.names(), std::vector<std::string>{"target"});
        ASSERT_EQ(openDescriptors(), descriptors);
        const char* const struck = FileFaults::state.struck;
        if (!struck ||
            std::strcmp(struck, "access") != 0) {  // whether there is a file to keep the permissions of
            ASSERT_EQ(std::filesystem::status(target).permissions(), std::filesystem::perms::owner_read);
        }
        std::filesystem::remove(target);
        if (!struck) {
            EXPECT_TRUE(content == fresh);
            break;
        }
        if (content != oldContent) continue;
        kept.insert(struck);
        ASSERT_EQ(reason, EIO) << struck;
    }
    for (const char* const name : {"fchmod", "getrandom", "write", "fsync", "rename"})
        EXPECT_EQ(kept.count(name), 1U) << name;
}

TEST_F(Files, ASaverKilledAtAnyOperationLeavesTheOldOrTheNewFile) {
    for (const Subject& subject : subjects()) EXPECT_GT(killAtEachOperation(subject), 10U) << subject.name;
    EXPECT_GT(killAtEachOperation({"container", [this] { return saveContainer(), true; }}), 15U);
}

TEST_F(Files, ASaverKilledAtAnyMomentLeavesOneFileOrTheOther) {
    const auto logOf = [&](const char* note) {
        Zr::Ptr<kesta> log = makeTextDatabase({"Name", "Notes"});
        log->add_param("Title", note);
        log->add_records(manyRows);
        for (unsigned row = 0; row < manyRows; ++row)
            log->set_field(row, 1, std::string(50, note[0]).c_str());
        log->set_filename(wide(target));
        return log;
    };
    const Zr::Ptr<kesta> logs[] = {logOf("odd"), logOf("even")};
    std::string contents[2];
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(logs[i]->save_text(), static_cast<int>(manyRows));
        contents[i] = readFile(target);
    }
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        int begun[2];
        ASSERT_EQ(pipe2(begun, O_CLOEXEC), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            if (write(begun[1], "b", 1) != 1) _exit(1);
            for (unsigned i = 0;; ++i) logs[i % 2]->save_text();
        }
        char report;
        EXPECT_EQ(read(begun[0], &report, 1), 1);
        const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 2500);
        while (std::chrono::steady_clock::now() < end) {
        }
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        close(begun[0]);
        close(begun[1]);
        const std::string content = readFile(target);
        ASSERT_TRUE(content == contents[0] || content == contents[1]) << "round " << round;
        removeLeftOvers();
        ASSERT_EQ(folder.names(), std::vector<std::string>{"target"}) << "round " << round;
    }
    EXPECT_EQ(loadDatabase(target)->get_num_records(), manyRows);
}

TEST_F(Files, ALoadHasTheWholeLogOrNothingWhicheverOperationFails) {
    ASSERT_TRUE(subjects().back().save());
    std::string records;
    while (records.size() < 200'000) records += "\"x\",\"" + std::string(50, 'y') + "\"\n";
    const std::filesystem::path csv = folder.with("log.csv", records);
    const std::filesystem::path rows = folder.with("rows", records);

    using Load = std::function<void(kesta&)>;
    const Load load = [](kesta& log) { log.loadFromFile(INT_MAX, true); };
    const Load loadMore = [](kesta& log) { log.load_text(INT_MAX); };
    const struct {
        const char* name;
        std::filesystem::path file;
        Load load;
        bool keepsColumns;
    } subjects[] = {{"log", target, load, false},
                    {"comma-separated", csv, load, false},
                    {"more records", rows, loadMore, true}};
    for (const auto& subject : subjects) {
        Names reported;
        for (unsigned at = 1;; ++at) {
            SCOPED_TRACE(subject.name + (" " + std::to_string(at)));
            const Zr::Ptr<kesta> log = makeTextDatabase({"Name", "Notes"}, {{"held before"}});
            log->set_filename(wide(subject.file));
            const std::ptrdiff_t descriptors = openDescriptors();
            int reason = 0;
            {
                const Armed armed({Kind::error, EIO, at});
                errno = 0;
                subject.load(*log);
                reason = errno;
            }
            ASSERT_EQ(openDescriptors(), descriptors);
            if (!FileFaults::state.struck) break;
            if (log->get_num_records() >= manyRows) continue;  // overcome
            ASSERT_EQ(log->get_num_records(), 1U);
            EXPECT_STREQ(log->getField(0, 0).c_str(), "held before");
            EXPECT_EQ(log->get_num_fields(), subject.keepsColumns ? 2U : 0U);
            EXPECT_EQ(reason, EIO);
            EXPECT_FALSE(log->get_changed());
            reported.insert(FileFaults::state.struck);
        }
        EXPECT_EQ(reported.count("fstat") + reported.count("read"), 2U) << subject.name;
    }
}
