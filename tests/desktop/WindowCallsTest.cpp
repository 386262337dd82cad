// The exact platform calls behind the window, input and shell operations,
// through the fake backend: fixed arguments, the alt-tab rule, the icon
// fallbacks, the stacking reports, the placement arithmetic and the shell
// objects' lifetime.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "desktop/detail/ShellState.h"
#include "processes/FakeProcess.h"

namespace {

using platform::HWND;
using platform::LPARAM;
using platform::UINT;

HWND Window(std::uintptr_t value) { return reinterpret_cast<HWND>(value); }
HWND const kWindow = Window(0x10);
std::string const kOn = "(window=0x10";

std::vector<HWND> Items(ZKContainer<HWND__*> const& list)
{
    std::vector<HWND> items;
    for (unsigned long long i = 0; i < list.GetItemCount(); ++i) items.push_back(list[i]);
    return items;
}

class WindowCalls : public FakeTest {
protected:
    // The desktop lists `windows`, each of the process given with it; the handle is process 500.
    static void ScriptDesktop(std::vector<std::pair<HWND, DWORD>> windows)
    {
        fake::Desktop().GetCurrentThreadId = [] { return DWORD{77}; };
        fake::Desktop().GetThreadDesktop = [](DWORD) { return reinterpret_cast<platform::HDESK>(0xD0); };
        fake::Desktop().EnumDesktopWindows = [windows](platform::HDESK, platform::WindowEnumProc callback,
                                                       LPARAM data) {
            for (auto const& window : windows) callback(window.first, data);
            return BOOL{0};
        };
        fake::Processes().GetWindowThreadProcessId = [windows](HWND window, DWORD* pid) {
            for (auto const& known : windows) *pid = known.first == window ? known.second : *pid;
            return DWORD{1};
        };
        fake::Processes().GetProcessId = [](HANDLE) { return DWORD{500}; };
    }
    static void ScriptPlacement(UINT show, platform::Rect normal, BOOL monitorAnswer = 1)
    {
        fake::Desktop().GetWindowPlacement = [=](HWND, platform::WindowPlacement* placement) {
            placement->showCmd = show;
            placement->rcNormalPosition = normal;
            return BOOL{1};
        };
        fake::Desktop().MonitorFromRect = [](platform::Rect const*, DWORD) { return platform::HMONITOR(0xA0); };
        fake::Desktop().GetMonitorInfoA = [=](platform::HMONITOR, platform::MonitorInfo* info) {
            info->rcWork = {0, 0, 1024, 738};
            return monitorAnswer;
        };
    }
};

}  // namespace

TEST_F(WindowCalls, FamilyGettersAndLists)
{
    fake::Desktop().GetDesktopWindow = [] { return Window(0x99); };
    fake::Desktop().GetParent = [](HWND) { return Window(0x11); };
    fake::Desktop().GetAncestor = [](HWND, UINT flags) { return Window(0x100 + flags); };
    fake::Desktop().GetWindow = [](HWND, UINT command) { return Window(0x200 + command); };
    fake::Desktop().GetWindowLongPtrA = [](HWND, int index) { return platform::LONG_PTR{0x300} + index; };
    std::vector<void const*> const got = {
        GetDesktopHWND(),      GetParentOrOwnerHWND(kWindow), GetParentNotOwnerHWND(kWindow),
        GetOwnerHWND(kWindow), GetChildHWND(kWindow),         HwndToHInstance(kWindow)};
    EXPECT_EQ(got, (std::vector<void const*>{Window(0x99), Window(0x11), Window(0x101), Window(0x204), Window(0x205),
                                             Window(0x300 - 6)}));
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetDesktopWindow()", "GetParent" + kOn + ")", "GetAncestor" + kOn + ", flags=1)",
                     "GetWindow" + kOn + ", command=4)", "GetWindow" + kOn + ", command=5)",
                     "GetWindowLongPtrA" + kOn + ", index=-6)"}));

    ZKContainer<HWND__*> out;
    EXPECT_TRUE(GetCurrentDesktopHWNDS(out)) << "true whatever the enumeration answers";
    ScriptDesktop({{Window(0x20), 1}, {Window(0x21), 2}});
    EXPECT_TRUE(GetCurrentDesktopHWNDS(out) && GetCurrentDesktopHWNDS(out));
    EXPECT_EQ(Items(out), (std::vector<HWND>{Window(0x20), Window(0x21), Window(0x20), Window(0x21)})) << "appends";
    EXPECT_EQ(fake::TakeCalls().at(3), "GetCurrentThreadId()");
    for (BOOL answer : {1, 0}) {
        fake::Desktop().EnumChildWindows = [answer](HWND, platform::WindowEnumProc callback, LPARAM data) {
            fake::ListWindows({Window(0x30)}, callback, data);
            return answer;
        };
        EXPECT_EQ(GetChildWindows(kWindow, out), answer != 0);
        EXPECT_EQ(fake::TakeCalls(), Calls{"EnumChildWindows" + kOn + ")"});
    }
    EXPECT_EQ(out.GetItemCount(), 6u);
}

