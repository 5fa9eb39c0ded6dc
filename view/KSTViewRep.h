// KSTViewRep: a view, an ordered, tagged subset of the records of a database or of another view.
//
// A view holds no records. Each of its rows is an entry that names a row of the view's source and carries a
// tag of the view's own. The source is the base view when there is one, otherwise the database; so chains of
// views always end at a database. As a view is a record source itself, whatever works on a database works on
// a view.
//
// Row numbers come in three kinds, never to be mixed: view rows, which are places in this view; source rows,
// which the entries name; and database rows, which baseIndex finds along the chain. Numbers out of range
// never fault: operations do nothing or return 0, null or an empty string, searches return -1. So do
// operations that need a source when there is none.
//
// Ownership. A view counts its uses: the KSTView handles that hold it and the views chained on it. It is made
// with new, begins with no use, and destroys itself when the last one ends; until the first it belongs to
// the code that made it. A view without a handle that another one is chained on goes when that other lets go
// of it.
// The database is not owned: when it goes first, the view has no source any more. Only a database that
// copyWithNewBaseView has made lives as long as a view stands on it.
//
// Notifications. A view listens for "recordsDeleted" at its database and its base view and repairs its rows.
// It issues the same message for rows of its own that go: from remove() with their view rows; and for each
// source row that is lost, entry by entry as they go, then once more in a summary, then "recordsChanged"
// without a text. A listener may read the view, change it and destroy it, and the source as well. Insertions
// are not notified: views that do not take part keep their row numbers.
//
// Views on views. Where two or more views stand on each other, a deletion reaches the upper one several
// times, from the database and from its base view, with row numbers of different kinds. It takes each for its
// source rows, deliberately: other rows than those deleted can go out of it, and what is then deleted through
// it can be other records. To be safe make views on the log itself, or show a view's rows again
// (displayAllRecords) after a deletion.
//
// Thread-safety: one thread at a time; reading from several threads is safe while nobody changes the view or
// its source (copying and destroying handles are changes, and so is saveOnlyTagged). Only one sort may run at
// a time in a process. Memory: running out throws Zr::Exception::BadAlloc; rows that a deletion has taken are
// gone from the view even then, though views further up may not have heard of it.
#pragma once

#include <memory>
#include <utility>

#include "expr/SExpr.h"
#include "record/KSTBase.h"
#include "record/kesta.h"
#include "support/CookieContainers.h"
#include "support/GrowString.h"
#include "support/Notifier.h"
#include "view/parts/Attachment.h"
#include "view/parts/RowIndex.h"

class KESTA_API KSTViewRep : public KSTBase, public Notifier {
 public:
    // --- Construction (attachment.cpp) ---
    //
    // A new view shows no rows. Its field specification is every field of the database; the given text; or
    // the given names, a list that ends with null. With a null text or list the view names every field.

    /// On a database, which may be null.
    explicit KSTViewRep(kesta* database);
    KSTViewRep(kesta* database, const char* fieldSpecification);
    KSTViewRep(kesta* database, const char** fieldNames);
    KSTViewRep(const KSTViewRep&) = delete;
    KSTViewRep& operator=(const KSTViewRep&) = delete;
    ~KSTViewRep() override;

    /// Detaches the view, empties its rows and its list of fields, and makes sure of the revision parameter.
    /// A view with a base view loses its other parameters with that, as by baseView; one without keeps them.
    void init();

    /// How many handles and chained views hold this view.
    unsigned useCount() const noexcept { return m_useCount; }

    // --- What the view stands on (attachment.cpp) ---

    /// Attaches the view to a database, or detaches it with null: unchains and empties it, and takes over the
    /// database's file name and parameters. Does nothing for the present database.
    void kst(kesta* database);

    /// Chains the view on a base view, or unchains it with null: empties it and takes over the base view's
    /// parameters. The database stays attached. Does nothing for the present base view, for this view, for
    /// one that stands on it, and where the chain would become longer than 200 views. The views that have
    /// stood on this one count, even those that do no more.
    void baseView(KSTViewRep* base);

    /// The source: the base view, else the database, else null.
    iKST* db() const noexcept;

    /// Appends the parameter "KESTA" = "Rev 1", the revision of the file format, unless there is one of that
    /// name.
    void internRevision();

    /// Adds the other's parameters through add_param. Null has none.
    void addParamsFrom(kesta* other);
    void addParamsFrom(KSTViewRep* other);

    // --- Rows (rows.cpp) ---

    /// The record of a view row; null when there is none. No reference is kept.
    dbrecord* operator[](int row) const;

    /// The database row of a view row. 0 for a bad row, which is a row too: check the range before.
    int baseIndex(int row) override;

    /// The first view row whose entry names `sourceRow`; -1 when there is none.
    unsigned findViewIndexForBaseRow(unsigned long sourceRow) const noexcept;

    /// The first view row with this very record; -1 when there is none.
    int find(dbrecord* record) const;

