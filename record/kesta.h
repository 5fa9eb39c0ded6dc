// kesta: the database. Typed, named columns; a list of records; named parameters; the text file they live in.
//
// Rows and columns out of range never fault: getters return null, "", 0 or an empty string, setters return
// false or do nothing, searches return -1 (all bits set where the result is unsigned). Column names compare
// ignoring case.
//
// The other operations call those of iKST through the interface, so an override in a derived class changes
// their behaviour too; loops read get_num_records() again for every row.
//
// While show-tags-only is on, row numbers address the tagged index, and insert_records, delete_records,
// add_records, delete_tagged_records and add_kesta refuse.
//
// Thread-safety: not locked. Callers serialise changes; reading while nobody writes is safe. Only one sort
// may run at a time in a process. Memory: running out throws Zr::Exception::BadAlloc; nothing else is ever
// thrown, unless by a listener or an observer.
#pragma once

#include <map>
#include <vector>

#include "record/KSTBase.h"
#include "record/dbrecord.h"
#include "record/parts/CookieIndex.h"
#include "record/parts/GapVector.h"
#include "record/parts/OnDemand.h"
#include "record/parts/Query.h"
#include "support/NotFound.h"
#include "support/Notifier.h"
#include "support/TextSearch.h"

class LoadObserver;
class TextFile;

/// The version of the library, four numbers with dots between.
KESTA_API const char* kestaDllVersionStr();

class KESTA_API kesta : public KSTBase, public Notifier {
 public:
    /// Columns by name, of several of one name the first.
    using FieldNameIndex = std::map<LightweightString<char>, unsigned short, IgnoringCase>;

    // --- Construction and life cycle (kesta.cpp) ---

    /// No columns, no records, not valid.
    kesta();

    /// The columns of an array that ends with a type of 0; null is an empty array.
    explicit kesta(const DBFieldDesc* descs);
    explicit kesta(const std::vector<DBFieldDesc>& descs);

    /// The same columns and revision. The parameter list is shared, not copied: a parameter that is changed,
    /// or an init() of either, is seen by both. With `copyRecords` non-zero, copies of the records that
    /// `other` presents (only tagged ones while it shows tags only). They have no container, so storing into
    /// them does not mark this database changed. Listeners are not copied.
    kesta(const kesta& other, int copyRecords);

    /// Takes the file name and loads the file; see loadFromFile.
    kesta(const LightweightString<wchar_t>& fileName, int maxRecords, bool strict);

    kesta& operator=(const kesta&) = delete;
    ~kesta() override;

    /// No parameters (nor in copies, which share them), no columns, no query, not valid, unchanged,
    /// revision 1. Records, the tagged index and the identifier index stay.
    void init();

    /// Releases records, columns, parameters and indices, then init().
    void free();

    /// To be called when the columns are known: sort field 0, the special-label flags, the field-name index.
    void post_init();

    /// free(), then these columns.
    void setFields(const std::vector<DBFieldDesc>& descs);

    /// Whether the columns are known.
    int get_valid() const override;

    /// The revision of the file format, as read from the file; 1 for a new database.
    int get_revision() const noexcept { return m_revision; }

    /// Whether a record contained in this database has changed or rows have been deleted since the last
    /// clear_changed. False for a new copy, whatever `other` says.
    bool get_changed() const noexcept { return m_changed != 0; }

    // --- Columns (columns.cpp) ---

    unsigned get_num_fields() const override;
    const char* get_fieldname(unsigned field) const override;

    /// The first column of that name; -1 when there is none or the name is empty.
    unsigned get_fieldnum(const LightweightString<char>& name) const override;
    const FieldNameIndex& getFieldNameIndexMap() const;

    /// Appends a column and an empty field to every record, and returns the column's number. When there is a
    /// column of that name, only returns its number. A database with 65,535 columns takes no more and
    /// returns -1.
    unsigned addField(const DBFieldDesc& desc);

