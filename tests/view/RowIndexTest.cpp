// The row index beside a plain model: after every step both hold the same rows, tags and capacity, whatever
// way the index has chosen to keep them. Tags left in the room behind the last entry show when the room is
// filled.
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string>

#include "support/Exception.h"
#include "tests/view/RowIndexModel.h"
#include "view/RowIndex.h"

namespace {

class Pair {
 public:
    explicit Pair(unsigned seed) : m_random(seed) {}

    RowIndex index;
    RowIndexModel model;

    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }

    std::vector<unsigned> someRows(int count) {
        std::vector<unsigned> rows;
        const int highest = pick(0, 3) == 0 ? 3 : 700;  // many entries for one row now and then
        for (int i = 0; i < count; ++i) rows.push_back(static_cast<unsigned>(pick(0, highest)));
        return rows;
    }

    void insert(int count) {
        const int at = pick(-3, model.count + 3);
        switch (pick(0, 2)) {
            case 0: {
                const std::vector<unsigned> rows = someRows(count);
                index.insert(at, rows);
                model.insert(at, rows);
                break;
            }
            case 1: {
                const std::vector<unsigned> rows = someRows(count);
                index.insertOneByOne(at, rows);
                for (int i = 0; i < count; ++i) model.insert(at + i, {rows[static_cast<std::size_t>(i)]});
                break;
            }
            default:
                const auto first = static_cast<unsigned>(pick(0, 700));
                std::vector<unsigned> rows;
                for (int i = 0; i < count; ++i) rows.push_back(first + static_cast<unsigned>(i));
                index.insert(at, first, count);
                model.insert(at, rows);
        }
    }

    void erase() {
        if (model.count == 0) return;
        const int first = pick(0, model.count - 1);
        const int count = std::min(pick(0, 3), model.count - first);
        index.erase(first, count);
        model.erase(first, count);
    }

    void tagSome() {
        for (int at = 0; at < model.count; ++at) {
            if (pick(0, 2) != 0) continue;
            const bool on = pick(0, 1) != 0;
            index.setTag(at, on);
            model[at].tag = on;
        }
    }

    // While the walk is under way the two are compared at every stop, and sometimes somebody else changes
    // both.
    void loseRow(unsigned row, int depth = 0) {
        RowIndex::Loss loss(index, row);
        for (int at = 0; at < model.count;) {
            if (model[at].row > row)
                --model[at++].row;
            else if (model[at].row < row)
                ++at;
            else {
                ASSERT_EQ(at, loss.next());
                index.erase(at, 1);
                model.erase(at, 1);
                compare();
                if (depth < 2 && pick(0, 9) == 0) interrupt(depth);
            }
        }
        ASSERT_EQ(-1, loss.next());
    }

    void interrupt(int depth) {
        switch (pick(0, 3)) {
            case 0:
                insert(pick(1, 3));
                break;
            case 1:
                erase();
                break;
            case 2:
                tagSome();
                break;
            default:
                loseRow(static_cast<unsigned>(pick(0, 700)), depth + 1);
        }
    }

    void compare() const {
        ASSERT_EQ(model.count, index.size());
        ASSERT_EQ(static_cast<int>(model.slots.size()), index.capacity());
        for (int at = 0; at < model.count; ++at) {
            ASSERT_EQ(model[at].row, index.row(at)) << "at " << at;
            ASSERT_EQ(model[at].tag, index.tag(at)) << "at " << at;
        }
    }

 private:
    std::mt19937 m_random;
};

void runSequence(unsigned seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Pair pair(seed);
    pair.insert(pair.pick(1, 600));
    for (int step = 0; step < 40 && !::testing::Test::HasFatalFailure(); ++step) {
        switch (pair.pick(0, 9)) {
            case 0:
                pair.insert(pair.pick(0, 200));
                break;
            case 1:
            case 2:
                pair.tagSome();
                break;
            case 3:
            case 4:
                for (int i = pair.pick(1, 40); i > 0; --i) pair.erase();
                break;
            default:
                for (int i = pair.pick(1, 60); i > 0; --i) {
                    pair.loseRow(static_cast<unsigned>(pair.pick(0, 700)));
                }
        }
        pair.compare();
    }
}

TEST(RowIndex, FollowsThePlainModelThroughRandomChanges) {
    for (unsigned seed = 1; seed <= 150 && !HasFatalFailure(); ++seed) runSequence(seed);
}

TEST(RowIndex, CountsRowNumbersAsUnsigned) {
    RowIndex index;
    index.insert(0, {0, 5, 0xFFFFFFFF});
    RowIndex::Loss none(index, 0xFFFFFFFE);
    EXPECT_EQ(-1, none.next());
    EXPECT_EQ(0xFFFFFFFE, index.row(2));
    EXPECT_EQ(0u, index.row(0));
}

TEST(RowIndex, ALossEndsWhenTheIndexIsFilledAnew) {
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
