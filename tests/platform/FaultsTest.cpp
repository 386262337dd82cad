// Every platform call an operation makes fails in turn. Each operation runs
// once on a healthy system to count the calls that can fail, then once with
// each of them failing, and must answer its failure value (or a partial
// answer the operation documents), close every handle it opened, close
// nothing it did not open, and leave the library usable: the next healthy
// run answers as the first one did.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <zk64/zk64.h>

#include "foundation/detail/Globals.h"
#include "platform/DirectoryChanges.h"
#include "platform/Handles.h"
#include "platform/fake/Fake.h"

namespace {

namespace fake = zk64::platform::fake;
namespace platform = zk64::platform;
using platform::BOOL;
using platform::DWORD;
using platform::HANDLE;
using platform::HWND;

// ------------------------------------------------------------ a healthy system

std::uintptr_t nextHandle = 0;

// A fresh handle; the sequence starts again with every healthy system, so
// that two runs of an operation see the same values.
template <class Handle = HANDLE>
Handle NewHandle()
{
    nextHandle += 0x10;
    return reinterpret_cast<Handle>(nextHandle);
}

HWND Window(std::uintptr_t value) { return reinterpret_cast<HWND>(value); }

// Sets an out argument and answers success.
template <class Out, class Value>
BOOL Give(Out* out, Value value)
{
    *out = static_cast<Out>(value);
    return 1;
}

template <class Char>
int CopyText(std::string const& text, Char* buffer, std::size_t size)
{
    std::size_t const length = text.size() < size ? text.size() : size - 1;
    std::copy(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length), buffer);
    buffer[length] = 0;
    return static_cast<int>(length);
}

std::string const kSeparator(1, platform::kPathSeparator);
std::string const kExe = "apps" + kSeparator + "app.exe";

// Two directories: "data" holds a file and "sub", which holds one file.
std::map<std::string, std::vector<std::pair<std::string, bool>>> const kTree = {
    {"data", {{".", true}, {"..", true}, {"a.txt", false}, {"sub", true}}},
    {"data" + kSeparator + "sub", {{".", true}, {"b.txt", false}}},
};
std::map<HANDLE, std::pair<std::string, std::size_t>> searches;

void Fill(HANDLE find, platform::FindDataA* data)
{
    auto& [directory, next] = searches.at(find);
    auto const& entry = kTree.at(directory).at(next++);
    CopyText(entry.first, data->cFileName, sizeof data->cFileName);
    data->dwFileAttributes = entry.second ? platform::kFileAttributeDirectory : 0;
}

char environment[] = "A=1\0B=2\0";
platform::WtsProcessInfoA processes[] = {{1, 4, const_cast<char*>("System"), nullptr},
                                         {1, 100, const_cast<char*>("app.exe"), nullptr}};
platform::WCHAR packageText[] = {'P', 'k', 'g', 0};

void ScriptSystem()
{
    auto& system = fake::System();
    system.FormatMessageA = [](DWORD, void const*, DWORD, DWORD, char* buffer, DWORD, void*) {
        *reinterpret_cast<char**>(buffer) = strdup("Denied.");
        return DWORD{7};
    };
    system.GetNativeSystemInfo = [](platform::NativeSystemInfo* info) {
        info->wProcessorArchitecture = 9;
        info->lpMaximumApplicationAddress = reinterpret_cast<void*>(0x2FFF);
    };
    system.GlobalMemoryStatusEx = [](platform::MemoryStatusEx* status) {
        *status = {64, 40, 1 << 30, 1 << 29, 1ull << 32, 1ull << 31, 0, 0, 0};
        return BOOL{1};
    };
    system.GetComputerNameA = [](char* buffer, DWORD* size) { return fake::ReturnText("HOST", buffer, size, false); };
    system.GetUserNameA = [](char* buffer, DWORD* size) { return fake::ReturnText("user", buffer, size, true); };
    system.IsDebuggerPresent = [] { return BOOL{1}; };
    system.QueryPerformanceCounter = [](long long* value) { return Give(value, 3000000); };
    system.QueryPerformanceFrequency = [](long long* value) { return Give(value, 1000000); };
    auto& files = fake::Files();
    files.GetVolumeInformationA = [](char const*, char*, DWORD, DWORD* serial, DWORD*, DWORD*, char*, DWORD) {
        return Give(serial, 0xBEEF);
    };
    files.FindFirstFileA = [](char const* pattern, platform::FindDataA* data) {
        std::string directory(pattern);
        directory.resize(directory.size() - 2);
        if (kTree.count(directory) == 0) return platform::kInvalidHandleValue;
        HANDLE const find = NewHandle();
        searches[find] = {directory, 0};
        Fill(find, data);
        return find;
    };
    files.FindNextFileA = [](HANDLE find, platform::FindDataA* data) {
        auto const& [directory, next] = searches.at(find);
        if (next == kTree.at(directory).size()) return BOOL{0};
        Fill(find, data);
        return BOOL{1};
    };
    files.FindClose = [](HANDLE) { return BOOL{1}; };
    files.Wow64DisableWow64FsRedirection = [](void**) { return BOOL{1}; };
    files.Wow64RevertWow64FsRedirection = [](void*) { return BOOL{1}; };
}

