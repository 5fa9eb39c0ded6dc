// Columns as the user names them on the command line.
#pragma once

#include <string>
#include <vector>

class kesta;

/// The columns of lists as columnsNamed reads them, in the form in which the library takes sort fields: ended
/// by -1. Throws Failure for more than nine as well.
std::vector<int> parseSortColumns(const kesta& log, const std::vector<std::string>& lists);

struct ColumnText {
    unsigned column;
    std::string text;
};

/// One "COLUMN=TEXT", or in whatever `form` messages call it. A column's own name may hold "=": the first
/// split that names a column counts. Throws Failure when there is none.
ColumnText parseColumnText(const kesta& log, const std::string& argument, const std::string& form);

/// Texts to look for. Throws Failure for an empty one as well, which every record would hold.
std::vector<ColumnText> parseSearch(const kesta& log, const std::vector<std::string>& arguments);
