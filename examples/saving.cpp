// Saving, and what there is after a save that failed.
#include "examples/SampleLog.h"
#include "support/StringFunctions.h"

int main(int argc, char** argv) {
    const LightweightString<wchar_t> file = fromUTF8(argc > 1 ? argv[1] : "saving.log");
    const Zr::Ptr<kesta> log = sampleLog();
    log->set_filename(file);
    if (log->save_text() != 4) return 1;  // the number of records
    log->clear_changed();                 // a save does not do this

    log->set_field(0, 0, "12-1A");
    log->set_filename(file + fromUTF8("/no such folder/low-water.log"));
    const bool saved = log->save_text() != 0;
    if (saved || !log->get_changed()) return 1;  // the changes are still there, and still to be saved

    const kesta old(file, 1000, true);
    return old.get_valid() != 0 && old.getField(0, 0) == "12-1" ? 0 : 1;
}
