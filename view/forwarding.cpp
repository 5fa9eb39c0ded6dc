// KSTViewRep: the record-source interface.
#include <limits>
#include <optional>

#include "view/parts/ViewUses.h"

namespace {

// The interface counts rows as unsigned, a view in int: rows past what an int holds are past any end.
int inRange(unsigned number) noexcept {
    constexpr unsigned greatest = std::numeric_limits<int>::max();
    return static_cast<int>(number < greatest ? number : greatest);
}

const LightweightString<char>& noText() noexcept {
    static const LightweightString<char> none;
    return none;
}

// The source's row for a view row; none without a source or for a bad row.
std::optional<unsigned> sourceRow(const iKST* source, const RowIndex& index, unsigned row) noexcept {
    if (!source || !index.contains(inRange(row))) return std::nullopt;
    return index.row(inRange(row));
}

}  // namespace

// --- Rows ---

int KSTViewRep::save_text() {
    return saveAsText(m_fileName, false);
}

void KSTViewRep::insert_records(unsigned at, unsigned count) {
    insertBlankRecords(inRange(at), inRange(count));
}

void KSTViewRep::delete_records(unsigned first, unsigned count) {
    deleteRecords(inRange(first), inRange(count));
}

unsigned KSTViewRep::delete_tagged_records() {
    removeTagged();
    return 0;
}

unsigned KSTViewRep::get_num_records() const {
    return static_cast<unsigned>(m_index.size());
}

Zr::Ptr<dbrecord> KSTViewRep::get_record(unsigned row) const {
    const iKST* const source = db();
    const auto mapped = sourceRow(source, m_index, row);
    return mapped ? source->get_record(*mapped) : Zr::Ptr<dbrecord>();
}

Zr::Ptr<dbrecord> KSTViewRep::make_dummy_record() {
    kesta* const source = m_database.get();
    return source ? source->make_dummy_record() : Zr::Ptr<dbrecord>();
}

const LightweightString<char>& KSTViewRep::getField(unsigned row, unsigned field) const {
    const dbrecord* const found = (*this)[inRange(row)];
    return found ? found->getField(static_cast<unsigned short>(field)) : noText();
}

unsigned KSTViewRep::add_records(int count) {
    const int before = m_index.size();
    insertBlankRecords(before, count);
    return static_cast<unsigned>(before);
}

// --- Columns ---

unsigned KSTViewRep::get_num_fields() const {
    const iKST* const source = db();
    return source ? source->get_num_fields() : 0;
}

const char* KSTViewRep::get_fieldname(unsigned field) const {
    const iKST* const source = db();
    return source ? source->get_fieldname(field) : "";
}

unsigned KSTViewRep::get_fieldsize(unsigned field) const {
    const iKST* const source = db();
    return source ? source->get_fieldsize(field) : 0;
}

DBFieldTypes::eType KSTViewRep::get_field_type(unsigned field) const {
    const iKST* const source = db();
    return source ? source->get_field_type(field) : DBFieldTypes::eNone;
}

bool KSTViewRep::set_fieldtype(unsigned field, DBFieldTypes::eType type) {
    iKST* const source = db();
    return source && source->set_fieldtype(field, type);
}

DBFieldTypes::eType KSTViewRep::get_fieldtype(unsigned field) const {
    return get_field_type(field);
}

unsigned KSTViewRep::get_fieldnum(const LightweightString<char>& name) const {
    const iKST* const source = db();
    return source ? source->get_fieldnum(name) : 0;  // deliberately not the -1 of a name that is not found
}

bool KSTViewRep::set_fieldname(unsigned field, const char* name) {
    iKST* const source = db();
    return source && source->set_fieldname(field, name);
}

// --- The file name ---

void KSTViewRep::set_filename(LightweightString<wchar_t> name) {
    fileName(std::move(name));
}

LightweightString<wchar_t> KSTViewRep::get_filename() const {
    return m_fileName;
}

// --- Sorting and searching ---

