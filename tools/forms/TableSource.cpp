#include "tools/forms/TableSource.h"

#include <algorithm>
#include <string_view>

#include "support/Ascii.h"
#include "tools/Failure.h"
#include "tools/forms/TableText.h"
#include "tools/terminal/StandardStreams.h"

namespace {

bool endsWith(std::string_view path, std::string_view ending) noexcept {
    return path.size() >= ending.size() &&
           Ascii::equalFolded(path.substr(path.size() - ending.size()), ending);
}

/// Only the exchange form begins with a line that is the name of a section.
bool beginsLikeAle(std::string_view text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    const std::string_view line = Ascii::trimmed(text.substr(0, text.find_first_of("\r\n")));
    return Ascii::equalFolded(line, "Heading") || Ascii::equalFolded(line, "Column");
}

std::string formatOf(const std::string& path) {
    if (isStandardStream(path)) return beginsLikeAle(readTableText(path)) ? "ale" : "csv";
    for (const char* const format : {"csv", "ale"}) {
        if (endsWith(path, std::string(".") + format)) return format;
    }
    throw Failure(path +
                  ": cannot tell what form it has; give --format, or a name that ends in .csv or .ale");
}

}  // namespace

std::unique_ptr<TableSource> readTable(const std::string& path, const std::string& format) {
    return (format.empty() ? formatOf(path) : format) == "csv" ? readCsvTable(path) : readAleTable(path);
}
