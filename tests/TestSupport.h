// What the tests of all folders share: a temporary folder, databases made from lists, captured messages and
// notifications, and an allocator that counts blocks and runs out on demand.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <stdlib.h>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "record/kesta.h"
#include "support/Exception.h"
#include "support/Log.h"
#include "support/OS.h"
#include "support/StringFunctions.h"
#include "support/TextFile.h"

namespace TestSupport {

using Text = LightweightString<char>;
using WideText = LightweightString<wchar_t>;
using Fields = std::vector<std::string>;

// --- Text ---

/// All bytes, zero bytes among them.
inline Text text(std::string_view bytes) {
    return Text(bytes);
}

inline std::string str(const Text& string) {
    return std::string(string.view());
}

/// A path as the library takes file names.
inline WideText wide(const std::filesystem::path& path) {
    return fromUTF8(text(path.string()));
}

/// The bytes of a string literal, zero bytes among them, its closing one apart.
template <std::size_t size>
std::string bytes(const char (&literal)[size]) {
    return std::string(literal, size - 1);
}

// --- Files ---

inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path.string());
    return std::string(std::istreambuf_iterator<char>(file), {});
}

inline void writeFile(const std::filesystem::path& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path.string());
}

/// A folder of its own for each test, removed with all it holds.
class TempFolder {
 public:
    TempFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "kesta-test-XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::runtime_error("cannot make " + name);
        m_path = name;
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path operator/(const std::filesystem::path& name) const { return m_path / name; }

    /// A new file with this content.
    std::filesystem::path with(const std::filesystem::path& name, std::string_view content) const {
        writeFile(m_path / name, content);
        return m_path / name;
    }

    /// The names of everything in it, in order: to see that nothing was left behind.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(m_path))
            found.push_back(entry.path().filename().string());
        std::sort(found.begin(), found.end());
        return found;
    }

 private:
    std::filesystem::path m_path;
};

class TempFolderTest : public ::testing::Test {
 protected:
    TempFolder folder;
};

/// A text file in memory.
class Lines : public TextFile {
 public:
    explicit Lines(const std::vector<std::string>& lines = {}) {
        for (const std::string& line : lines) appendLine(text(line));
    }

    std::vector<std::string> all() const {
        std::vector<std::string> result;
        for (unsigned i = 0; i < size(); ++i) result.push_back(str((*this)[i]));
        return result;
    }
};

// --- Databases ---

inline std::vector<DBFieldDesc> textColumns(const std::vector<std::string>& names) {
    std::vector<DBFieldDesc> columns;
    for (const std::string& name : names) columns.emplace_back(text(name), DBFieldTypes::eText);
    return columns;
}

/// A record of these texts that no database holds, unchanged.
inline Zr::Ptr<dbrecord> makeRecord(const Fields& fields) {
    Zr::Ptr<dbrecord> record(new dbrecord(static_cast<unsigned short>(fields.size())));
    for (unsigned short i = 0; i < fields.size(); ++i) record->setField(i, text(fields[i]));
    record->clear_changed();
    return record;
}

/// Appends records with these texts, leading white space kept, and leaves everything unchanged.
inline void fill(kesta& database, const std::vector<Fields>& rows) {
    for (const Fields& row : rows) {
        const unsigned number = database.add_records(1);
        for (unsigned i = 0; i < row.size(); ++i) database.setField(number, i, text(row[i]));
    }
    database.clear_changed();
}

inline Zr::Ptr<kesta> makeDatabase(const std::vector<DBFieldDesc>& columns,
                                   const std::vector<Fields>& rows = {}) {
    Zr::Ptr<kesta> database(new kesta(columns));
    fill(*database, rows);
    return database;
}

/// All columns are text.
inline Zr::Ptr<kesta> makeTextDatabase(const std::vector<std::string>& columns,
                                       const std::vector<Fields>& rows = {}) {
    return makeDatabase(textColumns(columns), rows);
}

inline Zr::Ptr<kesta> loadDatabase(const std::filesystem::path& path, int maxRecords = 1 << 30,
                                   bool strict = true) {
    return Zr::Ptr<kesta>(new kesta(wide(path), maxRecords, strict));
}

inline Fields fieldsOf(const dbrecord& record) {
    Fields fields;
    for (unsigned short i = 0; i < record.get_num_fields(); ++i) fields.push_back(str(record.getField(i)));
    return fields;
}

/// The texts of all rows that the source shows; "no record" for a row without one.
inline std::vector<Fields> rowsOf(const iKST& source) {
    std::vector<Fields> rows;
    for (unsigned row = 0; row < source.get_num_records(); ++row) {
        const Zr::Ptr<dbrecord> record = source.get_record(row);
        rows.push_back(record ? fieldsOf(*record) : Fields{"no record"});
    }
    return rows;
}

/// The texts of one column.
inline Fields columnOf(const iKST& source, unsigned field) {
    Fields values(source.get_num_records());
    for (unsigned row = 0; row < values.size(); ++row) values[row] = str(source.getField(row, field));
    return values;
}

inline Fields columnNames(const iKST& source) {
    Fields names;
    for (unsigned i = 0; i < source.get_num_fields(); ++i) names.emplace_back(source.get_fieldname(i));
    return names;
}

