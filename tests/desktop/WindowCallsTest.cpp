// The exact platform calls behind the window, input and shell operations,
// through the fake backend: fixed arguments, the alt-tab rule, the icon
// fallbacks, the stacking reports, the placement arithmetic and the shell
// objects' lifetime.

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "desktop/detail/ShellState.h"
#include "processes/FakeProcess.h"

namespace {

using platform::HWND;
using platform::LPARAM;
using platform::Rect;
using platform::UINT;

HWND Window(unsigned long long value) { return reinterpret_cast<HWND>(value); }
HWND const kWindow = Window(0x10);
std::string const kOn = "(window=0x10";

// The placement `show` and `normal`; the monitor's work area is {0, 0, 1024, 738} if `monitorAnswer`.
void ScriptPlacement(UINT show, Rect normal, BOOL monitorAnswer = 1)
{
    fake::Desktop().GetWindowPlacement = [=](HWND, platform::WindowPlacement* placement) {
        placement->showCmd = show;
        placement->rcNormalPosition = normal;
        return BOOL{1};
    };
    fake::Desktop().MonitorFromRect = [](Rect const*, DWORD) { return platform::HMONITOR(0xA0); };
    fake::Desktop().GetMonitorInfoA = [=](platform::HMONITOR, platform::MonitorInfo* info) {
        info->rcWork = {0, 0, 1024, 738};
        return monitorAnswer;
    };
}

using WindowCalls = FakeTest;

}  // namespace

TEST_F(WindowCalls, ListsAndProcessWindows)
{
    BOOL answer = 1;  // then 0
    fake::Desktop().EnumChildWindows = [&answer](HWND, platform::WindowEnumProc callback, LPARAM data) {
        return fake::ListWindows({Window(0x30)}, callback, data) * answer--;
    };
    ZKContainer<HWND__*> out;
    EXPECT_TRUE(GetChildWindows(kWindow, out) && !GetChildWindows(kWindow, out));
    // The desktop lists 0x20 to 0x22; 0x21 is process 9, the others of the handle's process 500.
    fake::Desktop().EnumDesktopWindows = [](platform::HDESK, platform::WindowEnumProc callback, LPARAM data) {
        return fake::ListWindows({Window(0x20), Window(0x21), Window(0x22)}, callback, data) * 0;
    };
    fake::Processes().GetWindowThreadProcessId = [](HWND window, DWORD* pid) {
        return *pid = window == Window(0x21) ? 9 : 500, DWORD{1};
    };
    fake::Processes().GetProcessId = [](HANDLE) { return DWORD{500}; };
    fake::Desktop().GetWindow = [](HWND window, UINT) { return window == Window(0x20) ? Window(0x1) : nullptr; };
    EXPECT_FALSE(GetProcessHWNDS(ZKString("none.exe"), out) || GetProcessOwnerHWND(ZKString("none.exe")) != nullptr);
    fake::TakeCalls();
    EXPECT_TRUE(!GetProcessHWNDS(ProcessHandle{}, out) && fake::TakeCalls().empty()) << "refused before any call";
    EXPECT_TRUE(GetProcessHWNDS(kProcess, out) && GetProcessHWNDS(kProcess, out) && GetCurrentDesktopHWNDS(out));
    std::string items;
    for (unsigned long long i = 0; i < out.GetItemCount(); ++i) items += fake::Pointer(out[i]) + " ";
    EXPECT_EQ(items, "0x30 0x30 0x20 0x22 0x20 0x22 0x20 0x21 0x22 ");
    EXPECT_EQ(fake::TakeCalls().at(6), "GetWindowThreadProcessId(window=0x21, pid=out)");
    EXPECT_TRUE(!GetProcessHWNDS(42ul, out) && GetProcessOwnerHWND(42ul) == nullptr) << "the open fails";
    EXPECT_EQ(fake::TakeCalls(), (Calls{OpenCall(0x410, 42), "GetLastError()", OpenCall(0x400, 42), "GetLastError()"}));
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    EXPECT_EQ(GetProcessOwnerHWND(42ul), Window(0x22)) << "the first window without an owner";
    EXPECT_EQ(fake::TakeCalls().back(), "CloseHandle(handle=0x44)");
    fake::Processes().GetProcessId = [](HANDLE) { return DWORD{0}; };
    fake::Processes().GetWindowThreadProcessId = nullptr;
    EXPECT_EQ(GetProcessOwnerHWND(kProcess), Window(0x21)) << "an unknown process is process 0 on both sides";
}