void ScriptProcesses()
{
    auto& calls = fake::Processes();
    calls.WTSEnumerateProcessesA = [](platform::WtsProcessInfoA** list, DWORD* count) {
        *list = processes;
        *count = 2;
        return BOOL{1};
    };
    calls.OpenProcess = [](DWORD, BOOL, DWORD) { return NewHandle(); };
    calls.GetProcessId = [](HANDLE) { return DWORD{100}; };
    calls.GetWindowThreadProcessId = [](HWND window, DWORD* pid) {
        *pid = window == Window(0x21) ? 100 : 4;
        return DWORD{7};
    };
    calls.GetCurrentProcessId = [] { return DWORD{100}; };
    calls.GetModuleHandleA = [](char const*) { return reinterpret_cast<platform::HMODULE>(0x400000); };
    calls.GetEnvironmentStrings = [] { return environment; };
    calls.IsWow64Process = [](HANDLE, BOOL* wow64) { return Give(wow64, 0); };
    calls.K32EnumProcessModulesEx = [](HANDLE, platform::HMODULE* modules, DWORD, DWORD* needed, DWORD) {
        modules[0] = reinterpret_cast<platform::HMODULE>(0x10000);
        modules[1] = reinterpret_cast<platform::HMODULE>(0x20000);
        *needed = 2 * sizeof modules[0];
        return BOOL{1};
    };
    calls.K32GetModuleFileNameExA = [](HANDLE, platform::HMODULE module, char* buffer, DWORD size) {
        std::string const path = module == nullptr ? kExe : "m" + std::to_string(std::uintptr_t(module) >> 16) + ".dll";
        return static_cast<DWORD>(CopyText(path, buffer, size));
    };
    calls.ShellExecuteA = [](char const*, char const*, char const*) { return reinterpret_cast<HINSTANCE__*>(42); };
    calls.K32GetProcessMemoryInfo = [](HANDLE, platform::ProcessMemoryCounters* counters) {
        *counters = {80, 1, 2, 3, 4, 5, 6, 7, 8, 9};
        return BOOL{1};
    };
    calls.GetProcessHandleCount = [](HANDLE, DWORD* count) { return Give(count, 12); };
    calls.GetGuiResources = [](HANDLE) { return DWORD{7}; };
    calls.GetPriorityClass = [](HANDLE) { return platform::kHighPriorityClass; };
    calls.SetPriorityClass = [](HANDLE, DWORD) { return BOOL{1}; };
    calls.GetProcessAffinityMask = [](HANDLE, platform::ULONGLONG* process, platform::ULONGLONG* system) {
        *process = 3;
        *system = 15;
        return BOOL{1};
    };
    calls.SetProcessAffinityMask = [](HANDLE, platform::ULONGLONG) { return BOOL{1}; };
    calls.GetProcessWorkingSetSizeEx = [](HANDLE, platform::ULONGLONG* minimum, platform::ULONGLONG* maximum) {
        *minimum = 1 << 20;
        *maximum = 1 << 24;
        return BOOL{1};
    };
    auto& security = fake::Security();
    security.OpenProcessToken = [](HANDLE, DWORD, HANDLE* token) { return Give(token, NewHandle()); };
    security.LookupPrivilegeValueA = [](char const*, platform::LuidRecord* luid) { return Give(&luid->LowPart, 20); };
    security.AdjustTokenPrivileges = [](HANDLE, platform::TokenPrivileges*, DWORD) { return BOOL{1}; };
    security.AllocateAndInitializeSid = [](void** sid) { return Give(sid, std::malloc(8)); };
    security.CheckTokenMembership = [](HANDLE, void*, BOOL* member) { return Give(member, 1); };
    auto& memory = fake::Memory();
    memory.VirtualQueryEx = [](void const* address, platform::MemoryBasicInformation* region) {
        region->BaseAddress = const_cast<void*>(address);
        region->RegionSize = 0x1000;
        return sizeof *region;
    };
    memory.ReadProcessMemory = [](void const*, void* buffer, std::size_t size) {
        std::memset(buffer, 'x', size);
        return BOOL{1};
    };
    memory.WriteProcessMemory = [](void*, void const*, std::size_t) { return BOOL{1}; };
}

