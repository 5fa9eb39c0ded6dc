#include "tools/Failure.h"

#include <cstring>

Failure fileFailure(const std::string& path, int error) {
    return Failure(path + ": " + (error ? std::strerror(error) : "the system refused, without a reason"));
}
