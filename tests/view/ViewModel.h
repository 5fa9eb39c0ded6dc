// Views and a database as plainly as they can be said: every rule carried out step by step on plain lists.
#pragma once

#include <algorithm>
#include <cctype>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tests/view/RowIndexModel.h"

namespace ViewModel {

struct Record {
    std::string name;
    std::string value;
    int tag = 0;
};

inline std::string folded(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
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
    virtual void setTag(int row, bool on) = 0;
    virtual void deleteRecords(int row, int count) = 0;
    virtual void insertRecords(int row, int count) = 0;
    virtual void addRecords(int count) = 0;
    virtual int findFirst(const std::string& name) const = 0;
    virtual int match(int row) const = 0;
    virtual std::string state() const = 0;

    inline void announce(const std::string& type, const std::string& text);

    const std::string name;
    std::vector<View*> listeners;

 protected:
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
    void setTag(int row, bool on) override {
        if (record(row)) record(row)->tag = on;
    }
    void deleteRecords(int row, int count) override {
        if (row < 0 || row >= rows() || count == 0) return;
        count = std::min(count, rows() - row);
        records.erase(records.begin() + row, records.begin() + row + count);
        std::string text;
        for (int i = row; i < row + count; ++i) text += std::to_string(i) + ' ';
        announce("recordsDeleted", text);
    }
    void insertRecords(int row, int count) override {
        if (count == 0 || row > rows()) return;
        for (int i = 1; i < count; ++i) records.insert(records.begin() + row, nullptr);
        records.insert(records.begin() + row, std::make_shared<Record>());
    }
    void addRecords(int count) override {
        for (int i = 0; i < count; ++i) records.push_back(std::make_shared<Record>());
    }
    int findFirst(const std::string& wanted) const override {
        for (int row = 0; row < rows(); ++row) {
            if ((record(row) ? record(row)->name : "") == wanted) return row;
        }
        return -1;
    }
    int match(int row) const override {
        if (!record(row)) return -1;
        return folded(record(row)->value).find('a') != std::string::npos;
    }
    int deleteTagged() {
        int deleted = 0;
        int length = 0;
        for (int row = 0; row <= rows(); ++row) {
            if (tag(row) == 1) {
                ++length;
            } else if (length > 0) {
                row -= length;
                deleteRecords(row, length);
                deleted += length;
                length = 0;
            }
        }
        return deleted;
    }
    std::string state() const override {
        std::ostringstream out;
        for (const auto& each : records) out << (each ? each->name + (each->tag ? "*" : "") : "none") << ' ';
        return out.str();
    }

    std::vector<std::shared_ptr<Record>> records;
};

class View : public Source {
 public:
    View(std::string viewName, Log& events, Database& onDatabase)
        : Source(std::move(viewName), events), database(onDatabase) {
        database.listeners.push_back(this);
    }
    ~View() override {
        chain(nullptr);
        forget(database);
    }

    // --- Rows ---

    Source& source() const { return base ? static_cast<Source&>(*base) : database; }
    int entry(int row) const { return static_cast<int>(index[row].row); }
    bool has(int row) const { return row >= 0 && row < index.count; }

    int rows() const override { return index.count; }
    Record* record(int row) const override { return has(row) ? source().record(entry(row)) : nullptr; }
    int baseIndex(int row) const override { return has(row) ? source().baseIndex(entry(row)) : 0; }
    int tag(int row) const override { return has(row) && index[row].tag; }
    void setTag(int row, bool on) override {
        if (has(row)) index[row].tag = on;
    }
    int findFirst(const std::string& wanted) const override { return source().findFirst(wanted); }
    int match(int row) const override { return source().match(row); }
    std::string state() const override {
        std::ostringstream out;
        for (int row = 0; row < rows(); ++row) {
            out << (record(row) ? record(row)->name : "none") << '@' << baseIndex(row)
                << (tag(row) ? "* " : " ");
        }
        return out.str();
    }

    // --- Chains and lives ---

    bool standsOn(const View* other) const { return this == other || (base && base->standsOn(other)); }