TEST_F(WindowCalls, NamesTitlesAndIcon)
{
    // As the system: size - 1 characters and a zero.
    auto const fill = [](HWND, char* buffer, int size) {
        std::memset(buffer, 'c', static_cast<std::size_t>(size - 1));
        return buffer[size - 1] = '\0', size - 1;
    };
    EXPECT_TRUE(GetHWNDClassName(kWindow) == "" && GetWindowTitleText(kWindow) == "") << "failing calls";
    fake::Desktop().GetClassNameA = fake::Desktop().GetWindowTextA = fill;
    EXPECT_EQ(GetHWNDClassName(kWindow).GetSize() * 1000 + GetWindowTitleText(kWindow).GetSize(), 510511);
    EXPECT_EQ(fake::TakeCalls().at(2), "GetClassNameA" + kOn + ", size=511)");
    fake::Desktop().GetWindowTextA = [](HWND, char* buffer, int) { return std::memcpy(buffer, "Ti\0r", 4), 3; };
    EXPECT_TRUE(GetWindowTitleText(kWindow) == "Ti") << "the text ends at the first zero byte";
    fake::TakeCalls();

    // The icon's sources in turn; source k answers 0x500 + k when it is the one `answering`.
    std::string const send = "SendMessageTimeoutA" + kOn + ", message=127, wParam=";
    std::string const tail = ", lParam=0, flags=0x0, timeout=800, result=0)";
    Calls const all = {send + "2" + tail, send + "0" + tail, send + "1" + tail,
                       "GetClassLongPtrA" + kOn + ", index=-14)", "GetClassLongPtrA" + kOn + ", index=-34)"};
    for (std::size_t answering = 0; answering <= all.size(); ++answering) {
        fake::Desktop().SendMessageTimeoutA = [answering](HWND, UINT, platform::WPARAM kind, LPARAM, UINT, UINT,
                                                          platform::ULONG_PTR* result) {
            std::size_t const source = kind == 2 ? 0 : kind == 0 ? 1 : 2;
            if (source == answering) *result = 0x500 + source;
            return platform::LONG_PTR{1};
        };
        fake::Desktop().GetClassLongPtrA = [answering](HWND, int index) {
            return platform::ULONG_PTR{(index == -14 ? 3u : 4u) == answering ? 0x500 + answering : 0};
        };
        EXPECT_EQ(GetWindowIcon(kWindow), answering < 5 ? reinterpret_cast<HICON__*>(0x500 + answering) : nullptr);
        EXPECT_EQ(fake::TakeCalls(),
                  Calls(all.begin(), all.begin() + static_cast<long>(std::min<std::size_t>(answering + 1, 5))));
    }
}

TEST_F(WindowCalls, ShowingStackingAndTheirReports)
{
    auto const show = [](int command) { return "ShowWindow" + kOn + ", command=" + std::to_string(command) + ")"; };
    auto const pos = [](int after, int flags) {
        return "SetWindowPos" + kOn + ", after=" + std::to_string(after) +
               ", x=0, y=0, cx=0, cy=0, flags=" + std::to_string(flags) + ")";
    };
    auto const debug = [](std::string const& text) { return "OutputDebugStringA(\"" + text + " failed\n\n\")"; };
    std::string const front = "SetForegroundWindow" + kOn + ")", iconic = "IsIconic" + kOn + ")";
    // The operation, IsIconic's answer, SetWindowPos's answers in turn, the calls.
    using Row = std::tuple<void (*)(HWND__*), BOOL, std::vector<BOOL>, Calls>;
    Row const table[] = {{HideWindow, 1, {}, {show(0)}},
                         {MinimizeWindow, 0, {}, {show(6)}},
                         {MaximizeWindow, 0, {}, {show(3)}},
                         {RestoreWindow, 0, {}, {show(9)}},
                         {ShowWindow, 0, {}, {iconic, show(5)}},
                         {ShowWindow, 1, {}, {iconic, show(9), show(5)}},
                         {MoveWindowToFront, 1, {1}, {front, iconic, show(9), pos(0, 3)}},
                         {MoveWindowAlwaysOnTop,
                          0,
                          {0, 0},
                          {front, iconic, pos(0, 3), debug("MoveWindowToFront-SetWindowPos()"), pos(-1, 67),
                           debug("MoveWindowAlwaysOnTop()")}},
                         {RemoveWindowFromAlwaysOnTop, 0, {0}, {pos(-2, 3), debug("RemoveWindowFromAlwaysOnTop()")}}};
    for (auto const& [call, iconicAnswer, moved, calls] : table) {
        std::size_t turn = 0;
        fake::Desktop().IsIconic = [&](HWND) { return iconicAnswer; };
        fake::Desktop().SetWindowPos = [&](HWND, HWND, int, int, int, int, UINT) { return moved[turn++]; };
        call(kWindow);
        EXPECT_EQ(fake::TakeCalls(), calls);
    }
}

