// Field maps. Any text as their parameter is read as a slow reader does, and what a map writes the next one
// reads. Any sequence of their operations does what it does to a plain list. The first byte says which.
#include "fuzz/Fuzz.h"
#include "tests/fieldmap/FieldMapModel.h"

namespace {

using namespace FieldMapModel;

void parameterText(Fuzz::Input& input) {
    const unsigned count = input.byte();
    kesta log(fields(count));
    const std::string text = input.rest().c_str();
    log.add_param(FieldMap::parameter, text.c_str());
    FieldMap map(log);
    Fuzz::promise(answers(map) == answers(read(text, count), log));

    for (int i = 0; i < map.size(); ++i) {
        // Hidden columns past the 99th do not fit into the text.
        if (!map.isVisible(i) && log.get_fieldnum(map.getName(i)) >= 99) map.setVisible(i, true);
    }
    map.remove("");  // numbers of columns that are not there
    if (map.size() == 0) return;
    log.add_param(FieldMap::parameter, map.asString());
    Fuzz::promise(answers(FieldMap(log)) == answers(map));
}

void operations(Fuzz::Input& input) {
    kesta log(fields(12));
    FieldMap map(log);
    Columns columns = read("", 12);
    while (!input.empty()) {
        change(map, columns, input);
        Fuzz::promise(answers(map) == answers(columns, log));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::Input input(data, size);
    input.below(2) == 0 ? parameterText(input) : operations(input);
    return 0;
}
