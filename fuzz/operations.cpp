// Any sequence of the operations that callers have, with good and bad arguments: over a database, a chain of
// two views on it, views beside them, a field map and a second database. What they answer must agree with
// itself.
#include <array>
#include <memory>
#include <vector>

#include "container/ZRContainerFile.h"
#include "fieldmap/FieldMap.h"
#include "fuzz/Fuzz.h"
#include "record/kesta.h"
#include "support/GrowString.h"
#include "view/KSTView.h"
#include "view/KSTViewCursor.h"

namespace {

using DatabasePtr = Zr::Ptr<kesta>;

constexpr int mostRows = 500;  // more would only be slow
constexpr int mostSteps = 100;
constexpr int stepsPerCheck = 8;

const std::vector<DBFieldDesc>& columns() {
    static const std::vector<DBFieldDesc> all = {{"Name", DBFieldTypes::eText},
                                                 {"Start time", DBFieldTypes::eTimecode},
                                                 {"End time", DBFieldTypes::eTimecodeS},
                                                 {"Cookie", DBFieldTypes::eTextS},
                                                 {"Tag", DBFieldTypes::eNumeric}};
    return all;
}

/// Two databases, views on them, and what is done to them.
class World {
 public:
    explicit World(Fuzz::Input& input) : m_input(input) {
        for (DatabasePtr& database : m_databases) {
            database = DatabasePtr(new kesta(columns()));
            database->add_param("Title", "Low Water");
            // Views note what goes in another way when they are long.
            database->add_records(static_cast<int>(input.below(8) == 0 ? 400 : input.below(12)));
        }
        rebuildViews();
    }

    void run() {
        constexpr void (World::*actions[])() = {
            &World::setText,      &World::setText,     &World::setTyped,   &World::setIdentifier,
            &World::look,         &World::addRows,     &World::insertRows, &World::deleteRows,
            &World::deleteTagged, &World::tag,         &World::tagMany,    &World::sort,
            &World::query,        &World::queryRecord, &World::columnEdit, &World::params,
            &World::showTagsOnly, &World::changeView,  &World::changeView, &World::display,
            &World::display,      &World::removeRows,  &World::removeSome, &World::chain,
            &World::copyView,     &World::walk,        &World::mapFields,  &World::merge,
            &World::saveAndLoad,  &World::fieldSpec,   &World::container,  &World::recordEdit,
            &World::renewDatabase};
        for (int step = 0; step < mostSteps && !m_input.empty(); ++step) {
            (this->*actions[m_input.below(std::size(actions))])();
            if (step % stepsPerCheck == 0) check();
        }
        check();
    }

 private:
    // --- Arguments ---

    kesta& database() { return *m_databases[m_input.below(2)]; }

    KSTView& handle() { return m_views[m_input.below(static_cast<unsigned>(m_views.size()))]; }

    KSTViewRep& view() { return *handle(); }

    /// A view, or null.
    KSTViewRep* anyView() {
        const unsigned which = m_input.below(static_cast<unsigned>(m_views.size()) + 1);
        return which < m_views.size() ? m_views[which].rep() : nullptr;
    }

    /// A database or a view on one.
    iKST& source() {
        const unsigned which = m_input.below(2 + static_cast<unsigned>(m_views.size()));
        if (which < 2) return *m_databases[which];
        return *m_views[which - 2];
    }

    int number() { return m_input.number(); }
    unsigned row() { return static_cast<unsigned>(number()); }
    unsigned field() { return static_cast<unsigned>(number()); }
    std::string text() { return m_input.text(); }

    /// How many rows to make: anything but what would merely use up memory.
    int count() {
        const int wanted = number();
        return wanted > 300 ? 300 : wanted;
    }

    /// A column's name, mostly.
    std::string name() {
        const unsigned which = m_input.below(12);
        return which < columns().size() ? Fuzz::str(columns()[which].name) : text();
    }

    Cookie identifier() {
        Zr::UUID uuid;
        uuid.bytes[0] = static_cast<std::uint8_t>(m_input.below(8));
        return Cookie(uuid, static_cast<CookieType>(m_input.below(4) == 0 ? 'I' : 'M'), 1);
    }

