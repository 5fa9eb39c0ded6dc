// Any sequence of the public operations, with good and bad arguments: over a database, a chain of
// two views on it, views beside them, a field map and a second database; by listeners, too, while they are
// told of something else. What they return must agree with itself.
#include <array>
#include <utility>
#include <vector>

#include "fieldmap/FieldMap.h"
#include "fuzz/Fuzz.h"
#include "record/kesta.h"
#include "support/GrowString.h"
#include "view/KSTView.h"
#include "view/KSTViewCursor.h"

namespace {

using DatabasePtr = Zr::Ptr<kesta>;

constexpr int mostRows = 500;  // more would only be slow
constexpr int mostSteps = 150;
constexpr int stepsPerCheck = 8;

const std::vector<DBFieldDesc> columns = {{"Name", DBFieldTypes::eText},
                                          {"Start time", DBFieldTypes::eTimecode},
                                          {"End time", DBFieldTypes::eTimecodeS},
                                          {"Cookie", DBFieldTypes::eTextS},
                                          {"Tag", DBFieldTypes::eNumeric}};

/// Two databases, views on them, and the arguments that the input gives their operations.
class World {
 public:
    explicit World(Fuzz::Input& in) : input(in) {
        for (DatabasePtr& each : databases) {
            each = DatabasePtr(new kesta(columns));
            each->add_param("Title", "Low Water");
            // Views note what goes in another way when they are long.
            each->add_records(static_cast<int>(input.below(8) == 0 ? 400 : input.below(12)));
            listenTo(*each);
        }
        renewViews();
    }

    void run() {
        while (m_steps < mostSteps && !input.empty()) {
            step();
            if (m_steps % stepsPerCheck == 0) check();
        }
        check();
    }

    // --- Arguments ---

    /// A size_t below `bound`.
    std::size_t pick(std::size_t bound) { return input.below(static_cast<unsigned>(bound)); }

    /// True rarely.
    bool seldom() { return input.below(8) == 0; }
    bool flag() { return input.below(2) == 0; }
    int number() { return input.number(); }
    unsigned row() { return static_cast<unsigned>(number()); }
    unsigned field() { return static_cast<unsigned>(number()); }

    /// How many rows to make: anything but what would merely use up memory.
    int count() { return std::min(number(), 300); }

    DBFieldTypes::eType type() { return static_cast<DBFieldTypes::eType>(input.byte()); }
    Fuzz::Text text() { return Fuzz::Text(input.text()); }

    /// A column's name, mostly.
    Fuzz::Text name() {
        const std::size_t which = pick(12);
        return which < columns.size() ? columns[which].name : text();
    }

    Cookie identifier() {
        Zr::UUID uuid;
        uuid.bytes[0] = static_cast<std::uint8_t>(input.below(8));
        return Cookie(uuid, flag() ? 'I' : 'M', 1);
    }

    CookieVec identifiers() {
        CookieVec ids;
        for (std::size_t i = pick(5); i > 0; --i) ids.push_back(identifier());
        return ids;
    }

    CookieSet identifierSet() {
        CookieSet set;
        for (const Cookie& id : identifiers()) set.add(id);
        return set;
    }

    kesta& database() { return *databases[pick(2)]; }
    KSTView& handle() { return views[pick(views.size())]; }
    KSTViewRep& view() { return *handle(); }

    /// A view, or null.
    KSTViewRep* anyView() { return seldom() ? nullptr : handle().rep(); }

    /// A database, or null.
    kesta* anyDatabase() { return seldom() ? nullptr : &database(); }

    /// A database or a view on one.
    iKST& source() {
        const std::size_t which = pick(2 + views.size());
        return which < 2 ? static_cast<iKST&>(*databases[which]) : *views[which - 2];
    }

    LightweightString<wchar_t> file() { return Fuzz::folder().wide("operations.log"); }

    // --- What takes more than a line ---

