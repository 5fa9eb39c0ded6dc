// Containers of identifiers: a vector, a list with look-up, a set, and the set's shared handle.
//
// Thread-safety: as the standard containers'. CookieSets that share their content may be used on different
// threads. Memory: everything comes from OS()->allocator(), so containers pass between library and
// application.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "support/Cookie.h"
#include "support/Export.h"
#include "support/GrowString.h"
#include "support/LibraryAllocator.h"
#include "support/NotFound.h"
#include "support/iObject.h"

using CookieVec = LightweightVector<Cookie>;

struct CookieHash {
    std::size_t operator()(const Cookie& cookie) const noexcept { return cookie.hash(); }
};

/// What an Array keeps.
using ArrayRec = Cookie;

/// A list of identifiers that can also be kept without duplicates, through intern. Operations take their
/// datum by address and copy it; a null datum changes nothing.
class KESTA_API Array {
 public:
    static constexpr unsigned notFound = Zr::notFound;

    Array();
    Array(const Array&);
    Array& operator=(const Array&);
    ~Array();

    /// Empties the list.
    void init() noexcept;

    /// Sets `index` to the entry equal to the datum, which is appended when there is none; returns whether it
    /// was. Takes constant time, but for the first call after insertDatum, replaceDatum or sort. With a null
    /// datum `index` is notFound.
    bool intern(const ArrayRec* datum, unsigned& index);

    void appendDatum(const ArrayRec* datum);

    /// Puts the datum before the entry at `index`; past the end, after the last.
    void insertDatum(const ArrayRec* datum, unsigned index);

    /// Past the end it does nothing.
    void replaceDatum(unsigned index, const ArrayRec* datum);

    /// Sorts by Cookie::compare.
    void sort() noexcept;

    /// Appends the text forms, with one space between two.
    void printOn(GrowString& text) const;

    /// An entry equal to `wanted`, or notFound.
    unsigned find(const ArrayRec& wanted) const noexcept;

    unsigned size() const noexcept { return static_cast<unsigned>(m_entries.size()); }

    /// The entry; past the end, the null identifier. Valid until the list changes.
    const ArrayRec& operator[](unsigned index) const noexcept;

    const ArrayRec* begin() const noexcept { return m_entries.data(); }
    const ArrayRec* end() const noexcept { return m_entries.data() + m_entries.size(); }

 private:
    using Positions = std::unordered_map<ArrayRec, unsigned, CookieHash, std::equal_to<ArrayRec>,
                                         LibraryAllocator<std::pair<const ArrayRec, unsigned>>>;

    void fileNewEntries();
    void forgetPositions() noexcept;

    LightweightVector<ArrayRec> m_entries;
    Positions m_positions;  // where each of the first m_filed entries stands; of equal ones, the first
    unsigned m_filed = 0;
};

/// Distinct identifiers in the order in which they came.
class KESTA_API Set : private Array {
 public:
    using Array::begin;
    using Array::end;
    using Array::init;
    using Array::printOn;
    using Array::size;
    using Array::operator[];

    /// Returns whether the identifier is new. Constant time, as is contains.
    bool add(const ArrayRec& datum);
    bool contains(const ArrayRec& wanted) const noexcept { return find(wanted) != notFound; }
};

/// The content that copies of a CookieSet share.
class KESTA_API CookieSetRep : public iObject, private Set {
 public:
    CookieSetRep();
    CookieSetRep(const CookieSetRep&);
    CookieSetRep& operator=(const CookieSetRep&) = delete;
    ~CookieSetRep() override;

    using Set::add;
    using Set::begin;
    using Set::contains;
    using Set::end;
    using Set::size;

    /// Empties the set.
    void init() noexcept { Set::init(); }

    /// The identifier that came at that place; outside the set, the null identifier.
    const Cookie& operator[](int index) const noexcept;
};

/// A set of distinct identifiers, kept in the order in which they were added. A value: copies share their
/// content until one of them changes.
class KESTA_API CookieSet {
 public:
    CookieSet() noexcept;
    CookieSet(const CookieSet&) noexcept;
    CookieSet& operator=(const CookieSet&) noexcept;
    ~CookieSet();

    /// Returns whether the identifier is new. Constant time, but for the copy that a shared set needs.
    bool add(const Cookie& cookie);

    bool contains(const Cookie& cookie) const noexcept { return m_rep && m_rep->contains(cookie); }
    unsigned size() const noexcept { return m_rep ? m_rep->size() : 0; }
    bool empty() const noexcept { return size() == 0; }

    /// The identifier that came at that place; outside the set, the null identifier. Valid until the set
    /// changes.
    const Cookie& operator[](int index) const noexcept;

    const Cookie* begin() const noexcept { return m_rep ? m_rep->begin() : nullptr; }
    const Cookie* end() const noexcept { return m_rep ? m_rep->end() : nullptr; }

    /// Empties this set; copies of it keep theirs.
    void purge() noexcept;

    /// Gives this set a content of its own, which no copy shares.
    void unshare();

 private:
    Zr::Ptr<CookieSetRep> m_rep;
};
