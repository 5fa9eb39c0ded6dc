// Field maps as plainly as they can be said: a list of names and flags, for a log with columns "1", "2" ...
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "fieldmap/FieldMap.h"
#include "record/kesta.h"

namespace FieldMapModel {

using Column = std::pair<std::string, bool>;
using Columns = std::vector<Column>;

inline std::vector<DBFieldDesc> fields(unsigned count) {
    std::vector<DBFieldDesc> made;
    for (unsigned number = 1; number <= count; ++number)
        made.emplace_back(std::to_string(number).c_str(), DBFieldTypes::eText);
    return made;
}

inline int find(const Columns& columns, const std::string& name) {
    const auto found = std::find_if(columns.begin(), columns.end(), [&](const Column& each) {
        return LightweightString<char>(each.first.c_str()).icompare(name.c_str()) == 0;
    });
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

inline void append(Columns& columns, const std::string& name, bool visible) {
    if (find(columns, name) < 0) columns.emplace_back(name, visible);
}

/// What a log with so many columns has in its map when the parameter is `text`.
inline Columns read(const std::string& text, unsigned count) {
    Columns columns;
    std::size_t at = 0;
    for (int number = 0; std::sscanf(text.substr(at, 3).c_str(), "%d", &number) == 1;) {
        const auto column = static_cast<unsigned>(std::abs(number));
        if (number != 0) append(columns, column <= count ? std::to_string(column) : "", number > 0);
        const std::size_t before = at;
        at = std::min(text.find_first_not_of("-0123456789", at), text.size());
        if (at < text.size() && text[at] == ' ') ++at;
        if (at == before) break;
    }
    if (!columns.empty()) return columns;
    for (unsigned column = 1; column <= count; ++column) append(columns, std::to_string(column), true);
    return columns;
}

/// Makes the same change to both.
template <class Input>
void change(FieldMap& map, Columns& columns, Input& input) {
    const int i = input.number();
    const int j = input.number();
    const std::string text = input.below(4) == 0 ? input.text() : std::to_string(input.below(16));
    const LightweightString<char> name(text.c_str());
    const bool on = input.below(2) == 0;
    const auto at = [&](int place) {
        const bool there = place >= 0 && place < static_cast<int>(columns.size());
        return there ? &columns[static_cast<std::size_t>(place)] : nullptr;
    };
    switch (input.below(8)) {
        case 0:
            map.setVisible(i, on);
            if (at(i)) at(i)->second = on;
            break;
        case 1:
            map.invertVisible(i);
            if (at(i)) at(i)->second = !at(i)->second;
            break;
        case 2:
            map.setName(i, name);
            if (at(i)) at(i)->first = name.c_str();
            break;
        case 3:
            map.set(i, name, on);
            if (at(i)) *at(i) = {name.c_str(), on};
            break;
        case 4:
            map.swap(i, j);
            if (at(i) && at(j)) std::swap(*at(i), *at(j));
            break;
        case 5:
            if (map.remove(name)) columns.erase(columns.begin() + find(columns, name.c_str()));
            break;
        case 6:
            map.append(name, on);
            append(columns, name.c_str(), on);
            break;
        default:
            if (i != 0) break;
            map.clear();
            columns.clear();
    }
}

/// All that a map can be asked.
using Answers = std::vector<std::string>;

inline std::string entry(const std::string& name, bool visible, int place, bool shown, int nthShown) {
    return name + (visible ? " visible, " : " hidden, ") + std::to_string(place) +
           (shown ? " shown, " : " not, ") + std::to_string(nthShown);
}

inline Answers answers(const FieldMap& map) {
    Answers all{map.asString().c_str(), std::to_string(map.numVisible())};
    for (int i = -1; i <= map.size(); ++i) {
        all.push_back(entry(map[i].c_str(), map.isVisible(i), map.getFieldIdx(map[i]), map.isVisible(map[i]),
                            map.getVisibleFieldIndex(i)));
    }
    return all;
}

inline Answers answers(const Columns& columns, const kesta& log) {
    std::string text;
    std::vector<int> shown;
    for (const auto& [name, visible] : columns) {
        const int number = static_cast<int>(log.get_fieldnum(name.c_str()));
        text += (text.empty() ? "" : " ") + std::string(visible ? "" : "-") + std::to_string(number + 1);
        if (visible) shown.push_back(number);
    }
    Answers all{text, std::to_string(shown.size())};
    for (std::size_t i = 0; i < columns.size() + 2; ++i) {  // one before the first, one after the last
        const bool there = i > 0 && i <= columns.size();
        const auto& [name, visible] = there ? columns[i - 1] : Column("", false);
        const int found = find(columns, name);
        const bool isShown = found >= 0 && columns[static_cast<std::size_t>(found)].second;
        all.push_back(entry(name, visible, found, isShown, i > 0 && i <= shown.size() ? shown[i - 1] : -1));
    }
    return all;
}

}  // namespace FieldMapModel