    // --- Showing rows (display.cpp) ---
    //
    // Rows come in before the view row `at`, which is clamped to the view; nobody is notified. An entry that
    // is put in does not set its tag: it keeps what its slot of the row index last held, which is clear where
    // the index has just grown, and the tag of the entry it pushes on where there is one. Source rows that do
    // not exist are not shown.

    /// `count` source rows from `first` on. Returns how many are shown.
    int displayRecordsAt(int first, int count, int at);

    /// The first source row whose field has this value (findFirst). Returns 1, or 0 when there is none.
    int displayMatchAt(const char* field, const char* value, int at);

    /// Every source row that is tagged in the source.
    void displayTaggedRecordsAt(int at);

    /// The database rows of another view's rows, but for missing records and those that this view shows
    /// already. Neither view may have a base view, and both must have the same database. Returns how many
    /// were added.
    int displayAllFromAt(KSTViewRep* other, int at);

    /// For each identifier the first source row that carries it. Returns how many were found.
    int displayRecordsAt(const CookieVec& ids, int at);
    int displayRecordsAt(const CookieSet& ids, int at);

    /// All source rows in place of what is shown, which is announced as removed.
    void displayAllRecords();

    /// The same; then, if the source has a field "Tag", rows get the tags they have in the source.
    void displayAllRecordsWithBaseTagStatus();

    /// The same; then, if the source has a field "Tag", a row is tagged when that field holds a number other
    /// than 0.
    void setupViewTagsFromKestaTagField();

    /// All source rows in place of what is shown, without an announcement.
    void buildIndex();

    // --- Inserting records (display.cpp) ---

    /// Makes blank records in the source and shows them before view row `at`: they come before the record
    /// shown there, or at the end of the source. Entries from `at` on are moved up by `count` source rows;
    /// those before it, deliberately, are not, even if they name rows after the new ones. Where the source
    /// makes none the view stays as it is.
    void insertBlankRecords(int at, int count);

    // --- Removing rows and deleting records (removal.cpp) ---

    /// Takes all rows out without announcing it.
    void clear() noexcept { m_index.clear(); }

    /// Takes rows out of this view and announces them. `count` is clamped; a bad `row` or a negative `count`
    /// does nothing.
    void remove(int row, int count);

    /// Deletes the records of these rows in the source, and so from the database.
    void deleteRecords(int row, int count);

    /// Deletes the records of the tagged rows; returns how many rows those were.
    int deleteTagged();

    /// Takes rows out of this view and of every view it stands on. The records stay.
    void removeRecordsFromBaseView(int row, int count);

    /// The same for the rows that pass a test of this view; returns how many.
    int removeSome(bool (KSTViewRep::*test)(int));
    int removeTagged();
    int removeNonTagged();

    /// What the view does with a "recordsDeleted" message: its source rows go. Returns 0.
    int recordsDeletedNotify(const NotifyMsg& message);

    // --- Tags (tagging.cpp) ---
    //
    // Operations that set a row's tag go through set_tag, so that a derived class sees every change.

    bool tag(int row);        ///< false out of range
    bool notTagged(int row);  ///< true out of range
    /// Reach all rows.
    void tagAll(bool on);
    void invertAllTags();
    int countTags() const;

    /// Tags the rows that match the source's query; the others lose their tags unless `keep` is not 0.
    /// Returns how many matched. A row for which match_record returns -1 does not match.
    int tagMatches(int keep);

    /// Tags each row whose field equals, ignoring case, that of the row that began the run. Other tags stay.
    /// Returns how many were tagged.
    int tagDuplicatesOrdered(int field);

    /// Tags all but the first of the rows that are equal in a field when sorted on it, and clears all other
    /// tags. Leaves the field as the database's sort field. Returns how many were tagged; does nothing and
    /// returns 0 without a source and where the chain is as long as it may be.
    int tagDuplicates(int field);

    /// Gives the source's rows the tags of this view's.
    void tagBaseFromTags();

    /// A new view of this view's tagged rows, chained on this one; the caller's. Null without a database,
    /// and where the chain is as long as it may be.
    KSTViewRep* newTagSubview();

    // --- Copies (copying.cpp) ---
    //
    // New views, the caller's to hold; null without a database. Tags are copied by place.

    /// The same database and field specification. With a base view: chained on it, with all its rows,
    /// whatever this view shows. Without: with this view's rows, each record once.
    KSTViewRep* copy();

    /// On a copy of the database that belongs to the view, with the rows that have a record.
    KSTViewRep* copyWithNewBaseView();

    // --- Field specification (fieldSpec.cpp) ---
    //
    // The fields that the view is about, for its users to see: it restricts nothing.

    /// Sets the text, a list of field names with tabs or commas between, and appends references to those
    /// fields that the source has. A name that it does not have is reported and left out. Deliberately the
    /// list keeps what earlier calls put there, in reverse. Null only drops the text.
    void fieldSpec(const char* specification);

    /// Appends the names of all fields of the source with commas between.
    void identityFieldSpec(GrowString& out) const;

    /// The first field of exactly that name, which minds case; -1 when there is none.
    int dbFieldIndex(const char* name) const;

    /// Appends the text of the field names, and the list of fields where there is one, a line each.
    void asString(GrowString& out) const;