    /// Renames a column; ampersands are removed unless the setting "remove_fieldname_ampersands" is 0.
    bool set_fieldname(unsigned field, const char* name) override;

    /// Removes the column, and its field from every record. Sort fields and the identifier index are left as
    /// they are.
    void removeField(const LightweightString<char>& name);

    /// Type codes; 0 for a bad column. Storing 0 stores eText.
    DBFieldTypes::eType get_field_type(unsigned field) const override;
    DBFieldTypes::eType get_fieldtype(unsigned field) const override;
    bool set_fieldtype(unsigned field, DBFieldTypes::eType type) override;

    /// The length in bytes of the longest text that the column holds.
    unsigned get_fieldsize(unsigned field) const override;

    /// The least width that the file header gives a column of that name: 4 unless it is a standard one.
    static int getMinFieldSize(const char* name);

    /// The type that a token of the file header names: a word, or any one character; 0 for anything else.
    static DBFieldTypes::eType fieldTypeFromString(const LightweightString<char>& token);

    /// Whether the column holds a start or end code of the standard log. Unlike every other comparison of
    /// column names this one deliberately minds case.
    bool isSpecialLabelField(unsigned long field) const;

    /// The text without any `c`; null is the empty text.
    static LightweightString<char> strip_char_from_string(char c, const char* s);

    // --- Parameters (kesta.cpp) ---

    /// As KSTBase's; the first parameter of a database is always preceded by its revision, "KESTA" = "Rev 1".
    int add_param(const LightweightString<char>& key, const LightweightString<char>& value) override;

    // --- The file (loading.cpp, saving.cpp) ---

    void set_filename(LightweightString<wchar_t> name) override;
    LightweightString<wchar_t> get_filename() const override;

    /// Replaces parameters and columns with those of the database's file and appends its records, at most
    /// `maxRecords` of them. A name ending in ".csv" is read as plain comma-separated text. When the file
    /// cannot be read or is no database, the database stays without columns and not valid. With `strict`
    /// false, a file without a marker is taken all the same: the fields of its last line name the columns,
    /// and there are no records. Records held before stay.
    void loadFromFile(int maxRecords, bool strict);

    /// The same, with another file name.
    void loadFromFile(const LightweightString<wchar_t>& fileName, int maxRecords, bool strict);

    /// The first one, with an observer that hears where each record comes from and what is left out.
    void loadFromFile(int maxRecords, bool strict, LoadObserver& observer);

    /// Appends the records of the database's file, whose first line is dropped; see add_text. Returns how
    /// many; 0, with nothing appended, when the file cannot be read.
    int load_text(int maxRecords);

    /// Appends records from the file's cursor on, until a blank line, a line with a wrong number of fields,
    /// the end, or `maxRecords` of them. With `skipFirst` non-zero the first line, which must have the right
    /// number of fields, is dropped for the second. Returns how many were appended.
    int add_text(TextFile& file, int skipFirst, int maxRecords);

    /// Reads parameter lines into the parameter list; `line` is the scratch record and holds the last line
    /// read.
    void read_params(TextFile& file, dbrecord* line);

    /// Writes the database to its file: parameters, header, all records, whatever is shown. A "Tag" column
    /// gets the records' tags first; while show-tags-only is on their rows are taken for rows that are shown,
    /// so that on a plain database, which shows none, the column keeps its old texts. Returns the number of
    /// records written; 0 when the file could not be saved, in which case it is as it was before, and for a
    /// database without records.
    int save_text() override;

    /// The same with the names line for the whole header. Such a file is for other programs: without the
    /// marker a load takes all its lines for parameters.
    int save_text_without_header();

    /// Append to the file what comes before the records: parameters; then marker, widths, types and names, or
    /// with `namesOnly` only the names.
    void save_params(TextFile& file) const;
    void save_column_header(TextFile& file, bool namesOnly) const;

    // --- Records (records.cpp) ---

    unsigned get_num_records() const override;

