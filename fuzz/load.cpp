// Any bytes as a database file, a log or comma-separated: a log loads as the model has it, and saving
// and loading settles. The first byte says how it is loaded.

#include "container/ZRContainerFile.h"
#include "fuzz/Fuzz.h"
#include "record/kesta.h"
#include "tests/record/LineModel.h"
#include "view/KSTView.h"

namespace {

constexpr int noLimit = INT_MAX;

// What one save loses (text after a quote in a column's name, the end of a long value) the next load does
// not see, so after some rounds a file comes back as it was. Parameters and names are deliberately written
// with their quotes as they are, of which two read as one: a run of them takes a round for each halving.
void saveUntilSettled(kesta& log) {
    const std::string path = Fuzz::folder() / "saved.log";
    const auto wide = Fuzz::folder().wide("saved.log");
    log.set_filename(wide);
    log.save_text();
    std::string before = Fuzz::readFile(path);
    for (int round = 0; round < 20; ++round) {
        kesta again(wide, noLimit, true);
        if (!again.get_valid()) return;
        const int saved = again.save_text();
        Fuzz::promise(saved == static_cast<int>(again.get_num_records()));
        const std::string after = Fuzz::readFile(path);
        if (after == before) return;
        before = after;
    }
    Fuzz::promise(false);
}

// The other ways by which files are read and written.
void otherReaders(kesta& log, const LightweightString<wchar_t>& name) {
    const ZRContainerFile::Reader reader(name, false);
    const CookieSet contents = reader.getContents();
    Fuzz::promise(contents.size() <= reader.getNumItems());
    for (unsigned i = 0; i < reader.getNumItems(); ++i) {
        const Cookie cookie = reader.getItem(i).getCookie();
        Fuzz::promise(!reader.valid() || cookie.isNull() || reader.contains(cookie));
    }

    const KSTView view(new KSTViewRep(&log));
    view->displayAllRecords();
    const auto viewFile = Fuzz::folder().wide("view.log");
    Fuzz::promise(view->saveAsText(viewFile, false) == static_cast<int>(log.get_num_records()));
    view->saveOnlyTagged(viewFile);

    const unsigned before = log.get_num_records();
    const int appended = log.load_text(3);
    Fuzz::promise(appended >= 0 && appended <= 3);
    Fuzz::promise(log.get_num_records() == before + static_cast<unsigned>(appended));
    log.set_filename(viewFile);
    log.save_text_without_header();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr int limits[] = {noLimit, 2, 1, 0, -1, INT_MIN};
    Fuzz::Input input(data, size);
    const unsigned how = input.byte();
    const bool isCSV = (how & 1) != 0;
    const bool strict = (how & 2) != 0;
    const int limit = limits[how / 4 % std::size(limits)];

    const char* const name = isCSV ? "input.csv" : "input.log";
    const std::string content = input.rest();
    Fuzz::writeFile(Fuzz::folder() / name, content);
    kesta log(Fuzz::folder().wide(name), limit, strict);
    Fuzz::promise(log.get_valid() || (log.get_num_fields() == 0 && log.get_num_records() == 0));
    if (!isCSV) {
        const LineModel::Database expected = LineModel::Loader(content).load(limit, strict);
        Fuzz::promise(LineModel::contentsOf(log).seen() == expected.seen());
    }
    otherReaders(log, Fuzz::folder().wide(name));
    saveUntilSettled(log);
    return 0;
}
