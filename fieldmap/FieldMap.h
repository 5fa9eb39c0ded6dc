// FieldMap: the columns that a client shows for a view, in the order in which it shows them, each visible or
// hidden.
//
// A map holds names, so it survives the renumbering of columns. It is kept as a parameter of its source: one
// number for each column, counted from 1, in the map's order and with single spaces between them; hidden ones
// have a "-" before them. "1 2 -4 3" shows columns 1, 2 and 3 and hides 4 between them.
// A number has at most three characters, the "-" among them: columns past the 999th, or hidden past the 99th,
// cannot be kept. The map reads the parameter and makes the text for it; storing that is up to the client.
//
// Indices count from 0. Bad ones never fault: queries return false, -1 or an empty text, changes do nothing.
// Names compare ignoring case.
//
// Thread-safety: as a std::vector's; the source has its own rules. Memory: running out throws
// Zr::Exception::BadAlloc.
#pragma once

#include <vector>

#include "support/Export.h"
#include "support/LightweightString.h"
#include "view/KSTView.h"

class kesta;

class KESTA_API FieldMap {
 public:
    /// The key of the parameter that keeps the map.
    static constexpr const char* parameter = "V5_FIELD_MAP";

    /// No columns, no source.
    FieldMap();

    /// The map of a view, as setSourceDb makes it.
    explicit FieldMap(const KSTView& view);

    /// The same for a new view on the database. The database is not held.
    explicit FieldMap(kesta& db);

    /// The same columns and source.
    FieldMap(const FieldMap& other);

    /// Takes the source, then the columns.
    FieldMap& operator=(const FieldMap& other);

    ~FieldMap();

    // --- Queries ---

    /// The number of columns, hidden ones among them.
    int size() const noexcept { return static_cast<int>(m_names.size()); }

    /// The place of the first column of that name; -1 when there is none.
    int getFieldIdx(const LightweightString<char>& name) const noexcept;
    bool containsField(const LightweightString<char>& name) const noexcept;

    /// Whether a column is there and visible; how many are.
    bool isVisible(int i) const noexcept;
    bool isVisible(const LightweightString<char>& name) const noexcept;
    int numVisible() const noexcept;

    /// The number that the source gives the n-th visible column, n counted from 0. -1 when there are not that
    /// many, when the source has no such column, or without a source. A source that is not attached to a
    /// database, or whose database is gone, gives every column the number 0.
    int getVisibleFieldIndex(int n) const;

    /// The name of the column at a place.
    LightweightString<char> getName(int i) const noexcept;
    LightweightString<char> operator[](int i) const noexcept { return getName(i); }

    // --- Changes ---

    /// Show and hide a column.
    void setVisible(int i, bool on);
    void invertVisible(int i);

    /// Replace a column. That another one may have the same name is not checked.
    void setName(int i, const LightweightString<char>& name);
    void set(int i, const LightweightString<char>& name, bool visible);

    /// Exchanges two columns.
    void swap(int i, int j);

    /// Removes the column of that name; returns whether there was one.
    bool remove(const LightweightString<char>& name);

    /// Adds a column at the end. One of that name that is there already stays as it is, its visibility too.
    void append(const LightweightString<char>& name, bool visible);

    /// Removes all columns; the source stays.
    void clear() noexcept;

    // --- The source ---

    /// Makes `view` the source and appends the columns that its parameter names to those that are there. A
    /// number for which the source has no column names the empty text. What follows a token that is no number
    /// is not read. A map that has no columns even then gets all of the source, visible.
    void setSourceDb(const KSTView& view);

    /// The text for the parameter. A column that the source does not know is written as 0, which reading
    /// skips; without a source, columns are numbered by their places; a source without a database writes 1
    /// for each.
    LightweightString<char> asString() const;

 private:
    bool isPlace(int i) const noexcept;
    void add(const LightweightString<char>& name, bool visible);
    void appendFrom(const LightweightString<char>& text);
    void fillFromSource();

    // Columns by place; both always of one length. No two names equal, unless setName or set made them so.
    std::vector<LightweightString<char>> m_names;
    std::vector<bool> m_visible;

    KSTView m_source;  // may be empty
};