TEST_F(WindowCalls, ProcessWindowsAndTheirOwner)
{
    ScriptDesktop({{Window(0x20), 500}, {Window(0x21), 9}, {Window(0x22), 500}, {Window(0x23), 500}});
    fake::Desktop().GetWindow = [](HWND window, UINT) { return window == Window(0x20) ? Window(0x1) : nullptr; };
    ZKContainer<HWND__*> out;
    EXPECT_FALSE(GetProcessHWNDS(ProcessHandle{}, out));
    EXPECT_TRUE(fake::TakeCalls().empty()) << "a null handle is refused before anything is asked";
    EXPECT_TRUE(GetProcessHWNDS(kProcess, out) && GetProcessHWNDS(kProcess, out));
    EXPECT_EQ(Items(out),
              (std::vector<HWND>{Window(0x20), Window(0x22), Window(0x23), Window(0x20), Window(0x22), Window(0x23)}));
    EXPECT_EQ(fake::TakeCalls().at(6), "GetWindowThreadProcessId(window=0x21, pid=out)");

    EXPECT_FALSE(GetProcessHWNDS(42ul, out)) << "the open fails";
    EXPECT_EQ(GetProcessOwnerHWND(42ul), nullptr);
    EXPECT_EQ(fake::TakeCalls(), (Calls{"OpenProcess(access=0x410, inherit=0, pid=42)", "GetLastError()",
                                        "OpenProcess(access=0x400, inherit=0, pid=42)", "GetLastError()"}));
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    EXPECT_TRUE(GetProcessHWNDS(42ul, out));
    EXPECT_EQ(out.GetItemCount(), 9u);
    EXPECT_EQ(fake::TakeCalls().back(), "CloseHandle(handle=0x44)");
    EXPECT_EQ(GetProcessOwnerHWND(42ul), Window(0x22)) << "the first window without an owner";
    Calls const calls = fake::TakeCalls();
    EXPECT_EQ(calls.front(), "OpenProcess(access=0x400, inherit=0, pid=42)");
    EXPECT_EQ(calls.end()[-2], "GetWindow(window=0x22, command=4)");

    fake::Processes().GetProcessId = [](HANDLE) { return DWORD{0}; };
    fake::Processes().GetWindowThreadProcessId = [](HWND, DWORD*) { return DWORD{0}; };
    EXPECT_EQ(GetProcessOwnerHWND(kProcess), Window(0x21)) << "an unknown process is process 0 on both sides";
    fake::Desktop().GetWindow = [](HWND, UINT) { return Window(0x1); };
    EXPECT_EQ(GetProcessOwnerHWND(kProcess), nullptr) << "every window owned";
}