    void renewViews() {
        kesta* const log = databases[0].get();
        const char* names[] = {"Name", "nothing", nullptr};
        std::vector<KSTView> renewed = {
            KSTView(new KSTViewRep(log)), KSTView(new KSTViewRep(log, "Name\tCookie")),
            KSTView(new KSTViewRep(log, names)), KSTView(new KSTViewRep(databases[1].get()))};
        renewed[1]->baseView(renewed[0].rep());
        for (const KSTView& each : renewed) {
            each->displayAllRecords();
            listenTo(*each);
        }
        views.swap(renewed);
    }

    /// Puts a view in another's place. Null does nothing.
    void renewView(KSTViewRep* made) {
        if (!made) return;
        listenTo(*made);
        handle() = KSTView(made);
    }

    void renewDatabase(DatabasePtr made) {
        listenTo(*made);
        databases[pick(2)] = std::move(made);
    }

    void sort(iKST& where) {
        int fields[12];
        for (int& key : fields) key = number();
        fields[11] = -1;
        where.set_sortfields(seldom() ? nullptr : fields);
        where.sort(number(), number());
    }

    // What is sorted satisfies the exported comparators.
    void sortDatabase(kesta& where) {
        const int direction = number();
        where.set_sortfield(number());
        where.sort(direction, number());
        if (where.get_show_tags_only() != 0) return;
        for (unsigned row = 1; row < where.get_num_records(); ++row) {
            Zr::Ptr<dbrecord> before = where.get_record(row - 1);
            Zr::Ptr<dbrecord> after = where.get_record(row);
            const auto compare = direction < 0 ? dbr_backcmp : dbr_cmp;
            Fuzz::promise(before ? !after || compare(&before, &after) <= 0 : !after);
        }
    }

    void tagMatching(iKST& where) {
        const int matches = where.tag_matching_records(0);
        Fuzz::promise(matches == 0 || matches == where.get_num_tags());
    }

    void tagDifferent(iKST& where) {
        const int different = where.tag_all_different(number());
        Fuzz::promise(different == where.get_num_tags());
    }

    void query(kesta& where) {
        std::vector<TextSearch::Criteria> criteria(pick(8));
        for (TextSearch::Criteria& each : criteria) {
            each.add(TextSearch::Criterion(text(), static_cast<TextSearch::eMatchMethod>(number())));
        }
        where.setQuery(criteria);
    }

    void queryRecord(iKST& where) {
        const Zr::Ptr<dbrecord> wanted(new dbrecord(static_cast<unsigned short>(pick(8))));
        for (int i = 0; i < wanted->get_num_fields(); ++i) wanted->set_field(i, text().c_str(), true);
        where.set_query(seldom() ? nullptr : wanted.get());
    }

    // Everything that only reads, with arguments that may be bad.
    void look(iKST& where, unsigned row, unsigned field, const Fuzz::Text& text) {
        char characters[9];
        int whole = 0;
        double real = 0;
        bool truth = false;
        if (where.in_field(row, field, characters, std::min(number(), 8))) {
            const std::string_view copied(characters);
            Fuzz::promise(where.getField(row, field).view().substr(0, copied.size()) == copied);
        }
        where.in_field(row, field, nullptr, 8);
        where.in_field(row, field, whole);
        where.in_field(row, field, real);
        where.in_field(row, field, truth);
        where.get_fieldsize(field);
        where.get_fieldtype(field);
        where.get_fieldnum(text);
        where.baseIndex(static_cast<int>(row));
        where.match_record(static_cast<int>(row));
        where.findFirst(flag() ? name().c_str() : nullptr, text.c_str(), whole);
        Fuzz::promise(where.get_param_val(nullptr) && where.get_param_val(text.c_str()));
    }

    void walk() {
        KSTViewCursor cursor(handle(), number(), flag());
        for (std::size_t steps = pick(8); steps > 0; --steps) {
            const std::size_t what = pick(6);
            if (what == 0) --cursor;
            if (what == 1) cursor.remove();
            if (what == 2) cursor.set_index(number());
            if (what == 3) cursor.find(database().get_record(row()).get());
            if (what == 4) step();
            if (what == 5) ++cursor;
            if (dbrecord* const found = *cursor) Fuzz::promise(found->get_num_fields() <= 65535);
        }
    }

