// Any sequence of operations on columns, records, tags and identifiers, against a model of what they do.
#include <map>
#include <random>

#include "support/Ascii.h"
#include "support/Cookie.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace {

constexpr unsigned none = 0xFFFFFFFF;

struct Row {
    bool exists = true;
    Fields fields;
    unsigned tag = 0;
    bool changed = false;
};

const Row noRow = {false, {}, 0, false};

// The database, and what it should hold.
class Operations {
 public:
    explicit Operations(unsigned seed) : m_random(seed), m_heard(m_database) {}

    testing::AssertionResult run(unsigned steps) {
        for (unsigned step = 0; step < steps; ++step) {
            m_heard.clear();
            m_told.clear();
            m_answer = m_expected = "";
            operate();
            if (auto result = same(actualState(), expectedState()); !result) {
                return result << "\nafter step " << step << ", " << m_operation;
            }
        }
        return testing::AssertionSuccess();
    }

 private:
    void operate() {
        static constexpr std::pair<const char*, void (Operations::*)()> all[] = {
            {"insert_records", &Operations::insertRecords},
            {"add_records", &Operations::addRecords},
            {"delete_records", &Operations::deleteRecords},
            {"delete_tagged_records", &Operations::deleteTagged},
            {"addField", &Operations::addField},
            {"removeField", &Operations::removeField},
            {"set_fieldname", &Operations::setFieldName},
            {"set_tag", &Operations::setTag},
            {"invert_tag", &Operations::invertTag},
            {"set_all_tags", &Operations::setAllTags},
            {"invert_all_tags", &Operations::invertAllTags},
            {"set_field identifier", &Operations::setIdentifier},
            {"addRecord", &Operations::addRecord},
            {"getRowIndexByID", &Operations::findIdentifier},
            {"clear_changed", &Operations::clearChanged},
            {"set_show_tags_only", &Operations::showTagsOnly},
            {"set_field or setField", &Operations::storeText}};
        const auto& [name, operation] = all[random(std::size(all))];
        m_operation = name;
        (this->*operation)();
    }

    // --- Arguments; they are noted beside the operation's name ---

    unsigned random(std::size_t bound) { return static_cast<unsigned>(m_random() % bound); }

    template <class Argument>
    Argument noted(const Argument& argument) {
        m_operation += ' ' + testing::PrintToString(argument);
        return argument;
    }

    unsigned number(std::size_t bound) { return noted(random(bound)); }
    unsigned anyRow() { return noted(random(40) == 0 ? none : random(m_rows.size() + 2)); }
    unsigned anyField() { return number(m_names.size() + 1); }

    std::string anyName() {
        static const char* const names[] = {"Name",    "Reel",   "reel",      "Cookie",     "COOKIE", "",
                                            "snd end", "Sc&ene", "Snd Start", "Start time", "scene"};
        return noted(std::string(names[random(std::size(names))]));
    }

    std::string anyText() {
        static const char* const texts[] = {"", "a", "B", "  b", "ab", "A b ", "c", "\xA0x", " \t\n\v\f\r "};
        return noted(std::string(texts[random(std::size(texts))]));
    }

    // --- The operations ---

    void insertRecords() {
        const unsigned at = anyRow();
        const unsigned count = number(4);
        m_database.insert_records(at, count);
        if (m_taggedOnly || at > m_rows.size()) return;
        m_rows.insert(m_rows.begin() + at, count, noRow);
        if (count != 0) m_rows[at] = newRow();  // deliberately the one record of the whole room
        m_index.clear();
    }

    void addRecords() {
        int count = static_cast<int>(number(5)) - 1;
        answers(m_database.add_records(count), m_taggedOnly ? none : rowCount());
        if (m_taggedOnly) return;
        for (; count > 0; --count) m_rows.push_back(newRow());
        m_index.clear();
    }

    void deleteRecords() {
        const unsigned first = anyRow();
        const unsigned count = noted(random(8) == 0 ? none : random(4));
        m_database.delete_records(first, count);
        if (!m_taggedOnly && first < rowCount()) remove(first, std::min(count, rowCount() - first));
    }

    void deleteTagged() {
        const unsigned deleted = m_database.delete_tagged_records();
        if (m_taggedOnly) return answers(deleted, none);
        const unsigned before = rowCount();
        for (unsigned row = 0; row < rowCount(); ++row) {
            unsigned end = row;
            while (end < rowCount() && m_rows[end].exists && m_rows[end].tag == 1) ++end;
            if (end != row) remove(row, end - row);
        }
        answers(deleted, before - rowCount());
    }