    /// The record at `row`; null when there is none. An override returns only records that something else
    /// holds too: views and getField read their texts after letting go of the pointer.
    Zr::Ptr<dbrecord> get_record(unsigned row) const override;
    const LightweightString<char>& getField(unsigned row, unsigned field) const override;

    /// A record with this database's number of fields, listed nowhere, contained in this database.
    Zr::Ptr<dbrecord> newRecord();

    /// The same without a container.
    Zr::Ptr<dbrecord> make_dummy_record() override;

    /// Makes room for `count` rows before `at`. Deliberately, only the first of them gets a record, and the
    /// others have none. Does nothing past the end of the list.
    void insert_records(unsigned at, unsigned count) override;

    /// Appends new records; returns the number of records before, or -1 while show-tags-only is on.
    unsigned add_records(int count) override;

    /// Deletes rows and tells listeners of "recordsDeleted" with their numbers, each followed by a space.
    /// `count` is clamped to the list.
    void delete_records(unsigned first, unsigned count) override;

    /// Store a value in a field; see dbrecord::setField, and dbrecord::set_field for the others. False for a
    /// bad row or field.
    bool setField(unsigned row, unsigned field, const LightweightString<char>& value);
    int set_field(unsigned row, unsigned field, const char* value) override;
    bool set_field(unsigned row, unsigned field, int value) override;
    bool set_field(unsigned row, unsigned field, double value) override;
    bool set_field(unsigned row, unsigned field, bool value) override;

    /// Typed reading; false, with the destination untouched, when the field is empty. Of the text at most
    /// `len` bytes and a terminating zero are stored, so `dst` has room for `len` + 1.
    bool in_field(unsigned row, unsigned field, char* dst, int len) const override;
    bool in_field(unsigned row, unsigned field, int& value) const override;
    bool in_field(unsigned row, unsigned field, double& value) const override;
    bool in_field(unsigned row, unsigned field, bool& value) const override;

    /// The first row whose field equals `value`: as a whole, or in its first `length` bytes when `length` is
    /// not 0. The column "cookie" is looked up by identifier first. Case matters.
    int findFirst(const char* field, const char* value, int length) override;

    /// Clears the changed mark of the database, and those of its records.
    void clear_changed();

    /// A database is its own base.
    int baseIndex(int row) override;

    // --- Identifiers (identity.cpp) ---
    //
    // Rows by identifier are found through an index that is built on the first look-up and emptied by
    // insert_records, add_records and delete_records. Sorting, plain setters, loading and add_kesta do not
    // empty it: until one of those three runs, look-ups give the rows of before.

    /// Stores the identifier's text in the column "cookie" and files the row under it.
    bool set_field(unsigned row, const Cookie& id) override;

    /// Appends a record that carries `id`; without a "cookie" column, one that does not.
    Zr::Ptr<dbrecord> addRecord(const Cookie& id);

    /// The row of the first record that carries `id`, or -1.
    unsigned getRowIndexByID(const Cookie& id) const;
    Zr::Ptr<dbrecord> get_record(const Cookie& id) const;

    // --- Tags (tags.cpp) ---

    void set_tag(unsigned row, int value) override;
    void invert_tag(unsigned row) override;

    /// The tag, 0 to 255; -1 when there is no record.
    int get_tag(unsigned row) override;
    void set_all_tags(int value) override;

    /// Reaches every record, shown or not.
    void invert_all_tags() override;
    int get_num_tags() override;

    /// Deletes the records whose tag is exactly 1, run by run; returns how many, or -1 while show-tags-only
    /// is on.
    unsigned delete_tagged_records() override;

    /// Turning it on rebuilds the tagged index, which stays empty on a plain database: see index_tags.
    void set_show_tags_only(int on) override;
    int get_show_tags_only() override;

    /// Rebuilds the tagged index from the rows below get_num_records(). While show-tags-only is on that is
    /// the size of the index just emptied, so only a derived class with rows of its own gets a filled one.
    /// Returns the rows walked.
    unsigned index_tags();