TEST_F(WindowCalls, NamesTitlesAndIcon)
{
    auto const fill = [](HWND, char* buffer, int size) {  // as the system: size - 1 characters and a zero
        std::memset(buffer, 'c', static_cast<std::size_t>(size - 1));
        buffer[size - 1] = '\0';
        return size - 1;
    };
    EXPECT_TRUE(GetHWNDClassName(kWindow) == "" && GetWindowTitleText(kWindow) == "") << "failing calls";
    fake::Desktop().GetClassNameA = fill;
    fake::Desktop().GetWindowTextA = fill;
    EXPECT_EQ(GetHWNDClassName(kWindow).GetSize(), 510);
    EXPECT_EQ(GetWindowTitleText(kWindow).GetSize(), 511);
    EXPECT_EQ(fake::TakeCalls().at(2), "GetClassNameA" + kOn + ", size=511)");
    fake::Desktop().GetWindowTextA = [](HWND, char* buffer, int) {
        std::memcpy(buffer, "Title\0rest", 10);
        return 9;
    };
    EXPECT_TRUE(GetWindowTitleText(kWindow) == "Title") << "the text ends at the first zero byte";
    fake::Desktop().GetWindowTextA = [](HWND, char* buffer, int) {
        std::memset(buffer, 'x', 512);
        return 512;
    };
    EXPECT_EQ(GetWindowTitleText(kWindow).GetSize(), 512) << "never read past the buffer";
    fake::TakeCalls();

    std::string const send = "SendMessageTimeoutA" + kOn + ", message=127, wParam=";
    std::string const tail = ", lParam=0, flags=0x0, timeout=800, result=0)";
    Calls const all = {send + "2" + tail, send + "0" + tail, send + "1" + tail,
                       "GetClassLongPtrA" + kOn + ", index=-14)", "GetClassLongPtrA" + kOn + ", index=-34)"};
    for (std::size_t answering = 0; answering <= all.size(); ++answering) {  // source k answers 0x500 + k
        fake::Desktop().SendMessageTimeoutA = [answering](HWND, UINT, platform::WPARAM kind, LPARAM, UINT, UINT,
                                                          platform::ULONG_PTR* result) {
            std::size_t const source = kind == 2 ? 0 : kind == 0 ? 1 : 2;
            if (source == answering) *result = 0x500 + source;
            return platform::LONG_PTR{1};
        };
        fake::Desktop().GetClassLongPtrA = [answering](HWND, int index) {
            std::size_t const source = index == -14 ? 3 : 4;
            return platform::ULONG_PTR{source == answering ? 0x500 + source : 0};
        };
        EXPECT_EQ(GetWindowIcon(kWindow),
                  answering < all.size() ? reinterpret_cast<HICON__*>(0x500 + answering) : nullptr);
        EXPECT_EQ(fake::TakeCalls(),
                  Calls(all.begin(), all.begin() + static_cast<long>(std::min(answering + 1, all.size()))));
    }
}

TEST_F(WindowCalls, ShowingStackingAndTheirReports)
{
    std::string const front = "SetForegroundWindow" + kOn + ")", iconic = "IsIconic" + kOn + ")";
    auto const show = [](int command) { return "ShowWindow" + kOn + ", command=" + std::to_string(command) + ")"; };
    auto const pos = [](int after, int flags) {
        return "SetWindowPos" + kOn + ", after=" + std::to_string(after) +
               ", x=0, y=0, cx=0, cy=0, flags=" + std::to_string(flags) + ")";
    };
    auto const debug = [](std::string const& text) { return "OutputDebugStringA(\"" + text + " failed\n\n\")"; };
    std::string const toFront = "MoveWindowToFront-SetWindowPos()";
    struct Row {
        void (*call)(HWND__*);
        BOOL iconic;
        std::vector<BOOL> moved;  // SetWindowPos's answers, in turn
        Calls calls;
    } const table[] = {
        {HideWindow, 1, {}, {show(0)}},
        {MinimizeWindow, 0, {}, {show(6)}},
        {MaximizeWindow, 0, {}, {show(3)}},
        {RestoreWindow, 0, {}, {show(9)}},
        {ShowWindow, 0, {}, {iconic, show(5)}},
        {ShowWindow, 1, {}, {iconic, show(9), show(5)}},
        {MoveWindowToFront, 1, {1}, {front, iconic, show(9), pos(0, 3)}},
        {MoveWindowToFront, 0, {0}, {front, iconic, pos(0, 3), debug(toFront)}},
        {MoveWindowAlwaysOnTop, 0, {1, 1}, {front, iconic, pos(0, 3), pos(-1, 67)}},
        {MoveWindowAlwaysOnTop,
         0,
         {0, 0},
         {front, iconic, pos(0, 3), debug(toFront), pos(-1, 67), debug("MoveWindowAlwaysOnTop()")}},
        {RemoveWindowFromAlwaysOnTop, 1, {1}, {pos(-2, 3)}},
        {RemoveWindowFromAlwaysOnTop, 0, {0}, {pos(-2, 3), debug("RemoveWindowFromAlwaysOnTop()")}},
    };
    for (Row const& row : table) {
        std::size_t turn = 0;
        fake::Desktop().IsIconic = [&row](HWND) { return row.iconic; };
        fake::Desktop().SetWindowPos = [&](HWND, HWND, int, int, int, int, UINT) { return row.moved[turn++]; };
        row.call(kWindow);
        EXPECT_EQ(fake::TakeCalls(), row.calls);
    }
}

