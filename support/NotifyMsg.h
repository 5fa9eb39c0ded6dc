// Notification messages: their types, their content, and how their text is read.
//
// Thread-safety: the type dictionary may be used from any thread; messages are plain values.
#pragma once

#include <map>
#include <string_view>

#include "support/CriticalSection.h"
#include "support/Export.h"
#include "support/LightweightString.h"
#include "support/iObject.h"

/// A text and an optional object.
class KESTA_API NotifyMsg {
 public:
    NotifyMsg(const LightweightString<char>& text, const Zr::Ptr<iObject>& object)
        : m_text(text), m_object(object) {}
    NotifyMsg(const NotifyMsg&) = default;
    NotifyMsg& operator=(const NotifyMsg&) = default;
    ~NotifyMsg();

    const LightweightString<char>& text() const noexcept { return m_text; }
    const Zr::Ptr<iObject>& object() const noexcept { return m_object; }

 private:
    LightweightString<char> m_text;
    Zr::Ptr<iObject> m_object;
};

/// Gives message types their numbers: small integers from 0, one for each name, for the life of the process.
class KESTA_API NotifyMsgTypeDictionary {
 public:
    static NotifyMsgTypeDictionary& instance();

    /// The type number of `name`; the same name always has the same number. Names compare by their bytes.
    int intern(const LightweightString<char>& name);

    NotifyMsgTypeDictionary(const NotifyMsgTypeDictionary&) = delete;
    NotifyMsgTypeDictionary& operator=(const NotifyMsgTypeDictionary&) = delete;

 private:
    NotifyMsgTypeDictionary() = default;
    ~NotifyMsgTypeDictionary() = default;

    CriticalSection m_lock;
    std::map<LightweightString<char>, int> m_numbers;
};

/// Walks the words of a message text, which spaces separate. Begins on the first word. The text must outlive
/// it.
class KESTA_API NotifyMsgTokenIterator {
 public:
    explicit NotifyMsgTokenIterator(const NotifyMsg& message) noexcept;

    /// Steps to the next word.
    NotifyMsgTokenIterator& operator++() noexcept;

    /// Whether it stands on a word.
    explicit operator bool() const noexcept { return !m_word.empty(); }

    /// The word it stands on; empty past the last.
    std::string_view operator*() const noexcept { return m_word; }

 private:
    void takeWord() noexcept;

    std::string_view m_rest;
    std::string_view m_word;
};
