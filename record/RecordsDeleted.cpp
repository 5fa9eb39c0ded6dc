// The text and the type of the announcement.
#include "record/RecordsDeleted.h"

#include <charconv>

RecordsDeleted::RecordsDeleted(const Notifier& source, unsigned first, unsigned count) : m_source(source) {
    if (source.hasListeners(messageType())) m_message.emplace(textOf(first, count), Zr::Ptr<iObject>());
}

void RecordsDeleted::issue() const {
    if (m_message) m_source.issueNotification(*m_message, messageType());
}

int RecordsDeleted::messageType() {
    static const int type = NotifyMsgTypeDictionary::instance().intern("recordsDeleted");
    return type;
}

LightweightString<char> RecordsDeleted::textOf(unsigned first, unsigned count) {
    LightweightString<char> text;
    for (unsigned i = 0; i < count; ++i) {
        char number[16];
        char* const end = std::to_chars(number, number + sizeof number - 1, first + i).ptr;
        *end = ' ';
        text.append(std::string_view(number, static_cast<std::size_t>(end + 1 - number)));
    }
    return text;
}