    void remove(unsigned first, unsigned count) {
        m_index.clear();
        if (count == 0) return;
        std::string told;
        for (unsigned row = first; row < first + count; ++row) told += std::to_string(row) + ' ';
        m_told.push_back(told);
        m_rows.erase(m_rows.begin() + first, m_rows.begin() + first + count);
        m_changed = true;
    }

    void addField() {
        const std::string name = anyName();
        const unsigned known = fieldOf(name);
        const auto count = static_cast<unsigned>(m_names.size());
        if (known == none && count > 6) return;
        answers(m_database.addField({text(name), DBFieldTypes::eText}), known == none ? count : known);
        if (known != none) return;
        m_names.push_back(name);
        for (Row& row : m_rows) row.fields.resize(row.exists ? m_names.size() : 0);
    }

    void removeField() {
        const std::string name = anyName();
        m_database.removeField(text(name));
        const unsigned field = fieldOf(name);
        if (field == none) return;
        m_names.erase(m_names.begin() + field);
        for (Row& row : m_rows) {
            if (row.exists) row.fields.erase(row.fields.begin() + field);
        }
    }

    void setFieldName() {
        const unsigned field = anyField();
        std::string name = anyName();
        answers(m_database.set_fieldname(field, name.c_str()), field < m_names.size());
        name.erase(std::remove(name.begin(), name.end(), '&'), name.end());
        if (field < m_names.size()) m_names[field] = name;
    }

    void setTag() {
        const unsigned row = anyRow();
        const unsigned value = number(3) * 129;  // cut to a byte
        m_database.set_tag(row, static_cast<int>(value));
        if (Row* const found = shownRow(row)) found->tag = value % 256;
    }

    void invertTag() {
        const unsigned row = anyRow();
        m_database.invert_tag(row);
        if (Row* const found = shownRow(row)) found->tag = found->tag == 0 ? 1 : 0;
    }

    void setAllTags() {
        const unsigned value = number(3);
        m_database.set_all_tags(static_cast<int>(value));
        for (Row& row : m_rows) row.tag = m_taggedOnly ? row.tag : value;
    }

    void invertAllTags() {
        m_database.invert_all_tags();
        for (Row& row : m_rows) row.tag = row.tag == 0 ? 1 : 0;
    }

    void setIdentifier() {
        const unsigned row = anyRow();
        const std::string id = anyText();
        const unsigned field = fieldOf("cookie");
        Row* const found = field == none ? nullptr : shownRow(row);
        const bool stored = m_database.set_field(row, Cookie(id.c_str(), false));
        if (!found) return answers(stored, false);
        store(*found, field, idText(id));
        m_index[idText(id)] = row;  // even into an index that was never built
        answers(std::pair(stored, m_database.getRowIndexByID(Cookie(id.c_str(), false))),
                std::pair(true, row));
    }

    void addRecord() {
        const std::string id = anyText();
        const Zr::Ptr<dbrecord> added = m_database.addRecord(Cookie(id.c_str(), false));
        m_rows.push_back(newRow());
        if (const unsigned field = fieldOf("cookie"); field != none) {
            store(m_rows.back(), field, idText(id));
            if (!m_index.empty()) m_index.try_emplace(idText(id), rowCount() - 1);
        }
        answers(fieldsOf(*added), m_rows.back().fields);
    }

    void findIdentifier() {
        const std::string id = anyText();
        const unsigned row = rowOf(id);
        const Zr::Ptr<dbrecord> record = m_database.get_record(Cookie(id.c_str(), false));
        const bool exists = row < rowCount() && m_rows[row].exists;
        answers(std::pair(m_database.getRowIndexByID(Cookie(id.c_str(), false)),
                          record ? fieldsOf(*record) : Fields{"no record"}),
                std::pair(row, exists ? m_rows[row].fields : Fields{"no record"}));
    }

    void clearChanged() {
        m_database.clear_changed();
        for (Row& row : m_rows) row.changed = false;
        m_changed = false;
    }

    void showTagsOnly() {
        m_taggedOnly = number(4) == 0;
        m_database.set_show_tags_only(m_taggedOnly);
    }

    // Storing a text trims it and always marks the record; a string marks it when it differs.
    void storeText() {
        const bool asText = number(2) == 0;
        const unsigned row = anyRow();
        const unsigned field = anyField();
        const std::string value = anyText();
        Row* const found = field < m_names.size() ? shownRow(row) : nullptr;
        answers(asText ? m_database.set_field(row, field, value.c_str()) == 1
                       : m_database.setField(row, field, text(value)),
                found != nullptr);
        if (!found) return;
        store(*found, field, asText ? std::string(Ascii::withoutLeadingSpace(value)) : value);
        if (asText) found->changed = m_changed = true;
    }

