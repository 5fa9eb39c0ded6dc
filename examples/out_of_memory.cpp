// Running out of memory: an operation throws, and the log is still good for saving.
#include <cstdio>
#include <cstdlib>

#include "examples/SampleLog.h"
#include "support/Exception.h"
#include "support/OS.h"

namespace {

class NoMemory : public iAllocator {
 public:
    void* allocate(std::size_t) override { throw Zr::Exception::BadAlloc(); }
    void release(void* block) noexcept override { std::free(block); }
};

}  // namespace

int main() {
    const Zr::Ptr<kesta> log = sampleLog();
    NoMemory none;
    iAllocator* const before = OS()->setAllocator(&none);
    bool failed = false;
    try {
        log->set_field(0, 3, "a note that needs room");
    } catch (const Zr::Exception::BadAlloc& exhausted) {  // also a std::bad_alloc
        failed = true;
        std::fprintf(stderr, "%s\n", exhausted.message());
    }
    OS()->setAllocator(before);
    return failed && log->getField(0, 3) == "Flare at the head" ? 0 : 1;
}
