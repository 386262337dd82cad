// Icons and dump files through the fake backend: the fixed arguments of
// every platform call, the path buffer, the bitness guard and the clean-up
// after a failed dump.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "FakeProcess.h"

namespace {

using platform::HICON;

HICON Icon(std::uintptr_t value) { return reinterpret_cast<HICON>(value); }
HANDLE const kFile = reinterpret_cast<HANDLE>(0x99);
HANDLE const kSelf = reinterpret_cast<HANDLE>(0x55);

std::string Extract(std::string const& path, int index)
{
    return "ExtractIconExA(\"" + path + "\", index=" + (index < 0 ? "-1" : "0") +
           (index < 0 ? ", large=null" : ", large=out") + ", small=null, count=1)";
}

class IconCalls : public FakeTest {
protected:
    unsigned int count = 2;       // icons in the file
    unsigned int extracted = 1;   // what the extraction reports
    HICON written = Icon(0x1C0);  // what it writes into the large icon

    void SetUp() override
    {
        FakeTest::SetUp();
        fake::Icons().ExtractIconExA = [this](char const*, int index, HICON* large, HICON*, unsigned int) {
            if (index < 0) return count;
            *large = written;
            return extracted;
        };
    }
};

}  // namespace

TEST_F(IconCalls, StockIconsAreSharedElevenByTwelveImages)
{
    std::vector<std::pair<HICON__* (*)(), int>> const table = {
        {GetDefaultApplicationIcon, 32512},      {GetDefaultStopSignIcon, 32513},
        {GetDefaultQuestionMarkIcon, 32514},     {GetDefaultExclamationPointIcon, 32515},
        {GetDefaultAsteriskIcon, 32516},
    };
    for (auto const& [operation, number] : table) {
        SCOPED_TRACE(number);
        EXPECT_EQ(operation(), nullptr) << "null when the system fails";
        EXPECT_EQ(fake::TakeCalls(), (Calls{"LoadImageA(instance=null, name=#" + std::to_string(number) +
                                            ", type=1, width=11, height=12, flags=0x8000)"}));
        fake::Icons().LoadImageA = [](char const* name, unsigned int, int, int, unsigned int) {
            return Icon(reinterpret_cast<std::uintptr_t>(name) + 1);
        };
        EXPECT_EQ(operation(), Icon(number + 1u));
        fake::Icons().LoadImageA = nullptr;
        fake::TakeCalls();
    }
}

TEST_F(IconCalls, FirstLargeIconOfAFileThatHasAny)
{
    std::string const path = "C:\\Apps\\app.exe";
    EXPECT_EQ(GetExeFileIcon(path.c_str()), written);
    EXPECT_EQ(fake::TakeCalls(), (Calls{Extract(path, -1), Extract(path, 0)}));
    count = 0;
    EXPECT_EQ(GetExeFileIcon(path.c_str()), nullptr);
    EXPECT_EQ(fake::TakeCalls(), (Calls{Extract(path, -1)}));
    count = 1;
    extracted = 0;  // nothing extracted, something written anyway
    EXPECT_EQ(GetExeFileIcon(path.c_str()), nullptr);
    EXPECT_EQ(fake::TakeCalls().size(), 2u);
    extracted = 1;

    // The path and its terminator fill at most the 260-byte buffer.
    std::string const longest(259, 'p');
    EXPECT_EQ(GetExeFileIcon(longest.c_str()), written);
    EXPECT_EQ(fake::TakeCalls(), (Calls{Extract(longest, -1), Extract(longest, 0)}));
    EXPECT_EQ(GetExeFileIcon((longest + "p").c_str()), nullptr);
    EXPECT_EQ(GetExeFileIcon(std::string(5000, 'p').c_str()), nullptr);
    EXPECT_TRUE(fake::TakeCalls().empty());
}

