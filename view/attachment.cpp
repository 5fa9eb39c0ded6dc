// KSTViewRep: making and ending views, and what they stand on.
#include <algorithm>
#include <atomic>
#include <utility>

#include "record/RecordsDeleted.h"
#include "view/KSTViewRep.h"
#include "view/parts/CopiedDatabase.h"

namespace {

// Calls pass from view to view along a chain, and for nested calls there is only so much room.
constexpr int longestChain = 200;

// Attachments are numbered through the whole process, so that the greatest number in a chain tells whether
// anything in it has come to stand on something else.
std::uint64_t nextAttachment() noexcept {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

// The names with a comma behind each, the last one too.
LightweightString<char> joined(const char** names) {
    LightweightString<char> text;
    for (; *names; ++names) {
        text += *names;
        text += ',';
    }
    return text;
}

}  // namespace

KSTViewRep::KSTViewRep(kesta* database) : KSTViewRep(database, static_cast<const char*>(nullptr)) {}

KSTViewRep::KSTViewRep(kesta* database, const char* fieldSpecification) {
    init();
    kst(database);
    GrowString everyField;
    if (!fieldSpecification) identityFieldSpec(everyField);
    fieldSpec(fieldSpecification ? fieldSpecification : everyField);
}

KSTViewRep::KSTViewRep(kesta* database, const char** fieldNames)
    : KSTViewRep(database, fieldNames ? joined(fieldNames).c_str() : nullptr) {}

KSTViewRep::~KSTViewRep() {
    baseView(nullptr);
    kst(nullptr);
}

void KSTViewRep::init() {
    baseView(nullptr);
    kst(nullptr);
    clear();
    m_fields.reset();
    internRevision();
}

void KSTViewRep::kst(kesta* newDatabase) {
    if (newDatabase ? newDatabase == database() : !m_database.isSet()) return;
    Zr::Ptr<Zr::Guard> guard = newDatabase ? listenTo(*newDatabase) : Zr::Ptr<Zr::Guard>();
    Zr::Ptr<kesta> share(dynamic_cast<CopiedDatabase*>(newDatabase));
    share.swap(m_ownDatabase);  // the one before is the last thing to go

    baseView(nullptr);
    clear();
    m_attachment = nextAttachment();
    if (kesta* const old = database()) old->deregisterNotification(m_databaseGuard);
    m_databaseGuard = std::move(guard);
    m_database = WatchedPtr<kesta>(newDatabase);
    if (!newDatabase) return;

    fileName(newDatabase->get_filename());
    m_params->clear();
    addParamsFrom(newDatabase);
    internRevision();
}

void KSTViewRep::baseView(KSTViewRep* newBase) {
    if (newBase ? newBase == m_base.get() || !canStandOn(newBase) : !m_base.isSet()) return;
    Zr::Ptr<Zr::Guard> guard = newBase ? listenTo(*newBase) : Zr::Ptr<Zr::Guard>();

    clear();
    m_attachment = nextAttachment();
    m_params->clear();
    if (newBase) newBase->addUse();  // the old base view may be what holds it
    KSTViewRep* const old = m_base.get();
    if (old) old->deregisterNotification(m_baseGuard);
    m_baseGuard = std::move(guard);
    m_base = WatchedPtr<KSTViewRep>(newBase);
    release(old);
    if (!newBase) return;
    newBase->raiseAbove(m_above);
    addParamsFrom(newBase);
}

bool KSTViewRep::canStandOn(const KSTViewRep* base) const noexcept {
    int length = m_above + 1;
    for (; base; base = base->m_base.get()) {
        if (base == this || ++length > longestChain) return false;
    }
    return true;
}

// Notes that a view has come to stand on this one which itself carries up to `above`.
void KSTViewRep::raiseAbove(int above) noexcept {
    for (KSTViewRep* view = this; view; view = view->m_base.get())
        view->m_above = std::max(view->m_above, ++above);
}

std::uint64_t KSTViewRep::lastAttachment() const noexcept {
    std::uint64_t last = 0;
    for (const KSTViewRep* view = this; view; view = view->m_base.get())
        last = std::max(last, view->m_attachment);
    return last;
}

Zr::Ptr<Zr::Guard> KSTViewRep::listenTo(Notifier& source) {
    return source.registerNotification(
        RecordsDeleted::messageType(),
        MethodCallback<KSTViewRep, NotifyMsg, int>(this, &KSTViewRep::recordsDeletedNotify));
}

// A view that has no use, or loses its last, goes.
void KSTViewRep::release(KSTViewRep* view) noexcept {
    if (!view) return;
    if (view->m_useCount != 0 && view->m_useCount-- > 1) return;
    delete view;
}

iKST* KSTViewRep::db() const noexcept {
    if (m_base.isSet()) return m_base.get();
    return database();
}

// The view at the end of the chain, which stands on no other.
const KSTViewRep& KSTViewRep::bottomView() const noexcept {
    const KSTViewRep* view = this;
    while (const KSTViewRep* const base = view->m_base.get()) view = base;
    return *view;
}

LifeWatch KSTViewRep::sourceWatch() const noexcept {
    return m_base.isSet() ? m_base.watch() : m_database.watch();
}

void KSTViewRep::internRevision() {
    if (findParamIndex("KESTA") < 0) m_params->append("KESTA", "Rev 1");
}

void KSTViewRep::addParamsFrom(kesta* other) {
    addParams(other);
}

void KSTViewRep::addParamsFrom(KSTViewRep* other) {
    addParams(other);
}

void KSTViewRep::addParams(const KSTBase* other) {
    if (!other) return;
    const Params pairs = other->params();  // adding them may change the list itself
    for (const Zr::AttribValuePair& pair : pairs) add_param(pair.name(), pair.value());
}
