// The same work on several logs.
#pragma once

#include <functional>
#include <string>
#include <vector>

/// Calls `work` for each log and returns the worst of its exit codes. With several logs, one that fails is
/// complained of and does not keep the others from their turn; a misunderstood command line ends them all.
int forEveryLog(const std::vector<std::string>& paths, const std::function<int(const std::string&)>& work);