TEST_F(IconCalls, ProcessIconComesFromTheExecutablePath)
{
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    fake::Processes().K32GetModuleFileNameExA = [](HANDLE, HINSTANCE__*, char* buffer, DWORD) {
        std::string const path = "C:\\Apps\\app.exe";
        path.copy(buffer, path.size());
        buffer[path.size()] = 0;
        return static_cast<DWORD>(path.size());
    };
    EXPECT_EQ(GetProcessIcon(kProcess), written);
    Calls calls = fake::TakeCalls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[1], Extract("C:\\Apps\\app.exe", -1));
    EXPECT_EQ(GetProcessIcon(9ul), written);
    calls = fake::TakeCalls();
    EXPECT_EQ(calls.front(), "OpenProcess(access=0x400, inherit=0, pid=9)") << "query rights alone";
    EXPECT_EQ(calls.back(), "CloseHandle(handle=0x44)");
    // No path: the system is asked about the empty path, which has no icon.
    fake::Processes().K32GetModuleFileNameExA = nullptr;
    count = 0;
    EXPECT_EQ(GetProcessIcon(kProcess), nullptr);
    EXPECT_EQ(fake::TakeCalls().back(), Extract("", -1));
    EXPECT_EQ(GetProcessIcon(ZKString("nothing.exe")), nullptr);

    fake::TakeCalls();
    DestroyProcessIcon(nullptr);
    EXPECT_TRUE(fake::TakeCalls().empty());
    HICON__* const icon = Icon(0x1C0);
    DestroyProcessIcon(icon);
    EXPECT_EQ(fake::TakeCalls(), (Calls{"DestroyIcon(0x1c0)"}));
}

namespace {

class DumpCalls : public FakeTest {
protected:
    BOOL dumped = 1;
    BOOL selfWow64 = 0;

    void SetUp() override
    {
        FakeTest::SetUp();
        fake::System().GetNativeSystemInfo = [](platform::NativeSystemInfo* info) {
            info->wProcessorArchitecture = platform::kProcessorArchitectureAmd64;
        };
        fake::Processes().GetCurrentProcessId = [] { return DWORD{5}; };
        fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD pid) { return pid == 5 ? kSelf : kHandle; };
        fake::Processes().IsWow64Process = [this](HANDLE process, BOOL* wow64) {
            *wow64 = process == kSelf ? selfWow64 : 0;
            return 1;
        };
        fake::Processes().GetProcessId = [](HANDLE) { return DWORD{77}; };
        fake::DirectoryChanges().CreateFileA = [](char const*, DWORD, DWORD, void*, DWORD, DWORD, HANDLE) {
            return kFile;
        };
        fake::Icons().MiniDumpWriteDump = [this](HANDLE, DWORD, HANDLE, DWORD) { return dumped; };
    }

    // The calls after the bitness guard.
    static Calls AfterGuard(Calls calls)
    {
        auto const create = std::find_if(calls.begin(), calls.end(),
                                         [](std::string const& call) { return call.rfind("CreateFileA", 0) == 0; });
        return Calls(create, calls.end());
    }
};

std::string const kCreate = "CreateFileA(path=\"C:\\dumps\\app.dmp\", access=0x40000000, share=0x0, "
                            "attributes=null, disposition=2, flags=0x80, template=null)";

}  // namespace