    Fuzz::Input& input;
    std::array<DatabasePtr, 2> databases;
    std::vector<KSTView> views;  // never an empty one
    FieldMap map;
    GrowString out;
    std::vector<Zr::Ptr<Zr::Guard>> guards;
    bool ambush = false;  // whether the next listener that is told of something does a step of its own
    Zr::Ptr<dbrecord> record = Zr::Ptr<dbrecord>(new dbrecord(3));  // kept, whatever becomes of its row

 private:
    void step();

    /// Whether nothing has grown too much; what has is cut down.
    bool isSmall() {
        bool cut = false;
        for (const DatabasePtr& each : databases) {
            if (each->get_num_records() < mostRows) continue;
            each->set_show_tags_only(0);
            each->delete_records(10, mostRows * mostSteps);
            cut = true;
        }
        for (const KSTView& each : views) {
            if (each->get_num_records() < mostRows) continue;
            each->remove(10, mostRows * mostSteps);
            cut = true;
        }
        return !cut;
    }

    void listenTo(Notifier& notifier) {
        const auto stepWhenAmbushed = [this](const NotifyMsg&) {
            if (std::exchange(ambush, false)) step();
            return 0;
        };
        for (const char* const name : {"recordsDeleted", "recordsChanged"}) {
            const auto type = NotifyMsgTypeDictionary::instance().intern(name);
            guards.push_back(notifier.registerNotification(type, stepWhenAmbushed));
        }
    }

    // --- What must hold at all times ---

