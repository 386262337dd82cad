// The exact platform calls behind the system queries, through the fake
// backend.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;
using zk64::platform::BOOL;
using zk64::platform::DWORD;
using Calls = fake::Calls;

namespace {

class SystemCalls : public ::testing::Test {
protected:
    void SetUp() override { fake::Reset(); }
    void TearDown() override { fake::Reset(); }
};

// Scripts FormatMessageA to hand out `text` in a malloc'ed buffer, as the
// allocate-buffer form does, and remembers the buffer.
void* ScriptMessage(char const* text)
{
    static void* handedOut = nullptr;
    fake::System().FormatMessageA = [text](DWORD, void const*, DWORD, DWORD, char* buffer, DWORD, void*) {
        std::size_t const length = std::strlen(text);
        char* copy = static_cast<char*>(std::malloc(length + 1));
        std::memcpy(copy, text, length + 1);
        *reinterpret_cast<char**>(buffer) = copy;
        handedOut = copy;
        return static_cast<DWORD>(length);
    };
    return &handedOut;
}

}  // namespace

TEST_F(SystemCalls, ComputerAndUserNamesUseTheirFixedBufferSizes)
{
    fake::System().GetComputerNameA = [](char* b, DWORD* s) { return fake::ReturnText("HOST", b, s, false); };
    fake::System().GetUserNameA = [](char* b, DWORD* s) { return fake::ReturnText("someone", b, s, true); };
    EXPECT_TRUE(GetComputerNameLocal() == "HOST");
    EXPECT_TRUE(GetCurrentUserName() == "someone");
    EXPECT_EQ(fake::TakeCalls(), (Calls{"GetComputerNameA(size=16)", "GetUserNameA(size=257)"}));

    fake::System().GetComputerNameA = [](char* b, DWORD* s) {
        return fake::ReturnText("A-NAME-LONGER-THAN-15", b, s, false);
    };
    EXPECT_TRUE(GetComputerNameLocal().IsEmpty()) << "a failing call gives the empty string";
    fake::Reset();
    EXPECT_TRUE(GetCurrentUserName().IsEmpty());
}

TEST_F(SystemCalls, LastErrorMessageCallSequence)
{
    fake::SetLastErrorValue(5);
    void* const* buffer = static_cast<void* const*>(ScriptMessage("Access is denied.\r\n"));
    unsigned long code = 0;
    ZKString const text = GetLastErrorMsg(&code, "");
    EXPECT_EQ(code, 5u);
    EXPECT_EQ(std::string(text.GetString()), "Access is denied.\r\n") << "the line break is kept";
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetLastError()",
                     "FormatMessageA(flags=0x1300, source=null, id=5, language=0x400, size=0, arguments=null)",
                     "LocalFree(" + fake::Pointer(*buffer) + ")"}));
}

TEST_F(SystemCalls, LastErrorMessageTakesTheReturnedLengthAndThePrefix)
{
    fake::SetLastErrorValue(2);
    ScriptMessage("Not found.\r\nTRAILING");
    fake::System().FormatMessageA = [inner = fake::System().FormatMessageA](auto... args) {
        inner(args...);
        return DWORD{12};  // "Not found.\r\n"
    };
    EXPECT_EQ(std::string(GetLastErrorMsg(nullptr, "").GetString()), "Not found.\r\n");
    EXPECT_EQ(std::string(GetLastErrorMsg(nullptr, "read:").GetString()), "read: Not found.\r\n");

    ZKString prefix("pre");
    prefix += '\0';
    prefix += "hidden";
    EXPECT_EQ(std::string(GetLastErrorMsg(nullptr, prefix).GetString()), "pre Not found.\r\n")
        << "the prefix's characters, up to its first zero";
}

TEST_F(SystemCalls, FailingFormatMessageFreesANullBuffer)
{
    fake::SetLastErrorValue(317);
    EXPECT_TRUE(GetLastErrorMsg(nullptr, "").IsEmpty());
    EXPECT_TRUE(GetLastErrorMsg(nullptr, "x").GetSize() == 2) << "prefix and blank over an empty message";
    Calls const calls = fake::TakeCalls();
    ASSERT_EQ(calls.size(), 6u);
    EXPECT_EQ(calls[2], "LocalFree(null)");
}

TEST_F(SystemCalls, MemoryFiguresAskWithLength64)
{
    fake::System().GlobalMemoryStatusEx = [](zk64::platform::MemoryStatusEx* status) {
        status->ullTotalPhys = 0x12345678FFull;
        status->ullAvailPhys = 2047;
        status->ullTotalPageFile = 1u << 20;
        status->dwMemoryLoad = 42;
        return BOOL{1};
    };
    EXPECT_EQ(GetSystemPhysicalMemoryTotalBytes(), 0x12345678FFull);
    EXPECT_EQ(GetSystemPhysicalMemoryTotalKB(), 0x12345678FFull >> 10);
    EXPECT_EQ(GetSystemPhysicalMemoryAvailableKB(), 1u) << "rounds down";
    EXPECT_EQ(GetSystemPageFileSizeKB(), 1024u);
    EXPECT_EQ(GetMemoryLoadPercent(), 42u);
    Calls const calls = fake::TakeCalls();
    ASSERT_EQ(calls.size(), 5u);
    for (std::string const& call : calls) EXPECT_EQ(call, "GlobalMemoryStatusEx(dwLength=64)");

    fake::Reset();
    EXPECT_EQ(GetSystemPhysicalMemoryTotalBytes(), 0u) << "a failing call gives 0";
    EXPECT_EQ(GetMemoryLoadPercent(), 0u);
}

TEST_F(SystemCalls, ArchitectureTranslation)
{
    struct Case {
        unsigned short platform;
        ProcessorArchitecture library;
    };
    for (Case const c : {Case{9, ProcessorArchitectureX64}, Case{5, ProcessorArchitectureARM},
                         Case{6, ProcessorArchitectureItanium}, Case{0, ProcessorArchitectureX86},
                         Case{12, ProcessorArchitectureUnknown}, Case{0xFFFF, ProcessorArchitectureUnknown},
                         Case{1, ProcessorArchitectureUnknown}}) {
        fake::System().GetNativeSystemInfo = [c](zk64::platform::NativeSystemInfo* info) {
            info->wProcessorArchitecture = c.platform;
        };
        EXPECT_EQ(GetProcessorArchitecture(), c.library) << "platform value " << c.platform;
    }
}

TEST_F(SystemCalls, AddressBoundsAndDebugger)
{
    fake::System().GetNativeSystemInfo = [](zk64::platform::NativeSystemInfo* info) {
        info->lpMinimumApplicationAddress = reinterpret_cast<void*>(0x10000);
        info->lpMaximumApplicationAddress = reinterpret_cast<void*>(0x7FFFFFFEFFFF);
    };
    EXPECT_EQ(GetSystemMinApplicationAddress(), 0x10000u);
    EXPECT_EQ(GetSystemMaxApplicationAddress(), 0x7FFFFFFEFFFFu);
    EXPECT_FALSE(IsDebuggerAttached());
    fake::System().IsDebuggerPresent = [] { return BOOL{7}; };
    EXPECT_TRUE(IsDebuggerAttached()) << "any non-zero answer";
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetNativeSystemInfo()", "GetNativeSystemInfo()", "IsDebuggerPresent()", "IsDebuggerPresent()"}));
}