void KSTViewRep::set_sortfield(int field) {
    if (iKST* const source = db()) source->set_sortfield(field);
}

void KSTViewRep::set_sortfields(int* fields) {
    if (iKST* const source = db()) source->set_sortfields(fields);
}

void KSTViewRep::sortPrepare(int direction, int caseInsensitive) {
    if (iKST* const source = db()) source->sortPrepare(direction, caseInsensitive);
}

int KSTViewRep::findFirst(const char* field, const char* value, int /*start*/) {
    iKST* const source = db();
    return source ? source->findFirst(field, value, 0) : -1;
}

void KSTViewRep::set_query(dbrecord* query) {
    if (iKST* const source = db()) source->set_query(query);
}

int KSTViewRep::match_record(int row) const {
    const iKST* const source = db();
    return source ? source->match_record(row) : 0;
}

int KSTViewRep::get_valid() const {
    const iKST* const source = db();
    return source && source->get_valid() != 0 ? 1 : 0;
}

// --- Tags ---

void KSTViewRep::set_tag(unsigned row, int value) {
    if (m_index.contains(inRange(row))) m_index.setTag(inRange(row), value != 0);
}

void KSTViewRep::invert_tag(unsigned row) {
    if (m_index.contains(inRange(row))) set_tag(row, m_index.tag(inRange(row)) ? 0 : 1);
}

void KSTViewRep::set_all_tags(int value) {
    tagAll(value != 0);
}

void KSTViewRep::invert_all_tags() {
    invertAllTags();
}

void KSTViewRep::set_show_tags_only(int /*on*/) {
    removeNonTagged();
}

int KSTViewRep::get_show_tags_only() {
    return 0;
}

int KSTViewRep::get_tag(unsigned row) {
    return tag(inRange(row)) ? 1 : 0;
}

int KSTViewRep::get_num_tags() {
    return countTags();
}

int KSTViewRep::tag_matching_records(int /*keepTags*/) {
    return tagMatches(0);
}

int KSTViewRep::tag_all_different(int field) {
    const HeldView held(*this);
    tagDuplicates(field);
    invertAllTags();
    return get_num_tags();
}

// --- Fields, through the row that the source has for a view row ---

bool KSTViewRep::set_field(unsigned row, const Cookie& id) {
    const auto mapped = sourceRow(db(), m_index, row);
    return mapped && db()->set_field(*mapped, id);
}

int KSTViewRep::set_field(unsigned row, unsigned field, const char* value) {
    const auto mapped = sourceRow(db(), m_index, row);
    return mapped ? db()->set_field(*mapped, field, value) : 0;
}

bool KSTViewRep::set_field(unsigned row, unsigned field, int value) {
    const auto mapped = sourceRow(db(), m_index, row);
    return mapped && db()->set_field(*mapped, field, value);
}

bool KSTViewRep::set_field(unsigned row, unsigned field, double value) {
    const auto mapped = sourceRow(db(), m_index, row);
    return mapped && db()->set_field(*mapped, field, value);
}

bool KSTViewRep::set_field(unsigned row, unsigned field, bool value) {
    const auto mapped = sourceRow(db(), m_index, row);
    return mapped && db()->set_field(*mapped, field, value);
}

bool KSTViewRep::in_field(unsigned row, unsigned field, char* dst, int len) const {
    const auto mapped = sourceRow(db(), m_index, row);
    return mapped && db()->in_field(*mapped, field, dst, len);
}

bool KSTViewRep::in_field(unsigned row, unsigned field, int& value) const {
    const auto mapped = sourceRow(db(), m_index, row);
    return mapped && db()->in_field(*mapped, field, value);
}

bool KSTViewRep::in_field(unsigned row, unsigned field, double& value) const {
    const auto mapped = sourceRow(db(), m_index, row);
    return mapped && db()->in_field(*mapped, field, value);
}

bool KSTViewRep::in_field(unsigned row, unsigned field, bool& value) const {
    const auto mapped = sourceRow(db(), m_index, row);
    return mapped && db()->in_field(*mapped, field, value);
}
