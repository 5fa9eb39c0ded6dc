// OnDemand: a cache that readers fill.
//
// Thread-safety: any number of threads may get() at once; the first of them fills it. Changing needs the
// caller's serialisation, like every change of the object the cache belongs to.
#pragma once

#include <atomic>
#include <mutex>
#include <utility>

#include "support/CriticalSection.h"

/// T has empty() and clear(); an empty T counts as not filled.
template <class T>
class OnDemand {
 public:
    OnDemand() = default;
    OnDemand(const OnDemand&) = delete;
    OnDemand& operator=(const OnDemand&) = delete;
    ~OnDemand() = default;

    /// The value, filled by `fill(T&)` first if it is not.
    template <class Fill>
    const T& get(Fill fill) const {
        if (m_filled.load(std::memory_order_acquire)) return m_value;
        const std::lock_guard<CriticalSection> locked(m_filling);
        if (!m_filled.load(std::memory_order_relaxed)) {
            T value;
            fill(value);
            std::swap(m_value, value);
            m_filled.store(!m_value.empty(), std::memory_order_release);
        }
        return m_value;
    }

    bool filled() const noexcept { return m_filled.load(std::memory_order_acquire); }

    void clear() noexcept {
        m_value.clear();
        m_filled.store(false, std::memory_order_release);
    }

    /// Changes the value as it stands, filled or not.
    template <class Change>
    void change(Change apply) {
        apply(m_value);
        m_filled.store(!m_value.empty(), std::memory_order_release);
    }

 private:
    mutable CriticalSection m_filling;
    mutable std::atomic<bool> m_filled{false};
    mutable T m_value;
};