void ScriptPackagesAndIcons()
{
    auto& packages = fake::Packages();
    auto const name = [](HANDLE, platform::UINT32* length, platform::WCHAR* buffer) -> platform::LONG32 {
        if (buffer == nullptr) {
            *length = 4;
            return platform::kErrorInsufficientBuffer;
        }
        std::copy(packageText, packageText + 4, buffer);
        return 0;
    };
    packages.GetPackageFullName = name;
    packages.GetPackageFamilyName = name;
    packages.OpenPackageInfoByFullName = [](platform::WCHAR const*, platform::PackageInfoReference* reference) {
        *reference = NewHandle<platform::PackageInfoReference>();
        return platform::LONG32{0};
    };
    packages.GetPackageInfo = [](platform::UINT32* length, unsigned char* buffer, platform::UINT32*) {
        if (*length < sizeof(platform::PackageInfo)) {
            *length = sizeof(platform::PackageInfo);
            return platform::LONG32{122};
        }
        platform::PackageInfo info{};
        info.path = info.packageFullName = info.packageFamilyName = info.packageId.name = packageText;
        info.packageId.publisher = info.packageId.resourceId = info.packageId.publisherId = packageText;
        std::memcpy(buffer, &info, sizeof info);
        return platform::LONG32{0};
    };
    packages.SHLoadIndirectString = [](platform::WCHAR const*, platform::WCHAR* output, unsigned int size) {
        CopyText("logo.png", output, size);
        return platform::HRESULT32{0};
    };
    auto& icons = fake::Icons();
    icons.LoadImageA = [](char const*, unsigned int, int, int, unsigned int) { return NewHandle<platform::HICON>(); };
    icons.ExtractIconExA = [](char const*, int, platform::HICON* large, platform::HICON*, unsigned int) {
        if (large != nullptr) *large = NewHandle<platform::HICON>();
        return 1u;
    };
    icons.DestroyIcon = [](platform::HICON) { return BOOL{1}; };
    icons.MiniDumpWriteDump = [](HANDLE, DWORD, HANDLE, DWORD) { return BOOL{1}; };
    icons.DeleteFileA = [](char const*) { return BOOL{1}; };
    auto& handles = fake::Handles();
    handles.CreateEventA = [](void*, BOOL, BOOL, char const*) { return NewHandle(); };
    // The watching worker, which these runs leave alone, finds nothing to do.
    handles.WaitForSingleObject = [](HANDLE, DWORD) { return platform::kWaitFailed; };
    handles.CloseHandle = [](HANDLE) { return BOOL{1}; };
    fake::DirectoryChanges().CreateFileA = [](char const*, DWORD, DWORD, void*, DWORD, DWORD, HANDLE) {
        return NewHandle();
    };
    fake::DirectoryChanges().ReadDirectoryChangesW = [](HANDLE, void*, DWORD, BOOL, DWORD, DWORD*,
                                                        platform::Overlapped*, void*) { return BOOL{1}; };
}

void ScriptDesktop()
{
    auto& input = fake::InputOperations();
    input.SendInput = [](platform::UINT count, platform::Input const*, int) { return count; };
    input.RegisterRawInputDevices = [](platform::RawInputDevice const*, platform::UINT, platform::UINT) {
        return BOOL{1};
    };
    input.RegisterWindowMessageA = [](char const*) { return platform::UINT{0xC001}; };
    fake::Shell().CoInitialize = [](void*) { return platform::HRESULT{0}; };
    fake::Shell().CoCreateInstance = [](platform::Guid const&, platform::Guid const&, void** object) {
        *object = NewHandle();
        return platform::HRESULT{0};
    };
    fake::Shell().ReleaseComObject = [](void*) { return platform::ULONG{0}; };
    auto& desktop = fake::Desktop();
    desktop.GetDesktopWindow = [] { return Window(0x10); };
    desktop.GetParent = [](HWND) { return Window(0x11); };
    desktop.GetAncestor = [](HWND, platform::UINT) { return Window(0x12); };
    desktop.GetWindow = [](HWND, platform::UINT) { return Window(0x13); };
    desktop.GetWindowLongPtrA = [](HWND, int) { return platform::LONG_PTR{0x10000000}; };
    // The icon comes from the last source asked, and the window is maximized:
    // the longest road through each.
    desktop.GetClassLongPtrA = [](HWND, int index) { return platform::ULONG_PTR{index == -34 ? 0x500u : 0u}; };
    desktop.GetCurrentThreadId = [] { return DWORD{7}; };
    desktop.GetThreadDesktop = [](DWORD) { return reinterpret_cast<platform::HDESK>(0x66); };
    desktop.EnumDesktopWindows = [](platform::HDESK, platform::WindowEnumProc callback, platform::LPARAM data) {
        return fake::ListWindows({Window(0x20), Window(0x21)}, callback, data);
    };
    desktop.EnumChildWindows = [](HWND, platform::WindowEnumProc callback, platform::LPARAM data) {
        return fake::ListWindows({Window(0x30)}, callback, data);
    };
    desktop.GetClassNameA = [](HWND, char* buffer, int size) { return CopyText("Pad", buffer, std::size_t(size)); };
    desktop.GetWindowTextA = [](HWND, char* buffer, int size) { return CopyText("Title", buffer, std::size_t(size)); };
    desktop.SendMessageTimeoutA = [](HWND, platform::UINT, platform::WPARAM, platform::LPARAM, platform::UINT,
                                     platform::UINT, platform::ULONG_PTR* result) {
        *result = 0;
        return platform::LRESULT{1};
    };
    auto const yes = [](HWND) { return BOOL{1}; };
    desktop.SetForegroundWindow = yes;
    desktop.IsIconic = yes;
    desktop.IsZoomed = yes;
    desktop.ShowWindow = [](HWND, int) { return BOOL{1}; };
    desktop.SetWindowPos = [](HWND, HWND, int, int, int, int, platform::UINT) { return BOOL{1}; };
    desktop.GetWindowPlacement = [](HWND, platform::WindowPlacement* placement) {
        placement->showCmd = 3;
        placement->rcNormalPosition = {10, 20, 110, 220};
        return BOOL{1};
    };
    desktop.SetWindowPlacement = [](HWND, platform::WindowPlacement const*) { return BOOL{1}; };
    desktop.MonitorFromRect = [](platform::Rect const*, DWORD) { return reinterpret_cast<platform::HMONITOR>(0xA0); };
    desktop.GetMonitorInfoA = [](platform::HMONITOR, platform::MonitorInfo* info) {
        info->rcWork = {0, 0, 1024, 768};
        return BOOL{1};
    };
    desktop.DwmGetWindowAttribute = [](HWND, DWORD attribute, void* value, DWORD size) {
        platform::Rect const bounds{8, 16, 120, 230};
        if (attribute == 9) std::memcpy(value, &bounds, size);
        if (attribute == 14) std::memset(value, 0, size);
        return platform::HRESULT{0};
    };
}

