// The row index as plainly as it can be said: an array of slots, every step carried out at once.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

struct RowIndexModel {
    struct Slot {
        unsigned row = 0;
        bool tag = false;
    };

    std::vector<Slot> slots;  // as many as the capacity
    int count = 0;

    void sizeFor(int wanted) {
        const int capacity = static_cast<int>(slots.size());
        if (wanted == 0) {
            slots.clear();
            return;
        }
        const int target = std::max(wanted, 20);
        int next = capacity;
        if (target > capacity) {
            next = std::max(2 * capacity, target);
        } else if (capacity > 2 * target) {
            next = capacity / 2;
        }
        if (next == capacity) return;
        std::vector<Slot> fresh(static_cast<std::size_t>(next));
        std::copy_n(slots.begin(), next < count ? target : count, fresh.begin());
        slots = fresh;
    }

    void append(unsigned row) {
        sizeFor(count + 1);
        slots[static_cast<std::size_t>(count++)].row = row;
    }

    void insert(int at, const std::vector<unsigned>& rows) {
        at = std::clamp(at, 0, count);
        const int more = static_cast<int>(rows.size());
        sizeFor(count + more);
        for (int i = count - 1; i >= at; --i) (*this)[i + more] = (*this)[i];
        for (int i = 0; i < more; ++i) (*this)[at + i].row = rows[static_cast<std::size_t>(i)];
        count += more;
    }

    void erase(int first, int number) {
        for (int i = first + number; i < count; ++i) (*this)[i - number] = (*this)[i];
        sizeFor(count - number);
        count -= number;
    }

    Slot& operator[](int at) { return slots[static_cast<std::size_t>(at)]; }
    const Slot& operator[](int at) const { return slots[static_cast<std::size_t>(at)]; }
};
