// An application outside of the project: a database, a view on it, and what they need of support/.
#include <cstring>
#include <vector>

#include "container/ZRContainerFile.h"
#include "record/kesta.h"
#include "support/Cookie.h"
#include "view/KSTViewCursor.h"

int main() {
    const Cookie id("clip 1", false);
    const std::vector<DBFieldDesc> columns = {{"Cookie", DBFieldTypes::eText}};
    const Zr::Ptr<kesta> log(new kesta(columns));
    const Zr::Ptr<dbrecord> record = log->addRecord(id);

    const KSTView view(new KSTViewRep(log.get()));
    view->displayRecordsAt(0, 1, 0);
    const KSTViewCursor first(view, 0);
    const bool found = record && *first == record.get() && log->getRowIndexByID(id) == 0;
    const bool named =
        std::strlen(kestaDllVersionStr()) > 0 && std::strlen(ZRContainerFile::getNameParamKey()) > 0;
    return found && named ? 0 : 1;
}
