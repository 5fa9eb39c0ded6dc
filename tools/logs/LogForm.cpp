#include "tools/logs/LogForm.h"

#include <algorithm>
#include <charconv>

#include "record/FileForm.h"
#include "record/kesta.h"
#include "support/Ascii.h"
#include "support/StringFunctions.h"
#include "support/TextFile.h"
#include "tools/terminal/DisplayText.h"

namespace {

/// Both are written into the file as they are, so a line end in them would end the line.
bool holdsLineEnd(std::string_view text) noexcept {
    return text.find_first_of("\r\n") != std::string_view::npos;
}

bool isSpaceOrControl(char c) noexcept {
    return Ascii::isSpace(c) || Ascii::isControl(c);
}

}  // namespace

LightweightString<char> libraryText(std::string_view bytes) {
    return LightweightString<char>(bytes);
}

bool sameName(std::string_view a, std::string_view b) noexcept {
    return Ascii::equalFolded(a, b);
}

bool isCommaSeparated(const std::string& path) {
    return FileForm::isCommaSeparated(Zr::WStringFromAscii(path.c_str()));
}

const dbrecord& LineRoundTrip::operator()(const dbrecord& record) {
    TextFile file;
    record.write(file);
    m_back.read(file);
    return m_back;
}

bool LineRoundTrip::keeps(std::string_view value) {
    dbrecord record(2);
    record.setField(0, libraryText(value));
    const dbrecord& back = (*this)(record);
    return back.get_num_fields() == 2 && back.getField(0) == record.getField(0);
}

bool needsNoCare(std::string_view value) noexcept {
    if (value.empty()) return true;
    if (value.size() > longestSafeValue || isSpaceOrControl(value.front()) || isSpaceOrControl(value.back()))
        return false;
    return std::none_of(value.begin(), value.end(),
                        [](char c) { return c == '"' || c == '\\' || c == '\r' || c == '\n'; });
}

std::string whyNotKept(std::string_view value) {
    if (value.size() > longestSafeValue) {
        return "it is longer than " + std::to_string(longestSafeValue) +
               " bytes, the most that a field takes";
    }
    if (!value.empty() && Ascii::isSpace(value.front()))
        return "it begins with white space, which is dropped";
    if (!value.empty() && Ascii::isSpace(value.back())) return "it ends with white space, which is dropped";
    if (value.find('\r') != std::string_view::npos) return "it holds a carriage return, which is dropped";
    if (value.find("\\n") != std::string_view::npos) {
        return "it holds a backslash followed by n, which is read as a line end";
    }
    return "it does not come back as it is";
}

bool keepsParameter(std::string_view key, std::string_view value) {
    if (holdsLineEnd(key) || holdsLineEnd(value)) return false;
    kesta original;
    original.add_param("KESTA", "Rev 1");
    if (original.add_param(libraryText(key), libraryText(value)) != 0) return false;
    TextFile file;
    original.save_params(file);
    file.appendLine("\"KESTA\"");
    kesta back;
    dbrecord line(0);
    back.read_params(file, &line);
    const auto isSame = [](const Zr::AttribValuePair& a, const Zr::AttribValuePair& b) {
        return a.name() == b.name() && a.value() == b.value();
    };
    return std::equal(original.params().begin(), original.params().end(), back.params().begin(),
                      back.params().end(), isSame);
}

std::string parameterRules() {
    return "keys and values take no double quotes, line ends, backslash followed by n or white space at "
           "their "
           "ends, keys no colon, both together at most " +
           std::to_string(longestSafeValue) + " bytes";
}

bool keepsColumnName(std::string_view name) {
    if (holdsLineEnd(name)) return false;
    const kesta log(std::vector<DBFieldDesc>(2, DBFieldDesc(libraryText(name), DBFieldTypes::eText)));
    TextFile file;
    log.save_column_header(file, true);
    dbrecord back(0);
    back.read(file);
    return back.get_num_fields() == 2 && back.getField(0).view() == name && back.getField(1).view() == name;
}

std::string keepableColumnName(std::string_view name) {
    constexpr std::size_t longest = 240;  // leaves room for a number
    std::string result;
    for (const char c : name) result += c == '"' ? '\'' : Ascii::isControl(c) ? ' ' : c;
    result = cutTo(result, longest);
    while (!result.empty() && Ascii::isSpace(result.back())) result.pop_back();
    result.erase(0, std::min(result.find_first_not_of(' '), result.size()));
    for (std::size_t at = 0; (at = result.find("\\n", at)) != std::string::npos;) result[at] = '/';
    return result;
}

bool readsAsHeader(const dbrecord& record) noexcept {
    return record.get_num_fields() == 1 && FileForm::isHeaderMarker(record.getField(0));
}

bool readTag(std::string_view text, int& tag) noexcept {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), tag);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() && tag >= 0 && tag <= 255 &&
           (text.size() == 1 || text.front() != '0');
}
