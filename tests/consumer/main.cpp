// An application outside of the project, with an operator new whose blocks are its own alone: a database, a
// view on it, a file. No block that either side allocates may reach the other's operator delete.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "container/ZRContainerFile.h"
#include "record/kesta.h"
#include "support/Cookie.h"
#include "view/KSTViewCursor.h"

namespace {

constexpr std::size_t headerSize = 16;
constexpr char header[headerSize] = "application's";

}  // namespace

void* operator new(std::size_t size) {
    char* const block = static_cast<char*>(std::malloc(headerSize + size));
    if (!block) throw std::bad_alloc();
    std::memcpy(block, header, headerSize);
    return block + headerSize;
}

void operator delete(void* block) noexcept {
    if (!block) return;
    char* const whole = static_cast<char*>(block) - headerSize;
    if (std::memcmp(whole, header, headerSize) != 0) std::abort();
    std::free(whole);
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

int main() {
    std::vector<unsigned> rows;
    for (unsigned row = 0; row < 100; ++row) rows.push_back(row);

    const std::vector<DBFieldDesc> columns = {{"Name", DBFieldTypes::eText}, {"Cookie", DBFieldTypes::eText}};
    const Zr::Ptr<kesta> log(new kesta(columns));
    for (const unsigned row : rows) log->addRecord(Cookie(std::to_string(row).c_str(), false));
    log->add_param("Title", "A folder and a name longer than what a string keeps in itself");
    log->set_filename(L"./consumer-of-an-installed-library.log");

    const KSTView view(new KSTViewRep(log.get()));
    view->displayAllRecords();
    log->set_sortfield(1);
    log->sort(1, 0);
    log->delete_records(10, 20);
    log->set_all_tags(1);
    const KSTView tagged(new KSTViewRep(log.get()));
    tagged->displayTaggedRecordsAt(0);
    const bool shown = tagged->get_num_records() == 80 && view->get_num_records() == 80 &&
                       *KSTViewCursor(view, 0) == log->get_record(0u).get();

    const bool saved = log->save_text() == 80;
    const kesta loaded(log->get_filename(), 1000, true);
    const ZRContainerFile::Reader container(log->get_filename(), false);
    const bool same = saved && loaded.get_num_records() == 80 && container.getNumItems() == 80;
    std::remove("consumer-of-an-installed-library.log");
    return shown && same && std::strlen(kestaDllVersionStr()) > 0 ? 0 : 1;
}