    bool roomFor(const iKST& where) const {
        return where.get_num_records() < mostRows && m_databases[0]->get_num_records() < mostRows &&
               m_databases[1]->get_num_records() < mostRows;
    }

    // --- Fields ---

    void setText() {
        iKST& where = source();
        const unsigned at = row();
        const unsigned column = field();
        const std::string value = text();
        where.set_field(at, column, m_input.below(16) == 0 ? nullptr : value.c_str());
    }

    void setTyped() {
        iKST& where = source();
        const unsigned at = row();
        const unsigned column = field();
        switch (m_input.below(4)) {
            case 0:
                where.set_field(at, column, number());
                break;
            case 1:
                where.set_field(at, column, static_cast<double>(number()) * 1e300);
                break;
            case 2:
                where.set_field(at, column, true);
                break;
            default:
                database().setField(at, column, text().c_str());
        }
    }

    void setIdentifier() {
        switch (m_input.below(3)) {
            case 0:
                source().set_field(row(), identifier());
                break;
            case 1: {
                kesta& where = database();
                if (roomFor(where)) where.addRecord(identifier());
                break;
            }
            default: {
                const kesta& where = database();
                const unsigned found = where.getRowIndexByID(identifier());
                where.get_record(found);
            }
        }
    }

    void look() {
        iKST& where = source();
        const unsigned at = row();
        const unsigned column = field();
        char characters[9];
        int whole = 0;
        double real = 0;
        bool flag = false;
        const int length = number();
        where.in_field(at, column, characters, length > 8 ? 8 : length);
        where.in_field(at, column, nullptr, length);
        where.in_field(at, column, whole);
        where.in_field(at, column, real);
        where.in_field(at, column, flag);
        where.get_fieldsize(column);
        where.get_field_type(column);
        where.get_fieldname(column);
        where.baseIndex(number());
        where.match_record(number());
        where.make_dummy_record();
        const std::string wantedField = name();
        const std::string value = text();
        const int start = number();
        where.findFirst(wantedField.c_str(), value.c_str(), start);
        where.findFirst(nullptr, value.c_str(), start);
        where.findFirst(wantedField.c_str(), nullptr, start);
        where.get_fieldnum(wantedField.c_str());
    }

    // --- Rows ---

    void addRows() {
        iKST& where = source();
        const int rows = count();
        if (roomFor(where)) where.add_records(rows);
    }

    void insertRows() {
        iKST& where = source();
        const unsigned at = row();
        const int rows = count();
        // Taken for unsigned, a negative number is a huge one.
        if (roomFor(where)) where.insert_records(at, rows < 0 ? 0 : static_cast<unsigned>(rows));
    }

    void deleteRows() {
        iKST& where = source();
        const unsigned first = row();
        where.delete_records(first, row());
    }

    void deleteTagged() { source().delete_tagged_records(); }

    // --- Tags, order, queries ---

    void tag() {
        iKST& where = source();
        const unsigned at = row();
        where.set_tag(at, number());
        where.invert_tag(row());
        where.get_tag(row());
    }

    void tagMany() {
        iKST& where = source();
        switch (m_input.below(5)) {
            case 0:
                where.set_all_tags(number());
                break;
            case 3:
                for (unsigned at = m_input.byte(); at < where.get_num_records(); at += 3)
                    where.set_tag(at, 1);
                break;
            case 1:
                where.invert_all_tags();
                break;
            case 2:
                where.tag_matching_records(number());
                break;
            default:
                where.tag_all_different(number());
        }
    }

    void sort() {
        iKST& where = source();
        int fields[12];
        for (int& key : fields) key = number();
        fields[11] = -1;
        if (m_input.below(2) == 0) {
            where.set_sortfield(number());
        } else {
            where.set_sortfields(m_input.below(8) == 0 ? nullptr : fields);
        }
        const int direction = number();
        where.sort(direction, number());
    }

    void query() {
        std::vector<TextSearch::Criteria> criteria(m_input.below(8));
        for (TextSearch::Criteria& each : criteria) {
            const std::string wanted = text();
            each.add(TextSearch::Criterion(wanted.c_str(), static_cast<TextSearch::eMatchMethod>(number())));
        }
        database().setQuery(criteria);
    }

