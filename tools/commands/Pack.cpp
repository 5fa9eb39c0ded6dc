// kesta pack: a container file, made of media identifiers.
#include <algorithm>
#include <cerrno>
#include <filesystem>

#include "container/ZRContainerFile.h"
#include "support/Ascii.h"
#include "support/StringFunctions.h"
#include "tools/Failure.h"
#include "tools/commands/Arguments.h"
#include "tools/commands/Commands.h"
#include "tools/files/FileClaim.h"
#include "tools/files/Files.h"
#include "tools/logs/LogForm.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"
#include "tools/terminal/StandardStreams.h"

namespace {

struct Options {
    std::string container;
    std::string name;
    std::vector<std::string> identifiers;
    bool names = false;  // a text that is no identifier stands for the one made of it
    bool permanent = false;
    Saving saving;
};

void requireUsable(const std::string& container, bool replace) {
    if (isCommaSeparated(container)) {
        throw Failure(container +
                      ": a container cannot have this name, because files ending in .csv are read as "
                      "comma-separated text");
    }
    if (!isThere(container)) return;
    if (!replace) throw Failure(container + ": is there already; --force replaces it");
    std::error_code error;
    const bool isPlainFile = std::filesystem::is_regular_file(container, error);
    if (error) throw fileFailure(container, error.value());
    if (!isPlainFile) {
        throw Failure(container + ": is no plain file");
    }
}

/// Whether it is what a killed run of the program leaves of a container; none is running, for the container
/// is claimed.
bool isLeftOver(const std::string& temporary) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(std::filesystem::symlink_status(temporary, ignored))) return false;
    const LibraryMessagesOff itIsOnlyLookedAt;
    return std::filesystem::file_size(temporary, ignored) == 0 ||
           ZRContainerFile::Reader(Zr::WStringFromAscii(temporary.c_str()), true).valid();
}

/// The library writes a file of this name first, and would replace one that is there.
void requireFreeTemporary(const std::string& file) {
    const std::string temporary = file + ".tmp";
    if (isThere(temporary) && !isLeftOver(temporary)) {
        throw Failure(file + ": not saved, because " + temporary + " is in the way; give that another name");
    }
}

/// Whether the text is a kind letter, 32 hexadecimal digits, in groups of 8, 4, 4, 4 and 12 or without, and
/// two more.
bool isIdentifier(std::string_view text) noexcept {
    const bool isGrouped = text.size() > 9 && text[9] == '-';
    const std::string_view form =
        isGrouped ? "kxxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxxxx" : "kxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx";
    return std::equal(text.begin(), text.end(), form.begin(), form.end(), [](char c, char wanted) {
        if (wanted == '-') return c == '-';
        const char folded = Ascii::fold(c);
        const bool isDigit = c >= '0' && c <= '9';
        return wanted == 'k' ? folded >= 'a' && folded <= 'z' : isDigit || (folded >= 'a' && folded <= 'f');
    });
}

/// The identifiers in their order, each once.
CookieSet parseIdentifiers(const std::vector<std::string>& texts, bool takesNames) {
    CookieSet identifiers;
    Warnings warnings;
    for (const std::string& text : texts) {
        const Cookie identifier(text.c_str(), false);
        if (identifier.isNull()) throw Failure("an identifier is empty", exitUsage);
        if (!takesNames && !isIdentifier(Ascii::trimmed(text))) {
            throw Failure('"' + text + "\" is no identifier; --names takes it as the name of an item",
                          exitUsage);
        }
        if (identifier.type() == 'I') {
            throw Failure('"' + text + "\" is of kind I, which containers do not take", exitUsage);
        }
        if (!identifiers.add(identifier)) warnings.add('"' + text + "\" is named twice and kept once");
    }
    warnings.summarise("they are kept once each");
    return identifiers;
}

void write(const std::string& file, const Options& options, const CookieSet& identifiers,
           const FileClaim& claim) {
    const DBFieldDesc columns[] = {{"Cookie", DBFieldTypes::eText}, {}};
    ZRContainerFile::Writer writer(columns);
    writer.setName(libraryText(options.name));
    writer.setPermanent(options.permanent);
    for (const Cookie& identifier : identifiers) writer.addItem(identifier);

    const LightweightString<wchar_t> fileName = Zr::WStringFromAscii(file.c_str());
    errno = 0;
    writer.save(fileName);
    const int error = errno;
    // Saving does not tell whether it went well, but puts a whole new file in the place of the old one or
    // nothing.
    if (!claim.isChanged()) throw fileFailure(options.container, error);
}

int run(const Options& options) {
    if (isStandardStream(options.container)) {
        throw Failure("a container is not written to standard output; name a file", exitUsage);
    }
    FileClaim claim(options.container);
    requireUsable(options.container, options.saving.force);
    const std::string file = resolved(options.container);
    requireFreeTemporary(file);
    if (!keepsParameter("Name", options.name)) {
        throw Failure(std::string("a container does not keep this name as it is: ") + parameterRules());
    }
    const CookieSet identifiers = parseIdentifiers(options.identifiers, options.names);
    const std::string content = counted(identifiers.size(), "item");
    save(options.container, &claim, options.saving, content, {options.container + ": " + content},
         [&] { write(file, options, identifiers, claim); });
    return exitDone;
}

void declare(CLI::App& app, Options& options) {
    app.add_option("IDENTIFIER", options.identifiers,
                   "the items' identifiers: a letter for the kind, 32 hexadecimal digits, plain or in "
                   "groups, and two more")
        ->required();
    Arguments::addOutput(app, options.container, "the container to write")->required();
    app.add_option("--name", options.name, "the container's name")->required();
    app.add_flag("--names", options.names,
                 "take a text that is no identifier for the name of an item, and make one of it");
    app.add_flag("--permanent", options.permanent, "mark the container as permanent");
    Arguments::addSaving(app, options.saving, Arguments::replacing);
}

}  // namespace

Command Commands::pack() {
    return makeCommand("pack", "Make a container file of media identifiers",
                       "kesta pack -o reels.sg --name \"Day 1\" M0123456789abcdef0123456789abcdef00", declare,
                       run);
}
