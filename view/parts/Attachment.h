// Attachment: what a view stands on, its database or its base view.
//
// Thread-safety: none; attachments belong to their view.
#pragma once

#include <algorithm>
#include <cstdint>

#include "support/LifeWatch.h"
#include "support/Ptr.h"

class KSTViewRep;
class kesta;

/// A pointer that reads as null once its object is gone, and the number of its last change. Numbers only
/// grow, over all attachments of the process.
template <class T>
class Attachment {
 public:
    T* get() const noexcept { return m_object.get(); }

    /// Whether there is an object, which may be gone.
    bool isSet() const noexcept { return m_object.isSet(); }

    const WatchedPtr<T>& watched() const noexcept { return m_object; }

    /// 0 before the first change.
    std::uint64_t number() const noexcept { return m_number; }

    void set(T* object, std::uint64_t number) noexcept {
        m_object = WatchedPtr<T>(object);
        m_number = number;
    }

 private:
    WatchedPtr<T> m_object;
    std::uint64_t m_number = 0;
};

/// The database of a view, and the view's share in it where copyWithNewBaseView has made it.
class AttachedDatabase : public Attachment<kesta> {
 public:
    /// Exchanges the share for `share`, which is empty for a database that views do not own.
    void swapShare(Zr::Ptr<kesta>& share) noexcept { m_share.swap(share); }

 private:
    Zr::Ptr<kesta> m_share;
};

/// The base view of a view, of which the view holds one use, and how long a chain may stand on the view
/// itself.
class BaseView : public Attachment<KSTViewRep> {
 public:
    /// The longest chain that has ever stood on the view.
    int above() const noexcept { return m_above; }
    void raiseAbove(int above) noexcept { m_above = std::max(m_above, above); }

 private:
    int m_above = 0;
};