    void check() {
        for (const DatabasePtr& each : databases) checkSource(*each);
        for (const KSTView& each : views) {
            Fuzz::promise(each->useCount() > 0);
            checkSource(*each);
            checkTags(*each);
            checkRows(*each);
        }
        Fuzz::promise(map.numVisible() <= map.size());
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

    static void checkTags(KSTViewRep& view) {
        if (view.get_num_records() > 50) return;  // it would take most of the time
        int tags = 0;
        for (int row = 0; row < static_cast<int>(view.get_num_records()); ++row) {
            const bool tagged = view.tag(row);
            Fuzz::promise(tagged != view.notTagged(row) && tagged == (view.get_tag(unsigned(row)) != 0));
            tags += tagged && view.db();  // without a source nothing counts
        }
        Fuzz::promise(tags == view.countTags() && tags == view.get_num_tags());
    }

    // A record is found again where the view shows it first, and in the database below at its base index.
    static void checkRows(KSTViewRep& view) {
        iKST* bottom = view.db();
        while (auto* const base = dynamic_cast<KSTViewRep*>(bottom)) bottom = base->db();
        for (int row = 0; row < static_cast<int>(view.get_num_records()) && row < 10; ++row) {
            dbrecord* const record = view[row];
            Fuzz::promise(record == view.get_record(static_cast<unsigned>(row)).get());
            if (!record) continue;
            const int baseRow = view.baseIndex(row);
            Fuzz::promise(bottom && bottom->get_record(static_cast<unsigned>(baseRow)).get() == record);
            const int found = view.find(record);
            Fuzz::promise(found >= 0 && found <= row && view[found] == record);
            if (view.db() != bottom) continue;
            const auto shown = static_cast<int>(view.findViewIndexForBaseRow(static_cast<unsigned>(baseRow)));
            Fuzz::promise(shown >= 0 && shown <= row && view.baseIndex(shown) == baseRow);
        }
    }

    int m_steps = 0;
};

using Operation = void (*)(World&);

// Some stand here twice or more: others depend on them.
constexpr Operation operations[] = {
    // Fields.
    [](World& w) { w.source().set_field(w.row(), w.field(), w.text().c_str()); },
    [](World& w) { w.source().set_field(w.row(), w.field(), w.text().c_str()); },
    [](World& w) { w.source().set_field(w.row(), w.field(), w.number()); },
    [](World& w) { w.source().set_field(w.row(), w.field(), static_cast<double>(w.number()) * 1e300); },
    [](World& w) { w.source().set_field(w.row(), w.identifier()); },
    [](World& w) { w.database().setField(w.row(), w.field(), w.text()); },
    [](World& w) { w.look(w.source(), w.row(), w.field(), w.text()); },

    // Rows.
    [](World& w) { w.source().add_records(w.count()); },
    [](World& w) { w.source().insert_records(w.row(), w.input.below(32)); },
    [](World& w) { w.database().addRecord(w.identifier()); },
    [](World& w) { w.source().delete_records(w.row(), w.row()); },
    [](World& w) { w.source().delete_records(w.row(), w.row()); },
    [](World& w) { w.source().delete_tagged_records(); },
    [](World& w) { w.database().clear_changed(); },

    // Records that are kept outside.
    [](World& w) {
        if (auto kept = w.source().get_record(w.row())) w.record = kept;
    },
    [](World& w) { w.record->set_field(w.number(), w.text().c_str(), w.flag()); },
    [](World& w) { w.record->removeField(static_cast<unsigned short>(w.field())); },
    [](World& w) {
        int fill = 0;
        w.record->resizeRecord(w.count(), &fill, true);
    },
    [](World& w) { w.record->clear(); },
    [](World& w) { *w.record = dbrecord(static_cast<unsigned short>(w.pick(8))); },
    [](World& w) { w.record->set_container(w.anyDatabase()); },

    // Tags.
    [](World& w) { w.source().set_tag(w.row(), w.number()); },
    [](World& w) { w.source().set_tag(w.row(), 1); },
    [](World& w) { w.source().invert_tag(w.row()); },
    [](World& w) { w.source().set_all_tags(w.number()); },
    [](World& w) { w.source().invert_all_tags(); },
    [](World& w) {
        iKST& s = w.source();
        for (unsigned row = 0; row < mostRows; row += 3) s.set_tag(row, 1);
    },
    [](World& w) { w.source().set_show_tags_only(w.flag()); },
    [](World& w) { w.database().set_show_tags_only(w.flag()); },
    [](World& w) { w.database().index_tags(); },
    [](World& w) { w.database().get_new_row(w.row()); },
    [](World& w) { w.database().get_raw_row(w.row()); },
    [](World& w) { w.view().tagAll(w.flag()); },
    [](World& w) { w.view().tagDuplicatesOrdered(w.number()); },
    [](World& w) { w.view().tagDuplicates(w.number()); },
    [](World& w) { w.view().tagBaseFromTags(); },

    // Order and queries.
    [](World& w) { w.sort(w.source()); },
    [](World& w) { w.sortDatabase(w.database()); },
    [](World& w) { w.query(w.database()); },
    [](World& w) { w.queryRecord(w.source()); },
    [](World& w) { w.source().tag_matching_records(w.number()); },
    [](World& w) { w.tagMatching(w.source()); },
    [](World& w) { w.tagDifferent(w.source()); },
    [](World& w) { w.view().tagMatches(w.number()); },
    [](World& w) { w.database().get_record(w.identifier()); },

    // Columns.
    [](World& w) {
        if (w.database().get_num_fields() < 40) w.database().addField({w.name(), w.type()});
    },
    [](World& w) { w.database().removeField(w.name()); },
    [](World& w) { w.source().set_fieldname(w.field(), w.name().c_str()); },
    [](World& w) { w.source().set_fieldtype(w.field(), w.type()); },
    [](World& w) { w.view().fieldSpec(w.text().c_str()); },
    [](World& w) { w.view().asString(w.out); },
    [](World& w) { w.view().identityFieldSpec(w.out); },
    [](World& w) { w.view().dbFieldIndex(w.seldom() ? nullptr : w.name().c_str()); },

    // Parameters.
    [](World& w) { w.source().add_param(w.text(), w.text()); },
    [](World& w) { w.source().set_param_val(w.text().c_str(), nullptr); },
    [](World& w) { w.view().addParamsFrom(w.anyView()); },
    [](World& w) { w.view().addParamsFrom(w.anyDatabase()); },

    // What views show.
    [](World& w) { w.view().displayRecordsAt(w.number(), w.number(), w.number()); },
    [](World& w) { w.view().displayMatchAt(w.name().c_str(), w.text().c_str(), w.number()); },
    [](World& w) { w.view().displayTaggedRecordsAt(w.number()); },
    [](World& w) { w.view().displayAllFromAt(w.anyView(), w.number()); },
    [](World& w) { w.view().insertBlankRecords(w.number(), w.count()); },
    [](World& w) { w.view().displayRecordsAt(w.identifiers(), w.number()); },
    [](World& w) { w.view().displayRecordsAt(w.identifierSet(), w.number()); },
    [](World& w) { w.view().displayAllRecords(); },
    [](World& w) { w.view().displayAllRecordsWithBaseTagStatus(); },
    [](World& w) { w.view().setupViewTagsFromKestaTagField(); },
    [](World& w) { w.view().buildIndex(); },
    [](World& w) { w.view().clear(); },
    [](World& w) { w.view().remove(w.number(), w.number()); },
    [](World& w) { w.view().deleteRecords(w.number(), w.number()); },
    [](World& w) { w.view().removeRecordsFromBaseView(w.number(), w.number()); },
    [](World& w) { w.view().removeTagged(); },
    [](World& w) { w.view().removeNonTagged(); },
    [](World& w) { w.view().deleteTagged(); },
    // As a source would send it, but with numbers that nobody has.
    [](World& w) { w.view().recordsDeletedNotify(NotifyMsg(w.text(), {})); },

    // What views stand on.
    [](World& w) { w.view().kst(w.anyDatabase()); },
    [](World& w) { w.view().baseView(w.anyView()); },
    [](World& w) { w.view().baseView(w.anyView()); },
    [](World& w) { w.renewView(w.view().copy()); },
    [](World& w) { w.renewView(w.view().copyWithNewBaseView()); },
    [](World& w) { w.renewView(w.view().newTagSubview()); },
    [](World& w) { w.renewView(&w.view()); },
    [](World& w) { w.renewViews(); },
    [](World& w) { w.walk(); },
    [](World& w) { w.walk(); },

    // The field map.
    [](World& w) { w.map = FieldMap(w.handle()); },
    [](World& w) { w.map = FieldMap(w.database()); },
    [](World& w) { w.map.setSourceDb(w.seldom() ? KSTView() : w.handle()); },
    [](World& w) { w.map.setVisible(w.number(), w.flag()); },
    [](World& w) { w.map.swap(w.number(), w.number()); },
    [](World& w) { w.map.getVisibleFieldIndex(w.number()); },
    [](World& w) { w.source().add_param("V5_FIELD_MAP", w.map.asString()); },

    // Whole databases, also from under the views that stand on them.
    [](World& w) { w.database().add_kesta(w.anyDatabase()); },
    [](World& w) { w.database().merge_all_matching(w.anyDatabase()); },
    [](World& w) { w.source().set_filename(w.file()); },
    [](World& w) { w.source().save_text(); },
    [](World& w) { w.database().save_text_without_header(); },
    [](World& w) { w.view().saveAsText(w.file(), w.flag()); },
    [](World& w) { w.view().saveOnlyTagged(w.file()); },
    [](World& w) { w.database().loadFromFile(w.file(), w.count(), w.flag()); },
    [](World& w) { w.database().load_text(w.count()); },
    [](World& w) { w.database().free(); },
    [](World& w) { w.database().init(); },
    [](World& w) { w.database().post_init(); },
    [](World& w) { w.database().setFields(columns); },
    [](World& w) { w.renewDatabase(DatabasePtr(new kesta(w.database(), w.flag()))); },

    // Listeners.
    [](World& w) { w.ambush = true; },
    [](World& w) { w.ambush = true; },
    [](World& w) { w.ambush = true; },
    [](World& w) { w.guards.clear(); },
};

void World::step() {
    if (++m_steps > mostSteps || !isSmall()) return;
    operations[pick(std::size(operations))](*this);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    World(input).run();
    return 0;
}
