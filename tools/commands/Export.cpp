// kesta export: a log in the form of another program.
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/files/OutputFile.h"
#include "tools/forms/Form.h"
#include "tools/logs/ColumnMap.h"
#include "tools/logs/LogFile.h"
#include "tools/terminal/DisplayText.h"

namespace {

struct Options {
    std::string log;
    std::string format;
    std::string output;  // empty for standard output
    bool allColumns = false;
    Saving saving;
};

int run(const Options& options) {
    OutputFile output(options.log, options.output, options.saving);
    const LogForReading opened = openLog(options.log);
    kesta& log = *opened.log;
    Selection selection = everythingOf(log);
    if (!options.allColumns) selection.columns = shownColumns(log);
    const Form& form = formNamed(options.format);
    output.write(form.lineEnd, counted(log.get_num_records(), "record"),
                 [&](LineSink& out) { form.write(log, selection, {}, out); });
    return opened.exitCode;
}

void declare(CLI::App& app, Options& options) {
    Arguments::addSource(app, options.log);
    Arguments::addFormat(app, options.format, {"csv", "ale", "json"})->required();
    Arguments::addAllColumns(app, options.allColumns);
    Arguments::addOutput(app, options.output, "the file to write, instead of standard output");
    Arguments::addSaving(app, options.saving, Arguments::replacing);
    Arguments::requireOutputForSaving(app);
}

}  // namespace

Command Commands::exportLog() {
    return makeCommand("export", "Write a log in another form",
                       "kesta export dailies.log --format csv -o dailies.csv", declare, run);
}
