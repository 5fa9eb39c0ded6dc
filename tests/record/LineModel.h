// The record line syntax and the file's grammar once more, read one byte at a time and as slowly as they are
// described: what the library's readers are compared with, by tests and by a fuzzer.
#pragma once

#include <cstdlib>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "record/kesta.h"
#include "support/Ascii.h"

namespace LineModel {

using Fields = std::vector<std::string>;

/// What one line gives: its fields, and the number that reading returns.
struct Line {
    Fields fields;
    int count = 0;
};

inline Line readLine(const std::string& line) {
    constexpr std::size_t longestField = dbrecord::longestField;
    Line result;
    if (Ascii::trimmed(line).empty()) return result;
    std::size_t at = 0;
    const auto atEnd = [&] { return at == line.size(); };
    const auto next = [&](char wanted) { return at + 1 < line.size() && line[at + 1] == wanted; };
    while (!atEnd()) {
        ++result.count;
        if (Ascii::isControl(line[at])) {
            ++at;
            continue;
        }
        bool quoted = line[at] == '"';
        if (quoted) ++at;
        while (!atEnd() && Ascii::isSpace(line[at])) ++at;
        std::string field;
        while (!atEnd() && field.size() < longestField) {
            const char c = line[at];
            if (c == ',' && !quoted) break;
            if (c == '"' && next('"')) {
                field += line[++at];
            } else if (c == '"') {
                quoted = false;
            } else if (c == '\\' && next('n')) {
                field += '\n';
                ++at;
            } else if (c == '\\' && next('\\') && field.size() + 1 < longestField) {
                field += "\\\\";
                ++at;
            } else {
                field += c;  // a backslash before anything else too
            }
            ++at;
        }
        while (!field.empty() && Ascii::isSpace(field.back())) field.pop_back();
        if (!atEnd()) ++at;
        result.fields.push_back(field);
    }
    return result;
}

inline std::string writeLine(const Fields& fields) {
    std::string line;
    for (const std::string& field : fields) {
        line += line.empty() ? "\"" : ",\"";
        for (const char c : field) {
            if (c == '\n') {
                line += "\\n";
            } else if (c == '"') {
                line += "\"\"";
            } else if (c != '\r') {
                line += c;
            }
        }
        line += '"';
    }
    return line;
}

/// For comparing: in lower case, and up to a zero byte.
inline std::string folded(const std::string& text) {
    return Ascii::folded(text.c_str());
}

/// What there is to see of a database.
struct Database {
    bool valid = false;
    int revision = 1;
    std::vector<std::pair<std::string, std::string>> params;
    Fields names;
    std::vector<int> types;
    std::vector<Fields> rows;
    std::vector<std::string> messages;  // of loading it; no part of the database itself

    auto seen() const { return std::tie(valid, revision, params, names, types, rows); }
};

inline Database contentsOf(const kesta& database) {
    Database contents;
    contents.valid = database.get_valid() != 0;
    contents.revision = database.get_revision();
    for (const auto& pair : database.params())
        contents.params.emplace_back(pair.name().view(), pair.value().view());
    for (unsigned field = 0; field < database.get_num_fields(); ++field) {
        contents.names.emplace_back(database.get_fieldname(field));
        contents.types.push_back(database.get_fieldtype(field));
    }
    for (unsigned row = 0; row < database.get_num_records(); ++row) {
        Fields& fields = contents.rows.emplace_back();
        for (const auto& field : database.get_record(row)->fields()) fields.emplace_back(field.view());
    }
    return contents;
}

/// Loads a whole file.
class Loader {
 public:
    explicit Loader(std::string content) {
        if (content.compare(0, 3, "\xEF\xBB\xBF") == 0) content.erase(0, 3);
        while (!content.empty()) {
            const std::size_t end = content.find('\n');
            std::string line = content.substr(0, end);
            if (end != std::string::npos && !line.empty() && line.back() == '\r') line.pop_back();
            m_lines.push_back(line);
            content.erase(0, end == std::string::npos ? end : end + 1);
        }
    }

    Database load(int maxRecords, bool strict) {
        Database database;
        const Fields last = readParams(database);
        if (database.params.empty()) return database;
        if (isMarker(last)) {
            read();
            const Fields types = read().fields;
            const Fields names = read().fields;
            if (types.size() != names.size()) return database;
            for (std::size_t i = 0; i < names.size(); ++i) addColumn(database, names[i], typeOf(types[i]));
        } else if (strict) {
            return database;
        } else {
            for (const std::string& name : last) {
                const std::string lower = Ascii::folded(name);
                const bool isCode =
                    lower.find("start") != std::string::npos || lower.find("end") != std::string::npos;
                addColumn(database, name, isCode ? 116 : 97);
            }
        }
        database.valid = true;
        for (int i = 0; i < maxRecords && addRecord(database); ++i) {
        }
        return database;
    }

 private:
    Line read() { return m_next < m_lines.size() ? readLine(m_lines[m_next++]) : Line(); }

    // The fields of the last line read.
    Fields readParams(Database& database) {
        Fields fields = read().fields;
        if (fields.empty() || folded(fields[0]).compare(0, 6, "kesta:") != 0) return fields;
        addParam(database, fields[0]);
        const std::string revision = database.params[0].second.c_str();
        const std::size_t digits = std::min(revision.find_first_of("0123456789"), revision.size());
        database.revision = static_cast<int>(std::strtol(revision.c_str() + digits, nullptr, 10));
        if (database.revision != 1) {
            database.messages.push_back("kesta::read_text:  Warning: kesta is revision " +
                                        std::to_string(database.revision) + ", current level is 1\n");
        }
        while (m_next < m_lines.size()) {
            fields = read().fields;
            if (isMarker(fields)) break;
            if (!fields.empty()) addParam(database, fields[0]);
        }
        return fields;
    }

    static void addParam(Database& database, const std::string& field) {
        const std::string text(Ascii::withoutLeadingSpace(field));
        const std::size_t colon = text.find(':');
        if (colon == 0 || colon == std::string::npos) return;
        database.params.emplace_back(text.substr(0, colon),
                                     Ascii::withoutLeadingSpace(std::string_view(text).substr(colon + 1)));
    }

    static void addColumn(Database& database, const std::string& name, int type) {
        database.names.emplace_back(name.c_str());  // shown up to a zero byte
        database.types.push_back(type);
    }

    static int typeOf(const std::string& token) {
        const int code = kesta::fieldTypeFromString(LightweightString<char>(token));
        return code == 0 ? 97 : code;  // a column always has a type
    }

    // False when the records have ended.
    bool addRecord(Database& database) {
        Line line = read();
        if (line.count == 0) return false;
        if (line.fields.size() != database.names.size()) {
            database.messages.emplace_back("kesta::add_text: returning because not all fields filled\n");
            return false;
        }
        if (line.fields.size() == 1 && isMarker(line.fields)) {
            read();
            read();
            line = read();
            if (line.count == 0) {
                database.messages.emplace_back("kesta::add_text: returning because no more lines\n");
                return false;
            }
        }
        database.rows.push_back(line.fields);
        return true;
    }

    static bool isMarker(const Fields& fields) { return !fields.empty() && folded(fields[0]) == "kesta"; }

    std::vector<std::string> m_lines;
    std::size_t m_next = 0;
};

}  // namespace LineModel
