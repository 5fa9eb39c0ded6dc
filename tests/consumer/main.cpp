// An application outside of the project: uses the database and, through it, each of the support libraries.
#include <cstring>

#include "container/ZRContainerFile.h"
#include "expr/SExpr.h"
#include "record/kesta.h"
#include "support/Cookie.h"
#include "support/TextFile.h"

int main() {
    const DBFieldDesc columns[] = {{"Cookie", DBFieldTypes::eText}, {}};
    kesta log(columns);
    const Cookie id("clip 1", false);
    const Zr::Ptr<dbrecord> record = log.addRecord(id);
    const TextFile file;
    const bool works = record && log.getRowIndexByID(id) == 0 && std::strlen(kestaDllVersionStr()) > 0;
    return works ? 0 : 1;
}