TEST_F(WindowCalls, Classification)
{
    struct Row {
        platform::LONG_PTR style;
        bool ownsItself;  // GetAncestor(GA_ROOTOWNER) is the window itself
        bool expected;
    } const table[] = {{0, true, true},         {0, false, false},      {0x40000, false, true},  {0x80, true, false},
                       {0x40080, false, false}, {0x40080, true, false}, {0x10000000, true, true}};
    for (Row const& row : table) {
        fake::Desktop().GetWindowLongPtrA = [&row](HWND, int) { return row.style; };
        fake::Desktop().GetAncestor = [&row](HWND window, UINT) { return row.ownsItself ? window : Window(0x77); };
        EXPECT_EQ(IsAltTabWindow(kWindow), row.expected) << row.style << " " << row.ownsItself;
        Calls const asked = {"GetWindowLongPtrA" + kOn + ", index=-20)", "GetAncestor" + kOn + ", flags=3)"};
        EXPECT_EQ(fake::TakeCalls(), Calls(asked.begin(), asked.end() - ((row.style & 0x40000) != 0)));
    }
    for (BOOL answer : {0, -7}) {
        fake::Desktop().IsIconic = fake::Desktop().IsZoomed = [answer](HWND) { return answer; };
        EXPECT_EQ(IsWindowMinimized(kWindow) + IsWindowMaximized(kWindow), answer != 0 ? 2 : 0);
    }
    // The cloaked word: the call's answer and the value it wrote (none: -1).
    for (auto [result, cloaked, expected] :
         {std::tuple{0, 0, false}, {0, 4, true}, {0, -1, false}, {1, 2, false}, {-2147467263, 2, false}}) {
        fake::Desktop().DwmGetWindowAttribute = [result = result, cloaked = cloaked](HWND, DWORD, void* value, DWORD) {
            if (cloaked >= 0) std::memcpy(value, &cloaked, 4);
            return platform::HRESULT(result);
        };
        EXPECT_EQ(IsInvisibleWin10BackgroundAppWindow(kWindow), expected) << result << " " << cloaked;
    }
    EXPECT_EQ(fake::TakeCalls().back(), "DwmGetWindowAttribute" + kOn + ", attribute=14, value=out, size=4)");

    EXPECT_FALSE(IsWindowUniversalWindowsPlatform(nullptr) || IsWindowUniversalWindowsPlatform(kWindow));
    EXPECT_EQ(fake::TakeCalls(), (Calls{"GetWindowThreadProcessId" + kOn + ", pid=out)",
                                        "OpenProcess(access=0x400, inherit=0, pid=0)", "GetLastError()"}));
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    fake::Packages().GetPackageFamilyName = [](HANDLE, platform::UINT32* length, platform::WCHAR* name) {
        if (name != nullptr) name[0] = 0;
        *length = 1;
        return platform::LONG32{0};
    };
    EXPECT_TRUE(IsWindowUniversalWindowsPlatform(kWindow));
    EXPECT_EQ(fake::TakeCalls().back(), "CloseHandle(handle=0x44)");
}

