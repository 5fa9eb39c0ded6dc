// kesta columns: which columns a log shows, and in which order.
#include <algorithm>

#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/logs/ColumnMap.h"
#include "tools/logs/LogFile.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Output.h"

namespace {

struct Options {
    std::string log;
    std::vector<std::string> show;
    std::vector<std::string> hide;
    std::vector<std::string> order;  // the columns to come first
    bool reset = false;              // before anything else, back to all columns in the log's own order
    bool names = false;              // list only the names of all columns
    Saving saving;
};

/// The columns that an option names, each once.
std::vector<unsigned> distinctColumns(const kesta& log, const std::vector<std::string>& lists) {
    std::vector<unsigned> columns = columnsNamed(log, lists);
    for (auto column = columns.begin(); column != columns.end(); ++column) {
        if (std::find(columns.begin(), column, *column) == column) continue;
        throw Failure(std::string("column \"") + log.get_fieldname(*column) + "\" is named twice", exitUsage);
    }
    return columns;
}

void requireApart(const kesta& log, const std::vector<unsigned>& show, const std::vector<unsigned>& hide) {
    for (const unsigned column : show) {
        if (std::find(hide.begin(), hide.end(), column) == hide.end()) continue;
        throw Failure(
            std::string("column \"") + log.get_fieldname(column) + "\" cannot be shown and hidden at once",
            exitUsage);
    }
}

void setVisible(FieldMap& map, const kesta& log, const std::vector<unsigned>& columns, bool visible) {
    for (const unsigned column : columns) {
        const char* const name = log.get_fieldname(column);
        map.append(name, visible);
        map.setVisible(map.getFieldIdx(name), visible);
    }
}

void putFirst(FieldMap& map, const kesta& log, const std::vector<unsigned>& columns) {
    int place = 0;
    for (const unsigned column : columns) {
        const char* const name = log.get_fieldname(column);
        map.append(name, true);
        for (int i = map.getFieldIdx(name); i > place; --i) map.swap(i, i - 1);
        ++place;
    }
}

void change(kesta& log, const Options& options) {
    const std::vector<unsigned> show = distinctColumns(log, options.show);
    const std::vector<unsigned> hide = distinctColumns(log, options.hide);
    const std::vector<unsigned> order = distinctColumns(log, options.order);
    requireApart(log, show, hide);

    if (options.reset) forgetColumnMap(log);
    if (show.empty() && hide.empty() && order.empty()) return;
    FieldMap map = columnMapOf(log);
    setVisible(map, log, show, true);
    setVisible(map, log, hide, false);
    putFirst(map, log, order);
    storeColumnMap(log, map);
}

void list(kesta& log) {
    const auto output = standardOutput();
    const std::size_t numberWidth = std::to_string(log.get_num_fields()).size();
    std::vector<bool> listed(log.get_num_fields());
    const auto print = [&](unsigned column, const char* state) {
        std::string number = std::to_string(column + 1);
        number.insert(0, numberWidth - number.size(), ' ');
        output->line(number + "  " + state + "  " + harmless(log.get_fieldname(column)));
        listed[column] = true;
    };
    for (const ListedColumn& column : listedColumns(log))
        print(column.column, column.visible ? "shown   " : "hidden  ");
    for (unsigned column = 0; column < listed.size(); ++column) {
        if (!listed[column]) print(column, "unlisted");
    }
    output->finish();
}

/// For programs that offer columns, such as a shell that completes a command line.
void listNames(const kesta& log) {
    const auto output = standardOutput();
    for (const std::string& name : columnNames(log)) output->line(harmless(name));
    output->finish();
}

int run(const Options& options) {
    if (options.names) {
        listNames(*openLog(options.log).log);
        return exitDone;
    }
    const bool changes =
        options.reset || !options.show.empty() || !options.hide.empty() || !options.order.empty();
    if (!changes) {
        list(*openLog(options.log).log);
        return exitDone;
    }
    LogForEditing log(options.log, options.saving.force);
    change(*log, options);
    log.save(options.saving);
    return exitDone;
}

void declare(CLI::App& app, Options& options) {
    Arguments::addEdit(app, options.log, options.saving);
    Arguments::addColumnList(app, "--show", options.show, "columns to show");
    Arguments::addColumnList(app, "--hide", options.hide, "columns to hide");
    Arguments::addColumnList(app, "--order", options.order,
                             "the columns to come first, in this order; hidden ones stay hidden");
    app.add_flag("--reset", options.reset, "first go back to all columns in the log's own order");
    app.add_flag("--names", options.names,
                 "list nothing but the names of all columns, in the log's own order")
        ->excludes("--show")
        ->excludes("--hide")
        ->excludes("--order")
        ->excludes("--reset");
}

}  // namespace

Command Commands::columns() {
    return makeCommand("columns", "List the columns that a log shows, or choose and order them",
                       "kesta columns day1.log --hide Notes --order Reel,Name", declare, run);
}
