// Field maps. Any text as their parameter is read as a slow reader does, and what a map writes the next one
// reads. Any sequence of their operations does what it does to a plain list. The first byte says which.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "fieldmap/FieldMap.h"
#include "fuzz/Fuzz.h"
#include "record/kesta.h"

namespace {

constexpr const char* parameter = "V5_FIELD_MAP";

Fuzz::Text columnName(unsigned number) {
    return Zr::StringFromInteger(static_cast<int>(number));
}

/// A database with columns "1", "2" ...
std::vector<DBFieldDesc> columns(unsigned count) {
    std::vector<DBFieldDesc> made;
    for (unsigned number = 1; number <= count; ++number) {
        made.emplace_back(columnName(number), DBFieldTypes::eText);
    }
    return made;
}

using Column = std::pair<std::string, bool>;

int find(const std::vector<Column>& columns, const Fuzz::Text& name) {
    const auto isIt = [&](const Column& each) { return name.icompare(each.first.c_str()) == 0; };
    const auto found = std::find_if(columns.begin(), columns.end(), isIt);
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

/// What a database with so many columns has in its map when the parameter is `text`.
std::vector<Column> readText(const std::string& text, unsigned columnCount) {
    std::vector<Column> read;
    const auto append = [&](unsigned number, bool visible) {
        const Fuzz::Text name = number <= columnCount ? columnName(number) : Fuzz::Text();
        if (find(read, name) < 0) read.emplace_back(Fuzz::str(name), visible);
    };
    std::size_t at = 0;
    for (int number = 0; std::sscanf(text.substr(at, 3).c_str(), "%d", &number) == 1;) {
        if (number != 0) append(static_cast<unsigned>(std::abs(number)), number > 0);
        const std::size_t before = at;
        while (at < text.size() && std::string_view("-0123456789").find(text[at]) != std::string_view::npos) {
            ++at;
        }
        if (at < text.size() && text[at] == ' ') ++at;
        if (at == before) break;
    }
    if (!read.empty()) return read;
    for (unsigned number = 1; number <= columnCount; ++number) append(number, true);
    return read;
}

void check(const FieldMap& map, const std::vector<Column>& expected) {
    Fuzz::promise(map.size() == static_cast<int>(expected.size()));
    for (int i = 0; i < map.size(); ++i) {
        const auto& [name, visible] = expected[static_cast<std::size_t>(i)];
        Fuzz::promise(map[i] == name.c_str() && map.isVisible(i) == visible);
    }
}

void parameterText(Fuzz::Input& input) {
    const unsigned columnCount = input.byte();
    kesta log(columns(columnCount));
    const std::string text = input.rest().c_str();
    log.add_param(parameter, text.c_str());
    FieldMap map(log);
    check(map, readText(text, columnCount));

    for (int i = 0; i < map.size(); ++i) {
        // Hidden columns past the 99th do not fit into the text.
        if (!map.isVisible(i) && log.get_fieldnum(map.getName(i)) >= 99) map.setVisible(i, true);
    }
    map.remove("");  // numbers of columns that are not there
    if (map.size() == 0) return;
    log.add_param(parameter, map.asString());
    const FieldMap again(log);
    Fuzz::promise(again.size() == map.size() && again.asString() == map.asString());
    for (int i = 0; i < map.size(); ++i) {
        Fuzz::promise(again[i] == map[i] && again.isVisible(i) == map.isVisible(i));
    }
}

/// A map and the list that it is.
class Pair {
 public:
    Pair(kesta& log, Fuzz::Input& input)
        : m_log(log), m_map(log), m_model(readText("", log.get_num_fields())), m_input(input) {}

    void run() {
        while (!m_input.empty()) {
            step();
            compare();
        }
    }

 private:
    Fuzz::Text name() {
        return m_input.below(8) == 0 ? Fuzz::Text(m_input.text().c_str()) : columnName(m_input.below(16));
    }

    Column* at(int i) {
        return i >= 0 && i < static_cast<int>(m_model.size()) ? &m_model[static_cast<std::size_t>(i)]
                                                              : nullptr;
    }

    void step() {
        const int i = m_input.number();
        const Fuzz::Text called = name();
        const bool on = m_input.below(2) == 0;
        Column* const column = at(i);
        switch (m_input.below(8)) {
            case 0:
                m_map.setVisible(i, on);
                if (column) column->second = on;
                break;
            case 1:
                m_map.invertVisible(i);
                if (column) column->second = !column->second;
                break;
            case 2:
                m_map.setName(i, called);
                if (column) column->first = Fuzz::str(called);
                break;
            case 3:
                m_map.set(i, called, on);
                if (column) *column = {Fuzz::str(called), on};
                break;
            case 4: {
                const int j = m_input.number();
                m_map.swap(i, j);
                if (column && at(j)) std::swap(*column, *at(j));
                break;
            }
            case 5:
                Fuzz::promise(m_map.remove(called) == (find(m_model, called) >= 0));
                if (find(m_model, called) >= 0) m_model.erase(m_model.begin() + find(m_model, called));
                break;
            case 6:
                m_map.append(called, on);
                if (find(m_model, called) < 0) m_model.emplace_back(Fuzz::str(called), on);
                break;
            default:
                if (i != 0) break;
                m_map.clear();
                m_model.clear();
        }
    }

    void compare() const {
        check(m_map, m_model);
        std::string text;
        int visible = 0;
        for (const Column& column : m_model) {
            const int number = static_cast<int>(m_log.get_fieldnum(column.first.c_str()));
            if (column.second) Fuzz::promise(m_map.getVisibleFieldIndex(visible++) == number);
            text += (text.empty() ? "" : " ") + std::string(column.second ? "" : "-") +
                    std::to_string(number + 1);
        }
        Fuzz::promise(m_map.numVisible() == visible && m_map.getVisibleFieldIndex(visible) == -1);
        Fuzz::promise(m_map.asString().view() == text);
        Fuzz::promise(m_map.isVisible(-1) == false && m_map[m_map.size()].empty());
    }

    kesta& m_log;
    FieldMap m_map;
    std::vector<Column> m_model;
    Fuzz::Input& m_input;
};

void operations(Fuzz::Input& input) {
    kesta log(columns(12));
    Pair(log, input).run();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    input.below(2) == 0 ? parameterText(input) : operations(input);
    return 0;
}
