#include "tools/TableSource.h"

#include <string_view>

#include "tools/Failure.h"
#include "tools/LogForm.h"

namespace {

bool endsWith(std::string_view path, std::string_view ending) noexcept {
    return path.size() >= ending.size() && sameName(path.substr(path.size() - ending.size()), ending);
}

}  // namespace

std::unique_ptr<TableSource> readTable(const std::string& path) {
    if (endsWith(path, ".csv")) return readCsvTable(path);
    if (endsWith(path, ".ale")) return readAleTable(path);
    throw Failure(path + ": cannot tell what form it has; its name has to end in .csv or .ale");
}