void Healthy()
{
    fake::Reset();
    nextHandle = 0x1000;
    searches.clear();
    ScriptSystem();
    ScriptProcesses();
    ScriptPackagesAndIcons();
    ScriptDesktop();
}

// ------------------------------------------------------------------ answers

void Put(std::ostream& out, ZKString const& text) { out << '"' << text.GetString() << '"'; }
void Put(std::ostream& out, void const* pointer) { out << (pointer == nullptr ? "null" : "set"); }
void Put(std::ostream& out, ProcessInfo const& info) { out << info.processID << ':' << info.processName.GetString(); }
void Put(std::ostream& out, FileDataStruct entry) { out << entry.GetDirNamePath(); }
void Put(std::ostream& out, VirtualMemoryAddressInfo const& region) { out << region.BaseAddress; }
void Put(std::ostream& out, ProcessPackageInfo const& info) { Put(out, info.fullName); }
void Put(std::ostream& out, __ZKRect<int> const& rect)
{
    out << rect.x << ',' << rect.y << ',' << rect.width << ',' << rect.height;
}
void Put(std::ostream& out, tagRECT const& rect)
{
    out << rect.left << ',' << rect.top << ',' << rect.right << ',' << rect.bottom;
}
template <class Number>
requires std::is_arithmetic_v<Number> || std::is_enum_v<Number>
void Put(std::ostream& out, Number number) { out << static_cast<long long>(number); }
template <class Item>
void Put(std::ostream& out, ZKContainer<Item> const& list)
{
    out << '[';
    for (unsigned long long index = 0; index < list.GetItemCount(); ++index) Put(out, list.GetItem(index)), out << ',';
    out << ']';
}

// An answer as text, its parts separated by semicolons.
template <class... Parts>
std::string Show(Parts const&... parts)
{
    std::ostringstream out;
    ((Put(out, parts), out << ';'), ...);
    return out.str();
}

// An answer already shown stays as it is.
template <class Answer>
std::string AsText(Answer const& answer)
{
    if constexpr (std::is_same_v<Answer, std::string>) {
        return answer;
    } else {
        return Show(answer);
    }
}

// ------------------------------------------------------------- operations

std::string const kFewer = "fewer";

struct Row {
    std::string name;
    std::function<std::string()> run;
    // What a failing call may make it answer besides the healthy answer; a
    // trailing star matches any rest, and kFewer any answer that lost items
    // or counts against the healthy one.
    std::vector<std::string> failures;
    std::size_t leaves = 0;  // handles it may leave open, by design, when a call fails
};

// `call(args...)`, whose failure value is its result type's zero (false, 0,
// null, an empty string); a command answers nothing.
template <class Call, class... Args>
Row Op(std::string name, Call call, Args... args)
{
    using Result = decltype(call(args...));
    if constexpr (std::is_void_v<Result>) {
        return {std::move(name),
                [=] {
                    call(args...);
                    return std::string();
                },
                {}};
    } else {
        return {std::move(name), [=] { return Show(call(args...)); }, {Show(Result{})}};
    }
}

// `row`, which may also answer `failure`.
Row Or(Row row, std::string failure)
{
    row.failures.push_back(std::move(failure));
    return row;
}

// Runs `call` with a fresh out argument and shows its answer and the argument.
template <class Out, class Call>
std::string Filled(Call call)
{
    Out out{};
    auto const answer = call(out);
    return Show(answer, out);
}

ProcessHandle const kCallers{reinterpret_cast<void*>(0x44)};  // the caller's own handle: never closed
HWND__* const kWindow = Window(0x21);
VirtualMemoryAddressInfo const kRegion = [] {
    VirtualMemoryAddressInfo region;
    region.BaseAddress = 0x1000;
    region.RegionSize = 4;
    return region;
}();

// An operation's three forms, by identifier, by the caller's handle and by
// name; `failures` as for Op when not given.
template <class Call>
void Forms(std::vector<Row>& rows, std::string const& name, Call call, std::vector<std::string> failures = {})
{
    if (failures.empty()) failures = {AsText(decltype(call(100ul)){})};
    rows.push_back({name + "(pid)", [call] { return AsText(call(100ul)); }, failures});
    rows.push_back({name + "(handle)", [call] { return AsText(call(kCallers)); }, failures});
    rows.push_back({name + "(name)", [call] { return AsText(call(ZKString("app.exe"))); }, failures});
}

// `result`, released by `release` first.
template <class Result, class Release>
Result Shown(Result result, Release release)
{
    release(result);
    return result;
}

void DirectChange(DirChangeStruct const&) {}

