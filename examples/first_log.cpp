// A log from nothing: makes a database, adds records, saves it, loads it again and prints what came back.
#include <cstdio>

#include "record/kesta.h"
#include "support/StringFunctions.h"

int main(int argc, char** argv) {
    const LightweightString<wchar_t> file = fromUTF8(argc > 1 ? argv[1] : "first.log");
    kesta log(
        std::vector<DBFieldDesc>{{"Name", DBFieldTypes::eText}, {"Start time", DBFieldTypes::eTimecode}});
    log.add_param("Title", "Low Water");  // a file without parameters does not load again
    const unsigned first = log.add_records(2);
    log.set_field(first, log.get_fieldnum("name"), "12-1");
    log.set_field(first, 1, "01:00:00:00");
    log.set_field(first + 1, 0, "12-2");
    log.set_filename(file);
    if (log.save_text() != 2) return 1;

    const kesta loaded(file, 1000, true);  // at most 1000 records; only a file with a full header
    for (unsigned row = 0; row < loaded.get_num_records(); ++row) {
        std::printf("%s %s\n", loaded.getField(row, 0).c_str(), loaded.getField(row, 1).c_str());
    }
    return loaded.getField(0, 1) == "01:00:00:00" ? 0 : 1;
}
