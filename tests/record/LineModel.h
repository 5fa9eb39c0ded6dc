// The record line syntax and the file's grammar once more, read one byte at a time and as slowly as they are
// described: what the library's readers are compared with.
#pragma once

#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace LineModel {

using Fields = std::vector<std::string>;

inline bool isSpace(char c) {
    return std::string_view(" \t\n\v\f\r").find(c) != std::string_view::npos;
}

inline bool isControl(char c) {
    return (c >= 0 && c < 32) || c == 127;
}

inline std::string lowered(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

/// For comparing: in lower case, and up to a zero byte.
inline std::string folded(const std::string& text) {
    return lowered(text.substr(0, text.find('\0')));
}

inline std::string withoutLeadingSpace(std::string text) {
    while (!text.empty() && isSpace(text.front())) text.erase(0, 1);
    return text;
}

/// What one line gives: its fields, and the number that reading answers.
struct Line {
    Fields fields;
    int count = 0;
};

inline Line readLine(const std::string& line) {
    constexpr std::size_t longestField = 4095;
    Line result;
    if (withoutLeadingSpace(line).empty()) return result;
    std::size_t at = 0;
    const auto atEnd = [&] { return at == line.size(); };
    const auto next = [&](char wanted) { return at + 1 < line.size() && line[at + 1] == wanted; };
    while (!atEnd()) {
        ++result.count;
        if (isControl(line[at])) {
            ++at;
            continue;
        }
        bool quoted = false;
        if (line[at] == '"') {
            quoted = true;
            ++at;
        }
        while (!atEnd() && isSpace(line[at])) ++at;
        std::string field;
        while (!atEnd() && field.size() < longestField) {
            const char c = line[at];
            if (c == '"' && next('"')) {
                field += '"';
                at += 2;
            } else if (c == '"') {
                quoted = false;
                ++at;
            } else if (c == '\\' && next('n')) {
                field += '\n';
                at += 2;
            } else if (c == '\\' && next('\\') && field.size() + 1 < longestField) {
                field += "\\\\";
                at += 2;
            } else if (c == ',' && !quoted) {
                break;
            } else {
                field += c;  // a backslash before anything else too
                ++at;
            }
        }
        while (!field.empty() && isSpace(field.back())) field.pop_back();
        if (!atEnd()) ++at;
        result.fields.push_back(field);
    }
    return result;
}

inline std::string writeLine(const Fields& fields) {
    std::string line;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i != 0) line += ',';
        line += '"';
        for (const char c : fields[i]) {
            if (c == '\r') continue;
            if (c == '\n') {
                line += "\\n";
            } else if (c == '"') {
                line += "\"\"";
            } else {
                line += c;
            }
        }
        line += '"';
    }
    return line;
}

/// What loading a whole file gives.
struct Database {
    int valid = 0;
    int revision = 1;
    std::vector<std::pair<std::string, std::string>> params;
    Fields names;
    std::vector<int> types;
    std::vector<Fields> rows;
    std::vector<std::string> messages;
};

inline int typeOf(const std::string& token) {
    static const std::vector<std::pair<std::string, int>> tokens = {
        {"timecode", 116},   {"timecode_s", 84}, {"text", 97},     {"text_s", 65},
        {"time_of_day", 68}, {"date", 100},      {"dos_date", 77}, {"char", 99},
        {"numeric", 110},    {"long", 108},      {"double", 102}};
    for (const auto& [name, code] : tokens) {
        if (name == folded(token)) return code;
    }
    const int code = token.size() == 1 ? static_cast<signed char>(token[0]) : 0;
    return code == 0 ? 97 : code;  // a column always has a type
}

class Loader {
 public:
    explicit Loader(const std::string& content) {
        std::string bytes = content;
        if (bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) bytes.erase(0, 3);
        while (!bytes.empty()) {
            const std::size_t end = bytes.find('\n');
            std::string line = bytes.substr(0, end);
            if (end != std::string::npos && !line.empty() && line.back() == '\r') line.pop_back();
            m_lines.push_back(line);
            bytes.erase(0, end == std::string::npos ? end : end + 1);
        }
    }

    Database load(int maxRecords, bool strict) {
        Database database;
        const Fields last = readParams(database);
        if (database.params.empty()) return database;
        if (!last.empty() && folded(last[0]) == "kesta") {
            read();
            const Fields types = read().fields;
            const Fields names = read().fields;
            if (types.size() != names.size()) return database;
            for (const std::string& type : types) database.types.push_back(typeOf(type));
            database.names = names;
        } else if (strict) {
            return database;
        } else {
            for (const std::string& name : last) {
                const std::string lower = lowered(name);
                const bool isCode =
                    lower.find("start") != std::string::npos || lower.find("end") != std::string::npos;
                database.names.push_back(name);
                database.types.push_back(isCode ? 116 : 97);
            }
        }
        database.valid = 1;
        if (maxRecords >= 1) addText(database, static_cast<std::size_t>(maxRecords));
        return database;
    }

 private:
    Line read() { return m_next < m_lines.size() ? readLine(m_lines[m_next++]) : Line(); }

    // The fields of the last line read.
    Fields readParams(Database& database) {
        Fields fields = read().fields;
        if (fields.empty() || folded(fields[0]).compare(0, 6, "kesta:") != 0) return fields;
        addPair(database, fields[0]);
        std::string digits = database.params[0].second.c_str();
        while (!digits.empty() && (digits[0] < '0' || digits[0] > '9')) digits.erase(0, 1);
        database.revision = static_cast<int>(std::strtol(digits.c_str(), nullptr, 10));
        if (database.revision != 1) {
            database.messages.push_back("kesta::read_text:  Warning: kesta is revision " +
                                        std::to_string(database.revision) + ", current level is 1\n");
        }
        while (m_next < m_lines.size()) {
            fields = read().fields;
            const std::string first = fields.empty() ? "" : fields[0];
            if (folded(first) == "kesta") break;
            addPair(database, first);
        }
        return fields;
    }

    static void addPair(Database& database, const std::string& field) {
        const std::string text = withoutLeadingSpace(field);
        const std::size_t colon = text.find(':');
        if (colon == 0 || colon == std::string::npos) return;
        database.params.emplace_back(text.substr(0, colon), withoutLeadingSpace(text.substr(colon + 1)));
    }

    void addText(Database& database, std::size_t maxRecords) {
        for (std::size_t count = 0; count < maxRecords; ++count) {
            Line line = read();
            if (line.count == 0) return;
            if (line.fields.size() != database.names.size()) {
                database.messages.emplace_back("kesta::add_text: returning because not all fields filled\n");
                return;
            }
            if (line.fields.size() == 1 && folded(line.fields[0]) == "kesta") {
                read();
                read();
                line = read();
                if (line.count == 0) {
                    database.messages.emplace_back("kesta::add_text: returning because no more lines\n");
                    return;
                }
            }
            database.rows.push_back(line.fields);
        }
    }

    std::vector<std::string> m_lines;
    std::size_t m_next = 0;
};

}  // namespace LineModel
