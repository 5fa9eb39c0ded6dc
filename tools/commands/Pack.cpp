// kesta pack: a container file, made of media identifiers.
#include <cerrno>
#include <filesystem>

#include "container/ZRContainerFile.h"
#include "support/StringFunctions.h"
#include "tools/Commands.h"
#include "tools/DisplayText.h"
#include "tools/Failure.h"
#include "tools/FileClaim.h"
#include "tools/Files.h"
#include "tools/LogForm.h"
#include "tools/LogInspector.h"
#include "tools/Messages.h"
#include "tools/Output.h"

namespace {

void requireWritable(const PackOptions& options) {
    if (isCommaSeparated(options.container)) {
        throw Failure(options.container +
                      ": a container cannot have this name, because files ending in .csv are read as "
                      "comma-separated text");
    }
    if (!isThere(options.container)) return;
    if (!options.force) throw Failure(options.container + ": is there already; --force replaces it");
    std::error_code error;
    const bool isPlainFile = std::filesystem::is_regular_file(options.container, error);
    if (error) throw fileFailure(options.container, error.value());
    if (!isPlainFile) {
        throw Failure(options.container + ": is no plain file");
    }
}

/// The identifiers in their order, each once.
CookieSet parseIdentifiers(const std::vector<std::string>& texts) {
    CookieSet identifiers;
    Warnings warnings;
    for (const std::string& text : texts) {
        const Cookie identifier(text.c_str(), false);
        if (identifier.isNull()) throw Failure("an identifier is empty", exitUsage);
        if (identifier.type() == 'I') {
            throw Failure('"' + text + "\" is of kind I, which containers do not take", exitUsage);
        }
        if (!identifiers.add(identifier)) warnings.add('"' + text + "\" is named twice and kept once");
    }
    warnings.summarise("they are kept once each");
    return identifiers;
}

void save(const PackOptions& options, const CookieSet& identifiers, FileClaim& claim) {
    const DBFieldDesc columns[] = {{"Cookie", DBFieldTypes::eText}, {}};
    ZRContainerFile::Writer writer(columns);
    writer.setName(libraryText(options.name));
    writer.setPermanent(options.permanent);
    for (const Cookie& identifier : identifiers) writer.addItem(identifier);

    claim.requireUnchanged();
    const LightweightString<wchar_t> fileName = Zr::WStringFromAscii(options.container.c_str());
    errno = 0;
    writer.save(fileName);
    const int error = errno;
    // Saving does not tell whether it went well, but puts a whole new file in the place of the old one or
    // nothing.
    if (!claim.isChanged()) throw fileFailure(options.container, error);
    claim.release();
}

}  // namespace

int Commands::packItems(const PackOptions& options) {
    FileClaim claim(options.container);
    requireWritable(options);
    if (!keepsParameter("Name", options.name)) {
        throw Failure(std::string("a container does not keep this name as it is: ") + parameterRules);
    }
    const CookieSet identifiers = parseIdentifiers(options.identifiers);
    save(options, identifiers, claim);
    const auto output = standardOutput();
    output->line(harmless(options.container) + ": " + std::to_string(identifiers.size()) +
                 (identifiers.size() == 1 ? " item" : " items"));
    output->finish();
    return exitDone;
}
