// Array, Set and CookieSet: lists and sets of identifiers.
#include "support/CookieContainers.h"

#include <algorithm>
#include <cstring>

namespace {

const Cookie nullCookie;

}  // namespace

Array::Array() = default;
Array::Array(const Array&) = default;
Array& Array::operator=(const Array&) = default;
Array::~Array() = default;

void Array::init() noexcept {
    m_entries.clear();
    forgetPositions();
}

bool Array::intern(const ArrayRec* datum, unsigned& index) {
    index = notFound;
    if (!datum) return false;
    const ArrayRec wanted = *datum;  // it may be an entry, which making room moves
    fileNewEntries();
    if (m_entries.size() == m_entries.capacity()) m_entries.reserve(2 * m_entries.size() + 1);
    const auto [position, isNew] = m_positions.try_emplace(wanted, size());
    index = position->second;
    if (isNew) {
        m_entries.push_back(wanted);
        ++m_filed;
    }
    return isNew;
}

void Array::appendDatum(const ArrayRec* datum) {
    if (datum) m_entries.push_back(*datum);
}

void Array::insertDatum(const ArrayRec* datum, unsigned index) {
    if (!datum) return;
    if (index >= size()) {
        appendDatum(datum);
        return;
    }
    m_entries.insert(m_entries.begin() + index, *datum);
    forgetPositions();
}

void Array::replaceDatum(unsigned index, const ArrayRec* datum) {
    if (!datum || index >= size()) return;
    m_entries[index] = *datum;
    forgetPositions();
}

void Array::sort() noexcept {
    std::sort(m_entries.begin(), m_entries.end());
    forgetPositions();
}

void Array::printOn(GrowString& text) const {
    for (const ArrayRec& entry : m_entries) {
        if (&entry != m_entries.data()) text.append(' ');
        text.append(entry.asString(false).c_str());
    }
}

unsigned Array::find(const ArrayRec& wanted) const noexcept {
    if (const auto found = m_positions.find(wanted); found != m_positions.end()) return found->second;
    const auto found = std::find(m_entries.begin() + m_filed, m_entries.end(), wanted);
    return found == m_entries.end() ? notFound : static_cast<unsigned>(found - m_entries.begin());
}

const ArrayRec& Array::operator[](unsigned index) const noexcept {
    return index < size() ? m_entries[index] : nullCookie;
}

void Array::fileNewEntries() {
    for (; m_filed < size(); ++m_filed) m_positions.try_emplace(m_entries[m_filed], m_filed);
}

void Array::forgetPositions() noexcept {
    m_positions.clear();
    m_filed = 0;
}

bool Set::add(const ArrayRec& datum) {
    unsigned index = 0;
    return intern(&datum, index);
}

CookieSetRep::CookieSetRep() = default;
CookieSetRep::CookieSetRep(const CookieSetRep&) = default;
CookieSetRep::~CookieSetRep() = default;

const Cookie& CookieSetRep::operator[](int index) const noexcept {
    return Set::operator[](static_cast<unsigned>(index));
}

CookieSet::CookieSet() noexcept = default;
CookieSet::CookieSet(const CookieSet&) noexcept = default;
CookieSet& CookieSet::operator=(const CookieSet&) noexcept = default;
CookieSet::~CookieSet() = default;

bool CookieSet::add(const Cookie& cookie) {
    if (contains(cookie)) return false;
    unshare();
    return m_rep->add(cookie);
}

const Cookie& CookieSet::operator[](int index) const noexcept {
    return m_rep ? (*m_rep)[index] : nullCookie;
}

void CookieSet::purge() noexcept {
    if (m_rep && m_rep->refCount() == 1) {
        m_rep->init();
    } else {
        m_rep.reset();
    }
}

void CookieSet::unshare() {
    if (!m_rep) {
        m_rep = Zr::Ptr<CookieSetRep>(new CookieSetRep);
    } else if (m_rep->refCount() != 1) {
        m_rep = Zr::Ptr<CookieSetRep>(new CookieSetRep(*m_rep));
    }
}
