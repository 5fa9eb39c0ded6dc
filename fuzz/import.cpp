// Any bytes as a file of another program, tab-separated or comma-separated, imported as the program does it:
// the file is refused with a reason, or becomes a log that loads with all of the file's rows, and with all of
// their values unless the program said otherwise. The first byte says which form it is.
#include <limits>

#include "fuzz/Fuzz.h"
#include "record/kesta.h"
#include "support/Ascii.h"
#include "tools/CommandLine.h"
#include "tools/Failure.h"
#include "tools/forms/TableSource.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

Rows rowsOf(const TableSource& table) {
    Rows rows;
    Fuzz::promise(!table.columns().empty());
    unsigned lastLine = table.columnLine();
    table.forEachRow([&](unsigned line, const TableSource::Values& values) {
        Fuzz::promise(line > lastLine && !values.empty());
        lastLine = line;
        rows.emplace_back(values.begin(), values.end());
    });
    return rows;
}

void checkLog(const kesta& log, std::size_t rows) {
    Fuzz::promise(log.get_valid() && log.get_num_records() == rows);
    for (unsigned field = 0; field < log.get_num_fields(); ++field) {
        Fuzz::promise(log.get_fieldnum(log.get_fieldname(field)) == field);
    }
}

// What was imported without a loss is there, but for white space around it.
void checkNothingLost(const kesta& log, const TableSource& table, const Rows& rows) {
    std::size_t i = 1;  // after the revision
    Fuzz::promise(log.params().size() == table.parameters().size() + 1);
    for (const TableSource::Parameter& parameter : table.parameters()) {
        Fuzz::promise(log.params()[i++].value().view() == parameter.value);
    }
    for (unsigned row = 0; row < rows.size(); ++row) {
        for (unsigned field = 0; field < rows[row].size(); ++field) {
            const std::string& value = rows[row][field];
            const std::string_view kept = log.getField(row, field).view();
            Fuzz::promise(kept == value || kept == Ascii::trimmed(value));
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static CommandLine program;
    Fuzz::Input input(data, size);
    const bool isCSV = input.below(2) == 1;
    const std::string file = Fuzz::folder() / (isCSV ? "input.csv" : "input.ale");
    const std::string made = Fuzz::folder() / "imported.log";
    Fuzz::writeFile(file, input.rest());
    std::filesystem::remove(made);
    int exitCode = exitDone;
    try {
        std::vector<std::string> words = {"kesta", "import", file, "-o", made, "--quiet"};
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        exitCode = program.run(static_cast<int>(arguments.size()), arguments.data());
    } catch (const Failure& failure) {
        Fuzz::promise(*failure.what() != '\0' && !std::filesystem::exists(made));
        return 0;
    }
    const kesta log(fromUTF8(made.c_str()), std::numeric_limits<int>::max(), true);
    const auto table = readTable(file, {});
    const Rows rows = rowsOf(*table);
    checkLog(log, rows.size());
    if (exitCode == exitDone) checkNothingLost(log, *table, rows);
    return 0;
}
