// The row index beside a plain model: after every step both hold the same rows, tags and capacity, whatever
// way the index has chosen to keep them. Tags left in the room after the last entry show when the room is
// filled. A failure names its seed and step.
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <string>

#include "support/Exception.h"
#include "tests/view/RowIndexModel.h"
#include "view/parts/RowIndex.h"

namespace {

class Pair {
 public:
    explicit Pair(unsigned seed) : m_random(seed) { insert(pick(1, 600)); }

    void step() {
        switch (pick(0, 9)) {
            case 0:
                return insert(pick(0, 200));
            case 1:
            case 2:
                return tagSome();
            case 3:
            case 4:
                for (int i = pick(1, 40); i > 0; --i) erase();
                return;
            default:
                for (int i = pick(1, 60); i > 0; --i) loseRow(anyRow());
        }
    }

    void compare() const {
        ASSERT_EQ(m_model.count, m_index.size());
        ASSERT_EQ(static_cast<int>(m_model.slots.size()), m_index.capacity());
        for (int at = 0; at < m_model.count; ++at) {
            ASSERT_EQ(m_model[at].row, m_index.row(at)) << "at " << at;
            ASSERT_EQ(m_model[at].tag, m_index.tag(at)) << "at " << at;
        }
    }

 private:
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    unsigned anyRow() { return static_cast<unsigned>(pick(0, 700)); }

    void insert(int count) {
        const int at = pick(-3, m_model.count + 3);
        std::vector<unsigned> rows(static_cast<std::size_t>(count));
        std::iota(rows.begin(), rows.end(), anyRow());
        if (pick(0, 2) == 0) {
            m_index.insert(at, rows.empty() ? 0 : rows[0], count);
            return m_model.insert(at, rows);
        }
        const unsigned highest = pick(0, 3) == 0 ? 3 : 700;  // many entries for one row now and then
        for (unsigned& row : rows) row = anyRow() % (highest + 1);
        if (pick(0, 1) == 0) {
            m_index.insert(at, rows);
            return m_model.insert(at, rows);
        }
        m_index.insertOneByOne(at, rows);
        for (int i = 0; i < count; ++i) m_model.insert(at + i, {rows[static_cast<std::size_t>(i)]});
    }

    void erase() {
        if (m_model.count == 0) return;
        const int first = pick(0, m_model.count - 1);
        const int count = std::min(pick(0, 3), m_model.count - first);
        m_index.erase(first, count);
        m_model.erase(first, count);
    }

    void tagSome() {
        for (int at = pick(0, 4); at < m_model.count; at += pick(1, 5)) {
            const bool on = pick(0, 1) != 0;
            m_index.setTag(at, on);
            m_model[at].tag = on;
        }
    }

    // While the walk is under way the two are compared at every stop, and sometimes both are changed
    // otherwise.
    void loseRow(unsigned row, int depth = 0) {
        RowIndex::Loss loss(m_index, row);
        for (int at = 0; at < m_model.count;) {
            if (m_model[at].row != row) {
                if (m_model[at].row > row) --m_model[at].row;
                ++at;
                continue;
            }
            ASSERT_EQ(at, loss.next());
            m_index.erase(at, 1);
            m_model.erase(at, 1);
            compare();
            if (depth < 2 && pick(0, 9) == 0) interrupt(depth);
        }
        ASSERT_EQ(-1, loss.next());
    }

    void interrupt(int depth) {
        switch (pick(0, 3)) {
            case 0:
                return insert(pick(1, 3));
            case 1:
                return erase();
            case 2:
                return tagSome();
            default:
                loseRow(anyRow(), depth + 1);
        }
    }

    std::mt19937 m_random;
    RowIndex m_index;
    RowIndexModel m_model;
};

TEST(RowIndex, FollowsThePlainModelThroughRandomChanges) {
    for (unsigned seed = 1; seed <= 150 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Pair pair(seed);
        for (int step = 0; step < 40 && !HasFatalFailure(); ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            pair.step();
            pair.compare();
        }
    }
}

TEST(RowIndex, CountsRowNumbersAsUnsigned) {
    RowIndex index;
    index.insert(0, {0, 5, 0xFFFFFFFF});
    RowIndex::Loss none(index, 0xFFFFFFFE);
    EXPECT_EQ(-1, none.next());
    EXPECT_EQ(0xFFFFFFFE, index.row(2));
    EXPECT_EQ(0u, index.row(0));
}

TEST(RowIndex, ALossEndsWhenTheIndexIsEmptied) {
    for (const int count : {3, 400}) {  // the walk in the array, and in the notes
        RowIndex index;
        index.insert(0, std::vector<unsigned>(static_cast<std::size_t>(count), 7));
        RowIndex::Loss loss(index, 7);
        for (int i = 0; i < 2; ++i) index.erase(loss.next(), 1);
        index.clear();
        index.insert(0, {7, 8});
        EXPECT_EQ(-1, loss.next());
        EXPECT_EQ(-1, loss.next());
        EXPECT_EQ(7u, index.row(0));
        EXPECT_EQ(8u, index.row(1));
    }
}

TEST(RowIndex, MoreEntriesThanAnIntCountsAreOutOfMemory) {
    RowIndex index;
    index.insert(0, {1, 2});
    EXPECT_THROW(index.insert(1, 0, 0x7FFFFFFF), Zr::Exception::BadAlloc);
    EXPECT_EQ(2, index.size());
}

}  // namespace
