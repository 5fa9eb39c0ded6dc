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
    /// somebody has emptied the index meanwhile: what is in it now was put in after the deletion.
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

// How many view rows from `row` on name consecutive source rows. Deliberately the bound sets a view row
// against a count: a run has one row where `row` is not below count - 1, and count - row at most.
int KSTViewRep::runLength(int row, int count) const noexcept {
    if (row >= count - 1) return 1;
    int length = 1;
    while (length < count - row && m_index.row(row + length) == m_index.row(row + length - 1) + 1) ++length;
    return length;
}

// Takes out `count` rows from `row` on by runs of consecutive source rows, which `takeOut` gets as the
// first and the length. Ends when the view has come to stand on something else: those are other rows.
template <class TakeOut>
void KSTViewRep::takeOutOfSource(int row, int count, const TakeOut& takeOut) {
    const LifeWatch self = watch();
    const std::uint64_t attached = lastAttachment();
    while (row >= 0 && self && lastAttachment() == attached) {
        count = std::min(count, m_index.size() - std::min(row, m_index.size()));
        if (count < 1 || !db()) return;
        const int run = runLength(row, count);
        takeOut(m_index.row(row), run);
        count -= run;
    }
}

void KSTViewRep::deleteRecords(int row, int count) {
    takeOutOfSource(row, count, [this](unsigned first, int run) {
        db()->delete_records(first, static_cast<unsigned>(run));
    });
}

void KSTViewRep::removeRecordsFromBaseView(int row, int count) {
    if (m_base.isSet()) {
        takeOutOfSource(row, count, [this](unsigned first, int run) {
            m_base.get()->removeRecordsFromBaseView(static_cast<int>(first), run);
        });
    } else if (db() && count > 0) {
        remove(row, count);
    }
}

int KSTViewRep::deleteTagged() {
    return takeOutRuns(&KSTViewRep::tag, &KSTViewRep::deleteRecords, &KSTViewRep::isInDatabase);
}

int KSTViewRep::removeSome(bool (KSTViewRep::*test)(int)) {
    if (!test) return 0;
    return takeOutRuns(test, &KSTViewRep::removeRecordsFromBaseView, &KSTViewRep::isInBottomView);
}

int KSTViewRep::removeTagged() {
    return removeSome(&KSTViewRep::tag);
}

int KSTViewRep::removeNonTagged() {
    return removeSome(&KSTViewRep::notTagged);
}

// The row of the view at the bottom of the chain that a view row stands for; none when a view between has not
// the row.
std::optional<int> KSTViewRep::bottomRow(int row) const noexcept {
    for (const KSTViewRep* view = this; view && view->m_index.contains(row); view = view->m_base.get()) {
        if (!view->m_base.isSet()) return row;
        row = static_cast<int>(view->m_index.row(row));
    }
    return std::nullopt;
}

bool KSTViewRep::isInBottomView(int row) const {
    return bottomRow(row).has_value();
}

bool KSTViewRep::isInDatabase(int row) const {
    const KSTViewRep& bottom = bottomView();
    const kesta* const source = bottom.database();
    const std::optional<int> found = bottomRow(row);
    return source && found && bottom.m_index.row(*found) < source->get_num_records();
}

// Takes out each run of rows that pass the test and can be taken out; answers the rows in all runs.
int KSTViewRep::takeOutRuns(bool (KSTViewRep::*test)(int), void (KSTViewRep::*takeOut)(int, int),
                            bool (KSTViewRep::*canBeTakenOut)(int) const) {
    const LifeWatch self = watch();
    const std::uint64_t attached = lastAttachment();
    unsigned total = 0;
    int length = 0;
    for (int row = 0; row < m_index.size(); ++row) {
        if ((this->*test)(row)) {
            ++length;
            continue;
        }
        // The walk goes on behind the run's first row. Where nothing moves, what is left of the run is the
        // next run.
        for (int first = row - length; length > 0; ++first) {
            total += static_cast<unsigned>(length);
            --length;
            if (!(this->*canBeTakenOut)(first)) continue;

            const int rows = m_index.size();
            const Zr::Ptr<dbrecord> before = record(first);
            (this->*takeOut)(first, length + 1);
            if (!self || lastAttachment() != attached) return static_cast<int>(total);
            if (m_index.size() != rows || record(first) != before) {
                row = first;
            } else {
                // Deliberately the runs count that are left where a source refuses, though it is not asked
                // again: it would refuse each time.
                const auto left = static_cast<std::uint64_t>(length);
                total += static_cast<unsigned>(left * (left + 1) / 2);
            }
            length = 0;
        }
    }
    if (length > 0) {
        (this->*takeOut)(m_index.size() - length, length);
        total += static_cast<unsigned>(length);
    }
    return static_cast<int>(total);
}
