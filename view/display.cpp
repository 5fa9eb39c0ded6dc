// KSTViewRep: choosing which source rows are shown, and inserting new ones.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "support/NotFound.h"
#include "view/KSTViewRep.h"
#include "view/parts/LifeSupport.h"
#include "view/parts/ViewChain.h"

namespace {

// Whether the text of a "Tag" field says that the record is tagged.
bool saysTagged(const LightweightString<char>& text) noexcept {
    return std::strtol(text.c_str(), nullptr, 10) != 0;
}

/// Looks up identifiers as findFirst of a source does, which asks the database at the end of the chain: for
/// each identifier that the database does not know it compares the texts of all rows. For many of them the
/// texts are gathered once. Valid while nothing changes.
class IdentifierLookup {
 public:
    IdentifierLookup(iKST& source, kesta* database) : m_source(source), m_database(database) {}

    int find(const Cookie& id) {
        const auto text = id.asString(false);
        if (!m_database || m_database->get_show_tags_only() != 0 ||
            m_database->getRowIndexByID(Cookie(text.c_str(), false)) != Zr::notFound) {
            return m_source.findFirst("Cookie", text.c_str(), 0);
        }
        if (!m_rows) m_rows.emplace(rowsByText(*m_database));
        const auto found = m_rows->find(text.c_str());
        return found != m_rows->end() ? static_cast<int>(found->second) : -1;
    }

 private:
    using RowsByText = std::unordered_map<std::string_view, unsigned>;

    static RowsByText rowsByText(const kesta& database) {
        RowsByText rows;
        const unsigned column = database.get_fieldnum("Cookie");
        if (column == Zr::notFound) return rows;
        for (unsigned row = 0; row < database.get_num_records(); ++row) {
            rows.emplace(database.getField(row, column).c_str(), row);
        }
        return rows;
    }

    iKST& m_source;
    kesta* m_database;
    std::optional<RowsByText> m_rows;
};

// Shows all rows of a view's source, and where that has a field "Tag" tags those for which
// isTagged(source, row, field).
template <class IsTagged>
void displayAllRecordsTaggedBy(KSTViewRep& view, const IsTagged& isTagged) {
    const LifeWatch watch = view.watch();
    view.displayAllRecords();
    iKST* const source = watch ? view.db() : nullptr;
    const unsigned field = source ? source->get_fieldnum("Tag") : Zr::notFound;
    if (field == Zr::notFound) return;
    for (unsigned row = 0; row < source->get_num_records(); ++row)
        view.set_tag(row, isTagged(*source, row, field));
}

}  // namespace

int KSTViewRep::displayRecordsAt(int first, int count, int at) {
    const iKST* const source = db();
    if (!source || count < 0) return 0;
    const long long rows = std::min<long long>(source->get_num_records(), std::numeric_limits<int>::max());
    const long long begin = std::clamp<long long>(first, 0, rows);
    const long long end = std::clamp<long long>(static_cast<long long>(first) + count, begin, rows);
    const int shown = static_cast<int>(end - begin);
    m_index.insert(at, static_cast<unsigned>(begin), shown);
    return shown;
}

int KSTViewRep::displayMatchAt(const char* field, const char* value, int at) {
    iKST* const source = db();
    const int row = source ? source->findFirst(field, value, 0) : -1;
    return row >= 0 ? displayRecordsAt(row, 1, at) : 0;
}

void KSTViewRep::displayTaggedRecordsAt(int at) {
    iKST* const source = db();
    if (!source) return;
    std::vector<unsigned> tagged;
    for (unsigned row = 0; row < source->get_num_records(); ++row) {
        if (source->get_tag(row) != 0) tagged.push_back(row);
    }
    m_index.insert(at, tagged);
}

int KSTViewRep::displayAllFromAt(KSTViewRep* other, int at) {
    if (m_base.isSet() || !other || !db() || other->db() != db()) return 0;
    std::unordered_set<const dbrecord*> shown;
    for (int row = 0; row < m_index.size(); ++row) shown.insert((*this)[row]);

    std::vector<unsigned> added;
    for (int row = 0; row < other->m_index.size(); ++row) {
        const dbrecord* const record = (*other)[row];
        if (record && shown.insert(record).second)
            added.push_back(static_cast<unsigned>(other->baseIndex(row)));
    }
    const int count = static_cast<int>(added.size());
    m_index.insertOneByOne(at, std::move(added));
    return count;
}

int KSTViewRep::displayRecordsAt(const CookieVec& ids, int at) {
    const LifeSupport announced;
    iKST* const source = db();
    if (!source) return 0;
    IdentifierLookup lookup(*source, ViewChain(*this).database().get());
    std::vector<unsigned> found;
    for (const Cookie& id : ids) {
        const int row = lookup.find(id);
        if (row >= 0 && static_cast<unsigned>(row) < source->get_num_records()) {
            found.push_back(static_cast<unsigned>(row));
        }
    }
    const int count = static_cast<int>(found.size());
    m_index.insertOneByOne(at, std::move(found));
    return count;
}

int KSTViewRep::displayRecordsAt(const CookieSet& ids, int at) {
    return displayRecordsAt(CookieVec(ids.begin(), ids.end()), at);
}

void KSTViewRep::displayAllRecords() {
    if (!db()) return;
    const LifeWatch self = watch();
    remove(0, m_index.size());
    if (self && db()) displayRecordsAt(0, std::numeric_limits<int>::max(), 0);
}

void KSTViewRep::displayAllRecordsWithBaseTagStatus() {
    displayAllRecordsTaggedBy(*this,
                              [](iKST& source, unsigned row, unsigned) { return source.get_tag(row) != 0; });
}

void KSTViewRep::setupViewTagsFromKestaTagField() {
    displayAllRecordsTaggedBy(*this, [](const iKST& source, unsigned row, unsigned field) {
        return saysTagged(source.getField(row, field));
    });
}

void KSTViewRep::buildIndex() {
    m_index.restart();
    const iKST* const source = db();
    if (!source) return;
    for (unsigned row = 0; row < source->get_num_records(); ++row) m_index.append(row);
}

void KSTViewRep::insertBlankRecords(int at, int count) {
    iKST* const source = db();
    if (!source || count < 0) return;
    at = std::clamp(at, 0, m_index.size());
    const bool atEnd = at == m_index.size();
    const unsigned row = atEnd ? source->get_num_records() : m_index.row(at);

    m_index.insert(at, row, count);
    m_index.addToRows(at + count, static_cast<unsigned>(count));
    const auto takeBack = [&] {
        m_index.addToRows(at + count, static_cast<unsigned>(-count));
        m_index.erase(at, count);
    };
    const unsigned before = source->get_num_records();
    try {
        if (atEnd) {
            source->add_records(count);
        } else {
            source->insert_records(row, static_cast<unsigned>(count));
        }
    } catch (...) {
        takeBack();
        throw;
    }
    if (count > 0 && source->get_num_records() == before) takeBack();
}
