// NotifyMsg: the numbers of message types, and the words of a message.
#include "support/NotifyMsg.h"

#include <algorithm>
#include <mutex>

NotifyMsg::~NotifyMsg() = default;

NotifyMsgTypeDictionary& NotifyMsgTypeDictionary::instance() {
    // Never destroyed, so that objects which outlive main may still ask it.
    static NotifyMsgTypeDictionary& dictionary = *new NotifyMsgTypeDictionary;
    return dictionary;
}

int NotifyMsgTypeDictionary::intern(const LightweightString<char>& name) {
    const std::lock_guard<CriticalSection> locked(m_lock);
    return m_numbers.try_emplace(name, static_cast<int>(m_numbers.size())).first->second;
}

NotifyMsgTokenIterator::NotifyMsgTokenIterator(const NotifyMsg& message) noexcept
    : m_rest(message.text().view()) {
    takeWord();
}

NotifyMsgTokenIterator& NotifyMsgTokenIterator::operator++() noexcept {
    takeWord();
    return *this;
}

void NotifyMsgTokenIterator::takeWord() noexcept {
    m_rest.remove_prefix(std::min(m_rest.find_first_not_of(' '), m_rest.size()));
    m_word = m_rest.substr(0, m_rest.find(' '));
    m_rest.remove_prefix(m_word.size());
}
