// LifeWatch: how an object learns that another one, which it points at without owning it, is gone.
//
// The one that is watched has a LifeToken, which dies with it; watches made from the token know.
// Thread-safety: watches may be read from any thread while the watched object is not being destroyed.
#pragma once

#include <memory>

/// A member of whatever is watched. Belongs to one object: a copy of the object has a token of its own.
class LifeToken {
 public:
    LifeToken() : m_token(std::make_shared<char>()) {}
    LifeToken(const LifeToken&) : LifeToken() {}
    LifeToken& operator=(const LifeToken&) noexcept { return *this; }
    ~LifeToken() = default;

 private:
    friend class LifeWatch;
    std::shared_ptr<char> m_token;
};

/// True while the object of the token lives. A default-made watch is false.
class LifeWatch {
 public:
    LifeWatch() noexcept = default;
    explicit LifeWatch(const LifeToken& token) noexcept : m_token(token.m_token) {}

    explicit operator bool() const noexcept { return !m_token.expired(); }

 private:
    std::weak_ptr<char> m_token;
};

/// A pointer, not owning, to an object with a `watch()`; reads as null once the object is gone.
template <class T>
class WatchedPtr {
 public:
    WatchedPtr() noexcept = default;
    explicit WatchedPtr(T* object) noexcept
        : m_object(object), m_watch(object ? object->watch() : LifeWatch()) {}

    T* get() const noexcept { return m_watch ? m_object : nullptr; }

    /// Whether it was given an object, which may be gone.
    bool isSet() const noexcept { return m_object != nullptr; }

    const LifeWatch& watch() const noexcept { return m_watch; }

 private:
    T* m_object = nullptr;
    LifeWatch m_watch;
};
