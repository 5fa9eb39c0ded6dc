// Any bytes as a file of another program, tab-separated or comma-separated, imported as the program does it:
// the file is refused with a reason, or becomes a log that loads with all of the file's rows. The first byte
// says which form it is.
#include <limits>

#include "fuzz/Fuzz.h"
#include "record/kesta.h"
#include "tools/Commands.h"
#include "tools/Failure.h"
#include "tools/TableSource.h"

namespace {

// As many as the table has; 0 when it is refused.
unsigned rowsOf(const std::string& path) {
    unsigned rows = 0;
    unsigned lastLine = 0;
    const auto count = [&](unsigned line, const std::vector<std::string>& values) {
        Fuzz::promise(line > lastLine && !values.empty());
        lastLine = line;
        ++rows;
    };
    const auto table = readTable(path);
    Fuzz::promise(!table->columns().empty());
    lastLine = table->columnLine();
    table->forEachRow(count);
    return rows;
}

void checkLog(const std::string& path, unsigned rows) {
    const kesta log(fromUTF8(path.c_str()), std::numeric_limits<int>::max(), true);
    Fuzz::promise(log.get_valid() && log.get_num_records() == rows);
    for (unsigned field = 0; field < log.get_num_fields(); ++field) {
        Fuzz::promise(log.get_fieldnum(log.get_fieldname(field)) == field);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    const bool isCSV = input.below(2) == 1;
    ImportOptions options;
    options.file = Fuzz::folder() / (isCSV ? "input.csv" : "input.ale");
    options.log = Fuzz::folder() / "imported.log";
    options.force = true;
    Fuzz::writeFile(options.file, input.rest());
    std::filesystem::remove(options.log);
    try {
        Commands::importFile(options);
    } catch (const Failure& failure) {
        Fuzz::promise(*failure.what() != '\0' && !std::filesystem::exists(options.log));
        return 0;
    }
    checkLog(options.log, rowsOf(options.file));
    return 0;
}
