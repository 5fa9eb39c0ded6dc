// ZRContainerFile: container files, named collections of media objects.
//
// A container file is a database file. Each item is one record, whose column "Cookie" holds the item's
// identifier and whose other columns hold its attributes. The container's own attributes are the database's
// parameters, "Name" and "Permanent" among them; its own identifier comes from its file name.
//
// Thread-safety: as the database's; copies of one Reader share their database. A Writer belongs to one thread
// at a time. Memory: running out throws Zr::Exception::BadAlloc; nothing else is ever thrown.
#pragma once

#include "record/kesta.h"
#include "support/Cookie.h"
#include "support/CookieContainers.h"

class KESTA_API ZRContainerFile {
 public:
    class Reader;
    class Writer;

    ZRContainerFile() = delete;

    /// "Name" and "Permanent": the parameters that the library gives a meaning.
    static const char* getNameParamKey() noexcept;
    static const char* getPermanentParamKey() noexcept;

    /// The identifier of the container with that file name: the name without directory and extension, read as
    /// an identifier. Names that end in "sg" or "rak", ignoring case, get kind 'M' or 'B' and the qualifier
    /// 255.
    static Cookie getCookieFromFilename(const LightweightString<wchar_t>& fileName);
};

/// A container file, opened for reading. It shows the file as it was when the Reader was made. A
/// file that cannot be read or holds no container gives a Reader that is not valid: empty texts, defaults,
/// invalid items, an empty set. Copies share what was read.
class KESTA_API ZRContainerFile::Reader {
 public:
    /// One item of the container: a small value, valid while a copy of its Reader lives. An invalid item has
    /// no record and the null identifier.
    class KESTA_API Item {
     public:
        Item() noexcept = default;  ///< an invalid item
        /// Made by the Reader, whose database owns the record.
        Item(const dbrecord* record, const Cookie& cookie) noexcept : m_record(record), m_cookie(cookie) {}

        /// The item's identifier.
        Cookie getCookie() const noexcept { return m_cookie; }

        /// The text of a field, empty when there is no such field.
        LightweightString<char> getAttrib(unsigned field) const;

        /// The field's text as a number. The default stands in only for a field that is not there: unlike the
        /// container's own attributes, an empty one is 0, deliberately.
        int getAttrib(unsigned field, int dflt) const noexcept;
        double getAttrib(unsigned field, double dflt) const noexcept;

     private:
        const char* textOf(unsigned field) const noexcept;

        const dbrecord* m_record = nullptr;  // the Reader's database owns it
        Cookie m_cookie;
    };

    /// Opens the file. With `headerOnly` its items stay unread: attributes are there, items are not. A name
    /// that ends in ".csv" is read as comma-separated text, always with all of its items and no attributes.
    Reader(LightweightString<wchar_t> fileName, bool headerOnly);

    /// Shares what was read.
    Reader(const Reader&) noexcept;
    Reader& operator=(const Reader&) noexcept;
    ~Reader();

    /// Whether the file is a database with a column "Cookie".
    bool valid() const;

    /// The container's identifier: the file name without directory and extension, read as one. Its ending
    /// does not matter here as it does to getCookieFromFilename.
    const Cookie& getCookie() const noexcept { return m_cookie; }

    /// The number of records that the database presents, also of a database that is no container.
    unsigned getNumItems() const;

    /// The item, counted from 0; past the last, or when not valid, an invalid one.
    Item getItem(unsigned i) const;

    /// The number that items know the column of that name by, ignoring case; -1 when there is none.
    int getItemAttribIndex(const char* name) const;

    /// The identifiers of all items, in their order, each once.
    CookieSet getContents() const;

    /// Whether an item carries that identifier. Takes constant time, but for the first call.
    bool contains(const Cookie& k) const;

    /// The container's attribute of that name, ignoring case; empty when there is none.
    LightweightString<char> getAttrib(LightweightString<char> key) const;

    /// The same as a number. The default stands in for an attribute that is absent or empty; text that is no
    /// number is 0.
    int getAttrib(LightweightString<char> key, int dflt) const;
    double getAttrib(LightweightString<char> key, double dflt) const;

    /// The attribute "Name", also decoded from UTF-8.
    LightweightString<char> getName() const;
    LightweightString<wchar_t> getNameW() const;

    /// False also when the attribute is absent or is no boolean.
    bool isPermanent() const;

 private:
    Zr::Ptr<kesta> m_database;  // never null, never changed
    Cookie m_cookie;
};

/// A container in the making: filled in memory, then saved, any number of times. Not copied: items are added
/// to one container.
class KESTA_API ZRContainerFile::Writer {
 public:
    /// An empty container whose items have the columns of an array that ends with a type of 0. Null is an
    /// empty array. Without a column "Cookie" items do not keep their identifiers.
    explicit Writer(const DBFieldDesc* fields);

    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer();

    /// Appends an item and returns its record, for the caller to fill; the Writer owns it. Identifiers of
    /// kind 'I' are refused: null, with nothing added.
    dbrecord* addItem(const Cookie& k);

    /// Sets an attribute of the container; with an empty key, none. The first call, whatever its key, also
    /// adds the line that tells the container's file from others: without one, what is saved cannot be opened
    /// again.
    void setAttrib(LightweightString<char> key, LightweightString<char> value);
    void setName(LightweightString<char> name);
    void setPermanent(bool on);

    /// Writes the container under that name. A file that is there stays whole until the new one is: the
    /// container is written to the name with ".tmp" after it, in the place of what has that name, and moved
    /// over the file in one step. The file's permissions stay, and its owner where that is allowed; a
    /// symbolic link, under either name, is replaced, not followed. When the save fails the file is as it was
    /// and the temporary file is gone. Nothing tells that it failed; errno says why. What a process that is
    /// killed meanwhile leaves under that name may be deleted, and the next save does so.
    void save(const LightweightString<wchar_t>& fileName);

 private:
    void saveOver(const LightweightString<wchar_t>& fileName);

    Zr::Ptr<kesta> m_database;  // never null
    int m_cookieField;          // -1 when there is no column "Cookie"
};