    // --- The model ---

    template <class Answer>
    void answers(const Answer& actual, const Answer& expected) {
        m_answer = testing::PrintToString(actual);
        m_expected = testing::PrintToString(expected);
    }

    unsigned rowCount() const { return static_cast<unsigned>(m_rows.size()); }
    Row newRow() const { return {true, Fields(m_names.size()), 0, false}; }

    // A database of no derived class shows no rows while it shows tags only.
    Row* shownRow(unsigned row) {
        return !m_taggedOnly && row < m_rows.size() && m_rows[row].exists ? &m_rows[row] : nullptr;
    }

    unsigned fieldOf(std::string_view name) const {
        const auto found = std::find_if(m_names.begin(), m_names.end(), [&](const std::string& known) {
            return !name.empty() && Ascii::equalFolded(known, name);
        });
        return found == m_names.end() ? none : static_cast<unsigned>(found - m_names.begin());
    }

    void store(Row& row, unsigned field, const std::string& value) {
        if (row.fields[field] == value) return;
        row.fields[field] = value;
        row.changed = m_changed = true;
    }

    static std::string idText(const std::string& text) {
        return str(Cookie(text.c_str(), false).asString(false));
    }

    // The index is built when it is found empty, and stands until an operation empties it.
    unsigned rowOf(const std::string& id) {
        const unsigned field = fieldOf("cookie");
        const bool builds = m_index.empty() && field != none && !m_taggedOnly;
        for (unsigned row = 0; builds && row < rowCount(); ++row) {
            m_index.try_emplace(idText(m_rows[row].exists ? m_rows[row].fields[field] : ""), row);
        }
        const auto found = m_index.find(idText(id));
        return found == m_index.end() ? none : found->second;
    }

    // --- What there is to see of both ---

    using State = std::vector<std::string>;

    State actualState() {
        const kesta& database = m_database;
        State state = {
            stateOf(m_answer, m_database.get_changed(), m_database.get_num_tags(), m_heard.texts())};
        for (unsigned field = 0; field < database.get_num_fields(); ++field) {
            state.push_back(columnState(database.get_fieldname(field), database.isSpecialLabelField(field)));
        }
        for (unsigned row = 0; row < database.get_num_records(); ++row) {
            const Zr::Ptr<dbrecord> record = database.get_record(row);
            state.push_back(rowState(
                record ? Row{true, fieldsOf(*record), record->get_tag(), record->get_changed()} : noRow));
        }
        return state;
    }

    State expectedState() {
        const auto tagged = std::count_if(m_rows.begin(), m_rows.end(),
                                          [](const Row& row) { return !row.exists || row.tag != 0; });
        State state = {stateOf(m_expected, m_changed, m_taggedOnly ? 0 : tagged, m_told)};
        for (const std::string& name : m_names) {
            state.push_back(columnState(name, name == "Start time" || name == "snd end"));
        }
        for (unsigned row = 0; row < rowCount() && !m_taggedOnly; ++row) {
            state.push_back(rowState(m_rows[row]));
        }
        return state;
    }

    static std::string stateOf(const std::string& answer, bool changed, long tags, const State& told) {
        return "answer " + answer + ", changed " + std::to_string(changed) + ", tags " +
               std::to_string(tags) + ", told " + testing::PrintToString(told);
    }

    static std::string columnState(const std::string& name, bool isLabel) {
        return "column " + name + (isLabel ? ", label" : "");
    }

    static std::string rowState(const Row& row) {
        if (!row.exists) return "no record";
        return (row.changed ? "changed, tag " : "tag ") + std::to_string(row.tag) + ", " +
               testing::PrintToString(row.fields);
    }

    std::mt19937 m_random;
    kesta m_database{textColumns({"Name", "Cookie"})};
    CapturedNotifications m_heard;
    Fields m_names = {"Name", "Cookie"};
    std::vector<Row> m_rows;
    std::map<std::string, unsigned> m_index;
    State m_told;
    bool m_changed = false;
    bool m_taggedOnly = false;
    std::string m_operation;
    std::string m_answer;
    std::string m_expected;
};

}  // namespace

TEST(DatabaseOperations, AgreeWithTheModelInAnyOrder) {
    for (unsigned seed = 1; seed <= 40; ++seed) ASSERT_TRUE(Operations(seed).run(400)) << "seed " << seed;
}
