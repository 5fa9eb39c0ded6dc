// Comma-separated text.
#include "tools/forms/Writers.h"
#include "tools/logs/LogView.h"

namespace {

void appendCsvField(std::string& line, std::string_view value) {
    const bool spaced = !value.empty() && (value.front() == ' ' || value.back() == ' ');
    if (!spaced && value.find_first_of(",\"\r\n") == std::string_view::npos) {
        line += value;
        return;
    }
    line += '"';
    for (const char c : value) {
        if (c == '"') line += '"';
        line += c;
    }
    line += '"';
}

}  // namespace

void writeCsv(const kesta& log, const Selection& selection, const Heading&, LineSink& out) {
    std::string line;
    const auto writeFields = [&](auto fieldOf) {
        line.clear();
        bool first = true;
        for (const unsigned column : selection.columns) {
            if (!first) line += ',';
            first = false;
            appendCsvField(line, fieldOf(column));
        }
        // A line of one empty field would read as no line at all.
        out.line(line.empty() && selection.columns.size() == 1 ? "\"\"" : line);
    };
    writeFields([&](unsigned column) { return std::string_view(log.get_fieldname(column)); });
    forEachRow(selection.rows, [&](unsigned, const dbrecord& record) {
        writeFields([&](unsigned column) { return valueIn(record, column); });
    });
}
