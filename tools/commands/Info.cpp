// kesta info: what a log is.
#include <algorithm>

#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/files/Files.h"
#include "tools/logs/EveryLog.h"
#include "tools/logs/LogFile.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Output.h"
#include "tools/terminal/StandardStreams.h"

namespace {

struct Options {
    std::vector<std::string> logs;
};

std::string padded(const std::string& text, std::size_t cells) {
    const std::size_t width = displayWidth(text);
    return text + std::string(width < cells ? cells - width : 0, ' ');
}

std::size_t widest(const std::vector<std::string>& texts) {
    std::size_t cells = 0;
    for (const std::string& text : texts) cells = std::max(cells, displayWidth(text));
    return cells;
}

void printParameters(const kesta& log, LineSink& out) {
    std::vector<std::string> keys;
    for (const auto& param : log.params()) keys.push_back(harmless(param.name().view()));
    const std::size_t width = widest(keys);
    out.line("parameters:");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        out.line("  " + padded(keys[i], width) + "  " + harmless(log.params()[i].value().view()));
    }
}

/// The columns' widths, as a saved header has them; found in one pass, where get_fieldsize takes one for
/// each.
std::vector<unsigned> widthsOf(const kesta& log) {
    std::vector<unsigned> widths;
    for (unsigned i = 0; i < log.get_num_fields(); ++i) {
        widths.push_back(static_cast<unsigned>(kesta::getMinFieldSize(log.get_fieldname(i))));
    }
    for (unsigned row = 0; row < log.get_num_records(); ++row) {
        const Zr::Ptr<dbrecord> record = log.get_record(row);
        const FieldList& fields = record->fields();
        const std::size_t count = std::min(fields.size(), widths.size());
        for (std::size_t i = 0; i < count; ++i) widths[i] = std::max(widths[i], fields[i].length());
    }
    return widths;
}

void printColumns(const kesta& log, LineSink& out) {
    std::vector<std::string> names;
    std::vector<std::string> types;
    for (const std::string& name : columnNames(log)) names.push_back(harmless(name));
    for (const std::string& type : columnTypes(log)) types.push_back(harmless(type));
    const std::size_t numberWidth = std::to_string(names.size()).size();
    const std::size_t nameWidth = widest(names);
    const std::size_t typeWidth = widest(types);
    const std::vector<unsigned> widths = widthsOf(log);
    out.line("columns:");
    for (unsigned i = 0; i < names.size(); ++i) {
        out.line("  " + padded(std::to_string(i + 1), numberWidth) + "  " + padded(names[i], nameWidth) +
                 "  " + padded(types[i], typeWidth) + "  " + std::to_string(widths[i]));
    }
}

void print(const std::string& path, const kesta& log, LineSink& out) {
    out.line("file:     " + harmless(shownName(path)));
    out.line("size:     " + std::to_string(fileSize(readablePath(path))) + " bytes");
    out.line("revision: " + std::to_string(log.get_revision()));
    out.line("records:  " + std::to_string(log.get_num_records()));
    printParameters(log, out);
    printColumns(log, out);
}

int run(const Options& options) {
    const auto output = standardOutput();
    bool first = true;
    const int exitCode = forEveryLog(options.logs, [&](const std::string& path) -> int {
        const LogForReading opened = openLog(path);
        if (!first) output->line("");
        first = false;
        print(path, *opened.log, *output);
        return opened.exitCode;
    });
    output->finish();
    return exitCode;
}

void declare(CLI::App& app, Options& options) {
    Arguments::addSources(app, options.logs);
}

}  // namespace

Command Commands::info() {
    return makeCommand("info", "Show the parameters, columns and size of logs", "kesta info day1.log",
                       declare, run);
}