TEST_F(DumpCalls, WritesTheLowKindBitsAndDeletesAFailedDump)
{
    unsigned long long const kind = 0xFFFF000100000021ull;
    EXPECT_TRUE(CreateProcessDumpFile("C:\\dumps\\app.dmp", kProcess, kind));
    Calls const guard = fake::TakeCalls();
    EXPECT_EQ(guard.front(), "GetCurrentProcessId()");
    EXPECT_EQ(guard[1], "OpenProcess(access=0x400, inherit=0, pid=5)");
    std::string const dump = "MiniDumpWriteDump(0x44, pid=77, file=0x99, type=0x21, exception=null, streams=null, "
                             "callback=null)";
    EXPECT_EQ(AfterGuard(guard), (Calls{kCreate, "GetProcessId(0x44)", dump, "CloseHandle(handle=0x99)"}));

    dumped = 0;
    EXPECT_FALSE(CreateProcessDumpFile("C:\\dumps\\app.dmp", kProcess, kind));
    Calls const failed = AfterGuard(fake::TakeCalls());
    ASSERT_EQ(failed.size(), 6u);
    EXPECT_EQ(failed[3], "CloseHandle(handle=0x99)");
    EXPECT_EQ(failed[4], "GetLastError()");
    EXPECT_EQ(failed[5], "DeleteFileA(\"C:\\dumps\\app.dmp\")");

    // A null handle dumps identifier 0; a file that cannot be made stops it all.
    dumped = 1;
    EXPECT_TRUE(CreateProcessDumpFile("C:\\dumps\\app.dmp", ProcessHandle{}, kind));
    EXPECT_EQ(AfterGuard(fake::TakeCalls())[1],
              "MiniDumpWriteDump(null, pid=0, file=0x99, type=0x21, exception=null, streams=null, callback=null)");
    fake::DirectoryChanges().CreateFileA = nullptr;
    EXPECT_FALSE(CreateProcessDumpFile("C:\\dumps\\app.dmp", kProcess, kind));
    EXPECT_EQ(AfterGuard(fake::TakeCalls()), (Calls{kCreate}));
}

TEST_F(DumpCalls, ThirtyTwoBitCallerRefusesSixtyFourBitTarget)
{
    struct Row {
        BOOL selfWow64;
        bool selfOpens;
        bool dumps;
    };
    // Under WOW64 the caller is 32-bit and the native target out of reach;
    // a caller that cannot open itself skips the guard.
    for (Row const row : {Row{1, true, false}, Row{0, true, true}, Row{1, false, true}}) {
        selfWow64 = row.selfWow64;
        if (!row.selfOpens) {
            fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD pid) { return pid == 5 ? nullptr : kHandle; };
        }
        EXPECT_EQ(CreateProcessDumpFile("C:\\dumps\\app.dmp", kProcess, 2ull), row.dumps);
        Calls const calls = fake::TakeCalls();
        EXPECT_EQ(AfterGuard(calls).empty(), !row.dumps) << "a refused dump touches no file";
        if (row.selfOpens) {
            EXPECT_NE(std::find(calls.begin(), calls.end(), "CloseHandle(handle=0x55)"), calls.end());
        }
    }
    // The identifier form opens with query and read rights.
    selfWow64 = 0;
    EXPECT_TRUE(CreateProcessDumpFile("C:\\dumps\\app.dmp", 9ul, 2ull));
    Calls const calls = fake::TakeCalls();
    EXPECT_EQ(calls.front(), "OpenProcess(access=0x410, inherit=0, pid=9)");
    EXPECT_EQ(calls.back(), "CloseHandle(handle=0x44)");
}

TEST_F(DumpCalls, NameFormWaitsUntilTheNameIsGoneAndWritesNothing)
{
    int listed = 3;  // lists holding the process still to come
    int lists = 0;
    static char name[] = "app.exe";
    static platform::WtsProcessInfoA row{1, 9, name, nullptr};
    fake::Processes().WTSEnumerateProcessesA = [&](platform::WtsProcessInfoA** processes, DWORD* count) {
        ++lists;
        *processes = &row;
        *count = listed-- > 0 ? 1 : 0;
        return 1;
    };
    EXPECT_FALSE(CreateProcessDumpFile("C:\\dumps\\app.dmp", ZKString("app.exe"), 2ull));
    EXPECT_EQ(lists, 4);
    EXPECT_FALSE(CreateProcessDumpFile("C:\\dumps\\app.dmp", ZKString("app.exe"), 2ull));
    EXPECT_EQ(lists, 5) << "no such process: one look";
    for (std::string const& call : fake::TakeCalls()) {
        EXPECT_EQ(call.find("CreateFileA"), std::string::npos);
        EXPECT_EQ(call.find("OpenProcess"), std::string::npos);
    }
}