    // --- Saving (saving.cpp) ---
    //
    // A view is saved as a database file: its parameters, the database's columns, its rows. An existing file
    // is only replaced by a whole new one.

    /// Tags go into the field "Tag" where there is one. Returns the number of records written; 0 when there
    /// is no source or no name, and when the save fails.
    int saveAsText(LightweightString<wchar_t> name, bool headerOnly) const;
    int saveAsText(const char* name, bool headerOnly) const;

    /// Only records that are tagged in the database; tags of the view do not matter. Returns, deliberately,
    /// the number of rows in the view; 0 as above. Clears the changed marks of the records it writes, so it
    /// is not one of the readings that several threads may do at once.
    int saveOnlyTagged(LightweightString<wchar_t> name) const;
    int saveOnlyTagged(const char* name) const;

    /// Sets the file that save_text writes.
    void fileName(LightweightString<wchar_t> name) { m_fileName = std::move(name); }

    // --- iKST (forwarding.cpp) ---
    //
    // Where nothing else is said, the source's: with the row it has for a view row, and nothing done for a
    // bad one.

    int save_text() override;                                      ///< saveAsText with the view's file name
    void insert_records(unsigned at, unsigned count) override;     ///< insertBlankRecords
    void delete_records(unsigned first, unsigned count) override;  ///< deleteRecords

    /// removeTagged: the records stay in the database. Returns 0.
    unsigned delete_tagged_records() override;

    unsigned get_num_records() const override;  ///< the rows of the view
    unsigned get_num_fields() const override;
    Zr::Ptr<dbrecord> get_record(unsigned row) const override;

    /// The database's, even when there is a base view.
    Zr::Ptr<dbrecord> make_dummy_record() override;

    const LightweightString<char>& getField(unsigned row, unsigned field) const override;
    const char* get_fieldname(unsigned field) const override;
    unsigned get_fieldsize(unsigned field) const override;
    DBFieldTypes::eType get_field_type(unsigned field) const override;
    bool set_fieldtype(unsigned field, DBFieldTypes::eType type) override;
    DBFieldTypes::eType get_fieldtype(unsigned field) const override;
    unsigned get_fieldnum(const LightweightString<char>& name) const override;
    bool set_fieldname(unsigned field, const char* name) override;
    void set_filename(LightweightString<wchar_t> name) override;  ///< the view's own
    LightweightString<wchar_t> get_filename() const override;     ///< the view's own
    void set_sortfield(int field) override;
    void set_sortfields(int* fields) override;

    /// Sorts the rows of this view (sorting.cpp): descending when `direction` is negative. Rows that compare
    /// equal keep their order; missing records come last.
    void sort(int direction, int caseInsensitive) override;

    void set_tag(unsigned row, int value) override;
    void invert_tag(unsigned row) override;
    void set_all_tags(int value) override;
    void invert_all_tags() override;

    /// removeNonTagged, whatever `on` is: a view shows tags only by having nothing else.
    void set_show_tags_only(int on) override;
    int get_show_tags_only() override;  ///< 0

    int get_tag(unsigned row) override;  ///< 0 out of range
    int get_num_tags() override;
    void set_query(dbrecord* query) override;

    /// tagMatches(0), whatever `keepTags` is.
    int tag_matching_records(int keepTags) override;

    /// Tags the first row of every run of equal values; returns how many are tagged.
    int tag_all_different(int field) override;

    bool set_field(unsigned row, const Cookie& id) override;
    int set_field(unsigned row, unsigned field, const char* value) override;
    bool set_field(unsigned row, unsigned field, int value) override;
    bool set_field(unsigned row, unsigned field, double value) override;
    bool set_field(unsigned row, unsigned field, bool value) override;
    bool in_field(unsigned row, unsigned field, char* dst, int len) const override;
    bool in_field(unsigned row, unsigned field, int& value) const override;
    bool in_field(unsigned row, unsigned field, double& value) const override;
    bool in_field(unsigned row, unsigned field, bool& value) const override;

    /// insertBlankRecords at the end; returns the number of rows before.
    unsigned add_records(int count) override;

    /// Deliberately searches the whole source, by whole texts, and returns a source row; `start` is not used.
    int findFirst(const char* field, const char* value, int start) override;

    void sortPrepare(int direction, int caseInsensitive) override;

    /// Deliberately hands `row` on as it is: it is taken for a source row.
    int match_record(int row) const override;

    int get_valid() const override;  ///< 1 when the source is valid

 private:
    friend class ViewChain;
    friend class ViewUses;

    unsigned m_useCount = 0;
    BaseView m_base;
    AttachedDatabase m_database;

    // Entries name rows of the source. Rows that it does not have (a source does not announce all that it
    // does) read as missing records.
    RowIndex m_index;

    std::unique_ptr<char[]> m_fieldSpec;  // a text; null when there is none
    LightweightString<wchar_t> m_fileName;
    std::unique_ptr<SExpr> m_fields;
    Zr::Ptr<Zr::Guard> m_databaseGuard;
    Zr::Ptr<Zr::Guard> m_baseGuard;
};
