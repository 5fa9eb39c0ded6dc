// Errors: nothing faults, whatever it is asked; what cannot be done says so.
#include <climits>

#include "examples/SampleLog.h"
#include "support/StringFunctions.h"

int main() {
    const Zr::Ptr<kesta> log = sampleLog();
    const bool asked = log->get_fieldnum("Scene") == UINT_MAX &&  // no such column
                       log->getField(99, 0).empty() &&            // no such row
                       !log->get_record(99) &&                    //
                       !log->set_field(99, 0, 7) &&               //
                       log->get_tag(99) == -1;

    const kesta missing(fromUTF8("no such file.log"), 1000, true);
    return asked && missing.get_valid() == 0 && missing.get_num_records() == 0 ? 0 : 1;
}
