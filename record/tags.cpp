// kesta: tags, and showing only the tagged records.
#include <algorithm>
#include <vector>

#include "record/kesta.h"

namespace {

void invert(dbrecord& record) noexcept {
    record.set_tag(record.get_tag() == 0 ? 1 : 0);
}

}  // namespace

void kesta::set_tag(unsigned row, int value) {
    if (const Zr::Ptr<dbrecord> record = get_record(row)) record->set_tag(static_cast<unsigned char>(value));
}

void kesta::invert_tag(unsigned row) {
    if (const Zr::Ptr<dbrecord> record = get_record(row)) invert(*record);
}

int kesta::get_tag(unsigned row) {
    const Zr::Ptr<dbrecord> record = get_record(row);
    return record ? record->get_tag() : -1;
}

void kesta::set_all_tags(int value) {
    for (unsigned row = 0; row < get_num_records(); ++row) set_tag(row, value);
}

void kesta::invert_all_tags() {
    for (std::size_t row = 0; row < m_records.size(); ++row) {
        if (m_records[row]) invert(*m_records[row]);
    }
}

// A row without a record, whose tag reads as -1, deliberately counts.
int kesta::get_num_tags() {
    int count = 0;
    for (unsigned row = 0; row < get_num_records(); ++row) {
        if (get_tag(row) != 0) ++count;
    }
    return count;
}

unsigned kesta::delete_tagged_records() {
    if (m_showTagsOnly) return Zr::notFound;
    // A listener may let go of the last Ptr to this database, which then lives to the end of the walk; or end
    // it, where no Ptr holds it.
    const Zr::Ptr<iObject> alive(refCount() > 0 ? this : nullptr);
    const LifeWatch self = watch();
    unsigned deleted = 0;
    unsigned first = 0;
    unsigned length = 0;
    const auto deleteRun = [&] {
        delete_records(first, length);
        deleted += length;
        length = 0;
    };
    for (unsigned row = 0; row < get_num_records(); ++row) {
        // Exactly 1: a record that carries another tag is deliberately kept, though it counts as tagged.
        if (get_tag(row) == 1) {
            if (length++ == 0) first = row;
        } else if (length != 0) {
            deleteRun();
            if (!self) return deleted;
            row = first;  // where the row just looked at has moved to
        }
    }
    if (length != 0) deleteRun();
    return deleted;
}

void kesta::set_show_tags_only(int on) {
    m_showTagsOnly = on;
    if (on) index_tags();
}

int kesta::get_show_tags_only() {
    return m_showTagsOnly;
}

unsigned kesta::index_tags() {
    m_taggedIndex.clear();
    std::vector<Zr::Ptr<dbrecord>> tagged;
    // The bound is deliberately get_num_records(), which on a plain database that shows tags only is the size
    // of the index just emptied.
    unsigned rows = get_num_records();
    for (unsigned row = 0; row < rows; ++row, rows = get_num_records()) {
        Zr::Ptr<dbrecord> record = m_records.valueAt(row);
        if (!record || record->get_tag() != 0) tagged.push_back(std::move(record));
    }
    m_taggedIndex.swap(tagged);
    return rows;
}

unsigned kesta::get_new_row(unsigned rawRow) {
    if (!m_showTagsOnly) return rawRow;
    if (rawRow >= m_records.size()) return Zr::notFound;
    const auto found = std::find(m_taggedIndex.begin(), m_taggedIndex.end(), m_records[rawRow]);
    return found == m_taggedIndex.end() ? Zr::notFound : static_cast<unsigned>(found - m_taggedIndex.begin());
}

unsigned kesta::get_raw_row(unsigned row) {
    if (!m_showTagsOnly) return row;
    if (row >= m_taggedIndex.size()) return Zr::notFound;  // the row after the last is no record's either
    for (unsigned raw = 0; raw < m_records.size(); ++raw) {
        if (m_records[raw] == m_taggedIndex[row]) return raw;
    }
    return Zr::notFound;
}
