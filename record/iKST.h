// iKST: the record-source interface, which databases and views implement.
//
// The operations stand in the order of their slots in the virtual table. Applications are built against that
// order: never move one, never put one in between. Row numbers are those of the source asked; numbers out of
// range never fault. Not found is -1, as all bits set where the result is unsigned. What each operation does
// stands with kesta and with KSTViewRep.
#pragma once

#include "record/DBFieldTypes.h"
#include "support/Export.h"
#include "support/LightweightString.h"
#include "support/iObject.h"

class Cookie;
class dbrecord;

class KESTA_API iKST : public iObject {
 public:
    ~iKST() override;

    /// Saves under the source's file name; returns the number of records written, 0 when nothing could be
    /// saved.
    virtual int save_text() = 0;

    /// Makes `count` rows before row `at`.
    virtual void insert_records(unsigned at, unsigned count) = 0;

    /// Deletes `count` rows from `first` on, and tells listeners of them.
    virtual void delete_records(unsigned first, unsigned count) = 0;

    /// Drops the tagged rows: a database deletes them, a view only takes them out of itself.
    virtual unsigned delete_tagged_records() = 0;

    /// How many rows and columns there are.
    virtual unsigned get_num_records() const = 0;
    virtual unsigned get_num_fields() const = 0;

    /// The record of a row; null when there is none.
    virtual Zr::Ptr<dbrecord> get_record(unsigned row) const = 0;

    /// A record with the source's columns that is listed nowhere, such as a query is made of.
    virtual Zr::Ptr<dbrecord> make_dummy_record() = 0;

    /// The text of a field, empty when there is none. Valid until the field changes.
    virtual const LightweightString<char>& getField(unsigned row, unsigned field) const = 0;

    /// The name of a column, "" when there is none; the greatest length in bytes that it holds.
    virtual const char* get_fieldname(unsigned field) const = 0;
    virtual unsigned get_fieldsize(unsigned field) const = 0;

    /// The type of a column, 0 when there is none. get_field_type and get_fieldtype are the same.
    virtual DBFieldTypes::eType get_field_type(unsigned field) const = 0;
    virtual bool set_fieldtype(unsigned field, DBFieldTypes::eType type) = 0;
    virtual DBFieldTypes::eType get_fieldtype(unsigned field) const = 0;

    /// The number of the column of that name, ignoring case.
    virtual unsigned get_fieldnum(const LightweightString<char>& name) const = 0;

    /// Renames a column.
    virtual bool set_fieldname(unsigned field, const char* name) = 0;

    /// The file that save_text writes.
    virtual void set_filename(LightweightString<wchar_t> name) = 0;
    virtual LightweightString<wchar_t> get_filename() const = 0;

    /// The columns that sort goes by, the first one first; a list ends with a negative number.
    virtual void set_sortfield(int field) = 0;
    virtual void set_sortfields(int* fields) = 0;

    /// Sorts the rows: descending when `direction` is negative.
    virtual void sort(int direction, int caseInsensitive) = 0;

    /// The tags of one row, or of all.
    virtual void set_tag(unsigned row, int value) = 0;
    virtual void invert_tag(unsigned row) = 0;
    virtual void set_all_tags(int value) = 0;
    virtual void invert_all_tags() = 0;

    /// Whether only tagged rows are shown.
    virtual void set_show_tags_only(int on) = 0;
    virtual int get_show_tags_only() = 0;

    /// The tag of a row, and how many rows are tagged.
    virtual int get_tag(unsigned row) = 0;
    virtual int get_num_tags() = 0;

    /// Sets what tag_matching_records and match_record look for: texts that the columns must contain.
    virtual void set_query(dbrecord* query) = 0;

    /// Tags the rows that match the query, or the first of each value; returns how many.
    virtual int tag_matching_records(int keepTags) = 0;
    virtual int tag_all_different(int field) = 0;

    /// Stores an identifier in the column "cookie", or a value in a column.
    virtual bool set_field(unsigned row, const Cookie& id) = 0;
    virtual int set_field(unsigned row, unsigned field, const char* value) = 0;
    virtual bool set_field(unsigned row, unsigned field, int value) = 0;
    virtual bool set_field(unsigned row, unsigned field, double value) = 0;
    virtual bool set_field(unsigned row, unsigned field, bool value) = 0;

    /// Reads a field; false, with the destination as it was, when there is nothing to read.
    virtual bool in_field(unsigned row, unsigned field, char* dst, int len) const = 0;
    virtual bool in_field(unsigned row, unsigned field, int& value) const = 0;
    virtual bool in_field(unsigned row, unsigned field, double& value) const = 0;
    virtual bool in_field(unsigned row, unsigned field, bool& value) const = 0;

    /// Appends rows; returns how many there were before.
    virtual unsigned add_records(int count) = 0;

    /// The parameters: named texts. A key that is new is appended, ignoring case.
    virtual int add_param(const LightweightString<char>& key, const LightweightString<char>& value) = 0;
    virtual void set_param_val(const char* key, const char* value) = 0;
    virtual const char* get_param_val(const char* key) const = 0;

    /// The first row whose field of that name holds the text; -1 when there is none.
    virtual int findFirst(const char* field, const char* value, int length) = 0;

    /// Makes the keys of the process's running sort.
    virtual void sortPrepare(int direction, int caseInsensitive) = 0;

    /// 1 when a row matches the query, 0 when not, -1 when it cannot be said.
    virtual int match_record(int row) const = 0;

    /// The database's row of a row.
    virtual int baseIndex(int row) = 0;

    /// Whether the source has columns to work on.
    virtual int get_valid() const = 0;
};
