// KSTViewRep: rows that go, and what is told and heard of it.
//
// Telling others may end this view: after every call that announces, the view is looked at only if it lives.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <optional>

#include "record/RecordsDeleted.h"
#include "view/KSTViewRep.h"
#include "view/parts/ViewChain.h"

namespace {

int recordsChangedType() {
    static const int type = NotifyMsgTypeDictionary::instance().intern("recordsChanged");
    return type;
}

/// The losses that a "recordsDeleted" message brings to an index: one walk over it for each row of the
/// message.
class Losses {
 public:
    Losses(RowIndex& index, const NotifyMsg& message) noexcept
        : m_index(index), m_token(message), m_generation(index.generation()) {}

    /// The next view row that is lost, to be erased before the next call; -1 when all is done, or when
    /// the index has been emptied meanwhile: what is in it now was put in after the deletion.
    int next() noexcept {
        for (; m_token && (m_loss || m_index.generation() == m_generation);
             ++m_token, ++m_position, m_loss.reset()) {
            if (!m_loss) m_loss.emplace(m_index, lostRow());
            const int row = m_loss->next();
            if (row >= 0) return row;
        }
        return -1;
    }

    /// The position in the message of the row being lost.
    unsigned position() const noexcept { return m_position; }

 private:
    // The row's number now: the message numbers all rows as before its first one went.
    unsigned lostRow() const noexcept {
        return static_cast<unsigned>(std::strtol((*m_token).data(), nullptr, 10)) - m_position;
    }

    RowIndex& m_index;
    NotifyMsgTokenIterator m_token;
    const unsigned m_generation;
    unsigned m_position = 0;
    std::optional<RowIndex::Loss> m_loss;
};

/// Steps that are all to be tried, whatever one of them throws.
class Attempts {
 public:
    template <class Step>
    void operator()(const Step& step) noexcept {
        try {
            step();
        } catch (...) {
            if (!m_first) m_first = std::current_exception();
        }
    }

    /// Throws what was thrown first, if anything was.
    void rethrow() const {
        if (m_first) std::rethrow_exception(m_first);
    }

 private:
    std::exception_ptr m_first;
};

// How many view rows from `row` on name consecutive source rows. Deliberately the bound sets a view row
// against a count: a run has one row where `row` is not below count - 1, and count - row at most.
int runLength(const RowIndex& index, int row, int count) noexcept {
    int length = 1;
    while (length < count - row && index.row(row + length) == index.row(row + length - 1) + 1) ++length;
    return length;
}

// Takes out `count` rows of a view from `row` on by runs of consecutive source rows, which `takeOut` gets as
// the first and the length. Ends when the view has come to stand on something else: those are other rows.
template <class TakeOut>
void takeOutOfSource(const KSTViewRep& view, const RowIndex& index, int row, int count,
                     const TakeOut& takeOut) {
    const LifeWatch watch = view.watch();
    const std::uint64_t attached = ViewChain(view).lastAttachment();
    while (row >= 0 && watch && ViewChain(view).lastAttachment() == attached) {
        count = std::min(count, index.size() - std::min(row, index.size()));
        if (count < 1 || !view.db()) return;
        const int run = runLength(index, row, count);
        takeOut(index.row(row), run);
        count -= run;
    }
}

/// Takes runs of rows out of a view.
class RunRemoval {
 public:
    using Test = bool (KSTViewRep::*)(int);
    using TakeOut = void (KSTViewRep::*)(int, int);
    using Reaches = bool (ViewChain::*)(int) const;

    /// By the operation `takeOut`, which finds something to take out where the chain of views `reaches` what
    /// it takes from.
    RunRemoval(KSTViewRep& view, const RowIndex& index, TakeOut takeOut, Reaches reaches) noexcept
        : m_view(view), m_index(index), m_takeOut(takeOut), m_reaches(reaches) {}

    /// Takes out each run of rows that pass the test and returns the number of rows in all runs.
    int operator()(Test test) {
        int length = 0;
        for (int row = 0; row < m_index.size(); ++row) {
            if ((m_view.*test)(row)) {
                ++length;
            } else if (length > 0) {
                const std::optional<int> next = takeOutRun(row - length, length);
                if (!next) return static_cast<int>(m_total);
                length = 0;
                row = *next;  // deliberately the row that has come there is passed over
            }
        }
        if (length > 0) {
            m_total += static_cast<unsigned>(length);
            (m_view.*m_takeOut)(m_index.size() - length, length);
        }
        return static_cast<int>(m_total);
    }

