// dbrecord: reading and storing fields, text lines, and what the host is told of a record.
#include "record/dbrecord.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "record/RecordLine.h"
#include "record/kesta.h"
#include "support/Ascii.h"
#include "support/Configuration.h"
#include "support/StringFunctions.h"
#include "support/TextFile.h"

namespace {

/// The configuration key of each label column. Without the setting "dbv_reel_field_editable" only the first
/// six count.
struct Label {
    const char* column;
    const char* key;
};
constexpr Label labels[] = {
    {"notes", "notes"},       {"who", "who"},
    {"scene", "scene"},       {"description", "description"},
    {"shot", "shot"},         {"reel", "reelid"},
    {"snd reel", "reelid1"},  {"24P reel", "24P_reel"},
    {"cam reel", "camreel"},  {"comp reel", "comp_reel"},
    {"lab reel", "lab_reel"},
};
constexpr std::size_t labelsOfPrimaryReel = 6;

std::size_t exportedLabels() {
    static const int secondaryReels = config_int(
        "dbv_reel_field_editable", 1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    return secondaryReels ? std::size(labels) : labelsOfPrimaryReel;
}

const char* labelKey(const char* column, std::size_t labelCount) noexcept {
    for (std::size_t i = 0; i < labelCount; ++i) {
        if (Ascii::compareFolded(column ? column : "", labels[i].column) == 0) return labels[i].key;
    }
    return nullptr;
}

constexpr std::size_t numberBuffer = 256;  // what a number's text is cut to, its end included

}  // namespace

dbrecord::dbrecord(unsigned short n) : m_fields(n) {}

dbrecord::dbrecord(const dbrecord& other)
    : Zr::InternalRefCount(other), iVirtual(other), iObject(other), m_fields(other.m_fields) {}

dbrecord::~dbrecord() = default;

dbrecord& dbrecord::operator=(const dbrecord& other) {
    const unsigned short count = other.get_num_fields();
    m_fields.resize(count);
    for (unsigned short i = 0; i < count; ++i) set_field(i, other.get_field(i), true);
    return *this;
}

void dbrecord::set_container(kesta* container) noexcept {
    m_container = WatchedPtr<kesta>(container);
}

kesta* dbrecord::get_container() const noexcept {
    return m_container.get();
}

const char* dbrecord::get_field(unsigned short i) const noexcept {
    return i < get_num_fields() ? m_fields[i].c_str() : nullptr;
}

const LightweightString<char>& dbrecord::getField(unsigned short i) const noexcept {
    static const LightweightString<char> none;
    return i < get_num_fields() ? m_fields[i] : none;
}

bool dbrecord::in_field(int i, char* dst, int len) const noexcept {
    if (i < 0 || i >= get_num_fields() || !dst || len < 0) return false;
    const std::string_view text = m_fields[static_cast<std::size_t>(i)].view();
    dst[text.copy(dst, static_cast<std::size_t>(len))] = 0;
    dst[len] = 0;
    return true;
}

bool dbrecord::is_blank() const noexcept {
    for (const auto& field : m_fields) {
        if (!field.empty()) return false;
    }
    return true;
}

bool dbrecord::set_field(int i, const char* text, bool trim) {
    if (i < 0 || i >= get_num_fields()) return false;
    if (trim && text) text = Ascii::skipSpace(text);
    LightweightString<char>& field = m_fields[static_cast<std::size_t>(i)];
    // An equal text keeps its body, which other records may share; the record counts as changed all the same.
    if (field != text) field = LightweightString<char>(text);
    markChanged();
    return true;
}

bool dbrecord::set_field(int i, int v) {
    char buffer[numberBuffer];
    std::snprintf(buffer, sizeof buffer, "%d", v);
    return set_field(i, buffer, true);
}

bool dbrecord::set_field(int i, unsigned v) {
    char buffer[numberBuffer];
    std::snprintf(buffer, sizeof buffer, "%u", v);
    return set_field(i, buffer, true);
}

bool dbrecord::set_field(int i, double v) {
    char buffer[numberBuffer];
    const LightweightString<char> text = Zr::StringFromDouble(v);
    buffer[text.view().copy(buffer, sizeof buffer - 1)] = 0;
    return set_field(i, buffer, true);
}

bool dbrecord::set_field(int i, bool v) {
    return set_field(i, v ? "t" : "f", true);
}

bool dbrecord::setField(unsigned short i, const LightweightString<char>& s) {
    if (i >= get_num_fields()) return false;
    if (m_fields[i] == s) return true;
    m_fields[i] = s;
    markChanged();
    return true;
}

void dbrecord::clear() noexcept {
    for (auto& field : m_fields) field = {};
}

void dbrecord::removeField(unsigned short i) {
    if (i < get_num_fields()) m_fields.erase(i);
}

void dbrecord::resizeRecord(int n, int* fill, bool) {
    if (n >= 0 && fill) m_fields.resize(std::min(static_cast<unsigned>(n), unsigned(mostFields)));
}

void dbrecord::resizeField(int, int) {}

int dbrecord::read(TextFile& file) {
    m_fields.clear();
    const int count = RecordLine::read(file.lineView(file.cursor()), m_fields, nullptr, {});
    file.nextLine();
    if (count != 0) markChanged();
    return count;
}

bool dbrecord::write(TextFile& file) const {
    char* const line = file.beginLine(RecordLine::longestLine(m_fields));
    file.endLine(RecordLine::write(m_fields, line));
    m_changed = 0;
    return true;
}

void dbrecord::markChanged() noexcept {
    m_changed = 1;
    if (kesta* const container = get_container()) container->m_changed = 1;
}

int dbrecord::update(configb* cfg) const {
    const std::size_t labelCount = exportedLabels();
    const kesta* const container = get_container();
    if (!container || !cfg) return 0;
    const unsigned name = container->get_fieldnum("name");
    if (name == Zr::notFound) return 0;

    strp_field value;
    value.set(getField(static_cast<unsigned short>(name)));
    cfg->set("slate/take", value);
    cfg->set("name", value);

    int exported = 0;
    for (unsigned short i = 0; i < get_num_fields(); ++i) {
        const char* const key = labelKey(container->get_fieldname(i), labelCount);
        if (!key) continue;
        value.set(m_fields[i]);
        cfg->set(key, value);
        ++exported;
    }
    return exported;
}
