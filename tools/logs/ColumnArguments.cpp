#include "tools/logs/ColumnArguments.h"

#include "record/kesta.h"
#include "tools/Failure.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"

namespace {

constexpr std::size_t mostSortColumns = 9;

}  // namespace

std::vector<int> parseSortColumns(const kesta& log, const std::vector<std::string>& lists) {
    const std::vector<unsigned> columns = columnsNamed(log, lists);
    if (columns.size() > mostSortColumns) {
        throw Failure(std::to_string(columns.size()) + " columns to sort by; at most " +
                          std::to_string(mostSortColumns) + " are possible",
                      exitUsage);
    }
    std::vector<int> fields(columns.begin(), columns.end());
    fields.push_back(-1);
    return fields;
}

ColumnText parseColumnText(const kesta& log, const std::string& argument, const std::string& form) {
    const std::size_t first = argument.find('=');
    if (first == std::string::npos) {
        throw Failure('"' + argument + "\" names no column; write " + form, exitUsage);
    }
    for (std::size_t at = first; at != std::string::npos; at = argument.find('=', at + 1)) {
        const unsigned column = log.get_fieldnum(libraryText(argument.substr(0, at)));
        if (column < log.get_num_fields()) return {column, argument.substr(at + 1)};
    }
    return {columnNamed(log, argument.substr(0, first)), {}};
}

std::vector<ColumnText> parseSearch(const kesta& log, const std::vector<std::string>& arguments) {
    std::vector<ColumnText> texts;
    for (const std::string& argument : arguments) {
        texts.push_back(parseColumnText(log, argument, "COLUMN=TEXT"));
        if (texts.back().text.empty()) {
            throw Failure('"' + argument + "\" holds no text to look for", exitUsage);
        }
    }
    return texts;
}