inline std::vector<int> columnTypes(const iKST& source) {
    std::vector<int> types;
    for (unsigned i = 0; i < source.get_num_fields(); ++i) types.push_back(source.get_fieldtype(i));
    return types;
}

using Pairs = std::vector<std::pair<std::string, std::string>>;

inline Pairs paramsOf(const KSTBase& source) {
    Pairs pairs;
    for (const auto& pair : source.params()) pairs.emplace_back(str(pair.name()), str(pair.value()));
    return pairs;
}

// --- Comparing ---

/// Whether two lists are equal; if not, tells of the first entry that differs where it does.
template <class List>
testing::AssertionResult same(const List& actual, const List& expected) {
    const auto [a, e] = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (a == actual.end() && e == expected.end()) return testing::AssertionSuccess();
    const std::string is = a == actual.end() ? "not there" : testing::PrintToString(*a);
    const std::string wanted = e == expected.end() ? "not there" : testing::PrintToString(*e);
    const auto alike = std::mismatch(is.begin(), is.end(), wanted.begin(), wanted.end()).first - is.begin();
    const auto from = static_cast<std::size_t>(std::max<std::ptrdiff_t>(alike - 60, 0));
    return testing::AssertionFailure() << "entry " << a - actual.begin() << " is " << is.substr(from, 150)
                                       << ", not " << wanted.substr(from, 150);
}

// --- Messages and notifications ---

/// Takes the library's messages while it lives.
class CapturedLog {
 public:
    CapturedLog() { set_log_sink(&CapturedLog::take, this); }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;
    ~CapturedLog() { set_log_sink(nullptr, nullptr); }

    const std::vector<std::string>& messages() const { return m_messages; }
    void clear() { m_messages.clear(); }

 private:
    static void take(const char* message, void* self) {
        static_cast<CapturedLog*>(self)->m_messages.emplace_back(message);
    }

    std::vector<std::string> m_messages;
};

/// Takes the texts of a notifier's messages of one type while it lives.
class CapturedNotifications {
 public:
    explicit CapturedNotifications(Notifier& notifier, const char* type = "recordsDeleted")
        : m_guard(notifier.registerNotification(NotifyMsgTypeDictionary::instance().intern(type),
                                                [this](const NotifyMsg& message) {
                                                    m_texts.push_back(str(message.text()));
                                                    m_withObject = m_withObject || message.object();
                                                    return 0;
                                                })) {}
    CapturedNotifications(const CapturedNotifications&) = delete;
    CapturedNotifications& operator=(const CapturedNotifications&) = delete;

    const std::vector<std::string>& texts() const { return m_texts; }
    bool anyWithObject() const { return m_withObject; }
    void clear() { m_texts.clear(); }

 private:
    std::vector<std::string> m_texts;
    bool m_withObject = false;
    Zr::Ptr<Zr::Guard> m_guard;
};

// --- Memory ---

/// Stands in for the process's allocator while it lives, knows the blocks it has handed out that are still
/// held, and runs out when told to. In sanitizer builds the library's operator new is the sanitizer's: there
/// only the blocks of strings and text files come here.
class CountingAllocator : public iAllocator {
 public:
    CountingAllocator() : m_before(OS()->setAllocator(this)) {}
    CountingAllocator(const CountingAllocator&) = delete;
    CountingAllocator& operator=(const CountingAllocator&) = delete;
    ~CountingAllocator() override { OS()->setAllocator(m_before); }

    void* allocate(std::size_t size) override {
        ++m_requests;
        const bool fails = m_failAt != 0 && (m_requests == m_failAt || (m_requests > m_failAt && m_lasting));
        void* const block = fails ? nullptr : std::malloc(size ? size : 1);
        if (!block) throw Zr::Exception::BadAlloc();
        m_held.insert(block);
        return block;
    }

    void release(void* block) noexcept override {
        m_held.erase(block);  // a block from before, or one that the test's operator new made, is not there
        std::free(block);
    }

    /// Counts requests from 0 again; the `request`-th of them fails, and with `lasting` all that follow it.
    void failAt(unsigned request, bool lasting) {
        m_requests = 0;
        m_failAt = request;
        m_lasting = lasting;
    }
    void failNever() { failAt(0, false); }

    unsigned requests() const { return m_requests; }
    std::size_t held() const { return m_held.size(); }

 private:
    iAllocator* m_before;
    std::unordered_set<void*> m_held;
    unsigned m_requests = 0;
    unsigned m_failAt = 0;
    bool m_lasting = false;
};

/// Runs `attempt` with memory ending at its first request, then at its second, and so on until it has enough.
/// After each failure `verify` looks at what is left, with memory back. Returns how many attempts failed.
template <class Attempt, class Verify>
unsigned failEachRequest(Attempt attempt, Verify verify) {
    for (unsigned failures = 0;; ++failures) {
        try {
            CountingAllocator memory;
            memory.failAt(failures + 1, true);
            attempt();
            return failures;
        } catch (const Zr::Exception::BadAlloc&) {
        }
        verify();
    }
}

}  // namespace TestSupport

/// How tests show a string.
inline void PrintTo(const LightweightString<char>& text, std::ostream* out) {
    *out << testing::PrintToString(TestSupport::str(text));
}
