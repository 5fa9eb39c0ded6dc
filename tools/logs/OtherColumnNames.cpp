// What other forms call the standard columns, and the columns that a log has for theirs.
#include "tools/logs/OtherColumnNames.h"

#include <algorithm>
#include <map>

#include "support/Ascii.h"
#include "tools/logs/LogForm.h"

namespace {

/// What other forms call a standard column. The first one of a column is the exchange form's own name for it.
struct OtherName {
    std::string_view other;
    std::string_view standard;
};

constexpr OtherName otherNames[] = {
    {"Tape", "Reel"},
    {"Start", "Start time"},
    {"End", "End time"},
    {"KN Start", "start keycode"},
    {"KN End", "end keycode"},
    {"Ink Number", "start inkcode"},
    {"Ink Number Start", "start inkcode"},
    {"Ink Number End", "end inkcode"},
    {"Camroll", "cam reel"},
    {"Labroll", "lab reel"},
    {"Soundroll", "snd reel"},
    {"Sound TC", "snd start"},
    {"Sound TC Start", "snd start"},
    {"Sound Start", "snd start"},
    {"Sound TC End", "snd end"},
    {"Sound End", "snd end"},
    {"Comments", "Notes"},
    {"DESCRIPT", "Description"},
    {"Shoot Date", "cam_date"},
};

/// Names without regard to case.
class NameSet {
 public:
    /// Whether the name was not there yet.
    bool add(std::string_view name) { return m_lastNumbers.emplace(Ascii::folded(name), 1).second; }
    bool has(std::string_view name) const { return m_lastNumbers.count(Ascii::folded(name)) != 0; }

    /// The name, or the name with a number that makes it a new one.
    std::string addUnique(const std::string& name) {
        if (add(name)) return name;
        unsigned& last = m_lastNumbers[Ascii::folded(name)];
        while (true) {
            std::string numbered = name + ' ' + std::to_string(++last);
            if (add(numbered)) return numbered;
        }
    }

 private:
    std::map<std::string, unsigned> m_lastNumbers;  // given to each name so far
};

}  // namespace

const StandardColumn* standardColumnFor(std::string_view name) noexcept {
    for (const OtherName& pair : otherNames) {
        if (Ascii::equalFolded(pair.other, name)) return StandardColumns::find(pair.standard);
    }
    return StandardColumns::find(name);
}

std::vector<DBFieldDesc> planColumns(const std::vector<std::string>& fileNames,
                                     const std::vector<std::string>& reserved) {
    NameSet ownNames;
    for (const std::string& name : fileNames) ownNames.add(name);
    NameSet taken;
    for (const std::string& name : reserved) taken.add(name);
    std::vector<DBFieldDesc> columns;
    for (std::size_t i = 0; i < fileNames.size(); ++i) {
        std::string own = keepsColumnName(fileNames[i]) ? fileNames[i] : keepableColumnName(fileNames[i]);
        if (own.empty()) own = "Column " + std::to_string(i + 1);
        const StandardColumn* const standard = standardColumnFor(own);
        const bool isOwnName = standard && Ascii::equalFolded(standard->name, own);
        if (standard && (isOwnName || !ownNames.has(standard->name)) && taken.add(standard->name)) {
            columns.emplace_back(libraryText(standard->name), standard->type);
        } else {
            columns.emplace_back(libraryText(taken.addUnique(own)), DBFieldTypes::eText);
        }
    }
    return columns;
}

std::vector<std::string> exchangeNames(const std::vector<std::string>& logNames) {
    NameSet taken;
    for (const std::string& name : logNames) taken.add(name);
    std::vector<std::string> result;
    for (const std::string& name : logNames) {
        const auto* const found =
            std::find_if(std::begin(otherNames), std::end(otherNames),
                         [&](const OtherName& p) { return Ascii::equalFolded(p.standard, name); });
        const bool renamed = found != std::end(otherNames) && taken.add(found->other);
        result.push_back(renamed ? std::string(found->other) : name);
    }
    return result;
}
