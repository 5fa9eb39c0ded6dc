// KSTViewRep: making and ending views, and what they stand on.
#include <atomic>
#include <cstdint>
#include <utility>

#include "record/RecordsDeleted.h"
#include "view/KSTViewRep.h"
#include "view/parts/CopiedDatabase.h"
#include "view/parts/ViewChain.h"
#include "view/parts/ViewUses.h"

namespace {

std::uint64_t nextAttachment() noexcept {
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

// The names with a comma after each, the last one too.
LightweightString<char> joined(const char** names) {
    LightweightString<char> text;
    for (; *names; ++names) {
        text += *names;
        text += ',';
    }
    return text;
}

Zr::Ptr<Zr::Guard> listen(KSTViewRep& view, Notifier& source) {
    return source.registerNotification(
        RecordsDeleted::messageType(),
        MethodCallback<KSTViewRep, NotifyMsg, int>(&view, &KSTViewRep::recordsDeletedNotify));
}

void addParams(KSTViewRep& view, const KSTBase* other) {
    if (!other) return;
    const KSTBase::Params pairs = other->params();  // adding them may change the list itself
    for (const Zr::AttribValuePair& pair : pairs) view.add_param(pair.name(), pair.value());
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
    if (newDatabase ? newDatabase == m_database.get() : !m_database.isSet()) return;
    Zr::Ptr<Zr::Guard> guard = newDatabase ? listen(*this, *newDatabase) : Zr::Ptr<Zr::Guard>();
    Zr::Ptr<kesta> share(dynamic_cast<CopiedDatabase*>(newDatabase));
    m_database.swapShare(share);  // the one before is the last thing to go

    baseView(nullptr);
    clear();
    if (kesta* const old = m_database.get()) old->deregisterNotification(m_databaseGuard);
    m_databaseGuard = std::move(guard);
    m_database.set(newDatabase, nextAttachment());
    if (!newDatabase) return;

    fileName(newDatabase->get_filename());
    m_params->clear();
    addParamsFrom(newDatabase);
    internRevision();
}

void KSTViewRep::baseView(KSTViewRep* newBase) {
    if (newBase ? newBase == m_base.get() || !ViewChain(*this).canStandOn(*newBase) : !m_base.isSet()) return;
    Zr::Ptr<Zr::Guard> guard = newBase ? listen(*this, *newBase) : Zr::Ptr<Zr::Guard>();

    clear();
    m_params->clear();
    if (newBase) ViewUses::add(*newBase);  // the old base view may be what holds it
    KSTViewRep* const old = m_base.get();
    if (old) old->deregisterNotification(m_baseGuard);
    m_baseGuard = std::move(guard);
    m_base.set(newBase, nextAttachment());
    ViewUses::release(old);
    if (!newBase) return;
    ViewChain(*this).tellThoseBelow();
    addParamsFrom(newBase);
}

iKST* KSTViewRep::db() const noexcept {
    if (m_base.isSet()) return m_base.get();
    return m_database.get();
}

void KSTViewRep::internRevision() {
    if (findParamIndex("KESTA") < 0) m_params->append("KESTA", "Rev 1");
}

void KSTViewRep::addParamsFrom(kesta* other) {
    addParams(*this, other);
}

void KSTViewRep::addParamsFrom(KSTViewRep* other) {
    addParams(*this, other);
}
