// FieldMap: a list of columns, and the text that it is kept as.
#include "fieldmap/FieldMap.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "record/kesta.h"
#include "support/Ascii.h"
#include "view/KSTViewRep.h"

namespace {

constexpr char hiddenMark = '-';
constexpr std::size_t longestToken = 3;

/// Reads the numbers of the text form, one after the other.
class NumberReader {
 public:
    explicit NumberReader(std::string_view text) noexcept : m_rest(text) {}

    /// Whether there is a further number. A longer token is deliberately read as its first three
    /// characters.
    bool next(int& number) noexcept {
        char token[longestToken + 1] = {};
        m_rest.copy(token, longestToken);
        char* end = token;
        number = static_cast<int>(std::strtol(token, &end, 10));
        const bool found = end != token;
        const bool advanced = skipToken();
        // A number after anything but one space cannot be passed; it is the last.
        if (!found || !advanced) m_rest = {};
        return found;
    }

 private:
    bool skipToken() noexcept {
        const std::size_t before = m_rest.size();
        while (!m_rest.empty() && (Ascii::isDigit(m_rest.front()) || m_rest.front() == hiddenMark)) {
            m_rest.remove_prefix(1);
        }
        if (!m_rest.empty() && m_rest.front() == ' ') m_rest.remove_prefix(1);
        return m_rest.size() < before;
    }

    std::string_view m_rest;
};

}  // namespace

// --- Construction ---

FieldMap::FieldMap() = default;

FieldMap::FieldMap(const KSTView& view) {
    setSourceDb(view);
}

FieldMap::FieldMap(kesta& db) : FieldMap(KSTView(new KSTViewRep(&db))) {}

FieldMap::FieldMap(const FieldMap& other) = default;

FieldMap& FieldMap::operator=(const FieldMap& other) {
    m_source = other.m_source;
    if (this == &other) return *this;
    std::vector<LightweightString<char>> names(other.m_names);
    std::vector<bool> visible(other.m_visible);
    m_names.swap(names);
    m_visible.swap(visible);
    return *this;
}

FieldMap::~FieldMap() = default;

// --- Queries ---

bool FieldMap::isPlace(int i) const noexcept {
    return i >= 0 && static_cast<std::size_t>(i) < m_names.size();
}

int FieldMap::getFieldIdx(const LightweightString<char>& name) const noexcept {
    const auto found = std::find_if(m_names.begin(), m_names.end(), [&](const auto& candidate) {
        return candidate.icompare(name.c_str()) == 0;
    });
    return found == m_names.end() ? -1 : static_cast<int>(found - m_names.begin());
}

bool FieldMap::containsField(const LightweightString<char>& name) const noexcept {
    return getFieldIdx(name) != -1;
}

bool FieldMap::isVisible(int i) const noexcept {
    return isPlace(i) && m_visible[static_cast<std::size_t>(i)];
}

bool FieldMap::isVisible(const LightweightString<char>& name) const noexcept {
    return isVisible(getFieldIdx(name));
}

int FieldMap::numVisible() const noexcept {
    return static_cast<int>(std::count(m_visible.begin(), m_visible.end(), true));
}

int FieldMap::getVisibleFieldIndex(int n) const {
    if (!m_source || n < 0) return -1;
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        if (m_visible[i] && n-- == 0) return static_cast<int>(m_source->get_fieldnum(m_names[i]));
    }
    return -1;
}

LightweightString<char> FieldMap::getName(int i) const noexcept {
    return isPlace(i) ? m_names[static_cast<std::size_t>(i)] : LightweightString<char>();
}

// --- Changes ---

void FieldMap::setVisible(int i, bool on) {
    if (isPlace(i)) m_visible[static_cast<std::size_t>(i)] = on;
}

void FieldMap::invertVisible(int i) {
    setVisible(i, !isVisible(i));
}

void FieldMap::setName(int i, const LightweightString<char>& name) {
    if (isPlace(i)) m_names[static_cast<std::size_t>(i)] = name;
}

void FieldMap::set(int i, const LightweightString<char>& name, bool visible) {
    setName(i, name);
    setVisible(i, visible);
}

void FieldMap::swap(int i, int j) {
    if (!isPlace(i) || !isPlace(j)) return;
    const auto a = static_cast<std::size_t>(i);
    const auto b = static_cast<std::size_t>(j);
    std::swap(m_names[a], m_names[b]);
    std::vector<bool>::swap(m_visible[a], m_visible[b]);
}

bool FieldMap::remove(const LightweightString<char>& name) {
    const int i = getFieldIdx(name);
    if (i < 0) return false;
    m_names.erase(m_names.begin() + i);
    m_visible.erase(m_visible.begin() + i);
    return true;
}

void FieldMap::append(const LightweightString<char>& name, bool visible) {
    if (!containsField(name)) add(name, visible);
}

void FieldMap::add(const LightweightString<char>& name, bool visible) {
    m_visible.push_back(visible);
    try {
        m_names.push_back(name);
    } catch (...) {
        m_visible.pop_back();
        throw;
    }
}

void FieldMap::clear() noexcept {
    m_names.clear();
    m_visible.clear();
}

// --- The source ---

void FieldMap::setSourceDb(const KSTView& view) {
    m_source = view;
    if (!m_source) return;
    appendFrom(m_source->get_param_val(parameter));
    if (m_names.empty()) fillFromSource();
}

void FieldMap::appendFrom(const LightweightString<char>& text) {
    // Numbers have three characters at most, so a text of any length names few fields.
    std::set<int> seen;
    NumberReader numbers(text.view());
    for (int number; numbers.next(number);) {
        if (number == 0 || !seen.insert(std::abs(number)).second) continue;
        append(m_source->get_fieldname(static_cast<unsigned>(std::abs(number)) - 1), number > 0);
    }
}

void FieldMap::fillFromSource() {
    std::set<LightweightString<char>, IgnoringCase> known;
    for (unsigned field = 0; field < m_source->get_num_fields(); ++field) {
        const LightweightString<char> name(m_source->get_fieldname(field));
        if (known.insert(name).second) add(name, true);
    }
}

LightweightString<char> FieldMap::asString() const {
    LightweightString<char> text;
    for (std::size_t i = 0; i < m_names.size(); ++i) {
        if (i > 0) text += ' ';
        if (!m_visible[i]) text += hiddenMark;
        // Of an unknown column, all bits are set: it becomes 0.
        const unsigned field = m_source ? m_source->get_fieldnum(m_names[i]) : static_cast<unsigned>(i);
        text += field + 1;
    }
    return text;
}
