// kesta items: what a container file holds.
#include "container/ZRContainerFile.h"
#include "support/StringFunctions.h"
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/forms/TablePrinter.h"
#include "tools/forms/Writers.h"
#include "tools/logs/LogFile.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/StandardStreams.h"

namespace {

struct Container {
    std::string name;
    bool permanent;
    std::string kind;
};

Container describe(const std::string& path) {
    const LightweightString<wchar_t> fileName = Zr::WStringFromAscii(readablePath(path).c_str());
    const ZRContainerFile::Reader reader(fileName, true);
    if (!reader.valid())
        throw Failure(shownName(path) + ": is a log, but no container: it has no column \"Cookie\"");
    const Cookie identifier = ZRContainerFile::getCookieFromFilename(fileName);
    // Standard input is read under a name that says nothing.
    const bool hasKind = !isStandardStream(path) && !identifier.isNull();
    return {std::string(reader.getName().view()), reader.isPermanent(),
            hasKind ? std::string(1, identifier.type()) : std::string()};
}

void printHead(const Container& container, const kesta& items, LineSink& out) {
    out.line("name:      " + harmless(container.name));
    out.line(std::string("permanent: ") + (container.permanent ? "yes" : "no"));
    out.line("kind:      " + harmless(container.kind));
    out.line("items:     " + std::to_string(items.get_num_records()));
}

}  // namespace

int Commands::showItems(const ItemsOptions& options) {
    const LogForReading opened = openLog(options.container);
    const Zr::Ptr<kesta>& items = opened.log;
    const Container container = describe(options.container);
    const Selection everything = everythingOf(*items);
    const auto output = standardOutput(options.format == "csv" ? LineEnd::crlf : LineEnd::lf);
    if (options.format == "csv") {
        writeCsv(*items, everything, *output);
    } else if (options.format == "json") {
        writeJson(*items, everything, *output,
                  {{"name", jsonText(container.name)},
                   {"permanent", container.permanent ? "true" : "false"},
                   {"kind", jsonText(container.kind)}});
    } else {
        printHead(container, *items, *output);
        printTable(*items, everything, standardOutputTerminal(), *output);
    }
    output->finish();
    return opened.exitCode;
}
