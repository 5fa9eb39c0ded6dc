#include <dlfcn.h>
#include <thread>

#include "support/CriticalSection.h"
#include "support/OS.h"
#include "support/SystemWatchdog.h"
#include "tests/TestSupport.h"

using namespace TestSupport;

namespace fs = std::filesystem;
using Files = TempFolderTest;

// Sanitizers end the process when malloc is asked for more than there can be, unless they are told to answer
// as the C library does.
extern "C" KESTA_API const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" KESTA_API const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}

TEST(Allocator, AnswersABlockForEverySizeOrThrowsAndAnotherMayTakeItsPlace) {
    iAllocator* const builtIn = OS()->allocator();
    void* const nothing = builtIn->allocate(0);
    EXPECT_NE(nothing, nullptr);
    builtIn->release(nothing);
    builtIn->release(nullptr);
    EXPECT_THROW(builtIn->allocate(SIZE_MAX / 2), Zr::Exception::BadAlloc);
    std::free(builtIn->allocate(100));  // blocks are malloc's

    CountingAllocator mine;
    EXPECT_EQ(OS()->allocator(), &mine);
    EXPECT_EQ(OS()->setAllocator(nullptr), &mine);
    EXPECT_EQ(OS()->allocator(), builtIn);
}

TEST(Allocator, LibrariesKeepTheirMemoryOperatorsToThemselves) {
    for (const char* symbol : {"_Znwm", "_Znam", "_ZdlPv", "_ZdlPvm", "_ZnwmRKSt9nothrow_t"}) {
        Dl_info owner{};
        ASSERT_NE(dladdr(dlsym(RTLD_DEFAULT, symbol), &owner), 0);
        const std::string file = fs::path(owner.dli_fname).filename();
        for (const char* library : {"libOS.", "libzr.", "libmisc.", "libkesta."}) {
            EXPECT_NE(file.rfind(library, 0), 0u) << symbol << " comes from " << file;
        }
    }
}

TEST_F(Files, MoveReplacesTheTargetOrLeavesBothNamesWhichMayBeAnyBytes) {
    const fs::path source = folder.with("\xED\xB2\x80\xFFreel", "source text");
    const WideText from = wide(source);
    const WideText to = wide(folder.with("\xC3\xA9", "target text"));
    const WideText cutShort = to + WideText(L"\0x", 2);  // the system would take it for another file's name
    const std::pair<WideText, WideText> moves[] = {{wide(folder / "missing"), to},
                                                   {from, wide(folder / "no folder" / "target")},
                                                   {from, wide(folder.path())},
                                                   {from, WideText()},
                                                   {WideText(), to},
                                                   {from, cutShort}};
    for (const auto& [old, target] : moves) EXPECT_FALSE(OS()->fileSystem()->move(old, target, 0));
    EXPECT_EQ(readFile(source), "source text");
    EXPECT_EQ(readFile(folder / "\xC3\xA9"), "target text");
    EXPECT_TRUE(OS()->fileSystem()->move(from, to, 0));
    EXPECT_EQ(readFile(folder / "\xC3\xA9"), "source text");

    for (const WideText& missing : {from, cutShort, WideText()}) EXPECT_FALSE(fileExists(missing));
    for (const WideText& there : {to, wide(folder.path())}) EXPECT_TRUE(fileExists(there));
}

TEST(Log, MessagesReachStandardErrorOrTheSinkInOnePieceAlsoWithoutMemory) {
    testing::internal::CaptureStderr();
    LogBoth("%u\n", 5u);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "5\n");

    const CapturedLog log;
    const std::string longText(5000, 'x');
    dorp_printf("row %d of %s\n", 7, "reel");
    LogBoth("%s\n", longText.c_str());
    kes_splat("100%s\n");
    kes_splat(nullptr);
    EXPECT_EQ(log.messages(), (Fields{"row 7 of reel\n", longText + "\n", "100%s\n"}));

    CountingAllocator memory;
    memory.failAt(1, true);
    dorp_printf("%s", longText.c_str());
    EXPECT_EQ(longText.rfind(log.messages().back(), 0), 0u);  // perhaps cut
}

TEST(CriticalSection, KeepsOthersOutUntilItsHolderHasLeftAsOftenAsItEntered) {
    CriticalSection section;
    long counter = 0;
    const auto count = [&] {
        for (int n = 0; n < 10000; ++n) {
            for (int i = 0; i < 2; ++i) section.enter();
            section.leave();
            ++counter;
            section.leave();
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 20000);
}

TEST(SystemWatchdog, AnnouncementsNestOnEachThread) {
    for (int i = 0; i < 2; ++i) SystemWatchdog::beginLifeSupport();
    std::thread([] { EXPECT_EQ(SystemWatchdog::openAnnouncements(), 0); }).join();
    EXPECT_EQ(SystemWatchdog::openAnnouncements(), 2);
    for (int i = 0; i < 3; ++i) SystemWatchdog::endLifeSupport();  // once too often
    EXPECT_EQ(SystemWatchdog::openAnnouncements(), 0);
}
