// Views and a database as plainly as they can be said: every rule carried out step by step on plain lists.
// Operations have the names that they have in a view.
#pragma once

#include <algorithm>
#include <cctype>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/view/RowIndexModel.h"

namespace ViewModel {

inline std::string folded(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

struct Record {
    std::string name;
    std::string value;
    int tag = 0;
};

inline std::string foldedValue(const Record* record) {
    return record ? folded(record->value) : "";
}

using Log = std::vector<std::string>;
class View;

class Source {
 public:
    Source(std::string sourceName, Log& events) : name(std::move(sourceName)), log(events) {}
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual ~Source() = default;

    virtual int rows() const = 0;
    virtual Record* record(int row) const = 0;
    virtual int baseIndex(int row) const = 0;
    virtual int tag(int row) const = 0;
    virtual void set_tag(unsigned row, int value) = 0;
    virtual void deleteRecords(int row, int count) = 0;
    virtual void insertBlankRecords(int row, int count) = 0;
    virtual void add_records(int count) = 0;

    std::string state() const {
        std::string all;
        for (int row = 0; row < rows(); ++row) {
            all += record(row) ? record(row)->name : "none";
            all += '@' + std::to_string(baseIndex(row)) + (tag(row) > 0 ? "* " : " ");
        }
        return all;
    }

    const std::string name;
    std::vector<View*> listeners;

 protected:
    inline void announce(const std::string& type, const std::vector<int>& numbers);
    void announceDeleted(int row, int count) {
        std::vector<int> numbers;
        for (int i = row; i < row + count; ++i) numbers.push_back(i);
        announce("recordsDeleted", numbers);
    }

    Log& log;
};

class Database : public Source {
 public:
    using Source::Source;

    int rows() const override { return static_cast<int>(records.size()); }
    Record* record(int row) const override {
        return row >= 0 && row < rows() ? records[static_cast<std::size_t>(row)].get() : nullptr;
    }
    int baseIndex(int row) const override { return row; }
    int tag(int row) const override { return record(row) ? record(row)->tag : -1; }
    void set_tag(unsigned row, int value) override {
        if (Record* const tagged = record(static_cast<int>(row))) tagged->tag = value;
    }
    void deleteRecords(int row, int count) override {
        if (row < 0 || row >= rows() || count == 0) return;
        count = std::min(count, rows() - row);
        records.erase(records.begin() + row, records.begin() + row + count);
        announceDeleted(row, count);
    }
    void insertBlankRecords(int row, int count) override {
        if (count == 0 || row > rows()) return;
        for (int i = 1; i < count; ++i) records.insert(records.begin() + row, nullptr);
        records.insert(records.begin() + row, std::make_shared<Record>());
    }
    void add_records(int count) override {
        for (int i = 0; i < count; ++i) records.push_back(std::make_shared<Record>());
    }
    int deleteTagged() {
        int deleted = 0;
        int length = 0;
        for (int row = 0; row <= rows(); ++row) {
            if (tag(row) > 0) {
                ++length;
            } else if (length > 0) {
                row -= length;
                deleteRecords(row, length);
                deleted += std::exchange(length, 0);
            }
        }
        return deleted;
    }

    // Also for a view, about the rows of the database.
    int findFirst(const std::string& wanted) const {
        for (int row = 0; row < rows(); ++row) {
            if ((record(row) ? record(row)->name : "") == wanted) return row;
        }
        return -1;
    }
    bool matches(int row) const { return foldedValue(record(row)).find('a') != std::string::npos; }

 private:
    std::vector<std::shared_ptr<Record>> records;
};

class View : public Source {
 public:
    View(std::string viewName, Log& events, Database& onDatabase)
        : Source(std::move(viewName), events), database(onDatabase) {
        database.listeners.push_back(this);
    }
    ~View() override {
        baseView(nullptr);
        forget(database);
    }

    // --- Chains and lives ---

    Source& source() const { return base ? static_cast<Source&>(*base) : database; }
    bool standsOn(const View* other) const { return this == other || (base && base->standsOn(other)); }

    void baseView(View* newBase) {
        if (newBase == base || (newBase && newBase->standsOn(this))) return;
        index = RowIndexModel();
        if (newBase) ++newBase->uses;
        if (base) {
            forget(*base);
            release(base);
        }
        base = newBase;
        if (base) base->listeners.push_back(this);
    }

    static void release(View* view) {
        if (view->uses != 0) --view->uses;
        if (view->uses == 0) delete view;
    }

    // --- Rows ---

    int entry(int row) const { return static_cast<int>(index[row].row); }
    bool has(int row) const { return row >= 0 && row < index.count; }

    int rows() const override { return index.count; }
    Record* record(int row) const override { return has(row) ? source().record(entry(row)) : nullptr; }
    int baseIndex(int row) const override { return has(row) ? source().baseIndex(entry(row)) : 0; }
    int tag(int row) const override { return has(row) && index[row].tag; }
    void set_tag(unsigned row, int value) override {
        if (has(static_cast<int>(row))) index[static_cast<int>(row)].tag = value != 0;
    }

    unsigned findViewIndexForBaseRow(unsigned long sourceRow) const {
        int row = 0;
        while (row < rows() && index[row].row != sourceRow) ++row;
        return static_cast<unsigned>(row < rows() ? row : -1);
    }

    // --- Losing rows ---

    void remove(int row, int count) {
        if (!has(row)) return;
        count = std::min(count, rows() - row);
        index.erase(row, count);
        announceDeleted(row, count);
    }

    void sourceRowsDeleted(const std::vector<int>& numbers) {
        std::vector<int> summary;
        for (int k = 0; k < static_cast<int>(numbers.size()); ++k) {
            const auto lost = static_cast<unsigned>(numbers[static_cast<std::size_t>(k)] - k);
            for (int j = 0; j < rows();) {
                if (index[j].row == lost) {
                    remove(j, 1);
                    summary.push_back(k + j - 1);
                } else if (index[j++].row > lost) {
                    --index[j - 1].row;
                }
            }
        }
        if (summary.empty()) return;
        announce("recordsDeleted", summary);
        announce("recordsChanged", {});
    }

    void deleteRecords(int row, int count) override {
        takeBySourceRuns(row, count, [this](int first, int run) { source().deleteRecords(first, run); });
    }
    void removeRecordsFromBaseView(int row, int count) {
        if (base) {
            takeBySourceRuns(row, count,
                             [this](int first, int run) { base->removeRecordsFromBaseView(first, run); });
        } else if (count > 0) {
            remove(row, count);
        }
    }
    int deleteTagged() { return takeRuns(true, &View::deleteRecords); }
    int removeTagged() { return takeRuns(true, &View::removeRecordsFromBaseView); }
    int removeNonTagged() { return takeRuns(false, &View::removeRecordsFromBaseView); }

    // --- Showing rows ---

    int displayRecordsAt(int first, int count, int at) {
        std::vector<unsigned> shown;
        for (int row = std::max(first, 0); row < std::min(first + count, source().rows()); ++row) {
            shown.push_back(static_cast<unsigned>(row));
        }
        index.insert(at, shown);
        return static_cast<int>(shown.size());
    }
    int displayMatchAt(const char*, const char* wanted, int at) {
        const int row = database.findFirst(wanted);
        return row >= 0 ? displayRecordsAt(row, 1, at) : 0;
    }
    int displayRecordsAt(const std::vector<std::string>& names, int at) {
        const int before = at;
        for (const std::string& each : names) at += displayMatchAt("", each.c_str(), at);
        return at - before;
    }
    void displayTaggedRecordsAt(int at) {
        std::vector<unsigned> tagged;
        for (int row = 0; row < source().rows(); ++row) {
            if (source().tag(row) != 0) tagged.push_back(static_cast<unsigned>(row));
        }
        index.insert(at, tagged);
    }
    int displayAllFromAt(const View* other, int at) {
        if (base || &other->source() != &source()) return 0;
        const int before = at;
        for (int i = 0; i < other->rows(); ++i) {
            if (other->record(i) && !shows(other->record(i)))
                at += displayRecordsAt(other->baseIndex(i), 1, at);
        }
        return at - before;
    }
    void displayAllRecords() {
        remove(0, rows());
        displayRecordsAt(0, source().rows(), 0);
    }
    void insertBlankRecords(int at, int count) override {
        at = std::clamp(at, 0, rows());
        const int row = at < rows() ? entry(at) : source().rows();
        if (at < rows()) {
            source().insertBlankRecords(row, count);
        } else {
            source().add_records(count);
        }
        std::vector<unsigned> fresh;
        for (int i = 0; i < count; ++i) fresh.push_back(static_cast<unsigned>(row + i));
        index.insert(at, fresh);
        for (int i = at + count; i < rows(); ++i) index[i].row += static_cast<unsigned>(count);
    }
    void add_records(int count) override { insertBlankRecords(rows(), count); }

    // --- Tags and order ---

    int tagMatches(int keep) {
        int matches = 0;
        for (int row = 0; row < rows(); ++row) {
            const bool matched = database.matches(entry(row));
            matches += matched;
            if (matched || keep == 0) index[row].tag = matched;
        }
        return matches;
    }
    int tagDuplicatesOrdered(int) {
        int tagged = 0;
        for (int anchor = 0, row = 1; row < rows(); ++row) {
            if (foldedValue(record(anchor)) != foldedValue(record(row))) {
                anchor = row;
            } else {
                index[row].tag = true;
                ++tagged;
            }
        }
        return tagged;
    }
    int tagDuplicates(int field) {
        ++uses;
        int tagged = 0;
        {
            View sorted("temporary", log, database);
            sorted.baseView(this);
            sorted.displayAllRecords();
            sorted.sort(1, 0);
            tagged = sorted.tagDuplicatesOrdered(field);
            sorted.tagBaseFromTags();
        }
        --uses;
        return tagged;
    }
    void tagBaseFromTags() {
        for (int row = 0; row < rows(); ++row) source().set_tag(index[row].row, tag(row));
    }
    void sort(int direction, int) {
        const auto recordOf = [&](const auto& slot) { return source().record(static_cast<int>(slot.row)); };
        std::stable_sort(
            index.slots.begin(), index.slots.begin() + rows(),
            [&](const auto& a, const auto& b) { return before(recordOf(a), recordOf(b), direction); });
    }

    Database& database;
    View* base = nullptr;

 private:
    // Takes runs of consecutive source rows out of the source, as it is told to.
    template <class Take>
    void takeBySourceRuns(int row, int count, Take take) {
        while (has(row)) {
            count = std::min(count, rows() - row);
            if (count < 1) return;
            const int run = runLength(row, count);
            take(entry(row), run);
            count -= run;
        }
    }
    int runLength(int row, int count) const {
        if (row >= count - 1) return 1;
        int length = 1;
        while (length < count - row && entry(row + length) == entry(row + length - 1) + 1) ++length;
        return length;
    }

    int takeRuns(bool tagged, void (View::*take)(int, int)) {
        int total = 0;
        int length = 0;
        const auto takeOut = [&](int end) {
            (this->*take)(end - length, length);
            total += length;
            return end - std::exchange(length, 0);
        };
        for (int row = 0; row < rows(); ++row) {
            if ((tag(row) != 0) == tagged) {
                ++length;
            } else if (length > 0) {
                row = takeOut(row);
            }
        }
        if (length > 0) takeOut(rows());
        return total;
    }

    bool shows(const Record* wanted) const {
        for (int row = 0; row < rows(); ++row) {
            if (record(row) == wanted) return true;
        }
        return false;
    }

    static bool before(const Record* a, const Record* b, int direction) {
        if (!a || !b) return a && !b;
        if (direction < 0) return folded(a->value) > folded(b->value);
        if (a->value.empty() || b->value.empty()) return !a->value.empty() && b->value.empty();
        return folded(a->value) != folded(b->value) ? folded(a->value) < folded(b->value)
                                                    : a->value < b->value;
    }

    void forget(Source& other) {
        auto& all = other.listeners;
        all.erase(std::find(all.begin(), all.end(), this));
    }

    RowIndexModel index;
    int uses = 1;
};

void Source::announce(const std::string& type, const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers) text += std::to_string(number) + ' ';
    log.push_back(name + ' ' + type + " [" + text + "] " + state());
    if (type != "recordsDeleted") return;
    const std::vector<View*> told = listeners;
    for (View* const view : told) view->sourceRowsDeleted(numbers);
}

}  // namespace ViewModel