TEST_F(WindowCalls, Classification)
{
    // Extended style, whether the window is its own root owner, alt-tab or not.
    int const rows[][3] = {{0, 1, 1},       {0, 0, 0},       {0x40000, 0, 1},   {0x80, 1, 0},
                           {0x40080, 0, 0}, {0x40080, 1, 0}, {0x10000000, 1, 1}};
    for (auto [style, ownsItself, expected] : rows) {
        fake::Desktop().GetWindowLongPtrA = [style = style](HWND, int) { return platform::LONG_PTR{style}; };
        fake::Desktop().GetAncestor = [own = ownsItself](HWND window, UINT) { return own ? window : Window(0x77); };
        EXPECT_EQ(IsAltTabWindow(kWindow), expected != 0) << style << " " << ownsItself;
        Calls const asked = {"GetWindowLongPtrA" + kOn + ", index=-20)", "GetAncestor" + kOn + ", flags=3)"};
        EXPECT_EQ(fake::TakeCalls(), Calls(asked.begin(), asked.end() - ((style & 0x40000) != 0)));
    }
    fake::Desktop().IsIconic = [](HWND) { return BOOL{-7}; };
    EXPECT_TRUE(IsWindowMinimized(kWindow) && !IsWindowMaximized(kWindow)) << "any answer but 0";
    // The cloaked word: the call's answer, the value it wrote (none: -1), cloaked or not.
    int const cloakings[][3] = {{0, 0, 0}, {0, 4, 1}, {0, -1, 0}, {1, 2, 0}, {-2147467263, 2, 0}};
    for (auto [result, cloaked, expected] : cloakings) {
        fake::Desktop().DwmGetWindowAttribute = [result = result, cloaked = cloaked](HWND, DWORD, void* value, DWORD) {
            if (cloaked >= 0) std::memcpy(value, &cloaked, 4);
            return platform::HRESULT(result);
        };
        EXPECT_EQ(IsInvisibleWin10BackgroundAppWindow(kWindow), expected != 0) << result << " " << cloaked;
    }
    EXPECT_EQ(fake::TakeCalls().back(), "DwmGetWindowAttribute" + kOn + ", attribute=14, value=out, size=4)");
    EXPECT_FALSE(IsWindowUniversalWindowsPlatform(nullptr) || IsWindowUniversalWindowsPlatform(kWindow));
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"GetWindowThreadProcessId" + kOn + ", pid=out)", OpenCall(0x400, 0), "GetLastError()"}));
}

