// Icons and dump files through the fake backend: the fixed arguments of
// every platform call, the path buffer, the bitness guard and the clean-up
// after a failed dump.

#include <algorithm>
#include <cstdint>
#include <tuple>

#include "FakeProcess.h"

namespace {

using platform::HICON;

HICON Icon(std::uintptr_t value) { return reinterpret_cast<HICON>(value); }

std::string Extract(std::string const& path, bool count)
{
    return "ExtractIconExA(\"" + path + "\", index=" + (count ? "-1, large=null" : "0, large=out") +
           ", small=null, count=1)";
}

using IconCalls = FakeTest;
using DumpCalls = FakeTest;

}  // namespace

TEST_F(IconCalls, StockAndExecutableIcons)
{
    int number = 32512;  // the system's numbers, in this order
    for (HICON__* (*operation)() : {GetDefaultApplicationIcon, GetDefaultStopSignIcon, GetDefaultQuestionMarkIcon,
                                    GetDefaultExclamationPointIcon, GetDefaultAsteriskIcon}) {
        fake::Icons().LoadImageA = nullptr;
        EXPECT_EQ(operation(), nullptr) << "null when the system fails";
        fake::Icons().LoadImageA = [](char const* name, unsigned int, int, int, unsigned int) {
            return Icon(reinterpret_cast<std::uintptr_t>(name) + 1);
        };
        EXPECT_EQ(operation(), Icon(number + 1u));
        EXPECT_EQ(fake::TakeCalls(), Calls(2, "LoadImageA(instance=null, name=#" + std::to_string(number++) +
                                                  ", type=1, width=11, height=12, flags=0x8000)"));
    }

    // The first large icon of a file that has any; only a reported icon
    // counts. A process's icon is its executable's.
    unsigned int count = 2, extracted = 0;
    fake::Icons().ExtractIconExA = [&](char const*, int index, HICON* large, HICON*, unsigned int) {
        if (index >= 0) *large = Icon(0x1C0);
        return index < 0 ? count : extracted;
    };
    std::string const path = "C:\\Apps\\app.exe", longest(259, 'p');  // with its terminator, 260 bytes
    ScriptExePath(path);
    EXPECT_EQ(GetExeFileIcon(path.c_str()), nullptr);
    extracted = 1;
    EXPECT_EQ(GetExeFileIcon(longest.c_str()), Icon(0x1C0));
    EXPECT_EQ(GetExeFileIcon((longest + "p").c_str()), nullptr) << "a longer path is not tried";
    count = 0;
    EXPECT_EQ(GetProcessIcon(kProcess), nullptr);
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{Extract(path, true), Extract(path, false), Extract(longest, true), Extract(longest, false),
                     "K32GetModuleFileNameExA(0x44, module=null, buffer=out, size=260)", Extract(path, true)}));
    DestroyProcessIcon(nullptr);
    DestroyProcessIcon(Icon(0x1C0));
    EXPECT_EQ(fake::TakeCalls(), (Calls{"DestroyIcon(0x1c0)"}));
}

