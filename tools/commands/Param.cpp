// kesta param: the parameters of a log.
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/logs/LogFile.h"
#include "tools/logs/LogForm.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/Output.h"
#include "tools/terminal/Suggestion.h"

namespace {

struct Options {
    std::string log;
    std::optional<std::string> key;
    std::optional<std::string> value;
    Saving saving;
};

void print(const std::string& text) {
    const auto output = standardOutput();
    output->line(harmless(text));
    output->finish();
}

int list(const kesta& log) {
    const auto output = standardOutput();
    for (const auto& param : log.params()) {
        output->line(harmless(param.name().view()) + ": " + harmless(param.value().view()));
    }
    output->finish();
    return exitDone;
}

int show(const kesta& log, const std::string& key) {
    const int index = log.findParamIndex(libraryText(key));
    if (index >= 0) {
        print(std::string(log.params()[static_cast<std::size_t>(index)].value().view()));
        return exitDone;
    }
    std::vector<std::string> keys;
    for (const auto& param : log.params()) keys.emplace_back(param.name().view());
    complain("no parameter " + suggestionFor(key, keys, "parameters", "kesta param lists them"));
    return exitFindings;
}

int set(const Options& options) {
    LogForEditing log(options.log, options.saving.force);
    if (Ascii::equalFolded(*options.key, "KESTA"))
        throw Failure("the parameter KESTA is the log's revision and stays as it is");
    if (!keepsParameter(*options.key, *options.value)) {
        throw Failure(std::string("a log does not keep this parameter as it is: ") + parameterRules());
    }
    log->add_param(libraryText(*options.key), libraryText(*options.value));
    log.save(options.saving);
    return exitDone;
}

int run(const Options& options) {
    if (options.value) return set(options);
    const Zr::Ptr<kesta> log = openLog(options.log).log;
    return options.key ? show(*log, *options.key) : list(*log);
}

void declare(CLI::App& app, Options& options) {
    Arguments::addEdit(app, options.log, options.saving);
    app.add_option("KEY", options.key, "the parameter; all when left out");
    app.add_option("VALUE", options.value, "its new value");
}

}  // namespace

Command Commands::param() {
    return makeCommand("param", "List, show or set parameters", "kesta param day1.log FPS 23.976", declare,
                       run);
}
