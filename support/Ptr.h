// Shared ownership by atomic counts: Zr::Ptr and the counts it works on.
//
// Thread-safety: counts are atomic, so copies of one Ptr may live and die on different threads. One Ptr
// object is not to be changed by two threads at once.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

#include "support/Export.h"

/// Gives derived classes a virtual destructor.
class KESTA_API iVirtual {
 public:
    iVirtual() = default;
    iVirtual(const iVirtual&) = default;
    iVirtual& operator=(const iVirtual&) = default;
    virtual ~iVirtual();
};

namespace Zr {

using RefCounter = std::atomic<std::int32_t>;

/// A count that lives inside the object it counts. Copying an object never copies its count.
class InternalRefCount {
 public:
    InternalRefCount() noexcept = default;
    InternalRefCount(const InternalRefCount&) noexcept {}
    InternalRefCount& operator=(const InternalRefCount&) noexcept { return *this; }

    /// How many Ptrs hold the object, at some moment during the call. Who reads 1 from its own Ptr is alone:
    /// all that earlier holders did to the object has happened.
    std::int32_t refCount() const noexcept { return m_count.load(std::memory_order_acquire); }

 protected:
    ~InternalRefCount() = default;

 private:
    friend struct InternalRefCountTraits;
    RefCounter m_count{0};
};

/// How a Ptr ends its object: through the object's (virtual) destructor.
struct DtorTraits {
    template <class T>
    static void destroy(T* object) noexcept {
        delete object;
    }
};

/// The count is a base of the object: nothing to allocate, nothing to free beside the object.
struct InternalRefCountTraits {
    template <class Dtor, class T>
    static RefCounter* counterFor(T* object) noexcept {
        return &static_cast<InternalRefCount*>(object)->m_count;
    }
    static void discard(RefCounter*) noexcept {}
};

/// The count is a block of its own, for types that know nothing of counting.
struct ExternalRefCountTraits {
    /// Destroys the object when there is no memory for its count.
    template <class Dtor, class T>
    static RefCounter* counterFor(T* object) {
        try {
            return new RefCounter(0);
        } catch (...) {
            Dtor::destroy(object);
            throw;
        }
    }
    static void discard(RefCounter* count) noexcept { delete count; }
};

/// A shared pointer of two words: where the count is, and where the object is. The Ptr that brings the count
/// to 0 destroys the object.
template <class T, class Dtor = DtorTraits, class Count = InternalRefCountTraits>
class Ptr {
 public:
    Ptr() noexcept = default;

    /// Takes a share of `object`; null gives an empty Ptr.
    explicit Ptr(T* object)
        : m_count(object ? Count::template counterFor<Dtor>(object) : nullptr), m_object(object) {
        acquire();
    }

    Ptr(const Ptr& other) noexcept : m_count(other.m_count), m_object(other.m_object) { acquire(); }
    Ptr(Ptr&& other) noexcept
        : m_count(std::exchange(other.m_count, nullptr)), m_object(std::exchange(other.m_object, nullptr)) {}

    /// A pointer to a base shares the count of the pointer to the derived object.
    template <class Heir>
    Ptr(const Ptr<Heir, Dtor, Count>& other) noexcept : m_count(other.m_count), m_object(other.m_object) {
        acquire();
    }

    ~Ptr() { release(); }

    Ptr& operator=(const Ptr& other) noexcept {
        Ptr(other).swap(*this);
        return *this;
    }
    Ptr& operator=(Ptr&& other) noexcept {
        Ptr(std::move(other)).swap(*this);
        return *this;
    }

    /// Wraps an object whose count already includes this Ptr's share.
    static Ptr adopt(RefCounter* count, T* object) noexcept {
        Ptr result;
        result.m_count = count;
        result.m_object = object;
        return result;
    }

    void swap(Ptr& other) noexcept {
        std::swap(m_count, other.m_count);
        std::swap(m_object, other.m_object);
    }

    void reset() noexcept { Ptr().swap(*this); }

    /// How many Ptrs hold the object, at some moment during the call; 0 for an empty Ptr. Who reads 1 is
    /// alone: all that earlier holders did to the object has happened.
    std::int32_t useCount() const noexcept { return m_count ? m_count->load(std::memory_order_acquire) : 0; }

    /// Where the shares are counted; null for an empty Ptr.
    RefCounter* count() const noexcept { return m_count; }

    T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    T& operator*() const noexcept { return *m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

    friend bool operator==(const Ptr& a, const Ptr& b) noexcept { return a.m_object == b.m_object; }
    friend bool operator!=(const Ptr& a, const Ptr& b) noexcept { return a.m_object != b.m_object; }
    friend bool operator<(const Ptr& a, const Ptr& b) noexcept { return a.m_object < b.m_object; }

 private:
    template <class, class, class>
    friend class Ptr;

    void acquire() const noexcept {
        if (m_count) m_count->fetch_add(1, std::memory_order_relaxed);
    }

    void release() noexcept {
        if (!m_count || m_count->fetch_sub(1, std::memory_order_acq_rel) != 1) return;
        RefCounter* const count = m_count;  // the object may contain its count
        Dtor::destroy(m_object);
        Count::discard(count);
    }

    RefCounter* m_count = nullptr;
    T* m_object = nullptr;
};

}  // namespace Zr