std::vector<Row> ProcessRows()
{
    auto const name = [](auto const& target) { return [&](ZKString& out) { return GetProcessName(target, out); }; };
    std::vector<Row> rows = {
        {"GetAllProcesses",
         [] { return Filled<ZKContainer<ProcessInfo>>([](auto& out) { return GetAllProcesses(out); }); },
         {"0;[];"}},
        Op("GetProcessID(window)", [] { return GetProcessID(kWindow); }),
        Op("GetProcessID(handle)", [] { return GetProcessID(kCallers); }),
        Op("GetProcessID(name)", [] { return GetProcessID(ZKString("app.exe")); }),
        {"GetProcessName(pid)", [=] { return Filled<ZKString>(name(100ul)); }, {"0;\"\";", "1;\"\";"}},
        {"GetProcessName(handle)", [=] { return Filled<ZKString>(name(kCallers)); }, {"1;\"\";"}},
        {"GetProcessName(window)", [=] { return Filled<ZKString>(name(kWindow)); }, {"0;\"\";", "1;\"\";"}},
        Op("DoesProcessMatchProcessName(pid)", [] { return DoesProcessMatchProcessName(100ul, "app.exe"); }),
        Op("DoesProcessMatchProcessName(handle)", [] { return DoesProcessMatchProcessName(kCallers, "app.exe"); }),
        Op("OpenProcessHandle(pid)", [] { return Shown(OpenProcessHandle(100ul, 8ull), CloseProcessHandle).handle; }),
        Op("OpenProcessHandle(name)",
           [] { return Shown(OpenProcessHandle(ZKString("app.exe"), 8ull), CloseProcessHandle).handle; }),
        Op("OpenProcessTokenHandle(pid)",
           [] { return Shown(OpenProcessTokenHandle(100ul, 0x100ull), CloseTokenHandle).handle; }),
        Op("OpenProcessTokenHandle(handle)",
           [] { return Shown(OpenProcessTokenHandle(kCallers, 0x100ull), CloseTokenHandle).handle; }),
        Op("AdjustPrivilege", AdjustPrivilege, TokenHandle{kCallers.handle}, "SeDebugPrivilege", true),
        Op("AdjustAllPrivilege", AdjustAllPrivilege, TokenHandle{kCallers.handle}),
        Op("GetCurrentProcessID", GetCurrentProcessID),
        Op("GetCurrentProcessExeHINSTANCE", GetCurrentProcessExeHINSTANCE),
        Op("GetCurrentProcessEnvironmentStrings", GetCurrentProcessEnvironmentStrings),
        Op("IsCurrentProcess32Bit", IsCurrentProcess32Bit),
        Op("IsCurrentProcess64Bit", IsCurrentProcess64Bit),
        Op("GetCurrentProcessExePath", GetCurrentProcessExePath),
        Op("GetCurrentProcessExeDirectory", GetCurrentProcessExeDirectory),
        Op("ExecuteShellProcess", ExecuteShellProcess, "app.exe", "-x", true),
        {"IsAppRunningAsAdminMode",
         [] {
             try {
                 return Show(IsAppRunningAsAdminMode());
             } catch (unsigned long error) {
                 return "throws " + std::to_string(error);
             }
         },
         {"throws 5"}},
        Op("GetExeFileIcon", [] { return Shown(GetExeFileIcon(kExe.c_str()), DestroyProcessIcon); }),
        {"GetSystemAffinity", [] { return Filled<unsigned long long>(GetSystemAffinity); }, {"0;0;"}},
        Op("CreateProcessDumpFile(pid)", [] { return CreateProcessDumpFile("app.dmp", 100ul, 2ull); }),
        Op("CreateProcessDumpFile(handle)", [] { return CreateProcessDumpFile("app.dmp", kCallers, 2ull); }),
        // The name form of a dump waits for the process to end: a healthy system never lets it.
    };
#define ZK_STOCK_ICON_ROW(Operation, number) rows.push_back(Op(#Operation, Operation));
    ZK_STOCK_ICONS(ZK_STOCK_ICON_ROW)
#undef ZK_STOCK_ICON_ROW
    Forms(rows, "IsProcess32Bit", [](auto const& target) { return IsProcess32Bit(target); });
    Forms(rows, "IsProcess64Bit", [](auto const& target) { return IsProcess64Bit(target); });
    Forms(rows, "GetProcessModules",
          [](auto const& target) {
              return Filled<ZKContainer<HINSTANCE__*>>([&](auto& out) { return GetProcessModules(target, out); });
          },
          {"0;[];"});
    Forms(rows, "GetProcessModuleNames",
          [](auto const& target) {
              return Filled<ZKContainer<ZKString>>([&](auto& out) { return GetProcessModuleNames(target, out); });
          },
          {"0;[];", kFewer});
    Forms(rows, "GetProcessModule",
          [](auto const& target) {
              return Filled<HINSTANCE__*>([&](auto& out) { return GetProcessModule(target, "m2.dll", out); });
          },
          {"0;null;"});
    Forms(rows, "GetProcessExePath", [](auto const& target) { return GetProcessExePath(target); });
    Forms(rows, "GetProcessExeDirectory", [](auto const& target) { return GetProcessExeDirectory(target); });
    Forms(rows, "GetProcessIcon", [](auto const& target) { return Shown(GetProcessIcon(target), DestroyProcessIcon); });
    Forms(rows, "GetProcessVirtualMemoryAddresses",
          [](auto const& target) {
              return Filled<ZKContainer<VirtualMemoryAddressInfo>>(
                  [&](auto& out) { return GetProcessVirtualMemoryAddresses(target, out); });
          },
          {"0;[];", "1;*"});
    Forms(rows, "GetVirtualMemoryData",
          [](auto const& target) {
              return Filled<ZKString>([&](auto& out) { return GetVirtualMemoryData(target, kRegion, out); });
          },
          {"0;*"});
    Forms(rows, "SetVirtualMemoryData(region)",
          [](auto const& target) { return SetVirtualMemoryData(target, kRegion, "abcd"); });
    Forms(rows, "SetVirtualMemoryData(address)", [](auto const& target) {
        return SetVirtualMemoryData(target, reinterpret_cast<unsigned char*>(0x1000), "abcd", 4ull);
    });
    return rows;
}