    void chain(View* newBase) {
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

    // --- Losing rows ---

    void remove(int row, int count) {
        if (!has(row)) return;
        count = std::min(count, rows() - row);
        index.erase(row, count);
        std::string text;
        for (int i = row; i < row + count; ++i) text += std::to_string(i) + ' ';
        announce("recordsDeleted", text);
    }

    void sourceRowsDeleted(const std::string& text) {
        std::istringstream words(text);
        std::string summary;
        int k = 0;
        for (long number = 0; words >> number; ++k) {
            const auto lost = static_cast<unsigned>(number - k);
            for (int j = 0; j < rows();) {
                if (index[j].row > lost) {
                    --index[j++].row;
                } else if (index[j].row == lost) {
                    remove(j, 1);
                    summary += std::to_string(k + j - 1) + ' ';
                } else {
                    ++j;
                }
            }
        }
        if (summary.empty()) return;
        announce("recordsDeleted", summary);
        announce("recordsChanged", "");
    }

    int run(int row, int n) const {
        if (row >= n - 1) return 1;
        int length = 1;
        while (length < n - row && entry(row + length) == entry(row + length - 1) + 1) ++length;
        return length;
    }

    void deleteRecords(int row, int count) override {
        while (count > 0 && row >= 0) {
            const int n = std::min(count, rows() - row);
            if (n < 1) return;
            const int length = run(row, n);
            source().deleteRecords(entry(row), length);
            count = n - length;
        }
    }

    void takeFromChain(int row, int count) {
        while (count > 0 && row >= 0) {
            const int n = std::min(count, rows() - row);
            if (n < 1) return;
            if (!base) return remove(row, n);
            const int length = run(row, n);
            base->takeFromChain(entry(row), length);
            count = n - length;
        }
    }

    template <class Test, class Take>
    int takeRuns(Test test, Take take) {
        int total = 0;
        int start = -1;
        for (int i = 0; i < rows(); ++i) {
            if (test(i)) {
                if (start < 0) start = i;
            } else if (start >= 0) {
                take(start, i - start);
                total += i - start;
                i = start;
                start = -1;
            }
        }
        if (start >= 0) {
            const int length = rows() - start;
            take(start, length);
            total += length;
        }
        return total;
    }

    int deleteTagged() {
        return takeRuns([this](int row) { return tag(row) != 0; },
                        [this](int row, int count) { deleteRecords(row, count); });
    }
    int removeByTag(bool tagged) {
        return takeRuns([=](int row) { return (tag(row) != 0) == tagged; },
                        [this](int row, int count) { takeFromChain(row, count); });
    }

    // --- Showing rows ---

    int show(int first, int count, int at) {
        std::vector<unsigned> shown;
        for (int row = first; row < first + count; ++row) {
            if (row >= 0 && row < source().rows()) shown.push_back(static_cast<unsigned>(row));
        }
        index.insert(at, shown);
        return static_cast<int>(shown.size());
    }
    int showMatch(const std::string& wanted, int at) {
        const int row = findFirst(wanted);
        return row >= 0 ? show(row, 1, at) : 0;
    }
    int showMatches(const std::vector<std::string>& names, int at) {
        const int before = at;
        for (const std::string& each : names) at += showMatch(each, at);
        return at - before;
    }
    void showTagged(int at) {
        std::vector<unsigned> tagged;
        for (int row = 0; row < source().rows(); ++row) {
            if (source().tag(row) != 0) tagged.push_back(static_cast<unsigned>(row));
        }
        index.insert(at, tagged);
    }
    int showAllFrom(View& other, int at) {
        if (base || &other.source() != &source()) return 0;
        int added = 0;
        for (int i = 0; i < other.rows(); ++i) {
            if (!other.record(i) || find(other.record(i)) >= 0) continue;
            show(other.baseIndex(i), 1, at++);
            ++added;
        }
        return added;
    }
    int find(const Record* wanted) const {
        for (int row = 0; row < rows(); ++row) {
            if (record(row) == wanted) return row;
        }
        return -1;
    }
    void showAll() {
        remove(0, rows());
        show(0, source().rows(), 0);
    }
    void insertRecords(int at, int count) override {
        at = std::clamp(at, 0, rows());
        const int row = at < rows() ? entry(at) : source().rows();
        if (at < rows()) {
            source().insertRecords(row, count);
        } else {
            source().addRecords(count);
        }
        std::vector<unsigned> fresh;
        for (int i = 0; i < count; ++i) fresh.push_back(static_cast<unsigned>(row + i));
        index.insert(at, fresh);
        for (int i = at + count; i < rows(); ++i) index[i].row += static_cast<unsigned>(count);
    }
    void addRecords(int count) override { insertRecords(rows(), count); }

    // --- Tags and order ---

    int tagMatches(bool keep) {
        int matches = 0;
        for (int row = 0; row < rows(); ++row) {
            const bool matched = source().match(entry(row)) == 1;
            matches += matched;
            if (matched || !keep) setTag(row, matched);
        }
        return matches;
    }
    int tagDuplicatesOrdered() {
        int tagged = 0;
        for (int anchor = 0, row = 1; row < rows(); ++row) {
            if (valueAt(anchor) != valueAt(row)) {
                anchor = row;
            } else {
                setTag(row, true);
                ++tagged;
            }
        }
        return tagged;
    }
    int tagDuplicates(const std::string& temporaryName) {
        ++uses;
        int tagged = 0;
        {
            View sorted(temporaryName, log, database);
            sorted.chain(this);
            sorted.showAll();
            sorted.sort(1);
            tagged = sorted.tagDuplicatesOrdered();
            sorted.tagSource();
        }
        --uses;
        return tagged;
    }
    void tagSource() {
        for (int row = 0; row < rows(); ++row) source().setTag(entry(row), tag(row) != 0);
    }
    void sort(int direction) {
        std::vector<RowIndexModel::Slot> sorted(index.slots.begin(), index.slots.begin() + rows());
        std::stable_sort(sorted.begin(), sorted.end(), [&](const auto& a, const auto& b) {
            return before(source().record(static_cast<int>(a.row)), source().record(static_cast<int>(b.row)),
                          direction);
        });
        std::copy(sorted.begin(), sorted.end(), index.slots.begin());
    }

    RowIndexModel index;
    View* base = nullptr;
    Database& database;
    int uses = 1;

 private:
    std::string valueAt(int row) const { return record(row) ? folded(record(row)->value) : ""; }

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
};

void Source::announce(const std::string& type, const std::string& text) {
    log.push_back(name + ' ' + type + " [" + text + "] " + state());
    if (type != "recordsDeleted") return;
    const std::vector<View*> told = listeners;
    for (View* const view : told) view->sourceRowsDeleted(text);
}

}  // namespace ViewModel