    /// From rows of the full list to shown rows and back; -1 when there is none.
    unsigned get_new_row(unsigned rawRow);
    unsigned get_raw_row(unsigned row);

    // --- Sorting (sorting.cpp) ---

    void set_sortfield(int field) override;

    /// The fields up to the first negative one; null is the empty list.
    void set_sortfields(int* fields) override;

    /// The first sort field; 0 when there is none.
    int getSortFieldIdx() const;

    /// Prepares the process-wide keys from the sort fields.
    void sortPrepare(int direction, int caseInsensitive) override;

    /// Sorts all records: ascending with dbr_cmp's order, descending (`direction` below 0) with
    /// dbr_backcmp's. Records that compare equal may change order.
    void sort(int direction, int caseInsensitive) override;

    // --- Queries (search/) ---

    /// Replaces the query, one entry for each column by position; ignored when the list is shorter than the
    /// columns.
    void setQuery(const std::vector<TextSearch::Criteria>& criteria);

    /// Whether the record's field satisfies the criteria; codes and dates are matched as they are shown.
    bool matchField(const dbrecord* record, unsigned short field, const TextSearch::Criteria& criteria) const;

    /// A query from a record whose texts are what its columns must contain; ignored when it has too few
    /// fields.
    void set_query(dbrecord* query) override;

    /// Whether the record's field satisfies the query's condition for that column; the second one for a start
    /// or end code, whose range counts.
    bool match_field(const dbrecord* record, int index) const;
    bool found_in_special_label_field(const dbrecord* record, int index) const;

    /// 1 when the record matches the query, 0 when not, -1 without a record or a query.
    int match_record(const Zr::Ptr<dbrecord>& record) const;
    int match_record(int row) const override;

    /// Tags the rows that match; the others lose their tags unless `keepTags` is non-zero. Returns how many
    /// matched.
    int tag_matching_records(int keepTags) override;

    /// Sorts on `field` and tags the first record of every run of equal values; returns how many are tagged.
    int tag_all_different(int field) override;

    // --- Merging (merging.cpp) ---

    /// Appends copies of all records of a database with the same columns and revision. Returns how many rows
    /// `other` has, or -1, with nothing added, when the two are not alike or show-tags-only is on.
    int add_kesta(kesta* other);

    /// Appends a record for each of `other`'s, filled by column name, time codes converted between their two
    /// types. Returns 0 when no column matches, else 1.
    int merge_all_matching(kesta* other);

 private:
    friend class dbrecord;  // marks its database changed
    friend class LogLoader;
    friend class LogSaver;
    friend class RecordsAhead;  // asks memory for records

    // Columns; a column's number is its index.
    std::vector<DBFieldDesc> m_fields;

    // All records in order; an entry may hold none.
    GapVector<Zr::Ptr<dbrecord>> m_records;

    // What row numbers address while m_showTagsOnly is not 0.
    std::vector<Zr::Ptr<dbrecord>> m_taggedIndex;

    std::vector<unsigned short> m_sortFields;

    // Caches, filled on demand; empty counts as not built.
    OnDemand<CookieIndex> m_identifiers;
    OnDemand<FieldNameIndex> m_fieldNames;

    // One flag for each column: isSpecialLabelField.
    std::vector<bool> m_specialLabels;

    LightweightString<wchar_t> m_fileName;
    int m_showTagsOnly = 0;
    int m_changed = 0;
    int m_valid = 0;
    int m_revision = 1;

    Query m_query;
    int m_matchOptions = 0;
};

/// The keys of the running sort: field numbers in order of priority, ended by a negative one. Never null. The
/// comparators read their keys through it; sortPrepare points it at what it has prepared.
extern KESTA_API int* cmp_fields;

/// Compare two elements of a record list, each a Zr::Ptr<dbrecord>: negative, zero or positive as the first
/// sorts before, level with or after the second. Valid after a sortPrepare.
KESTA_API int dbr_cmp(void* a, void* b);
KESTA_API int dbr_backcmp(void* a, void* b);
