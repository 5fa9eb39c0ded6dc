// kesta import: a log from the file of another program.
#include <cerrno>
#include <optional>

#include "support/StringFunctions.h"
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/files/FileClaim.h"
#include "tools/forms/TableLog.h"
#include "tools/logs/LogFile.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Output.h"
#include "tools/terminal/Progress.h"
#include "tools/terminal/StandardStreams.h"

namespace {

struct Options {
    std::string file;
    std::string format;  // empty for what the file is
    std::string log;
    bool allWarnings = false;
    Saving saving;
};

TableLog makeLog(const TableSource& source, const std::string& file, Warnings& warnings) {
    const Progress progress("importing", file);
    return TableLog(source, shownName(file), warnings);
}

void writeFile(const TableLog& log, const std::string& path) {
    const LightweightString<wchar_t> name = Zr::WStringFromAscii(path.c_str());
    TextFile file;
    errno = 0;
    file.beginSave(name, TextFile::eLF);
    log.writeTo(file);
    if (!file.save(name, TextFile::eLF)) throw fileFailure(path, errno);
}

void print(const TableLog& log) {
    TextFile file;
    log.writeTo(file);
    const auto output = standardOutput();
    for (unsigned line = 0; line < file.size(); ++line) output->line(file.lineView(line));
    output->finish();
}

std::string summaryOf(const TableLog& log, const std::string& path) {
    std::string text =
        path + ": " + counted(log.records(), "record") + ", " + counted(log.columns(), "column");
    if (log.changed() > 0) text += ", " + counted(log.changed(), "value") + " not kept exactly";
    return text;
}

int run(const Options& options) {
    std::optional<FileClaim> claim;
    if (!isStandardStream(options.log)) claim.emplace(options.log);
    requireLogMayBeMade(options.log, options.saving.force);
    const auto source = readTable(options.file, options.format);
    Warnings warnings(options.allWarnings);
    const TableLog log = makeLog(*source, options.file, warnings);
    warnings.summarise("--all-warnings lists them all");
    save(options.log, claim ? &*claim : nullptr, options.saving, counted(log.records(), "record"),
         {summaryOf(log, options.log)}, [&] { claim ? writeFile(log, options.log) : print(log); });
    return log.lost() > 0 ? exitFindings : exitDone;
}

void declare(CLI::App& app, Options& options) {
    app.add_option("FILE", options.file, "the file to read, - for standard input")->required();
    Arguments::addFormat(app, options.format, {"csv", "ale"})
        ->description("csv or ale; else as the file's name ends, and standard input as it begins");
    Arguments::addOutput(app, options.log, "the log to write, - for standard output")->required();
    app.add_flag("--all-warnings", options.allWarnings, "list every value that a log cannot hold exactly");
    Arguments::addSaving(app, options.saving, Arguments::replacing);
}

}  // namespace

Command Commands::importFile() {
    return makeCommand("import", "Make a log of a .csv or .ale file",
                       "kesta import dailies.ale -o dailies.log", declare, run);
}
