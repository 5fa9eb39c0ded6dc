// dbrecord: one row of a database, an ordered list of text fields.
//
// Records are counted objects, held through Zr::Ptr by the database that lists them and by whoever asks for
// them. A record knows the database that contains it, so that storing into a field marks the database
// changed.
//
// Field numbers are 16 bits: a record's number of fields is taken modulo 65536 wherever fields are addressed.
// Numbers out of range never fault: getters return null, "" or an empty string, setters return false.
//
// Thread-safety: records may be shared between threads for reading; changes need the caller's serialisation.
#pragma once

#include "record/parts/FieldList.h"
#include "support/Export.h"
#include "support/LifeWatch.h"
#include "support/LightweightString.h"
#include "support/iObject.h"

class TextFile;
class configb;
class kesta;

class KESTA_API dbrecord : public iObject {
 public:
    /// The most fields that a record can address.
    static constexpr unsigned mostFields = 0xFFFF;

    /// The longest field that is read from a line in one piece, in bytes.
    static constexpr std::size_t longestField = 4095;

    /// `n` empty fields, no container, unchanged, untagged.
    explicit dbrecord(unsigned short n);

    /// The same field texts, shared; no container, unchanged, untagged.
    dbrecord(const dbrecord& other);

    ~dbrecord() override;

    /// Takes the other's number of fields and stores its texts one by one as set_field with trim does:
    /// leading white space goes, and the record is marked changed once for each field. The container stays.
    dbrecord& operator=(const dbrecord& other);

    /// The database that contains this record; not owned, null for a free-standing record.
    void set_container(kesta* container) noexcept;
    kesta* get_container() const noexcept;

    // --- Reading fields ---

    /// The number of fields, modulo 65536.
    unsigned short get_num_fields() const noexcept { return static_cast<unsigned short>(m_fields.size()); }

    /// All fields, those past the 65535th among them.
    const FieldList& fields() const noexcept { return m_fields; }

    /// The field's text, "" when empty; null when `i` is out of range. Valid until the field changes.
    const char* get_field(unsigned short i) const noexcept;

    /// The field's string; one shared empty string when `i` is out of range.
    const LightweightString<char>& getField(unsigned short i) const noexcept;

    /// Copies at most `len` bytes of the field and a terminating zero, so `dst` has room for `len` + 1.
    /// False, with `dst` untouched, when `i` is out of range, `dst` is null or `len` is negative.
    bool in_field(int i, char* dst, int len) const noexcept;

    /// Whether the record has no fields or only empty ones.
    bool is_blank() const noexcept;

    // --- Storing fields ---

    /// Stores `text`, without its leading white space when `trim` is true; null empties the field. Returns
    /// true and marks the record changed even when the value does not change; false only when `i` is out of
    /// range.
    bool set_field(int i, const char* text, bool trim);
    bool set_field(int i, const char* text) = delete;  // would silently pick the bool form

    bool set_field(int i, int v);       ///< stores "%d"
    bool set_field(int i, unsigned v);  ///< stores "%u"
    bool set_field(int i, double v);    ///< stores "%.8lf"
    bool set_field(int i, bool v);      ///< stores "t" or "f"

    /// Stores `s`, sharing its text, and marks the record changed, only when it differs from what is stored.
    /// Returns false only when `i` is out of range.
    bool setField(unsigned short i, const LightweightString<char>& s);

    // --- Shape; none of these marks the record changed ---

    /// Empties every field; the number of fields stays.
    void clear() noexcept;

    /// Removes field `i`; the later ones move down.
    void removeField(unsigned short i);

    /// Appends empty fields up to `n` (at most 65535), or drops those from `n` on. Does nothing when `n` is
    /// negative or `fill` is null; what `fill` points to and the flag are not used.
    void resizeRecord(int n, int* fill, bool flag);

    /// Does nothing; kept because applications are built against it.
    void resizeField(int field, int size);

    // --- Text lines ---

    /// Replaces the fields with those of the file's next line and moves the file's cursor on. Returns the
    /// number of fields plus the number of control characters skipped between fields; 0, with no fields and
    /// the changed mark as it was, for a blank line and past the end.
    int read(TextFile& file);

    /// Appends the record as one line and clears the changed mark. Always returns true.
    bool write(TextFile& file) const;

    // --- Marks ---

    /// The tag, 0 to 255; 0 for a new record.
    unsigned char get_tag() const noexcept { return m_tag; }
    void set_tag(unsigned char tag) noexcept { m_tag = tag; }

    /// Whether a field has been stored into since the last clear_changed or write.
    bool get_changed() const noexcept { return m_changed != 0; }
    void clear_changed() noexcept { m_changed = 0; }

    /// Exports the label fields (name, notes, who, scene ...) to a configuration block. Returns how many
    /// fields beside "name" were exported; 0 when there is no container or it has no "name" column.
    int update(configb* cfg) const;

 private:
    friend class LogLoader;  // reads whole files

    void markChanged() noexcept;

    WatchedPtr<kesta> m_container;
    FieldList m_fields;
    mutable unsigned char m_changed = 0;  // writing a line is const, yet clears it
    unsigned char m_tag = 0;
};