 private:
    // Returns the row after which the walk goes on, none when it is to end: the run's first row where those
    // after it have moved down, else its end.
    std::optional<int> takeOutRun(int first, int length) {
        const int end = first + length;
        // Where nothing moves, what is left of the run is the next run.
        for (; length > 0; ++first) {
            m_total += static_cast<unsigned>(length--);
            if (!(ViewChain(m_view).*m_reaches)(first)) continue;

            const int rows = m_index.size();
            const Zr::Ptr<dbrecord> before = record(first);
            (m_view.*m_takeOut)(first, length + 1);
            if (!m_watch || ViewChain(m_view).lastAttachment() != m_attached) return std::nullopt;
            if (m_index.size() != rows || record(first) != before) return first;

            // Deliberately the runs count that are left where a source refuses, though it is not asked again:
            // it would refuse each time.
            const auto left = static_cast<std::uint64_t>(length);
            m_total += static_cast<unsigned>(left * (left + 1) / 2);
            return end;
        }
        return end;
    }

    Zr::Ptr<dbrecord> record(int row) const {
        return m_view.KSTViewRep::get_record(static_cast<unsigned>(row));
    }

    KSTViewRep& m_view;
    const RowIndex& m_index;
    const TakeOut m_takeOut;
    const Reaches m_reaches;
    const LifeWatch m_watch = m_view.watch();
    const std::uint64_t m_attached = ViewChain(m_view).lastAttachment();
    unsigned m_total = 0;
};

}  // namespace

void KSTViewRep::remove(int row, int count) {
    if (!m_index.contains(row) || count < 0) return;
    count = std::min(count, m_index.size() - row);
    const RecordsDeleted announcement(*this, static_cast<unsigned>(row), static_cast<unsigned>(count));
    m_index.erase(row, count);
    announcement.issue();
}

// A lost row goes even if there is no memory to announce it: its number is another's now. And a listener that
// throws keeps the others from nothing. One that shows lost rows again each time is told no more often than
// there were entries; the rest goes without a word.
int KSTViewRep::recordsDeletedNotify(const NotifyMsg& message) {
    const LifeWatch self = watch();
    Attempts attempt;
    LightweightString<char> summary;
    Losses losses(m_index, message);
    int announcements = m_index.size();
    for (int row = losses.next(); row >= 0; row = self ? losses.next() : -1) {
        std::optional<RecordsDeleted> announcement;
        if (announcements-- > 0) {
            attempt([&] { announcement.emplace(*this, static_cast<unsigned>(row), 1u); });
        }
        m_index.erase(row, 1);
        if (!announcement) continue;
        attempt([&] { announcement->issue(); });
        attempt([&] {
            // Deliberately no row number at all: the position in the message is added to the view row.
            summary += static_cast<int>(losses.position() + static_cast<unsigned>(row) - 1);
            summary += ' ';
        });
    }
    if (self && !summary.empty()) {
        attempt([&] {
            issueNotification(NotifyMsg(summary, Zr::Ptr<iObject>()), RecordsDeleted::messageType());
        });
        attempt([&] {
            if (!self) return;
            issueNotification(NotifyMsg(LightweightString<char>(), Zr::Ptr<iObject>()), recordsChangedType());
        });
    }
    attempt.rethrow();
    return 0;
}

// --- Runs of rows ---

void KSTViewRep::deleteRecords(int row, int count) {
    takeOutOfSource(*this, m_index, row, count, [this](unsigned first, int run) {
        db()->delete_records(first, static_cast<unsigned>(run));
    });
}

void KSTViewRep::removeRecordsFromBaseView(int row, int count) {
    if (m_base.isSet()) {
        takeOutOfSource(*this, m_index, row, count, [this](unsigned first, int run) {
            m_base.get()->removeRecordsFromBaseView(static_cast<int>(first), run);
        });
    } else if (db() && count > 0) {
        remove(row, count);
    }
}

int KSTViewRep::deleteTagged() {
    RunRemoval remove(*this, m_index, &KSTViewRep::deleteRecords, &ViewChain::reachesDatabase);
    return remove(&KSTViewRep::tag);
}

int KSTViewRep::removeSome(bool (KSTViewRep::*test)(int)) {
    if (!test) return 0;
    RunRemoval remove(*this, m_index, &KSTViewRep::removeRecordsFromBaseView, &ViewChain::reachesBottomView);
    return remove(test);
}

int KSTViewRep::removeTagged() {
    return removeSome(&KSTViewRep::tag);
}

int KSTViewRep::removeNonTagged() {
    return removeSome(&KSTViewRep::notTagged);
}
