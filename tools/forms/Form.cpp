#include "tools/forms/Form.h"

#include <algorithm>

#include "tools/forms/Writers.h"
#include "tools/logs/ColumnMap.h"
#include "tools/logs/LogView.h"

namespace {

constexpr Series tables = {nullptr, "", nullptr};
constexpr Series listInJson = {"[", ",", "]"};

constexpr Form forms[] = {{"table", LineEnd::lf, writeTable, &tables},
                          {"csv", LineEnd::crlf, writeCsv, nullptr},
                          {"ale", LineEnd::lf, writeAle, nullptr},
                          {"json", LineEnd::lf, writeJson, &listInJson}};

}  // namespace

Selection everythingOf(kesta& log) {
    return {viewOf(log), allColumns(log)};
}

const Form& formNamed(std::string_view name) {
    return *std::find_if(std::begin(forms), std::end(forms), [&](const Form& f) { return f.name == name; });
}

std::string placeOf(const kesta& log, unsigned row, unsigned column) {
    return "row " + std::to_string(row + 1) + ", column " + std::to_string(column + 1) + " (" +
           log.get_fieldname(column) + ')';
}