std::vector<Row> MetricsAndPackageRows()
{
    std::vector<Row> rows;
#define ZK_COUNTER_ROWS(Operation, Counter)                                                                            \
    Forms(rows, #Operation, [](auto const& target) { return Operation(target); });
    ZK_PROCESS_MEMORY_COUNTERS(ZK_COUNTER_ROWS)
#undef ZK_COUNTER_ROWS
    Forms(rows, "GetProcessNumOfHandles", [](auto const& target) { return GetProcessNumOfHandles(target); });
    Forms(rows, "GetProcessNumOfGDIHandles", [](auto const& target) { return GetProcessNumOfGDIHandles(target); });
    Forms(rows, "GetProcessWorkingSetMinSizeBytes",
          [](auto const& target) { return GetProcessWorkingSetMinSizeBytes(target); });
    Forms(rows, "GetProcessWorkingSetMaxSizeBytes",
          [](auto const& target) { return GetProcessWorkingSetMaxSizeBytes(target); });
    Forms(rows, "GetProcessPriorityClass", [](auto const& target) { return Show(GetProcessPriorityClass(target)); },
          {Show(ProcessPriorityUnknown)});
    Forms(rows, "SetProcessPriorityClass",
          [](auto const& target) { return SetProcessPriorityClass(target, ProcessPriorityClass(1)); });
    // The name form answers true for a name no process has.
    Forms(rows, "GetProcessAffinity",
          [](auto const& target) {
              return Filled<unsigned long long>([&](auto& out) { return GetProcessAffinity(target, out); });
          },
          {"0;0;", "1;0;"});
    Forms(rows, "SetProcessAffinity", [](auto const& target) { return SetProcessAffinity(target, 3ull); });
    Forms(rows, "IsProcessUniversalWindowsPlatform",
          [](auto const& target) { return IsProcessUniversalWindowsPlatform(target); });
    // The length is asked first; a failing second call leaves the name empty.
    Forms(rows, "GetProcessPackageFullName",
          [](auto const& target) {
              return Filled<ZKString>([&](auto& out) { return GetProcessPackageFullName(target, out); });
          },
          {"0;\"\";", "1;\"\";"});
    Forms(rows, "GetProcessPackageFamilyName",
          [](auto const& target) {
              return Filled<ZKString>([&](auto& out) { return GetProcessPackageFamilyName(target, out); });
          },
          {"0;\"\";", "1;\"\";"});
    Forms(rows, "GetProcessPackageInfo",
          [](auto const& target) {
              return Filled<ProcessPackageInfo>([&](auto& out) { return GetProcessPackageInfo(target, out); });
          },
          {"0;\"\";"});
    Forms(rows, "GetUniversalWindowsPlatformIconPath",
          [](auto const& target) { return GetUniversalWindowsPlatformIconPath(target); });
    return rows;
}

std::vector<Row> DesktopRows()
{
    std::vector<Row> rows = {
        {"GetCurrentDesktopHWNDS", [] { return Filled<ZKContainer<HWND__*>>(GetCurrentDesktopHWNDS); }, {kFewer}},
        {"GetChildWindows",
         [] { return Filled<ZKContainer<HWND__*>>([](auto& out) { return GetChildWindows(kWindow, out); }); },
         {"0;*"}},
        Op("GetDesktopHWND", GetDesktopHWND),
        Op("GetParentOrOwnerHWND", GetParentOrOwnerHWND, kWindow),
        Op("GetParentNotOwnerHWND", GetParentNotOwnerHWND, kWindow),
        Op("GetOwnerHWND", GetOwnerHWND, kWindow),
        Op("GetChildHWND", GetChildHWND, kWindow),
        Op("HwndToHInstance", HwndToHInstance, kWindow),
        Op("GetHWNDClassName", GetHWNDClassName, kWindow),
        Op("GetWindowTitleText", GetWindowTitleText, kWindow),
        Op("GetWindowIcon", GetWindowIcon, kWindow),
        Op("MoveWindowToFront", MoveWindowToFront, kWindow),
        Op("MoveWindowAlwaysOnTop", MoveWindowAlwaysOnTop, kWindow),
        Op("RemoveWindowFromAlwaysOnTop", RemoveWindowFromAlwaysOnTop, kWindow),
        Op("ShowWindow", ::ShowWindow, kWindow),
        Op("HideWindow", HideWindow, kWindow),
        Op("MinimizeWindow", MinimizeWindow, kWindow),
        Op("MaximizeWindow", MaximizeWindow, kWindow),
        Op("RestoreWindow", RestoreWindow, kWindow),
        Op("IsAltTabWindow", IsAltTabWindow, kWindow),
        Op("IsWindowMinimized", IsWindowMinimized, kWindow),
        Op("IsWindowMaximized", IsWindowMaximized, kWindow),
        Op("IsWindowUniversalWindowsPlatform", IsWindowUniversalWindowsPlatform, kWindow),
        Op("IsInvisibleWin10BackgroundAppWindow", IsInvisibleWin10BackgroundAppWindow, kWindow),
        // A maximized window whose monitor cannot be read reports its normal place.
        Or(Op("GetWindowPosSize", GetWindowPosSize, kWindow), "10,20,100,200;"),
        Or(Op("GetWindowPosX", GetWindowPosX, kWindow), "10;"),
        Or(Op("GetWindowPosY", GetWindowPosY, kWindow), "20;"),
        Or(Op("GetWindowWidth", GetWindowWidth, kWindow), "100;"),
        Or(Op("GetWindowHeight", GetWindowHeight, kWindow), "200;"),
        Op("SetWindowPosSize", SetWindowPosSize, kWindow, __ZKRect<int>(1, 2, 30, 40)),
        Op("SetWindowPosX", SetWindowPosX, kWindow, 50),
        Op("SetWindowPosY", SetWindowPosY, kWindow, 50),
        Op("SetWindowWidth", SetWindowWidth, kWindow, 50),
        Op("SetWindowHeight", SetWindowHeight, kWindow, 50),
        Op("GetExtendedWindowsBorder", GetExtendedWindowsBorder, kWindow),
        Op("RegisterSystemWideMessageID", RegisterSystemWideMessageID, ZKString("zk")),
        Op("RegisterRawInput", RegisterRawInput),
        Op("GetTaskbarInterface", [] { return Shown(GetTaskbarInterface(), [](auto) { ReleaseTaskbarInterface(); }); }),
        Op("GetCustomJumpListInterface",
           [] { return Shown(GetCustomJumpListInterface(), [](auto) { ReleaseCustomJumpListInterface(); }); }),
        Op("GetUserNotificationInterface",
           [] { return Shown(GetUserNotificationInterface(), [](auto) { ReleaseUserNotificationInterface(); }); }),
    };
    for (auto [name, send] : {std::pair{"SendMouseMoveMsg", &SendMouseMoveMsg},
                              {"SendMouseLeftDownMsg", &SendMouseLeftDownMsg},
                              {"SendMouseLeftUpMsg", &SendMouseLeftUpMsg},
                              {"SendMouseRightDownMsg", &SendMouseRightDownMsg},
                              {"SendMouseRightUpMsg", &SendMouseRightUpMsg},
                              {"SendMouseMiddleDownMsg", &SendMouseMiddleDownMsg},
                              {"SendMouseMiddleUpMsg", &SendMouseMiddleUpMsg},
                              {"SendMouseWheelForwardMsg", &SendMouseWheelForwardMsg},
                              {"SendMouseWheelBackwardMsg", &SendMouseWheelBackwardMsg},
                              {"SendMouseWheelLeftMsg", &SendMouseWheelLeftMsg},
                              {"SendMouseWheelRightMsg", &SendMouseWheelRightMsg}}) {
        rows.push_back(Op(name, send, 3l, -4l));
    }
    Forms(rows, "GetProcessHWNDS",
          [](auto const& target) {
              return Filled<ZKContainer<HWND__*>>([&](auto& out) { return GetProcessHWNDS(target, out); });
          },
          {"0;[];", kFewer});
    // A failing owner query reads as "no owner": the window itself is then the answer.
    Forms(rows, "GetProcessOwnerHWND", [](auto const& target) { return Show(GetProcessOwnerHWND(target)); },
          {"null;", "set;"});
    return rows;
}

std::vector<Row> FileAndSystemRows()
{
    static ZKString const pattern(("data" + kSeparator + "*").c_str());
    // A failing search call loses entries, never adds one.
    std::vector<Row> rows = {
        {"GetFilesInDir(text)", [] { return Show(GetFilesInDir(pattern.GetString(), true)); }, {kFewer}},
        {"GetFilesInDir", [] { return Show(GetFilesInDir(pattern, false)); }, {kFewer}},
        {"GetDirectoriesInDir(text)", [] { return Show(GetDirectoriesInDir(pattern.GetString(), true)); }, {kFewer}},
        {"GetDirectoriesInDir", [] { return Show(GetDirectoriesInDir(pattern, true)); }, {kFewer}},
        {"GetFilesAndDirectoriesInDir(text)",
         [] { return Show(GetFilesAndDirectoriesInDir(pattern.GetString(), true)); },
         {kFewer}},
        {"GetFilesAndDirectoriesInDir", [] { return Show(GetFilesAndDirectoriesInDir(pattern, true)); }, {kFewer}},
        {"GetFilesWithSequence", [] { return Show(GetFilesWithSequence(pattern, "TXT", true, true)); }, {kFewer}},
        {"GetDirsWithSequence", [] { return Show(GetDirsWithSequence(pattern, "u", true, false)); }, {kFewer}},
        {"GetFilesAndDirsWithSequence",
         [] { return Show(GetFilesAndDirsWithSequence(pattern, "b", true, false)); },
         {kFewer}},
        {"GetNumberOfDirs", [] { return Show(GetNumberOfDirs(pattern, true)); }, {kFewer}},
        {"GetNumberOfFiles", [] { return Show(GetNumberOfFiles(pattern, true)); }, {kFewer}},
        {"GetNumberOfFilesAndDirs",
         [] {
             unsigned long long files = 0;
             unsigned long long dirs = 0;
             GetNumberOfFilesAndDirs(pattern, files, dirs, true);
             return Show(files, dirs);
         },
         {kFewer}},
        {"GetLastErrorMsg",
         [] { return Filled<unsigned long>([](auto& code) { return GetLastErrorMsg(&code, "zk"); }); },
         {"\"zk \";0;"}},
        Op("GetComputerNameLocal", GetComputerNameLocal),
        Op("GetCurrentUserName", GetCurrentUserName),
        Op("IsDebuggerAttached", IsDebuggerAttached),
        Op("GetSystemPhysicalMemoryTotalBytes", GetSystemPhysicalMemoryTotalBytes),
        Op("GetSystemPhysicalMemoryTotalKB", GetSystemPhysicalMemoryTotalKB),
        Op("GetSystemPhysicalMemoryAvailableBytes", GetSystemPhysicalMemoryAvailableBytes),
        Op("GetSystemPhysicalMemoryAvailableKB", GetSystemPhysicalMemoryAvailableKB),
        Op("GetSystemPageFileSizeBytes", GetSystemPageFileSizeBytes),
        Op("GetSystemPageFileSizeKB", GetSystemPageFileSizeKB),
        Op("GetMemoryLoadPercent", GetMemoryLoadPercent),
        Op("GetTimeStamp", [] { return GetTimeStamp().nanoseconds; }),
        {"ZKTimer",
         [] {
             ZKTimer timer;
             timer.Start();
             timer.UpdateElapsedTime();
             return Show(timer.GetElapsedMicrosecondsInt64());
         },
         {"*"}},
        {"GenerateUniqueMachineID",
         [] {
             zk64::detail::globals.machineIdCache = ZKString();
             return Show(GenerateUniqueMachineID(12, false).GetSize());
         },
         {}},
        // A directory whose opening fails keeps its event open, by design.
        {"AddDirectoryToWatchForChanges",
         [] {
             InitDirectoryWatching();
             bool const added = AddDirectoryToWatchForChanges("watched", DirectChange, 3, true);
             bool const watched = IsDirectoryBeingWatchedForChanges("watched");
             CleanupDirectoryWatching();
             return Show(added, watched, RemoveDirectoryToWatchForChanges("watched"));
         },
         {"0;0;0;"},
         1},
    };
    return rows;
}

// The items of an answer: what stands between brackets, commas and semicolons.
std::vector<std::string> Items(std::string const& answer)
{
    std::vector<std::string> items;
    std::string item;
    for (char c : answer + ';') {
        if (std::strchr("[],;", c) == nullptr) {
            item += c;
        } else if (!item.empty()) {
            items.push_back(std::move(item));
            item.clear();
        }
    }
    return items;
}

// Whether `answer` has only items of `healthy`, each at most as often, or
// as many numbers, none larger.
bool Fewer(std::string const& answer, std::string const& healthy)
{
    std::vector<std::string> items = Items(answer);
    std::vector<std::string> left = Items(healthy);
    bool const numbers = items.size() == left.size() && std::all_of(items.begin(), items.end(), [](auto const& item) {
                             return item.find_first_not_of("0123456789") == std::string::npos;
                         });
    for (std::size_t index = 0; index < items.size(); ++index) {
        if (numbers) {
            if (std::stoull(items[index]) > std::stoull(left[index])) return false;
            continue;
        }
        auto const found = std::find(left.begin(), left.end(), items[index]);
        if (found == left.end()) return false;
        left.erase(found);
    }
    return true;
}

bool Allowed(std::string const& answer, std::string const& healthy, std::vector<std::string> const& failures)
{
    if (answer == healthy) return true;
    for (std::string const& failure : failures) {
        if (failure == kFewer) {
            if (Fewer(answer, healthy)) return true;
            continue;
        }
        bool const prefix = !failure.empty() && failure.back() == '*';
        if (prefix ? answer.compare(0, failure.size() - 1, failure, 0, failure.size() - 1) == 0 : answer == failure)
            return true;
    }
    return false;
}

TEST(Faults, EveryPlatformCallOfEveryOperationFailsInTurn)
{
    std::vector<Row> rows = ProcessRows();
    for (auto const& more : {MetricsAndPackageRows(), DesktopRows(), FileAndSystemRows()}) {
        rows.insert(rows.end(), more.begin(), more.end());
    }
    unsigned long faults = 0;
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        Healthy();
        std::string const healthy = row.run();
        unsigned long const calls = fake::FallibleCalls();
        EXPECT_GT(calls, 0u) << "the operation crosses the platform layer";
        EXPECT_EQ(fake::OpenHandles(), 0u) << "left open on a healthy system";
        EXPECT_EQ(fake::StrayCloses(), 0u) << "closed without being opened";
        for (unsigned long n = 1; n <= calls; ++n) {
            Healthy();
            fake::FailCall(n);
            std::string const answer = row.run();
            std::string const failed = "call " + std::to_string(n) + " (" + fake::FailedCall() + ") failing";
            EXPECT_TRUE(Allowed(answer, healthy, row.failures))
                << failed << " gave " << answer << ", healthy " << healthy;
            EXPECT_LE(fake::OpenHandles(), row.leaves) << failed << " left handles open";
            EXPECT_EQ(fake::StrayCloses(), 0u) << failed << " closed what was not open";
            Healthy();
            EXPECT_EQ(row.run(), healthy) << "the run after " << failed;
        }
        faults += calls;
    }
    fake::Reset();
    std::printf("%zu operations, %lu calls failed in turn\n", rows.size(), faults);
}

}  // namespace
