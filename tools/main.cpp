// The program kesta: the daily work on a log without the application.
#include <cstdio>
#include <exception>
#include <new>

#include "tools/CommandLine.h"
#include "tools/Failure.h"
#include "tools/terminal/DisplayText.h"
#include "tools/terminal/Messages.h"

int main(int argc, char** argv) {
    try {
        useUnicodeWidths();
        tidyLibraryMessages();
        return CommandLine().run(argc, argv);
    } catch (const Failure& failure) {
        complain(failure.what());
        return failure.exitCode();
    } catch (const std::bad_alloc&) {
        std::fputs("kesta: out of memory\n", stderr);
    } catch (const std::exception& error) {
        complain(error.what());
    }
    return exitFailed;
}
