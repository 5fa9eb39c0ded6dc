// RecordsDeleted: how a record source announces the rows it has lost. The one place that knows the message.
//
// The message is of the type interned as "recordsDeleted". Its text lists the lost rows, numbered as before
// the deletion, in increasing order, each in decimal followed by one space.
#pragma once

#include <optional>

#include "support/Notifier.h"

/// One announcement, made before the rows go, so that memory running out leaves everything as it was, and
/// issued after. Where nobody listens, no message is made.
class RecordsDeleted {
 public:
    /// `count` rows from `first` on. The source must outlive the announcement.
    RecordsDeleted(const Notifier& source, unsigned first, unsigned count);

    /// Tells the listeners, on this thread.
    void issue() const;

    /// The number of the message type.
    static int messageType();

    /// The message text for `count` rows from `first` on.
    static LightweightString<char> textOf(unsigned first, unsigned count);

 private:
    const Notifier& m_source;
    std::optional<NotifyMsg> m_message;
};
