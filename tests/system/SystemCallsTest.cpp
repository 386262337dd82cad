// Argument parsing, and the platform calls behind the system queries through
// the fake backend.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstring>

#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;

TEST(SystemCalls, ProgramArgsAndThePlatformCalls)
{
    // The table is process-wide and never cleared: these keys are used nowhere
    // else.
    char const* argv[] = {"pl", "-a", "-b", "x-y", "1", "a -m v", "2", "-a", "3", "-", "-Z", nullptr};
    EXPECT_TRUE(LoadProgramArgs(11, const_cast<char**>(argv)) && LoadProgramArgs(0, nullptr));
    for (auto [key, value] : {std::pair{"-a", "-b"}, {"-b", "x-y"}, {"x-y", "1"}, {"-m", "2"}, {"-", "-Z"}, {"-Z", ""}})
        EXPECT_TRUE(HasProgramArg(key) && GetProgramArgData(key) == value) << key;
    for (char const* absent : {"pl", "1", "a -m", "-A", ""}) EXPECT_FALSE(HasProgramArg(absent)) << absent;
    EXPECT_TRUE(HasProgramArg(ZKString("-Z\0junk", 7)) && GetProgramArgData("-c").IsEmpty()) << "cut at the zero";

    // The platform calls, their fixed arguments and failure values, through the
    // fake backend.
    fake::Reset();
    fake::SetLastErrorValue(317);
    EXPECT_TRUE(GetCurrentUserName().IsEmpty() && GetMemoryLoadPercent() == 0) << "failing calls";
    EXPECT_EQ(GetLastErrorMsg(nullptr, "x").GetSize(), 2) << "prefix and blank over a failed lookup";
    fake::System().GetComputerNameA = [](char* b, auto* s) { return fake::ReturnText("HOST", b, s, false); };
    fake::System().GlobalMemoryStatusEx = [](auto* m) { return *m = {64, 42, 0x12345678FFull, 2047, 1u << 20}, 1; };
    fake::System().IsDebuggerPresent = [] { return 7; };
    EXPECT_TRUE(GetComputerNameLocal() == "HOST" && IsDebuggerAttached() && GetMemoryLoadPercent() == 42 &&
                GetSystemPhysicalMemoryTotalKB() == 0x12345678FFull >> 10 &&
                GetSystemPhysicalMemoryAvailableKB() == 1 && GetSystemPageFileSizeKB() == 1024);
    static char* handedOut = nullptr;
    fake::System().FormatMessageA = [](auto, void const*, auto, auto, char* buffer, auto, void*) {
        return *reinterpret_cast<char**>(buffer) = handedOut = strdup("Not found.\r\nTRAILING"), 12u;
    };
    unsigned long code = 0;
    EXPECT_TRUE(GetLastErrorMsg(&code, "") == "Not found.\r\n" && code == 317) << "the returned length";
    auto const* memory = "GlobalMemoryStatusEx(dwLength=64)";
    auto const* format = "FormatMessageA(flags=0x1300, source=null, id=317, language=0x400, size=0, arguments=null)";
    EXPECT_EQ(fake::TakeCalls(),
              (fake::Calls{"GetUserNameA(size=257)", memory, "GetLastError()", format, "LocalFree(null)",
                           "GetComputerNameA(size=16)", "IsDebuggerPresent()", memory, memory, memory, memory,
                           "GetLastError()", format, "LocalFree(" + fake::Pointer(handedOut) + ")"}));
    EXPECT_TRUE(GetLastErrorMsg(nullptr, ZKString("pre\0hidden", 10)) == "pre Not found.\r\n") << "up to the zero";
    static unsigned short number = 0;
    fake::System().GetNativeSystemInfo = [](zk64::platform::NativeSystemInfo* info) {
        *info = {number, 0, reinterpret_cast<void*>(0x10000), reinterpret_cast<void*>(0x7FFFFFFEFFFF)};
    };
    std::string answers;
    for (number = 0; number < 13; ++number) answers += std::to_string(GetProcessorArchitecture());
    // Machines 0 (x86), 5 (ARM), 6 (Itanium) and 9 (x64) are the library's 3, 1,
    // 2 and 0; the rest unknown (4).
    EXPECT_EQ(answers, "3444412440444");
    EXPECT_EQ(GetSystemMaxApplicationAddress() - GetSystemMinApplicationAddress(), 0x7FFFFFFEFFFFu - 0x10000u);
}
