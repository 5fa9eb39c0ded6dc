// A log from nothing: makes a database, adds records, saves it, loads it again and prints what came back.
#include <cstdio>
#include <vector>

#include "record/kesta.h"
#include "support/StringFunctions.h"

int main(int argc, char** argv) {
    const LightweightString<wchar_t> file = fromUTF8(argc > 1 ? argv[1] : "first.log");
    const std::vector<DBFieldDesc> columns = {{"Name", DBFieldTypes::eText},
                                              {"Start time", DBFieldTypes::eTimecode}};
    kesta log(columns);
    log.add_param("Title", "Low Water");  // a file without parameters does not load again
    const unsigned first = log.add_records(2);
    log.set_field(first, 0, "12-1");
    log.set_field(first, 1, "01:00:00:00");
    log.set_field(first + 1, log.get_fieldnum("name"), "12-2");
    log.set_filename(file);
    if (log.save_text() != 2) return 1;

    const kesta loaded(file, 1000, true);  // at most 1000 records; only a file with a full header
    for (unsigned row = 0; row < loaded.get_num_records(); ++row) {
        for (unsigned field = 0; field < loaded.get_num_fields(); ++field) {
            std::printf("%u %s: %s\n", row, loaded.get_fieldname(field), loaded.getField(row, field).c_str());
        }
    }
    return loaded.get_num_records() == 2 && loaded.getField(0, 0) == "12-1" ? 0 : 1;
}