TEST_F(WindowCalls, PlacementArithmetic)
{
    tagRECT const unanswered = GetExtendedWindowsBorder(kWindow);
    fake::Desktop().DwmGetWindowAttribute = [](HWND, DWORD, void* value, DWORD) {
        platform::Rect const bounds{-8, 2, 1928, 1048};
        std::memcpy(value, &bounds, sizeof bounds);
        return platform::HRESULT{0};
    };
    tagRECT const frame = GetExtendedWindowsBorder(kWindow);
    EXPECT_EQ((std::vector<long>{unanswered.left | unanswered.top | unanswered.right | unanswered.bottom, frame.left,
                                 frame.top, frame.right, frame.bottom}),
              (std::vector<long>{0, -8, 2, 1928, 1048}));
    EXPECT_EQ(fake::TakeCalls().back(), "DwmGetWindowAttribute" + kOn + ", attribute=9, value=out, size=16)");
    EXPECT_TRUE(GetWindowPosSize(kWindow) == __ZKRect<int>(0, 0, 0, 0)) << "a failed call leaves the zeroed record";
    EXPECT_EQ(fake::TakeCalls(), Calls{"GetWindowPlacement" + kOn +
                                       ", length=44, flags=0, show=0, min={0,0}, max={0,0}, normal={0,0,0,0})"});

    struct Row {
        UINT show;
        BOOL monitorAnswer;
        __ZKRect<int> expected;
        std::size_t calls;
    } const table[] = {{1, 1, {10, 20, 100, 50}, 1},
                       {2, 1, {10, 20, 100, 50}, 1},
                       {3, 1, {0, 0, 1024, 738}, 3},
                       {3, 0, {10, 20, 100, 50}, 3}};
    for (Row const& row : table) {
        ScriptPlacement(row.show, {10, 20, 110, 70}, row.monitorAnswer);
        EXPECT_TRUE(GetWindowPosSize(kWindow) == row.expected) << row.show;
        Calls const calls = fake::TakeCalls();
        EXPECT_EQ(calls.size(), row.calls);
        if (row.calls == 3) {
            EXPECT_EQ(calls[1] + calls[2],
                      "MonitorFromRect(rect={10,20,110,70}, flags=2)GetMonitorInfoA(monitor=0xa0, size=40)");
        }
    }
    fake::Desktop().MonitorFromRect = nullptr;
    EXPECT_TRUE(GetWindowPosSize(kWindow) == __ZKRect<int>(10, 20, 100, 50)) << "no monitor";
    ScriptPlacement(1, {-30, 40, 70, 10});
    EXPECT_EQ((std::vector<int>{GetWindowPosX(kWindow), GetWindowPosY(kWindow), GetWindowWidth(kWindow),
                                GetWindowHeight(kWindow)}),
              (std::vector<int>{-30, 40, 100, -30}));
    ScriptPlacement(1, {-2147483647 - 1, 0, 2147483647, 0});
    EXPECT_EQ(GetWindowWidth(kWindow), -1) << "32-bit wrap-around";
    fake::TakeCalls();

    std::vector<platform::Rect> written;
    fake::Desktop().SetWindowPlacement = [&written](HWND, platform::WindowPlacement const* placement) {
        written.push_back(placement->rcNormalPosition);
        return BOOL(placement->length == 44 && written.size() != 2);  // the second write is refused
    };
    EXPECT_TRUE(SetWindowPosSize(kWindow, {5, 6, 7, 8}));
    EXPECT_EQ(fake::TakeCalls(), Calls{"SetWindowPlacement" + kOn +
                                       ", length=44, flags=0, show=0, min={0,0}, max={0,0}, normal={5,6,12,14})"});
    EXPECT_FALSE(SetWindowPosSize(kWindow, {-5, 6, 0, -8}));
    ScriptPlacement(1, {10, 20, 110, 70});
    EXPECT_TRUE(SetWindowPosX(kWindow, 300) && SetWindowPosY(kWindow, -40) && SetWindowWidth(kWindow, 0) &&
                SetWindowHeight(kWindow, 5));
    ScriptPlacement(3, {10, 20, 110, 70});
    SetWindowWidth(kWindow, 500);  // a maximized window's setters start from its work area
    std::vector<int> flat;
    for (platform::Rect const& rect : written) flat.insert(flat.end(), {rect.left, rect.top, rect.right, rect.bottom});
    EXPECT_EQ(flat, (std::vector<int>{5,   6,  12, 14, -5, 6,  -5, -2, 300, 20, 400, 70, 10,  -40,
                                      110, 10, 10, 20, 10, 70, 10, 20, 110, 25, 0,   0,  500, 738}));
}

