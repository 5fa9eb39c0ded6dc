// KSTViewRep: rows that go, and what is told and heard of it.
//
// Telling others may end this view: after every call that announces, the view is looked at only if it lives.
#include <algorithm>
#include <cstdlib>
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
    Losses(RowIndex& index, const NotifyMsg& message) noexcept : m_index(index), m_token(message) {}

    /// The next view row that is lost, to be erased before the next call; -1 when all is done.
    int next() noexcept {
        for (; m_token; ++m_token, ++m_position, m_loss.reset()) {
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
    unsigned m_position = 0;
    std::optional<RowIndex::Loss> m_loss;
};

}  // namespace

void KSTViewRep::remove(int row, int count) {
    if (!m_index.contains(row) || count < 0) return;
    count = std::min(count, m_index.size() - row);
    const RecordsDeleted announcement(*this, static_cast<unsigned>(row), static_cast<unsigned>(count));
    m_index.erase(row, count);
    announcement.issue();
}

int KSTViewRep::recordsDeletedNotify(const NotifyMsg& message) {
    const LifeWatch self = watch();
    LightweightString<char> summary;
    Losses losses(m_index, message);
    try {
        for (int row = losses.next(); row >= 0; row = losses.next()) {
            remove(row, 1);
            if (!self) return 0;
            // Deliberately no row number at all: the position in the message is added to the view row.
            summary += static_cast<int>(losses.position() + static_cast<unsigned>(row) - 1);
            summary += ' ';
        }
    } catch (...) {
        // There is no memory to announce the rest. The rows must go all the same: their numbers are others'
        // now.
        if (self) {
            for (int row = losses.next(); row >= 0; row = losses.next()) m_index.erase(row, 1);
        }
        throw;
    }
    if (summary.empty()) return 0;
    issueNotification(NotifyMsg(summary, Zr::Ptr<iObject>()), RecordsDeleted::messageType());
    if (!self) return 0;
    issueNotification(NotifyMsg(LightweightString<char>(), Zr::Ptr<iObject>()), recordsChangedType());
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

void KSTViewRep::deleteRecords(int row, int count) {
    const LifeWatch self = watch();
    while (row >= 0 && self) {
        iKST* const source = db();
        const int rows = m_index.size();
        count = std::min(count, rows - std::min(row, rows));
        if (count < 1 || !source) return;

        const int run = runLength(row, count);
        const unsigned before = source->get_num_records();
        const LifeWatch sourceLives = sourceWatch();
        source->delete_records(m_index.row(row), static_cast<unsigned>(run));
        count -= run;

        // A source that refuses once would refuse each time.
        if (self && sourceLives && m_index.size() == rows && source->get_num_records() == before) return;
    }
}

void KSTViewRep::removeRecordsFromBaseView(int row, int count) {
    const LifeWatch self = watch();
    while (row >= 0 && self) {
        const int rows = m_index.size();
        count = std::min(count, rows - std::min(row, rows));
        if (count < 1 || !db()) return;
        if (!m_base.isSet()) return remove(row, count);

        const int run = runLength(row, count);
        m_base.get()->removeRecordsFromBaseView(static_cast<int>(m_index.row(row)), run);
        count -= run;
        if (self && m_index.size() == rows) return;  // the base view has no such row
    }
}

int KSTViewRep::deleteTagged() {
    return takeOutRuns(&KSTViewRep::tag, &KSTViewRep::deleteRecords);
}

int KSTViewRep::removeSome(bool (KSTViewRep::*test)(int)) {
    return test ? takeOutRuns(test, &KSTViewRep::removeRecordsFromBaseView) : 0;
}

int KSTViewRep::removeTagged() {
    return removeSome(&KSTViewRep::tag);
}

int KSTViewRep::removeNonTagged() {
    return removeSome(&KSTViewRep::notTagged);
}

// Takes out each run of rows that pass the test; answers the rows in all runs.
int KSTViewRep::takeOutRuns(bool (KSTViewRep::*test)(int), void (KSTViewRep::*takeOut)(int, int)) {
    const LifeWatch self = watch();
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
            const int rows = m_index.size();
            (this->*takeOut)(first, length);
            total += static_cast<unsigned>(length);
            if (!self) return static_cast<int>(total);
            row = first;
            length = m_index.size() == rows ? length - 1 : 0;
        }
    }
    if (length > 0) {
        (this->*takeOut)(m_index.size() - length, length);
        total += static_cast<unsigned>(length);
    }
    return static_cast<int>(total);
}
