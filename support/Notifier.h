// Notifier: tells registered listeners of what happens to an object.
//
// Messages are delivered synchronously, on the thread that issues them, in the order of registration. While
// one is being delivered, a listener may register and deregister (itself too), destroy listeners, issue
// messages, and destroy the notifier. A listener registered during a delivery does not get that message; one
// deregistered during it, and not reached yet, does not either.
//
// Thread-safety: registering, deregistering and issuing are guarded by a critical section, which is not held
// while a listener runs.
#pragma once

#include <atomic>
#include <functional>

#include "support/Export.h"
#include "support/IdStamp.h"
#include "support/NotifyMsg.h"
#include "support/iObject.h"

namespace Zr {

/// Ends something when its last Ptr goes.
class KESTA_API Guard : public iObject {
 public:
    ~Guard() override;
};

}  // namespace Zr

/// A callback that calls a method of its owner, who must outlive the registration.
template <class Owner, class Message, class Result>
class MethodCallback {
 public:
    MethodCallback(Owner* owner, Result (Owner::*method)(const Message&)) noexcept
        : m_owner(owner), m_method(method) {}
    Result operator()(const Message& message) const { return (m_owner->*m_method)(message); }

 private:
    Owner* m_owner;
    Result (Owner::*m_method)(const Message&);
};

/// What notifiers of every message class share.
class KESTA_API NotifierBase {
 public:
    /// The Guard that every registration returns.
    class CallbackGuard;

 protected:
    struct Place;
    class ListenerTable;

    NotifierBase() = default;
    ~NotifierBase() = default;
};

template <class Message>
class GenericNotifier : public NotifierBase {
 public:
    using Callback = std::function<int(const Message&)>;

    /// The listener side, for those who listen to several types: carries the stamp that names its
    /// registrations.
    class Client : public Identified {
     public:
        virtual ~Client() = default;
        /// A message of a type it registered for. What it returns has no meaning.
        virtual int notify(const Message& message, int type) = 0;
    };

    GenericNotifier();
    GenericNotifier(const GenericNotifier&) = delete;
    GenericNotifier& operator=(const GenericNotifier&) = delete;
    virtual ~GenericNotifier();

    /// Registers a callback for messages of `type`. The registration ends when the last copy of the returned
    /// guard is released, which may be after the notifier has gone. An empty callback gets no guard.
    Zr::Ptr<Zr::Guard> registerNotification(int type, Callback callback);

    /// Registers a client, not owned, under its stamp. The guard works as above; a null client gets none.
    Zr::Ptr<Zr::Guard> registerNotification(int type, Client* client);

    /// Ends all registrations under the stamp. Searches all registrations, so a guard is the cheaper way.
    void deregisterNotification(const IdStamp& stamp);

    /// Ends the guard's registration and empties the Ptr. Null, and a guard of another notifier, are only
    /// emptied.
    void deregisterNotification(Zr::Ptr<Zr::Guard>& guard);

    /// Delivers the message to every listener registered for `type`. What a listener throws is passed on when
    /// all have had the message; of several exceptions the first.
    void issueNotification(const Message& message, int type) const;

    /// Whether anybody is registered for `type`: an issuer may spare itself the message when not. Cheap.
    bool hasListeners(int type) const;

 private:
    class Listeners;

    Listeners& madeListeners();
    Zr::Ptr<Zr::Guard> add(int type, const IdStamp& stamp, Callback callback);

    // Null until the first registration: most objects never have a listener. The share is set by whoever set
    // the pointer, and read by the destructor only.
    std::atomic<Listeners*> m_listeners{nullptr};
    Zr::Ptr<Listeners> m_share;
};

extern template class KESTA_API GenericNotifier<NotifyMsg>;

/// The notifier of NotifyMsg messages. Listeners belong to one object and are never copied.
class KESTA_API Notifier : public GenericNotifier<NotifyMsg> {
 public:
    Notifier();
    ~Notifier() override;
};