// ------------------------------------------------ input and messages

TEST_F(WindowCalls, MouseSendersRawInputAndMessageRegistration)
{
    struct Row {
        void (*send)(long, long);
        char const* flags;
        char const* wheel;
    } const table[] = {
        {SendMouseMoveMsg, "0x1", "0"},
        {SendMouseLeftDownMsg, "0x2", "0"},
        {SendMouseLeftUpMsg, "0x4", "0"},
        {SendMouseRightDownMsg, "0x8", "0"},
        {SendMouseRightUpMsg, "0x10", "0"},
        {SendMouseMiddleDownMsg, "0x20", "0"},
        {SendMouseMiddleUpMsg, "0x40", "0"},
        {SendMouseWheelForwardMsg, "0x800", "120"},
        {SendMouseWheelBackwardMsg, "0x800", "-120"},
        {SendMouseWheelLeftMsg, "0x1000", "-120"},
        {SendMouseWheelRightMsg, "0x1000", "120"},
    };
    for (Row const& row : table) {  // the system's answer is dropped
        row.send(-7, 2147483647L);
        row.send(0, -2147483647L - 1);
        std::string const tail =
            std::string(", mouseData=") + row.wheel + ", dwFlags=" + row.flags + ", time=0, dwExtraInfo=0})";
        EXPECT_EQ(fake::TakeCalls(), (Calls{"SendInput(count=1, size=40, {type=0, dx=-7, dy=2147483647" + tail,
                                            "SendInput(count=1, size=40, {type=0, dx=0, dy=-2147483648" + tail}));
    }
    for (BOOL answer : {0, 2}) {
        fake::InputOperations().RegisterRawInputDevices = [answer](platform::RawInputDevice const*, UINT, UINT) {
            return answer;
        };
        EXPECT_EQ(RegisterRawInput(), answer != 0);
        EXPECT_EQ(fake::TakeCalls(), (Calls{"RegisterRawInputDevices(count=1, size=16, {usUsagePage=1, usUsage=6, "
                                            "dwFlags=0x30, hwndTarget=null})"}));
    }
    fake::InputOperations().RegisterWindowMessageA = [](char const* name) {
        return UINT(std::strlen(name) == 9 ? 0xC123 : 0);
    };
    EXPECT_EQ(RegisterSystemWideMessageID(ZKString("ZK64.Ping\0tail", 14)), 0xC123u) << "the text up to its zero";
    EXPECT_EQ(RegisterSystemWideMessageID(""), 0u);
    EXPECT_EQ(fake::TakeCalls(), (Calls{"RegisterWindowMessageA(\"ZK64.Ping\")", "RegisterWindowMessageA(\"\")"}));
    EXPECT_TRUE(GetWindowsMessageIDStr(0xC123) == "Unknown Windows message: 49443")
        << "registered numbers stay unknown";
}

// ------------------------------------------------ shell objects

