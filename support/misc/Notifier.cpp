// Notifier: the list of listeners, which may change while a message is delivered.
#include "support/Notifier.h"

#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <tuple>
#include <utility>

#include "support/CriticalSection.h"

Zr::Guard::~Guard() = default;

/// Where a registration stands: types apart, and each type's in the order of registration. A place is never
/// given out twice, so one that is kept longer than its registration names nothing.
struct NotifierBase::Place {
    int type;
    std::uint64_t number;

    friend bool operator<(const Place& a, const Place& b) noexcept {
        return std::tie(a.type, a.number) < std::tie(b.type, b.number);
    }
};

/// The registrations of one notifier, as guards know them. Guards and running deliveries hold a share each,
/// so that the table outlives the notifier as long as somebody may ask it.
class NotifierBase::ListenerTable : public iObject {
 public:
    /// Ends the registration at `place`, if it has not ended already.
    virtual void end(const Place& place) noexcept = 0;
};

/// The handle of one registration, which ends with it.
class NotifierBase::CallbackGuard : public Zr::Guard {
 public:
    CallbackGuard(const Zr::Ptr<ListenerTable>& table, const Place& place) noexcept
        : m_table(table), m_place(place) {}
    ~CallbackGuard() override { end(); }

    bool belongsTo(const ListenerTable* table) const noexcept { return m_table.get() == table; }
    void end() const noexcept { m_table->end(m_place); }

 private:
    const Zr::Ptr<ListenerTable> m_table;
    const Place m_place;
};

// A delivery looks for the next listener by its place, and shares its callback while that runs. So the map
// can be changed at any time, by the listeners themselves too, and nobody has to wait for a delivery to end.
//
// Callbacks are never destroyed while the lock is held: they may own anything, guards of this table among it.
template <class Message>
class GenericNotifier<Message>::Listeners : public NotifierBase::ListenerTable {
 public:
    Zr::Ptr<Zr::Guard> add(int type, const IdStamp& stamp, Callback&& callback) {
        const Registration registration{stamp, std::make_shared<const Callback>(std::move(callback))};
        const std::lock_guard<CriticalSection> locked(m_lock);
        const Place place{type, m_nextNumber++};
        const Zr::Ptr<ListenerTable> table(this);
        Zr::Ptr<Zr::Guard> guard(new CallbackGuard(table, place));
        m_registrations.emplace(place, registration);
        return guard;
    }

    void end(const Place& place) noexcept override {
        typename Registrations::node_type ended;
        const std::lock_guard<CriticalSection> locked(m_lock);
        ended = m_registrations.extract(place);
    }

    void end(const IdStamp& stamp) noexcept {
        Registrations ended;
        const std::lock_guard<CriticalSection> locked(m_lock);
        for (auto at = m_registrations.begin(); at != m_registrations.end();) {
            const auto candidate = at++;
            if (candidate->second.stamp == stamp) ended.insert(m_registrations.extract(candidate));
        }
    }

    void endAll() noexcept {
        Registrations ended;
        const std::lock_guard<CriticalSection> locked(m_lock);
        ended.swap(m_registrations);
    }

    void deliver(const Message& message, int type) const {
        const std::uint64_t end = nextNumber();
        Place place{type, 0};
        std::exception_ptr thrown;
        while (const std::shared_ptr<const Callback> callback = firstFrom(place, end)) {
            try {
                (*callback)(message);
            } catch (...) {
                if (!thrown) thrown = std::current_exception();
            }
            ++place.number;
        }
        if (thrown) std::rethrow_exception(thrown);
    }

    bool hasAny(int type) const {
        const std::lock_guard<CriticalSection> locked(m_lock);
        const auto first = m_registrations.lower_bound(Place{type, 0});
        return first != m_registrations.end() && first->first.type == type;
    }

 private:
    struct Registration {
        IdStamp stamp;
        std::shared_ptr<const Callback> callback;
    };
    using Registrations = std::map<Place, Registration>;

    std::uint64_t nextNumber() const {
        const std::lock_guard<CriticalSection> locked(m_lock);
        return m_nextNumber;
    }

    /// The callback of the first registration of that type at `place` or after it, numbered below `end`; null
    /// when there is none. Moves `place` to it.
    std::shared_ptr<const Callback> firstFrom(Place& place, std::uint64_t end) const {
        const std::lock_guard<CriticalSection> locked(m_lock);
        const auto found = m_registrations.lower_bound(place);
        if (found == m_registrations.end()) return nullptr;
        if (found->first.type != place.type || found->first.number >= end) return nullptr;
        place = found->first;
        return found->second.callback;
    }

    mutable CriticalSection m_lock;
    Registrations m_registrations;
    std::uint64_t m_nextNumber = 0;
};

template <class Message>
GenericNotifier<Message>::GenericNotifier() = default;

template <class Message>
GenericNotifier<Message>::~GenericNotifier() {
    if (m_share) m_share->endAll();
}

template <class Message>
typename GenericNotifier<Message>::Listeners& GenericNotifier<Message>::madeListeners() {
    if (Listeners* const listeners = m_listeners.load(std::memory_order_acquire)) return *listeners;
    Zr::Ptr<Listeners> made(new Listeners);
    Listeners* listeners = nullptr;
    if (!m_listeners.compare_exchange_strong(listeners, made.get(), std::memory_order_acq_rel)) {
        return *listeners;  // another thread was faster
    }
    m_share = std::move(made);
    return *m_share;
}

template <class Message>
Zr::Ptr<Zr::Guard> GenericNotifier<Message>::registerNotification(int type, Callback callback) {
    return add(type, IdStamp(), std::move(callback));
}

template <class Message>
Zr::Ptr<Zr::Guard> GenericNotifier<Message>::registerNotification(int type, Client* client) {
    if (!client) return add(type, IdStamp(), nullptr);
    return add(type, client->id(),
               [client, type](const Message& message) { return client->notify(message, type); });
}

template <class Message>
Zr::Ptr<Zr::Guard> GenericNotifier<Message>::add(int type, const IdStamp& stamp, Callback callback) {
    if (!callback) return Zr::Ptr<Zr::Guard>();
    return madeListeners().add(type, stamp, std::move(callback));
}

template <class Message>
void GenericNotifier<Message>::deregisterNotification(const IdStamp& stamp) {
    const IdStamp copy = stamp;  // the callbacks that end may own the original
    if (Listeners* const listeners = m_listeners.load(std::memory_order_acquire)) listeners->end(copy);
}

template <class Message>
void GenericNotifier<Message>::deregisterNotification(Zr::Ptr<Zr::Guard>& guard) {
    const Zr::Ptr<Zr::Guard> taken = std::move(guard);
    const auto* const ours = dynamic_cast<const CallbackGuard*>(taken.get());
    if (ours && ours->belongsTo(m_listeners.load(std::memory_order_acquire))) ours->end();
}

template <class Message>
void GenericNotifier<Message>::issueNotification(const Message& message, int type) const {
    // A listener may destroy this notifier: the delivery goes on with a share of its own.
    if (const Zr::Ptr<Listeners> listeners{m_listeners.load(std::memory_order_acquire)}) {
        listeners->deliver(message, type);
    }
}

template <class Message>
bool GenericNotifier<Message>::hasListeners(int type) const {
    const Listeners* const listeners = m_listeners.load(std::memory_order_acquire);
    return listeners && listeners->hasAny(type);
}

template class GenericNotifier<NotifyMsg>;

Notifier::Notifier() = default;
Notifier::~Notifier() = default;
