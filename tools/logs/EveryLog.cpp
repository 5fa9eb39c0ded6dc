#include "tools/logs/EveryLog.h"

#include <algorithm>

#include "tools/Failure.h"
#include "tools/terminal/Messages.h"

int forEveryLog(const std::vector<std::string>& paths, const std::function<int(const std::string&)>& work) {
    if (paths.size() == 1) return work(paths.front());
    int exitCode = exitDone;
    for (const std::string& path : paths) {
        try {
            exitCode = std::max(exitCode, work(path));
        } catch (const Failure& failure) {
            if (failure.exitCode() == exitUsage) throw;
            complain(failure.what());
            exitCode = std::max<int>(exitCode, failure.exitCode());
        }
    }
    return exitCode;
}
