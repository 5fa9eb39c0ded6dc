// ZRContainerFile::Reader: a container file, opened and read.
#include <cstdlib>
#include <limits>

#include "container/ZRContainerFile.h"
#include "support/NotFound.h"
#include "support/StringFunctions.h"

namespace {

constexpr const char* identifierColumn = "Cookie";

int wholeNumber(const char* text) noexcept {
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

double number(const char* text) noexcept {
    return Zr::DoubleFromString(text);
}

}  // namespace

// --- Items ---

const char* ZRContainerFile::Reader::Item::textOf(unsigned field) const noexcept {
    // Checked before it becomes the 16 bits that records number their fields by.
    const bool exists = m_record && field < m_record->get_num_fields();
    return exists ? m_record->get_field(static_cast<unsigned short>(field)) : nullptr;
}

LightweightString<char> ZRContainerFile::Reader::Item::getAttrib(unsigned field) const {
    return textOf(field) ? m_record->getField(static_cast<unsigned short>(field)) : LightweightString<char>();
}

int ZRContainerFile::Reader::Item::getAttrib(unsigned field, int dflt) const noexcept {
    const char* const text = textOf(field);
    return text ? wholeNumber(text) : dflt;
}

double ZRContainerFile::Reader::Item::getAttrib(unsigned field, double dflt) const noexcept {
    const char* const text = textOf(field);
    return text ? number(text) : dflt;
}

// --- The container ---

ZRContainerFile::Reader::Reader(LightweightString<wchar_t> fileName, bool headerOnly)
    : m_database(new kesta(fileName, headerOnly ? 0 : std::numeric_limits<int>::max(), true)),
      m_cookie(stripPathAndExt(fileName), false) {}

// Copies only, no moves: a Reader always has its database.
ZRContainerFile::Reader::Reader(const Reader&) noexcept = default;
ZRContainerFile::Reader& ZRContainerFile::Reader::operator=(const Reader&) noexcept = default;
ZRContainerFile::Reader::~Reader() = default;

bool ZRContainerFile::Reader::valid() const {
    return m_database->get_valid() && m_database->get_fieldnum(identifierColumn) != Zr::notFound;
}

unsigned ZRContainerFile::Reader::getNumItems() const {
    return m_database->get_num_records();
}

ZRContainerFile::Reader::Item ZRContainerFile::Reader::getItem(unsigned i) const {
    if (!valid() || i >= getNumItems()) return {};
    const unsigned column = m_database->get_fieldnum(identifierColumn);
    return {m_database->get_record(i).get(), Cookie(m_database->getField(i, column).c_str(), true)};
}

int ZRContainerFile::Reader::getItemAttribIndex(const char* name) const {
    return valid() ? static_cast<int>(m_database->get_fieldnum(name)) : -1;
}

CookieSet ZRContainerFile::Reader::getContents() const {
    CookieSet contents;
    if (!valid()) return contents;  // the invalid items of other databases are no contents
    for (unsigned i = 0; i < getNumItems(); ++i) contents.add(getItem(i).getCookie());
    return contents;
}

bool ZRContainerFile::Reader::contains(const Cookie& k) const {
    return m_database->getRowIndexByID(k) != Zr::notFound;
}

LightweightString<char> ZRContainerFile::Reader::getAttrib(LightweightString<char> key) const {
    return valid() ? m_database->getParamVal(key.c_str()) : LightweightString<char>();
}

int ZRContainerFile::Reader::getAttrib(LightweightString<char> key, int dflt) const {
    const LightweightString<char> text = getAttrib(key);
    return text.empty() ? dflt : wholeNumber(text.c_str());
}

double ZRContainerFile::Reader::getAttrib(LightweightString<char> key, double dflt) const {
    const LightweightString<char> text = getAttrib(key);
    return text.empty() ? dflt : number(text.c_str());
}

LightweightString<char> ZRContainerFile::Reader::getName() const {
    return getAttrib(getNameParamKey());
}

LightweightString<wchar_t> ZRContainerFile::Reader::getNameW() const {
    return fromUTF8(getName());
}

bool ZRContainerFile::Reader::isPermanent() const {
    bool permanent = false;
    BoolFromString(getAttrib(getPermanentParamKey()), permanent);
    return permanent;
}