TEST_F(DumpCalls, BitnessGuardLowKindBitsAndCleanUp)
{
    HANDLE const self = reinterpret_cast<HANDLE>(0x55);
    BOOL selfWow64 = 0, targetAnswers = 1, selfOpens = 1, created = 1, dumped = 1;
    fake::System().GetNativeSystemInfo = [](platform::NativeSystemInfo* info) {
        info->wProcessorArchitecture = platform::kProcessorArchitectureAmd64;
    };
    fake::Processes().GetCurrentProcessId = [] { return DWORD{5}; };
    fake::Processes().OpenProcess = [&](DWORD, BOOL, DWORD pid) {
        return pid != 5 ? kHandle : selfOpens ? self : nullptr;
    };
    fake::Processes().IsWow64Process = [&](HANDLE process, BOOL* wow64) {
        if (process == self || targetAnswers) *wow64 = process == self ? selfWow64 : 0;
        return process == self || targetAnswers;
    };
    fake::Processes().GetProcessId = [](HANDLE) { return DWORD{77}; };
    fake::DirectoryChanges().CreateFileA = [&](char const*, DWORD, DWORD, void*, DWORD, DWORD, HANDLE) {
        return created ? reinterpret_cast<HANDLE>(0x99) : platform::kInvalidHandleValue;
    };
    fake::Icons().MiniDumpWriteDump = [&](HANDLE, DWORD, HANDLE, DWORD) { return dumped; };
    EXPECT_TRUE(CreateProcessDumpFile("C:\\dumps\\app.dmp", kProcess, 0xFFFF000100000021ull));
    Calls calls = fake::TakeCalls();
    EXPECT_EQ(Calls(calls.end() - 4, calls.end()),
              (Calls{"CreateFileA(path=\"C:\\dumps\\app.dmp\", access=0x40000000, share=0x0, attributes=null, "
                     "disposition=2, flags=0x80, template=null)",
                     "GetProcessId(0x44)",
                     "MiniDumpWriteDump(0x44, pid=77, file=0x99, type=0x21, exception=null, streams=null, "
                     "callback=null)",
                     "CloseHandle(handle=0x99)"}));
    EXPECT_TRUE(CreateProcessDumpFile("C:\\dumps\\app.dmp", ProcessHandle{}, 0x21ull));
    EXPECT_EQ(fake::TakeCalls().end()[-2],
              "MiniDumpWriteDump(null, pid=0, file=0x99, type=0x21, exception=null, streams=null, callback=null)");

    // Under WOW64 the caller is 32-bit and a native target out of reach, also
    // when the target's flag cannot be read; a caller that cannot open itself
    // skips the guard. A failed dump is deleted.
    std::string const written = "CreateFileA GetProcessId MiniDumpWriteDump CloseHandle ";
    struct Row {
        BOOL selfWow64, targetAnswers, selfOpens, created, dumped;
        std::string calls;  // from the file's creation on, by name
    } const rows[] = {
        {0, 1, 1, 1, 0, written + "GetLastError DeleteFileA(\"C:\\dumps\\app.dmp\") "},
        {0, 1, 1, 0, 1, "CreateFileA "},
        {1, 1, 1, 1, 1, ""},
        {1, 0, 1, 1, 1, ""},
        {1, 1, 0, 1, 1, written},
    };
    for (Row const& row : rows) {
        std::tie(selfWow64, targetAnswers, selfOpens, created, dumped) =
            std::tie(row.selfWow64, row.targetAnswers, row.selfOpens, row.created, row.dumped);
        EXPECT_EQ(CreateProcessDumpFile("C:\\dumps\\app.dmp", kProcess, 2ull), row.calls == written);
        calls = fake::TakeCalls();
        std::string names;
        for (auto call = std::find_if(calls.begin(), calls.end(), [](auto& c) { return c.rfind("Create", 0) == 0; });
             call != calls.end(); ++call)
            names += (call->rfind("Delete", 0) == 0 ? *call : call->substr(0, call->find('('))) + " ";
        EXPECT_EQ(names, row.calls);
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "CloseHandle(handle=0x55)"), row.selfOpens);
    }
    // The name form waits until no process has the name, and writes nothing.
    int listed = 3, lists = 0;  // lists holding the process still to come; lists made
    static char name[] = "app.exe";
    static platform::WtsProcessInfoA entry{1, 9, name, nullptr};
    fake::Processes().WTSEnumerateProcessesA = [&](platform::WtsProcessInfoA** processes, DWORD* found) {
        *processes = &entry;
        *found = listed-- > 0 ? 1 : 0;
        ++lists;
        return 1;
    };
    EXPECT_FALSE(CreateProcessDumpFile("C:\\dumps\\app.dmp", ZKString("app.exe"), 2ull) ||
                 CreateProcessDumpFile("C:\\dumps\\app.dmp", ZKString("app.exe"), 2ull));
    EXPECT_EQ(lists, 5) << "four lists until the name is gone, then one for no such process";
    for (std::string const& call : fake::TakeCalls()) EXPECT_TRUE(call.find("Open") == call.find("Create")) << call;
}