    void queryRecord() {
        iKST& where = source();
        if (m_input.below(8) == 0) return where.set_query(nullptr);
        const Zr::Ptr<dbrecord> record(new dbrecord(static_cast<unsigned short>(m_input.below(8))));
        for (int i = 0; i < record->get_num_fields(); ++i) record->set_field(i, text().c_str(), true);
        where.set_query(record.get());
    }

    // --- Columns and parameters ---

    void columnEdit() {
        kesta& where = database();
        switch (m_input.below(4)) {
            case 0:
                if (where.get_num_fields() < 40) {
                    const std::string called = name();
                    where.addField({called.c_str(), static_cast<DBFieldTypes::eType>(m_input.byte())});
                }
                break;
            case 1:
                where.removeField(name().c_str());
                break;
            case 2: {
                const unsigned column = field();
                source().set_fieldname(column, m_input.below(8) == 0 ? nullptr : name().c_str());
                break;
            }
            default: {
                const unsigned column = field();
                source().set_fieldtype(column, static_cast<DBFieldTypes::eType>(m_input.byte()));
            }
        }
    }

    void params() {
        iKST& where = source();
        const std::string key = m_input.below(3) == 0 ? "V5_FIELD_MAP" : text();
        const std::string value = text();
        where.add_param(key.c_str(), value.c_str());
        where.set_param_val(key.c_str(), nullptr);
        where.set_param_val(nullptr, value.c_str());
        where.get_param_val(nullptr);
        Fuzz::promise(where.get_param_val(key.c_str()) != nullptr);
    }

    void showTagsOnly() {
        kesta& where = database();
        where.set_show_tags_only(static_cast<int>(m_input.below(2)));
        where.index_tags();
        where.get_new_row(row());
        where.get_raw_row(row());
    }

    // --- Views ---

    void rebuildViews() {
        m_views.clear();
        kesta* const log = m_databases[0].get();
        const char* names[] = {"Name", "nothing", nullptr};
        m_views.emplace_back(new KSTViewRep(log));
        m_views.emplace_back(new KSTViewRep(log, "Name\tCookie"));
        m_views[1]->baseView(m_views[0].rep());
        m_views.emplace_back(new KSTViewRep(log, names));
        m_views.emplace_back(new KSTViewRep(m_databases[1].get()));
        for (const KSTView& each : m_views) each->displayAllRecords();
    }

    void changeView() {
        KSTViewRep& where = view();
        switch (m_input.below(7)) {
            case 0:
                where.clear();
                break;
            case 1:
                where.buildIndex();
                break;
            case 2:
                where.tagAll(m_input.below(2) == 0);
                break;
            case 3:
                where.tagMatches(number());
                break;
            case 4:
                where.tagDuplicatesOrdered(number());
                break;
            case 5:
                where.tagDuplicates(number());
                break;
            default:
                where.tagBaseFromTags();
        }
    }

    void display() {
        KSTViewRep& where = view();
        const int at = number();
        if (!roomFor(where)) return;
        switch (m_input.below(9)) {
            case 0: {
                const int first = number();
                where.displayRecordsAt(first, number(), at);
                break;
            }
            case 1: {
                const std::string column = name();
                where.displayMatchAt(column.c_str(), text().c_str(), at);
                break;
            }
            case 2:
                where.displayTaggedRecordsAt(at);
                break;
            case 3:
                where.displayAllFromAt(anyView(), at);
                break;
            case 4: {
                CookieVec ids;
                CookieSet set;
                for (unsigned i = m_input.below(5); i > 0; --i) {
                    ids.push_back(identifier());
                    set.add(ids.back());
                }
                where.displayRecordsAt(ids, at);
                where.displayRecordsAt(set, at);
                break;
            }
            case 5:
                where.displayAllRecords();
                break;
            case 6:
                where.displayAllRecordsWithBaseTagStatus();
                break;
            case 7:
                where.setupViewTagsFromKestaTagField();
                break;
            default:
                where.insertBlankRecords(at, count());
        }
    }

