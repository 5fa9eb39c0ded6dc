#include "tools/logs/ColumnMap.h"

#include <numeric>
#include <string>

#include "record/kesta.h"
#include "tools/Failure.h"
#include "tools/terminal/Messages.h"
#include "view/KSTViewRep.h"

namespace {

// Numbers in the parameter have at most three characters, the sign of a hidden column among them.
constexpr unsigned lastToShow = 999;
constexpr unsigned lastToHide = 99;

bool keepsMap(const kesta& log) {
    return *log.get_param_val(FieldMap::parameter) != 0;
}

std::string placeOf(const kesta& log, unsigned column) {
    return "column " + std::to_string(column + 1) + " (" + log.get_fieldname(column) + ')';
}

void requireRoom(const kesta& log, unsigned column, bool visible) {
    if (column < (visible ? lastToShow : lastToHide)) return;
    throw Failure(placeOf(log, column) + " cannot be " + (visible ? "shown" : "hidden") +
                  " by a list of columns: of those to show it takes numbers up to 999, of those to hide up "
                  "to 99");
}

void warnOfUnnameable(const kesta& log) {
    Warnings warnings;
    for (unsigned column = 0; column < log.get_num_fields(); ++column) {
        if (log.get_fieldnum(log.get_fieldname(column)) == column) continue;
        warnings.add(placeOf(log, column) +
                     " cannot be listed, because it has no name of its own; --all-columns still shows it");
    }
    warnings.summarise("they have no names of their own either");
}

}  // namespace

std::vector<unsigned> allColumns(const kesta& log) {
    std::vector<unsigned> columns(log.get_num_fields());
    std::iota(columns.begin(), columns.end(), 0U);
    return columns;
}

FieldMap columnMapOf(kesta& log) {
    return FieldMap(KSTView(new KSTViewRep(&log, "")));
}

std::vector<ListedColumn> listedColumns(kesta& log) {
    std::vector<ListedColumn> columns;
    if (!keepsMap(log)) {
        // A map would leave out columns that share a name.
        for (const unsigned column : allColumns(log)) columns.push_back({column, true});
        return columns;
    }
    const FieldMap map = columnMapOf(log);
    for (int i = 0; i < map.size(); ++i) {
        const unsigned column = log.get_fieldnum(map[i]);
        if (column < log.get_num_fields()) columns.push_back({column, map.isVisible(i)});
    }
    return columns;
}

std::vector<unsigned> shownColumns(kesta& log) {
    std::vector<unsigned> shown;
    for (const ListedColumn& listed : listedColumns(log)) {
        if (listed.visible) shown.push_back(listed.column);
    }
    if (shown.empty() && log.get_num_fields() > 0) {
        throw Failure(
            "the log's list of columns shows none; use --all-columns, or kesta columns LOG --reset");
    }
    return shown;
}

void storeColumnMap(kesta& log, const FieldMap& map) {
    FieldMap kept(map);
    kept.remove("");  // stands for columns that the log does not have
    for (int i = 0; i < kept.size(); ++i) requireRoom(log, log.get_fieldnum(kept[i]), kept.isVisible(i));
    log.set_param_val(FieldMap::parameter, kept.asString().c_str());
    warnOfUnnameable(log);
}

void forgetColumnMap(kesta& log) {
    if (log.findParamIndex(FieldMap::parameter) >= 0) log.set_param_val(FieldMap::parameter, "");
}