namespace {

struct Kind {
    void* (*get)();
    void (*release)();
    char const* classAndInterface;
    void* object;  // what the fake creates
};
std::array<Kind, 3> const kKinds = {{
    {[]() -> void* { return GetTaskbarInterface(); }, ReleaseTaskbarInterface,
     "{56FDF344-FD6D-11D0-958A-006097C9A090}, outer=null, context=23, interface={56FDF342-FD6D-11D0-958A-006097C9A090}",
     reinterpret_cast<void*>(0x1100)},
    {[]() -> void* { return GetCustomJumpListInterface(); }, ReleaseCustomJumpListInterface,
     "{77F10CF0-3DB5-4966-B520-B7C54FD35ED6}, outer=null, context=23, interface={6332DEBF-87B5-4670-90C0-5E57B408A49E}",
     reinterpret_cast<void*>(0x2200)},
    {[]() -> void* { return GetUserNotificationInterface(); }, ReleaseUserNotificationInterface,
     "{0010890E-8789-413C-ADBC-48F5B511B3AF}, outer=null, context=23, interface={BA9711BA-5893-4787-A7E1-41277151550B}",
     reinterpret_cast<void*>(0x3300)},
}};
std::string Created(Kind const& kind)
{
    return std::string("CoCreateInstance(class=") + kind.classAndInterface + ", object=out)";
}
std::string Released(Kind const& kind) { return "ReleaseComObject(" + fake::Pointer(kind.object) + ")"; }

// CoInitialize answers `initResult`; creations succeed while `works`.
void ScriptShell(platform::HRESULT initResult, bool const& works)
{
    zk64::detail::ResetShellInterfaces();
    fake::Reset();
    fake::Shell().CoInitialize = [=](void*) { return initResult; };
    fake::Shell().CoCreateInstance = [&works](platform::Guid const& classId, platform::Guid const&, void** object) {
        for (Kind const& kind : kKinds)
            if (works && std::strncmp(fake::GuidText(classId).c_str(), kind.classAndInterface, 38) == 0)
                *object = kind.object;
        return works ? platform::kSOk : platform::kRegdbEClassNotReg;
    };
}

}  // namespace

TEST(ShellInterfaces, CreatedOnceAndTheLastReleaseInAnyOrderUninitialises)
{
    bool const works = true;
    std::array<int, 3> order = {0, 1, 2};
    do {
        ScriptShell(platform::kSOk, works);
        for (int pass = 0; pass < 2; ++pass)
            for (Kind const& kind : kKinds) EXPECT_EQ(kind.get(), kind.object);
        Calls expected = {"CoInitialize(null)", Created(kKinds[0]), Created(kKinds[1]), Created(kKinds[2])};
        for (int index : order) {
            kKinds[index].release();
            expected.push_back(Released(kKinds[index]));
        }
        expected.push_back("CoUninitialize()");
        EXPECT_EQ(fake::TakeCalls(), expected) << order[0] << order[1] << order[2];
    } while (std::next_permutation(order.begin(), order.end()));
    // S_FALSE: the thread had the component system already, its count goes back at once; a failure is never undone.
    for (platform::HRESULT initResult : {platform::kSFalse, platform::HRESULT(0x80010106u)}) {
        ScriptShell(initResult, works);
        for (Kind const& kind : kKinds) EXPECT_EQ(kind.get(), kind.object);
        for (Kind const& kind : kKinds) kind.release();
        Calls const calls = fake::TakeCalls();
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "CoUninitialize()"), initResult == platform::kSFalse);
        EXPECT_EQ(calls.size(), 7u + (initResult == platform::kSFalse));
    }
}

TEST(ShellInterfaces, FailedCreationsAndRepeatedReleases)
{
    bool works = false;
    Kind const &taskbar = kKinds[0], &jumpList = kKinds[1], &notification = kKinds[2];
    ScriptShell(platform::kSOk, works);
    EXPECT_EQ(notification.get(), nullptr);
    EXPECT_EQ(notification.get(), nullptr);
    notification.release();
    EXPECT_EQ(fake::TakeCalls(), (Calls{"CoInitialize(null)", Created(notification), Created(notification)}))
        << "nothing held, nothing released";
    works = true;
    EXPECT_EQ(notification.get(), notification.object);
    taskbar.get();
    notification.release();
    taskbar.release();
    taskbar.release();
    jumpList.release();
    EXPECT_EQ(jumpList.get(), jumpList.object);
    jumpList.release();
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{Created(notification), Created(taskbar), Released(notification), Released(taskbar),
                     "CoUninitialize()", Created(jumpList), Released(jumpList), "CoUninitialize()"}))
        << "each time the last object goes, the initialisation is undone again";
    zk64::detail::ResetShellInterfaces();
}