TEST_F(WindowCalls, PlacementArithmetic)
{
    tagRECT frame = GetExtendedWindowsBorder(kWindow);
    EXPECT_EQ(frame.left | frame.top | frame.right | frame.bottom, 0) << "a failed call leaves the zeroed rectangle";
    fake::Desktop().DwmGetWindowAttribute = [](HWND, DWORD, void* value, DWORD) {
        Rect const bounds{-8, 2, 1928, 1048};
        return std::memcpy(value, &bounds, sizeof bounds), platform::HRESULT{0};
    };
    frame = GetExtendedWindowsBorder(kWindow);
    EXPECT_EQ(frame.left * frame.top + frame.right * frame.bottom, -16 + 1928 * 1048);
    EXPECT_EQ(fake::TakeCalls().back(), "DwmGetWindowAttribute" + kOn + ", attribute=9, value=out, size=16)");
    EXPECT_TRUE(GetWindowPosSize(kWindow) == __ZKRect<int>(0, 0, 0, 0)) << "a failed call leaves the zeroed record";
    EXPECT_EQ(fake::TakeCalls(), Calls{"GetWindowPlacement" + kOn +
                                       ", length=44, flags=0, show=0, min={0,0}, max={0,0}, normal={0,0,0,0})"});
    // Only a maximized window (3) reads its monitor's work area, if it gets it.
    ScriptPlacement(3, {10, 20, 110, 70});
    EXPECT_TRUE(GetWindowPosSize(kWindow) == __ZKRect<int>(0, 0, 1024, 738));
    EXPECT_EQ(fake::TakeCalls().at(1), "MonitorFromRect(rect={10,20,110,70}, flags=2)");
    for (UINT show : {2u, 3u}) {
        ScriptPlacement(show, {-30, 40, 70, 10}, 0);
        EXPECT_TRUE(__ZKRect<int>(GetWindowPosX(kWindow), GetWindowPosY(kWindow), GetWindowWidth(kWindow),
                                  GetWindowHeight(kWindow)) == __ZKRect<int>(-30, 40, 100, -30));
    }
    EXPECT_EQ(fake::TakeCalls().back(), "GetMonitorInfoA(monitor=0xa0, size=40)");

    std::vector<int> written;  // the normal positions written, flat
    fake::Desktop().SetWindowPlacement = [&written](HWND, platform::WindowPlacement const* placement) {
        Rect const& rect = placement->rcNormalPosition;
        written.insert(written.end(), {rect.left, rect.top, rect.right, rect.bottom});
        return BOOL(placement->length == 44 && written.size() != 8);  // the second write is refused
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
    EXPECT_EQ(written, (std::vector<int>{5,   6,  12, 14, -5, 6,  -5, -2, 300, 20, 400, 70, 10,  -40,
                                         110, 10, 10, 20, 10, 70, 10, 20, 110, 25, 0,   0,  500, 738}));
}

TEST_F(WindowCalls, MouseSendersRawInputAndMessageRegistration)
{
    for (auto send : {SendMouseMoveMsg, SendMouseLeftDownMsg, SendMouseLeftUpMsg, SendMouseRightDownMsg,
                      SendMouseRightUpMsg, SendMouseMiddleDownMsg, SendMouseMiddleUpMsg, SendMouseWheelForwardMsg,
                      SendMouseWheelBackwardMsg, SendMouseWheelLeftMsg, SendMouseWheelRightMsg})
        send(-7, 2147483647L);  // the system's answer is dropped
    std::string sent;           // mouseData and dwFlags of each
    for (std::string const& call : fake::TakeCalls()) sent += call.substr(68, call.find(", time") - 68) + "|";
    EXPECT_EQ(sent,
              "=0, dwFlags=0x1|=0, dwFlags=0x2|=0, dwFlags=0x4|=0, dwFlags=0x8|=0, dwFlags=0x10|=0, dwFlags=0x20|"
              "=0, dwFlags=0x40|=120, dwFlags=0x800|=-120, dwFlags=0x800|=-120, dwFlags=0x1000|=120, dwFlags=0x1000|");
    SendMouseWheelLeftMsg(0, -2147483647L - 1);
    EXPECT_EQ(fake::TakeCalls(), Calls{"SendInput(count=1, size=40, {type=0, dx=0, dy=-2147483648, mouseData=-120, "
                                       "dwFlags=0x1000, time=0, dwExtraInfo=0})"});
    EXPECT_FALSE(RegisterRawInput());
    fake::InputOperations().RegisterRawInputDevices = [](platform::RawInputDevice const*, UINT, UINT) { return 2; };
    EXPECT_TRUE(RegisterRawInput()) << "any answer but 0";
    EXPECT_EQ(fake::TakeCalls(), Calls(2, "RegisterRawInputDevices(count=1, size=16, {usUsagePage=1, usUsage=6, "
                                          "dwFlags=0x30, hwndTarget=null})"));
    fake::InputOperations().RegisterWindowMessageA = [](char const* name) { return UINT(0xC100 + std::strlen(name)); };
    EXPECT_EQ(RegisterSystemWideMessageID(ZKString("ZK64.Ping\0tail", 14)), 0xC109u) << "the text up to its zero";
    EXPECT_EQ(fake::TakeCalls(), Calls{"RegisterWindowMessageA(\"ZK64.Ping\")"});
}

// ------------------------------------------------ shell objects

namespace {

struct Kind {
    void* (*get)();
    void (*release)();
    char const* classId;
    char const* interfaceId;
};
std::array<Kind, 3> const kKinds = {{
    {[]() -> void* { return GetTaskbarInterface(); }, ReleaseTaskbarInterface, "{56FDF344-FD6D-11D0-958A-006097C9A090}",
     "{56FDF342-FD6D-11D0-958A-006097C9A090}"},
    {[]() -> void* { return GetCustomJumpListInterface(); }, ReleaseCustomJumpListInterface,
     "{77F10CF0-3DB5-4966-B520-B7C54FD35ED6}", "{6332DEBF-87B5-4670-90C0-5E57B408A49E}"},
    {[]() -> void* { return GetUserNotificationInterface(); }, ReleaseUserNotificationInterface,
     "{0010890E-8789-413C-ADBC-48F5B511B3AF}", "{BA9711BA-5893-4787-A7E1-41277151550B}"},
}};
void* Object(int kind) { return reinterpret_cast<void*>(0x1100 * (kind + 1)); }  // what the fake creates
std::string Created(int kind)
{
    return std::string("CoCreateInstance(class=") + kKinds[kind].classId +
           ", outer=null, context=23, interface=" + kKinds[kind].interfaceId + ", object=out)";
}
std::string Released(int kind) { return "ReleaseComObject(" + fake::Pointer(Object(kind)) + ")"; }

// A process at load: CoInitialize answers `initResult`; creations succeed while `works`.
void ScriptShell(platform::HRESULT initResult, bool const& works)
{
    zk64::detail::ResetShellInterfaces();
    fake::Reset();
    fake::Shell().CoInitialize = [=](void*) { return initResult; };
    fake::Shell().CoCreateInstance = [&works](platform::Guid const& classId, platform::Guid const&, void** object) {
        for (int kind = 0; kind < 3; ++kind)
            if (works && fake::GuidText(classId) == kKinds[kind].classId) *object = Object(kind);
        return works ? platform::kSOk : platform::kRegdbEClassNotReg;
    };
}

}  // namespace

TEST(ShellInterfaces, CreatedOnceAndTheLastReleaseUninitialises)
{
    bool works = true;
    std::array<int, 3> order = {0, 1, 2};
    do {
        ScriptShell(platform::kSOk, works);
        for (int get = 0; get < 6; ++get) EXPECT_EQ(kKinds[get % 3].get(), Object(get % 3));
        Calls expected = {"CoInitialize(null)", Created(0), Created(1), Created(2)};
        for (int index : order) kKinds[index].release(), expected.push_back(Released(index));
        expected.push_back("CoUninitialize()");
        EXPECT_EQ(fake::TakeCalls(), expected) << order[0] << order[1] << order[2];
    } while (std::next_permutation(order.begin(), order.end()));
    ScriptShell(platform::HRESULT(0x80010106u), works);
    for (Kind const& kind : kKinds) kind.get(), kind.release();
    EXPECT_EQ(fake::TakeCalls().size(), 7u) << "a failed initialisation is never undone";
    ScriptShell(platform::HRESULT{1}, works);  // the application's: undone at once, and never by a Release
    kKinds[1].get();
    kKinds[1].release();
    EXPECT_EQ(fake::TakeCalls(), (Calls{"CoInitialize(null)", "CoUninitialize()", Created(1), Released(1)}));

    // Failed creations hold nothing and are tried again; the initialisation is made once, and undone each time
    // the last object goes.
    works = false;
    ScriptShell(platform::kSOk, works);
    EXPECT_TRUE(kKinds[2].get() == nullptr && kKinds[2].get() == nullptr);
    kKinds[2].release();
    works = true;
    EXPECT_EQ(kKinds[2].get(), Object(2));
    kKinds[0].get();
    for (int index : {2, 0, 0, 1}) kKinds[index].release();
    kKinds[1].get();
    kKinds[1].release();
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{"CoInitialize(null)", Created(2), Created(2), Created(2), Created(0), Released(2), Released(0),
                     "CoUninitialize()", Created(1), Released(1), "CoUninitialize()"}));
    zk64::detail::ResetShellInterfaces();
}