    void removeRows() {
        KSTViewRep& where = view();
        const int at = number();
        const int rows = number();
        switch (m_input.below(3)) {
            case 0:
                where.remove(at, rows);
                break;
            case 1:
                where.deleteRecords(at, rows);
                break;
            default:
                where.removeRecordsFromBaseView(at, rows);
        }
    }

    void removeSome() {
        KSTViewRep& where = view();
        switch (m_input.below(4)) {
            case 0:
                where.removeTagged();
                break;
            case 1:
                where.removeNonTagged();
                break;
            case 2:
                where.deleteTagged();
                break;
            default: {
                // As a source would send it, but with numbers that nobody has.
                const std::string rows = text();
                where.recordsDeletedNotify(NotifyMsg(rows.c_str(), {}));
            }
        }
    }

    void chain() {
        KSTViewRep& where = view();
        switch (m_input.below(5)) {
            case 0:
                where.kst(m_input.below(4) == 0 ? nullptr : m_databases[m_input.below(2)].get());
                break;
            case 1:
                where.init();
                break;
            case 2:
                where.addParamsFrom(anyView());
                where.addParamsFrom(m_databases[m_input.below(2)].get());
                break;
            default:
                where.baseView(anyView());
        }
    }

    void copyView() {
        KSTView& from = handle();
        KSTView made;
        switch (m_input.below(4)) {
            case 0:
                made = from.copy();
                break;
            case 1:
                made = from.copyWithNewBaseView();
                break;
            case 2:
                if (KSTViewRep* const tagged = from->newTagSubview()) made = KSTView(tagged);
                break;
            default:
                made = from;
        }
        if (made) handle() = made;
    }

    void walk() {
        KSTViewCursor cursor(handle(), number(), m_input.below(2) == 0);
        for (unsigned steps = m_input.below(8); steps > 0; --steps) {
            switch (m_input.below(6)) {
                case 0:
                    --cursor;
                    break;
                case 1:
                    cursor.remove();
                    break;
                case 2:
                    cursor.set_index(number());
                    break;
                case 3:
                    cursor.find(database().get_record(row()).get());
                    break;
                case 4:
                    source().delete_records(row(), row());
                    break;
                default:
                    ++cursor;
            }
            if (dbrecord* const record = *cursor) record->get_num_fields();
        }
    }

    void fieldSpec() {
        KSTViewRep& where = view();
        const std::string specification = text();
        where.fieldSpec(m_input.below(8) == 0 ? nullptr : specification.c_str());
        GrowString out;
        where.asString(out);
        where.identityFieldSpec(out);
        where.dbFieldIndex(nullptr);
        where.dbFieldIndex(specification.c_str());
    }

    void mapFields() {
        switch (m_input.below(9)) {
            case 0:
                m_map = FieldMap(handle());
                break;
            case 1:
                m_map = FieldMap(database());
                break;
            case 2:
                m_map.setSourceDb(m_input.below(4) == 0 ? KSTView() : handle());
                break;
            case 3:
                m_map.setVisible(number(), m_input.below(2) == 0);
                m_map.invertVisible(number());
                break;
            case 4: {
                const int at = number();
                const std::string called = name();
                m_map.set(at, called.c_str(), m_input.below(2) == 0);
                break;
            }
            case 5: {
                const int one = number();
                m_map.swap(one, number());
                break;
            }
            case 6:
                m_map.remove(name().c_str());
                break;
            case 7:
                if (m_map.size() < 100) m_map.append(name().c_str(), true);
                break;
            default:
                m_map.clear();
        }
        source().add_param("V5_FIELD_MAP", m_map.asString());
    }

    // --- Whole databases ---

    void merge() {
        kesta& into = database();
        kesta* const from = m_input.below(8) == 0 ? nullptr : m_databases[m_input.below(2)].get();
        if (!roomFor(into)) return;
        if (m_input.below(2) == 0) {
            into.add_kesta(from);
        } else {
            into.merge_all_matching(from);
        }
    }

