// Hearing of deleted records: what a listener of "recordsDeleted" is told.
#include <cstdio>
#include <string>

#include "examples/SampleLog.h"

int main() {
    const Zr::Ptr<kesta> log = sampleLog();
    const int type = NotifyMsgTypeDictionary::instance().intern("recordsDeleted");
    std::string heard;
    Zr::Ptr<Zr::Guard> guard = log->registerNotification(type, [&heard](const NotifyMsg& message) {
        for (NotifyMsgTokenIterator row(message); row; ++row) heard += std::string(*row) + ';';
        return 0;
    });
    log->delete_records(1, 2);
    guard.reset();  // nothing is heard any more
    log->delete_records(0, 1);
    std::printf("%s\n", heard.c_str());
    return heard == "1;2;" ? 0 : 1;
}
