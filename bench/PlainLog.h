// PlainLog: what a program without the library would do with a log file. The baseline of the file benchmarks.
#pragma once

#include <fstream>
#include <string>
#include <vector>

namespace PlainLog {

using Row = std::vector<std::string>;
using Table = std::vector<Row>;

/// The fields of every line, quotes undone.
inline Table load(const std::string& fileName) {
    std::ifstream file(fileName);
    Table table;
    std::string line;
    while (std::getline(file, line)) {
        Row fields(1);
        bool quoted = false;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '"') {
                const bool doubled = quoted && i + 1 < line.size() && line[i + 1] == '"';
                if (doubled) fields.back() += line[++i];
                quoted = quoted == doubled;
            } else if (line[i] == ',' && !quoted) {
                fields.emplace_back();
            } else {
                fields.back() += line[i];
            }
        }
        table.push_back(std::move(fields));
    }
    return table;
}

/// Every line, fields in quotes, quotes doubled.
inline void save(const Table& table, const std::string& fileName) {
    std::ofstream file(fileName);
    for (const Row& fields : table) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            if (i != 0) file << ',';
            file << '"';
            for (const char c : fields[i]) {
                if (c == '"') file << '"';
                file << c;
            }
            file << '"';
        }
        file << '\n';
    }
}

}  // namespace PlainLog