    void saveAndLoad() {
        iKST& where = source();
        const auto file = Fuzz::folder().wide("operations.log");
        where.set_filename(file);
        where.save_text();
        if (!roomFor(where)) return;
        switch (m_input.below(3)) {
            case 0:
                database().loadFromFile(file, number(), m_input.below(2) == 0);
                break;
            case 1: {
                kesta& into = database();
                into.set_filename(file);
                into.load_text(number());
                break;
            }
            default:
                view().saveOnlyTagged(file);
        }
    }

    void container() {
        const auto file = Fuzz::folder().wide("container");
        std::vector<DBFieldDesc> ended = columns();
        ended.emplace_back();
        ZRContainerFile::Writer writer(ended.data());
        for (unsigned i = m_input.below(4); i > 0; --i) {
            if (dbrecord* const item = writer.addItem(identifier())) item->set_field(number(), "x", true);
        }
        writer.setName(text().c_str());
        writer.setAttrib(text().c_str(), text().c_str());
        writer.save(file);
        const ZRContainerFile::Reader reader(file, m_input.below(4) == 0);
        const auto item = reader.getItem(row());
        item.getAttrib(field(), number());
        reader.contains(identifier());
        reader.getAttrib(text().c_str(), 1.5);
    }

    // A record that a caller keeps, whatever becomes of its row and its database.
    void recordEdit() {
        if (m_input.below(2) == 0) m_record = source().get_record(row());
        if (!m_record) return;
        const int column = number();
        switch (m_input.below(7)) {
            case 0:
                m_record->set_field(column, text().c_str(), m_input.below(2) == 0);
                break;
            case 1:
                m_record->removeField(static_cast<unsigned short>(column));
                break;
            case 2: {
                int fill = 0;
                const int wanted = number();
                m_record->resizeRecord(wanted > 300 ? 300 : wanted, &fill, true);
                break;
            }
            case 3:
                m_record->clear();
                break;
            case 4:
                *m_record = dbrecord(static_cast<unsigned short>(m_input.below(8)));
                break;
            case 5:
                m_record->set_container(m_input.below(2) == 0 ? nullptr : &database());
                break;
            default:
                m_record->set_tag(m_input.byte());
        }
    }

    // A database goes under the views that stand on it.
    void renewDatabase() {
        DatabasePtr& changed = m_databases[m_input.below(2)];
        switch (m_input.below(4)) {
            case 0:
                changed->free();
                break;
            case 1:
                changed->setFields(columns());
                break;
            case 2:
                changed = DatabasePtr(new kesta(*changed, static_cast<int>(m_input.below(2))));
                break;
            default:
                rebuildViews();
        }
    }

    // --- What must hold at all times ---

    void check() {
        for (const DatabasePtr& each : m_databases) checkSource(*each);
        for (const KSTView& each : m_views) {
            checkSource(*each);
            Fuzz::promise(each->useCount() > 0);
            Fuzz::promise(each->countTags() == each->get_num_tags());
        }
        Fuzz::promise(m_map.numVisible() <= m_map.size());
        m_map.getVisibleFieldIndex(0);
    }

    static void checkSource(iKST& where) {
        const unsigned rows = where.get_num_records();
        const unsigned fields = where.get_num_fields();
        Fuzz::promise(where.get_num_tags() <= static_cast<int>(rows));
        // Records may be missing, and may have other fields than the columns: their owners changed them.
        for (unsigned row = 0; row < rows && row < 10; ++row) {
            const Zr::Ptr<dbrecord> record = where.get_record(row);
            for (unsigned short field = 0; field < fields && field < 5; ++field) {
                const Fuzz::Text& text = where.getField(row, field);
                Fuzz::promise(record ? text == record->getField(field) : text.empty());
            }
        }
        Fuzz::promise(!where.get_record(rows) && where.getField(rows, 0).empty());
        Fuzz::promise(!where.get_fieldname(fields) || *where.get_fieldname(fields) == '\0');
    }

    Fuzz::Input& m_input;
    std::array<DatabasePtr, 2> m_databases;
    std::vector<KSTView> m_views;  // never an empty one
    FieldMap m_map;
    Zr::Ptr<dbrecord> m_record;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    World(input).run();
    return 0;
}
