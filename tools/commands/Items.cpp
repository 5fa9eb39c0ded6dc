// kesta items: what a container file holds.
#include "container/ZRContainerFile.h"
#include "support/StringFunctions.h"
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/forms/Form.h"
#include "tools/forms/Writers.h"
#include "tools/logs/LogFile.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/StandardStreams.h"

namespace {

struct Options {
    std::string container;
    std::string format = "table";
};

struct Container {
    std::string name;
    bool permanent;
    std::string kind;
};

Container describe(const std::string& path) {
    const LightweightString<wchar_t> fileName = Zr::WStringFromAscii(readablePath(path).c_str());
    const LibraryMessagesOff readBefore;
    const ZRContainerFile::Reader reader(fileName, true);
    if (!reader.valid())
        throw Failure(shownName(path) + ": is a log, but no container: it has no column \"Cookie\"");
    const Cookie identifier = ZRContainerFile::getCookieFromFilename(fileName);
    // Standard input is read under a name that says nothing.
    const bool hasKind = !isStandardStream(path) && !identifier.isNull();
    return {std::string(reader.getName().view()), reader.isPermanent(),
            hasKind ? std::string(1, identifier.type()) : std::string()};
}

Heading headingOf(const Container& container, const kesta& items) {
    return {
        {"name:      " + harmless(container.name),
         std::string("permanent: ") + (container.permanent ? "yes" : "no"),
         "kind:      " + harmless(container.kind), "items:     " + std::to_string(items.get_num_records())},
        {{"name", jsonText(container.name)},
         {"permanent", container.permanent ? "true" : "false"},
         {"kind", jsonText(container.kind)}}};
}

int run(const Options& options) {
    const LogForReading opened = openLog(options.container);
    const Zr::Ptr<kesta>& items = opened.log;
    const Form& form = formNamed(options.format);
    const auto output = standardOutput(form.lineEnd);
    form.write(*items, everythingOf(*items), headingOf(describe(options.container), *items), *output);
    output->finish();
    return opened.exitCode;
}

void declare(CLI::App& app, Options& options) {
    app.add_option("CONTAINER", options.container, "the container's file")->required();
    Arguments::addFormat(app, options.format, {"table", "csv", "json"});
}

}  // namespace

Command Commands::items() {
    return makeCommand("items", "Show what a container file holds", "kesta items reels.sg", declare, run);
}
