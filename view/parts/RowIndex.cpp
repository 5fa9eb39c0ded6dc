// RowIndex: when an array of rows is changed itself, and when it is worth noting what goes.
#include "view/parts/RowIndex.h"

#include <new>
#include <utility>

#include "view/parts/RemovalNotes.h"

namespace {

// From when on noting removals is cheaper than carrying them out.
constexpr int manyEntries = 256;
constexpr int manyRemovals = 16;

}  // namespace

RowIndex::RowIndex() noexcept = default;
RowIndex::~RowIndex() = default;

int RowIndex::notedSize() const noexcept {
    return m_notes->size();
}

int RowIndex::capacity() const noexcept {
    return m_notes ? m_notes->capacity() : m_array.capacity();
}

unsigned RowIndex::notedRow(int at) const noexcept {
    return m_notes->row(at);
}

bool RowIndex::tag(int at) const noexcept {
    return m_notes ? m_notes->tag(at) : m_array.tag(at);
}

void RowIndex::setTag(int at, bool on) noexcept {
    if (m_notes) {
        m_notes->setTag(at, on);
    } else {
        m_array.setTag(at, on);
    }
}

void RowIndex::clear() noexcept {
    ++m_changes;
    ++m_generation;
    m_removals = 0;
    m_notes.reset();
    m_array.clear();
}

void RowIndex::restart() noexcept {
    edit().restart();
    ++m_generation;
}

void RowIndex::append(unsigned row) {
    edit().append(row);
}

void RowIndex::insert(int at, unsigned first, int count) {
    edit().insert(at, first, count);
}

void RowIndex::insert(int at, const std::vector<unsigned>& rows) {
    edit().insert(at, rows);
}

void RowIndex::insertOneByOne(int at, std::vector<unsigned> rows) {
    edit().insertOneByOne(at, std::move(rows));
}

void RowIndex::addToRows(int from, unsigned number) noexcept {
    edit().addToRows(from, number);
}

void RowIndex::erase(int first, int count) noexcept {
    ++m_changes;
    if (count == size()) return clear();
    if (isWorthNoting()) makeNotes();
    if (m_notes) {
        m_notes->erase(first, count);
    } else {
        m_array.erase(first, count);
    }
}

void RowIndex::reorder(const std::vector<unsigned>& order) {
    edit().reorder(order);
}

// Every change but the removal of entries is made to what this returns.
RowArray& RowIndex::edit() noexcept {
    ++m_changes;
    carryOutNotes();
    m_removals = 0;
    return m_array;
}

void RowIndex::carryOutNotes() noexcept {
    if (!m_notes) return;
    m_notes->carryOut();
    m_notes.reset();
    ++m_changes;
    m_removals = 0;
}

bool RowIndex::canNote() const noexcept {
    return !m_notes && m_arrayWalks == 0 && size() >= manyEntries;
}

bool RowIndex::isWorthNoting() noexcept {
    return canNote() && ++m_removals > manyRemovals;
}

void RowIndex::makeNotes() noexcept {
    try {
        m_notes = std::make_unique<RemovalNotes>(m_array);
    } catch (const std::bad_alloc&) {
        // It goes without, only slower.
    }
}

// --- Lost source rows ---

void RowIndex::beginLoss(unsigned lost) noexcept {
    ++m_changes;
    // A walk that another one interrupts is not worth going on with.
    if (m_notes && (m_notes->isWalking() || m_notes->areMostlyOfTheGone())) carryOutNotes();
    // A walk over the array keeps it up to date to its end: many entries for one row are counted beforehand.
    if (isWorthNoting() || (canNote() && m_array.count(lost) > manyRemovals)) makeNotes();
}

RowIndex::Loss::Loss(RowIndex& index, unsigned lost) noexcept
    : m_index(index), m_lost(lost), m_generation(index.m_generation) {
    index.beginLoss(lost);
    m_noted = index.m_notes != nullptr;
    m_expectedChanges = index.m_changes;
    if (m_noted) {
        index.m_notes->beginWalk(lost);
    } else {
        walkArray();
    }
}

int RowIndex::Loss::next() noexcept {
    if (m_at < 0) return -1;
    if (m_index.m_generation != m_generation) {
        if (!m_noted) --m_index.m_arrayWalks;
        return m_at = -1;
    }
    if (m_noted && m_index.m_notes && m_index.m_changes == m_expectedChanges) {
        ++m_expectedChanges;  // by the erasure of the entry
        return m_at = m_index.m_notes->walkOn();
    }
    if (m_noted) walkArray();
    m_at = m_index.m_array.loseUpTo(m_at, m_lost);
    if (m_at < 0) --m_index.m_arrayWalks;
    return m_at;
}

void RowIndex::Loss::walkArray() noexcept {
    m_noted = false;
    m_index.carryOutNotes();
    ++m_index.m_arrayWalks;
}
