// The exact platform calls behind the window operations, through the fake
// backend: every fixed argument, the alt-tab rule, the icon fallbacks, the
// stacking reports and the placement arithmetic.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include <cstdint>
#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "diagnostics/LogTestSupport.h"
#include "processes/FakeProcess.h"

namespace {

using platform::HWND;
using platform::LONG_PTR;
using platform::LPARAM;
using platform::UINT;
using platform::ULONG_PTR;
using platform::WPARAM;

HWND Window(std::uintptr_t value) { return reinterpret_cast<HWND>(value); }
HWND const kWindow = Window(0x10);
std::string const kOn = "(window=0x10";

using WindowCall = std::function<void(HWND)>;

class WindowCalls : public FakeTest {
protected:
    // The windows EnumDesktopWindows lists, and the process of each.
    void ScriptDesktop(std::vector<std::pair<HWND, DWORD>> windows)
    {
        fake::Desktop().GetCurrentThreadId = [] { return DWORD{77}; };
        fake::Desktop().GetThreadDesktop = [](DWORD) { return reinterpret_cast<platform::HDESK>(0xD0); };
        fake::Desktop().EnumDesktopWindows = [windows](platform::HDESK, platform::WindowEnumProc callback,
                                                       LPARAM data) {
            for (auto const& window : windows) callback(window.first, data);
            return BOOL{1};
        };
        fake::Processes().GetWindowThreadProcessId = [windows](HWND window, DWORD* pid) {
            for (auto const& known : windows) {
                if (known.first == window) *pid = known.second;
            }
            return DWORD{1};
        };
        fake::Processes().GetProcessId = [](HANDLE) { return DWORD{500}; };
    }
    static std::vector<HWND> Items(ZKContainer<HWND__*> const& list)
    {
        std::vector<HWND> items;
        for (unsigned long long i = 0; i < list.GetItemCount(); ++i) items.push_back(list[i]);
        return items;
    }
    // GetWindowPlacement answering with `show` and the normal rectangle.
    void ScriptPlacement(UINT show, platform::Rect normal)
    {
        fake::Desktop().GetWindowPlacement = [show, normal](HWND, platform::WindowPlacement* placement) {
            placement->showCmd = show;
            placement->rcNormalPosition = normal;
            return BOOL{1};
        };
    }
};

std::string const kDesktopCalls[] = {"GetCurrentThreadId()", "GetThreadDesktop(77)", "EnumDesktopWindows(desktop=0xd0)"};

}  // namespace

TEST_F(WindowCalls, FamilyGettersAreOneCallEachAndPassTheAnswerOn)
{
    fake::Desktop().GetDesktopWindow = [] { return Window(0x99); };
    fake::Desktop().GetParent = [](HWND window) { return Window(reinterpret_cast<std::uintptr_t>(window) + 1); };
    fake::Desktop().GetAncestor = [](HWND, UINT flags) { return Window(0x100 + flags); };
    fake::Desktop().GetWindow = [](HWND, UINT command) { return Window(0x200 + command); };
    fake::Desktop().GetWindowLongPtrA = [](HWND, int index) { return LONG_PTR{0x300} + index; };
    struct Row {
        std::function<void const*()> get;
        void const* expected;
        std::string call;
    };
    Row const table[] = {
        {[] { return GetDesktopHWND(); }, Window(0x99), "GetDesktopWindow()"},
        {[] { return GetParentOrOwnerHWND(kWindow); }, Window(0x11), "GetParent" + kOn + ")"},
        {[] { return GetParentNotOwnerHWND(kWindow); }, Window(0x101), "GetAncestor" + kOn + ", flags=1)"},
        {[] { return GetOwnerHWND(kWindow); }, Window(0x204), "GetWindow" + kOn + ", command=4)"},
        {[] { return GetChildHWND(kWindow); }, Window(0x205), "GetWindow" + kOn + ", command=5)"},
        {[] { return HwndToHInstance(kWindow); }, Window(0x300 - 6), "GetWindowLongPtrA" + kOn + ", index=-6)"},
    };
    for (Row const& row : table) {
        EXPECT_EQ(row.get(), row.expected) << row.call;
        EXPECT_EQ(fake::TakeCalls(), Calls{row.call});
    }
}

TEST_F(WindowCalls, DesktopListAppendsEveryWindowAndIsTrueWhateverTheEnumerationSays)
{
    ZKContainer<HWND__*> out;
    out.PushBack(Window(0x1));
    EXPECT_TRUE(GetCurrentDesktopHWNDS(out)) << "unscripted, EnumDesktopWindows fails";
    EXPECT_EQ(fake::TakeCalls(), (Calls{"GetCurrentThreadId()", "GetThreadDesktop(0)", "EnumDesktopWindows(desktop=null)"}));

    ScriptDesktop({{Window(0x20), 1}, {Window(0x21), 2}});
    EXPECT_TRUE(GetCurrentDesktopHWNDS(out));
    EXPECT_TRUE(GetCurrentDesktopHWNDS(out));
    EXPECT_EQ(Items(out), (std::vector<HWND>{Window(0x1), Window(0x20), Window(0x21), Window(0x20), Window(0x21)}));
    Calls expected(std::begin(kDesktopCalls), std::end(kDesktopCalls));
    expected.insert(expected.end(), std::begin(kDesktopCalls), std::end(kDesktopCalls));
    EXPECT_EQ(fake::TakeCalls(), expected);
}

TEST_F(WindowCalls, ChildListAppendsAndFollowsTheEnumerationsResult)
{
    for (BOOL answer : {BOOL{1}, BOOL{0}}) {
        fake::Desktop().EnumChildWindows = [answer](HWND parent, platform::WindowEnumProc callback, LPARAM data) {
            fake::ListWindows({Window(reinterpret_cast<std::uintptr_t>(parent) + 1), Window(0x30)}, callback, data);
            return answer;
        };
        ZKContainer<HWND__*> out;
        EXPECT_EQ(GetChildWindows(kWindow, out), answer != 0);
        EXPECT_EQ(Items(out), (std::vector<HWND>{Window(0x11), Window(0x30)}));
        EXPECT_EQ(fake::TakeCalls(), Calls{"EnumChildWindows" + kOn + ")"});
    }
}

TEST_F(WindowCalls, ProcessWindowsAreTheDesktopsWindowsOfThatProcessInListOrder)
{
    ScriptDesktop({{Window(0x20), 500}, {Window(0x21), 9}, {Window(0x22), 500}});
    ZKContainer<HWND__*> out;
    EXPECT_FALSE(GetProcessHWNDS(ProcessHandle{}, out));
    EXPECT_TRUE(fake::TakeCalls().empty()) << "a null handle is refused before anything is asked";

    EXPECT_TRUE(GetProcessHWNDS(kProcess, out));
    EXPECT_TRUE(GetProcessHWNDS(kProcess, out)) << "appends: a second call doubles the list";
    EXPECT_EQ(Items(out), (std::vector<HWND>{Window(0x20), Window(0x22), Window(0x20), Window(0x22)}));
    Calls calls = fake::TakeCalls();
    Calls expected(std::begin(kDesktopCalls), std::end(kDesktopCalls));
    for (char const* window : {"0x20", "0x21", "0x22"}) {
        expected.push_back("GetProcessId(0x44)");
        expected.push_back(std::string("GetWindowThreadProcessId(window=") + window + ", pid=out)");
    }
    calls.resize(expected.size());
    EXPECT_EQ(calls, expected);

    ScriptDesktop({{Window(0x20), 9}});
    EXPECT_TRUE(GetProcessHWNDS(kProcess, out)) << "no match is still a success";
    EXPECT_EQ(out.GetItemCount(), 4u);
    // A window whose process cannot be told counts as process 0, and so does
    // a handle whose identifier cannot be read.
    fake::Processes().GetProcessId = [](HANDLE) { return DWORD{0}; };
    EXPECT_TRUE(GetProcessHWNDS(kProcess, out));
    EXPECT_EQ(out.GetItemCount(), 4u);
    ScriptDesktop({{Window(0x20), 9}, {Window(0x23), 0}});
    fake::Processes().GetWindowThreadProcessId = [](HWND, DWORD*) { return DWORD{0}; };
    fake::Processes().GetProcessId = [](HANDLE) { return DWORD{0}; };
    EXPECT_TRUE(GetProcessHWNDS(kProcess, out));
    EXPECT_EQ(Items(out).back(), Window(0x23));
}

TEST_F(WindowCalls, ProcessWindowFormsOpenWithTheirWordsAndClose)
{
    ScriptDesktop({{Window(0x20), 500}, {Window(0x21), 500}, {Window(0x22), 500}});
    fake::Desktop().GetWindow = [](HWND window, UINT) { return window == Window(0x20) ? Window(0x1) : nullptr; };
    ZKContainer<HWND__*> out;
    EXPECT_FALSE(GetProcessHWNDS(42ul, out)) << "the open fails";
    EXPECT_EQ(GetProcessOwnerHWND(42ul), nullptr);
    EXPECT_EQ(fake::TakeCalls(), (Calls{"OpenProcess(access=0x410, inherit=0, pid=42)", "GetLastError()",
                                        "OpenProcess(access=0x400, inherit=0, pid=42)", "GetLastError()"}));

    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    EXPECT_TRUE(GetProcessHWNDS(42ul, out));
    EXPECT_EQ(out.GetItemCount(), 3u);
    Calls calls = fake::TakeCalls();
    EXPECT_EQ(calls.front(), "OpenProcess(access=0x410, inherit=0, pid=42)");
    EXPECT_EQ(calls.back(), "CloseHandle(handle=0x44)");

    EXPECT_EQ(GetProcessOwnerHWND(42ul), Window(0x21)) << "the first window without an owner";
    calls = fake::TakeCalls();
    EXPECT_EQ(calls.front(), "OpenProcess(access=0x400, inherit=0, pid=42)");
    EXPECT_EQ(calls[calls.size() - 3], "GetWindow(window=0x20, command=4)");
    EXPECT_EQ(calls[calls.size() - 2], "GetWindow(window=0x21, command=4)");
    EXPECT_EQ(calls.back(), "CloseHandle(handle=0x44)");

    fake::Desktop().GetWindow = [](HWND, UINT) { return Window(0x1); };
    EXPECT_EQ(GetProcessOwnerHWND(kProcess), nullptr) << "every window owned";
    ScriptDesktop({{Window(0x20), 9}});
    EXPECT_EQ(GetProcessOwnerHWND(kProcess), nullptr) << "no window of the process";
}

TEST_F(WindowCalls, NamesUseA512ByteBufferWithLimits511And512)
{
    // The system copies at most size - 1 characters and a terminator.
    auto const copy = [](HWND, char* buffer, int size) {
        std::string const text(600, 'c');
        int const length = size - 1;
        std::memcpy(buffer, text.data(), static_cast<std::size_t>(length));
        buffer[length] = '\0';
        return length;
    };
    fake::Desktop().GetClassNameA = copy;
    fake::Desktop().GetWindowTextA = copy;
    EXPECT_EQ(GetHWNDClassName(kWindow).GetSize(), 510);
    EXPECT_EQ(GetWindowTitleText(kWindow).GetSize(), 511);
    EXPECT_EQ(fake::TakeCalls(), (Calls{"GetClassNameA" + kOn + ", size=511)", "GetWindowTextA" + kOn + ", size=512)"}));

    fake::Desktop().GetWindowTextA = [](HWND, char* buffer, int) {
        std::memcpy(buffer, "Title\0rest", 10);
        return 5;
    };
    EXPECT_TRUE(GetWindowTitleText(kWindow) == "Title") << "the text ends at the first zero byte";
    fake::Desktop().GetWindowTextA = [](HWND, char* buffer, int) {
        std::memset(buffer, 'x', 512);  // no terminator at all
        return 512;
    };
    EXPECT_EQ(GetWindowTitleText(kWindow).GetSize(), 512) << "never read past the buffer";
    fake::Reset();
    EXPECT_TRUE(GetHWNDClassName(kWindow) == "") << "a failing call leaves the zeroed buffer";
    EXPECT_TRUE(GetWindowTitleText(kWindow) == "");
}

TEST_F(WindowCalls, IconComesFromTheFirstSourceThatHasOne)
{
    std::string const send = "SendMessageTimeoutA" + kOn + ", message=127, wParam=";
    std::string const tail = ", lParam=0, flags=0x0, timeout=800, result=0)";
    Calls const all = {send + "2" + tail, send + "0" + tail, send + "1" + tail,
                       "GetClassLongPtrA" + kOn + ", index=-14)", "GetClassLongPtrA" + kOn + ", index=-34)"};
    // Source k (0..4) answers 0x500 + k; none answers for k == 5.
    for (std::size_t answering = 0; answering <= all.size(); ++answering) {
        fake::Desktop().SendMessageTimeoutA = [answering](HWND, UINT, WPARAM kind, LPARAM, UINT, UINT,
                                                          ULONG_PTR* result) {
            std::size_t const source = kind == 2 ? 0 : kind == 0 ? 1 : 2;
            if (source == answering) *result = 0x500 + source;
            return LONG_PTR{1};
        };
        fake::Desktop().GetClassLongPtrA = [answering](HWND, int index) {
            std::size_t const source = index == -14 ? 3 : 4;
            return source == answering ? ULONG_PTR{0x500 + source} : ULONG_PTR{0};
        };
        HICON__* const expected =
            answering < all.size() ? reinterpret_cast<HICON__*>(0x500 + answering) : nullptr;
        EXPECT_EQ(GetWindowIcon(kWindow), expected) << answering;
        Calls const asked(all.begin(), all.begin() + static_cast<long>(std::min(answering + 1, all.size())));
        EXPECT_EQ(fake::TakeCalls(), asked);
    }
}

TEST_F(WindowCalls, ShowOperationsPassTheirCommands)
{
    struct Row {
        WindowCall call;
        BOOL iconic;
        Calls calls;
    };
    std::string const iconic = "IsIconic" + kOn + ")";
    auto const show = [](int command) { return "ShowWindow" + kOn + ", command=" + std::to_string(command) + ")"; };
    Row const table[] = {
        {HideWindow, 1, {show(0)}},
        {MinimizeWindow, 0, {show(6)}},
        {MaximizeWindow, 0, {show(3)}},
        {RestoreWindow, 0, {show(9)}},
        {static_cast<void (*)(HWND__*)>(ShowWindow), 0, {iconic, show(5)}},
        {static_cast<void (*)(HWND__*)>(ShowWindow), 1, {iconic, show(9), show(5)}},
    };
    for (Row const& row : table) {
        fake::Desktop().IsIconic = [&row](HWND) { return row.iconic; };
        row.call(kWindow);
        EXPECT_EQ(fake::TakeCalls(), row.calls);
    }
}

TEST_F(WindowCalls, StackingMovesAndTheirFailureReports)
{
    std::string const front = "SetForegroundWindow" + kOn + ")";
    std::string const iconic = "IsIconic" + kOn + ")";
    std::string const restore = "ShowWindow" + kOn + ", command=9)";
    auto const pos = [](int after, int flags) {
        return "SetWindowPos" + kOn + ", after=" + std::to_string(after) + ", x=0, y=0, cx=0, cy=0, flags=" +
               std::to_string(flags) + ")";
    };
    auto const debug = [](std::string const& text) { return "OutputDebugStringA(\"" + text + "\n\n\")"; };
    std::string const toFront = "MoveWindowToFront-SetWindowPos() failed";
    std::string const onTop = "MoveWindowAlwaysOnTop() failed";
    std::string const remove = "RemoveWindowFromAlwaysOnTop() failed";
    struct Row {
        WindowCall call;
        BOOL iconic;
        std::vector<BOOL> moved;  // SetWindowPos's answers, in turn
        Calls calls;
        std::string reported;
    };
    Row const table[] = {
        {MoveWindowToFront, 0, {1}, {front, iconic, pos(0, 3)}, ""},
        {MoveWindowToFront, 1, {1}, {front, iconic, restore, pos(0, 3)}, ""},
        {MoveWindowToFront, 0, {0}, {front, iconic, pos(0, 3), debug(toFront)}, toFront + "\n\n"},
        {MoveWindowAlwaysOnTop, 0, {1, 1}, {front, iconic, pos(0, 3), pos(-1, 67)}, ""},
        {MoveWindowAlwaysOnTop, 1, {1, 0}, {front, iconic, restore, pos(0, 3), pos(-1, 67), debug(onTop)},
         onTop + "\n\n"},
        {MoveWindowAlwaysOnTop, 0, {0, 0}, {front, iconic, pos(0, 3), debug(toFront), pos(-1, 67), debug(onTop)},
         toFront + "\n\n" + onTop + "\n\n"},
        {RemoveWindowFromAlwaysOnTop, 1, {1}, {pos(-2, 3)}, ""},
        {RemoveWindowFromAlwaysOnTop, 0, {0}, {pos(-2, 3), debug(remove)}, remove + "\n\n"},
    };
    for (Row const& row : table) {
        LogDirectory log("stacking");
        std::string const before = log.History();
        fake::Reset();
        fake::Desktop().IsIconic = [&row](HWND) { return row.iconic; };
        std::size_t turn = 0;
        fake::Desktop().SetWindowPos = [&](HWND, HWND, int, int, int, int, UINT) { return row.moved[turn++]; };
        CapturedOutput out;
        row.call(kWindow);
        EXPECT_EQ(fake::TakeCalls(), row.calls);
        EXPECT_EQ(out.Text(), row.reported) << "immediate output";
        EXPECT_EQ(log.History(), before + OnDisk(row.reported)) << "log buffer";
    }
}

TEST_F(WindowCalls, AltTabRuleOnExtendedStyleAndRootOwner)
{
    struct Row {
        LONG_PTR style;
        bool ownsItself;  // GetAncestor(GA_ROOTOWNER) is the window itself
        bool expected;
    };
    Row const table[] = {
        {0, true, true},              // unowned
        {0, false, false},            // owned
        {0x40000, false, true},       // owned, WS_EX_APPWINDOW
        {0x40000, true, true},        //
        {0x80, true, false},          // unowned tool window
        {0x40080, false, false},      // owned, both: the tool style wins
        {0x40080, true, false},       //
        {0x10000000, true, true},     // other styles play no part
        {~LONG_PTR{0x40080}, false, false},
    };
    std::string const style = "GetWindowLongPtrA" + kOn + ", index=-20)";
    std::string const root = "GetAncestor" + kOn + ", flags=3)";
    for (Row const& row : table) {
        fake::Desktop().GetWindowLongPtrA = [&row](HWND, int) { return row.style; };
        fake::Desktop().GetAncestor = [&row](HWND window, UINT) { return row.ownsItself ? window : Window(0x77); };
        EXPECT_EQ(IsAltTabWindow(kWindow), row.expected) << row.style << " " << row.ownsItself;
        Calls const expected = (row.style & 0x40000) != 0 ? Calls{style} : Calls{style, root};
        EXPECT_EQ(fake::TakeCalls(), expected);
    }
}

TEST_F(WindowCalls, StatePredicates)
{
    for (BOOL answer : {BOOL{0}, BOOL{1}, BOOL{-7}}) {
        fake::Desktop().IsIconic = [answer](HWND) { return answer; };
        fake::Desktop().IsZoomed = [answer](HWND) { return answer; };
        EXPECT_EQ(IsWindowMinimized(kWindow), answer != 0);
        EXPECT_EQ(IsWindowMaximized(kWindow), answer != 0);
        EXPECT_EQ(fake::TakeCalls(), (Calls{"IsIconic" + kOn + ")", "IsZoomed" + kOn + ")"}));
    }
    struct Row {
        platform::HRESULT result;
        std::uint32_t cloaked;
        bool expected;
    };
    Row const table[] = {{0, 0, false}, {0, 1, true}, {0, 4, true}, {static_cast<platform::HRESULT>(0x80004001u), 2, false}, {1, 2, false}};
    for (Row const& row : table) {
        fake::Desktop().DwmGetWindowAttribute = [&row](HWND, DWORD, void* value, DWORD) {
            std::memcpy(value, &row.cloaked, sizeof row.cloaked);
            return row.result;
        };
        EXPECT_EQ(IsInvisibleWin10BackgroundAppWindow(kWindow), row.expected) << row.result << " " << row.cloaked;
        EXPECT_EQ(fake::TakeCalls(), Calls{"DwmGetWindowAttribute" + kOn + ", attribute=14, value=out, size=4)"});
    }
}

TEST_F(WindowCalls, PackagedWindowIsOneOfAPackagedProcess)
{
    EXPECT_FALSE(IsWindowUniversalWindowsPlatform(nullptr));
    EXPECT_TRUE(fake::TakeCalls().empty());

    std::string const pid = "GetWindowThreadProcessId" + kOn + ", pid=out)";
    EXPECT_FALSE(IsWindowUniversalWindowsPlatform(kWindow)) << "no process: pid 0 does not open";
    EXPECT_EQ(fake::TakeCalls(), (Calls{pid, "OpenProcess(access=0x400, inherit=0, pid=0)", "GetLastError()"}));

    fake::Processes().GetWindowThreadProcessId = [](HWND, DWORD* processId) {
        *processId = 42;
        return DWORD{1};
    };
    fake::Processes().OpenProcess = [](DWORD, BOOL, DWORD) { return kHandle; };
    EXPECT_FALSE(IsWindowUniversalWindowsPlatform(kWindow)) << "no package";
    fake::Packages().GetPackageFamilyName = [](HANDLE, platform::UINT32* length, platform::WCHAR* name) {
        if (name != nullptr) name[0] = 0;
        *length = 1;
        return platform::LONG32{0};
    };
    EXPECT_TRUE(IsWindowUniversalWindowsPlatform(kWindow));
    Calls const calls = fake::TakeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "OpenProcess(access=0x400, inherit=0, pid=42)"), 2);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "CloseHandle(handle=0x44)"), 2);
    EXPECT_EQ(calls.back(), "CloseHandle(handle=0x44)");
}

TEST_F(WindowCalls, ExtendedBorderIsTheFrameBoundsRecordZeroWhenUnanswered)
{
    tagRECT const unanswered = GetExtendedWindowsBorder(kWindow);
    EXPECT_EQ((std::vector<long long>{unanswered.left, unanswered.top, unanswered.right, unanswered.bottom}),
              (std::vector<long long>{0, 0, 0, 0}));
    fake::Desktop().DwmGetWindowAttribute = [](HWND, DWORD, void* value, DWORD) {
        platform::Rect const bounds{-8, 2, 1928, 1048};
        std::memcpy(value, &bounds, sizeof bounds);
        return platform::HRESULT{0};
    };
    tagRECT const frame = GetExtendedWindowsBorder(kWindow);
    EXPECT_EQ((std::vector<long long>{frame.left, frame.top, frame.right, frame.bottom}),
              (std::vector<long long>{-8, 2, 1928, 1048}));
    std::string const call = "DwmGetWindowAttribute" + kOn + ", attribute=9, value=out, size=16)";
    EXPECT_EQ(fake::TakeCalls(), (Calls{call, call}));
}

TEST_F(WindowCalls, PositionIsTheRestoredRectangleOrAMaximizedWindowsWorkArea)
{
    std::string const placement = "GetWindowPlacement" + kOn +
                                  ", length=44, flags=0, show=0, min={0,0}, max={0,0}, normal={0,0,0,0})";
    std::string const monitor = "MonitorFromRect(rect={10,20,110,70}, flags=2)";
    std::string const info = "GetMonitorInfoA(monitor=0xa0, size=40)";
    struct Row {
        UINT show;
        bool monitorFound;
        BOOL infoAnswer;
        __ZKRect<int> expected;
        Calls calls;
    };
    __ZKRect<int> const normal(10, 20, 100, 50);
    __ZKRect<int> const work(0, 0, 1024, 738);
    Row const table[] = {
        {1, true, 1, normal, {placement}},
        {2, true, 1, normal, {placement}},  // minimized: the restored position
        {3, true, 1, work, {placement, monitor, info}},
        {3, false, 1, normal, {placement, monitor}},
        {3, true, 0, normal, {placement, monitor, info}},
    };
    for (Row const& row : table) {
        ScriptPlacement(row.show, {10, 20, 110, 70});
        fake::Desktop().MonitorFromRect = [&row](platform::Rect const*, DWORD) {
            return row.monitorFound ? reinterpret_cast<platform::HMONITOR>(0xA0) : nullptr;
        };
        fake::Desktop().GetMonitorInfoA = [&row](platform::HMONITOR, platform::MonitorInfo* monitorInfo) {
            monitorInfo->rcWork = {0, 0, 1024, 738};
            return row.infoAnswer;
        };
        EXPECT_TRUE(GetWindowPosSize(kWindow) == row.expected) << row.show;
        EXPECT_EQ(fake::TakeCalls(), row.calls);
    }
    fake::Reset();
    EXPECT_TRUE(GetWindowPosSize(kWindow) == __ZKRect<int>(0, 0, 0, 0)) << "a failed call leaves the zeroed record";
    fake::TakeCalls();

    ScriptPlacement(1, {-30, 40, 70, 10});
    int const values[] = {GetWindowPosX(kWindow), GetWindowPosY(kWindow), GetWindowWidth(kWindow), GetWindowHeight(kWindow)};
    EXPECT_EQ(std::vector<int>(std::begin(values), std::end(values)), (std::vector<int>{-30, 40, 100, -30}));
    EXPECT_EQ(fake::TakeCalls().size(), 4u) << "each getter asks once";
    ScriptPlacement(1, {-2147483647 - 1, 0, 2147483647, 0});
    EXPECT_EQ(GetWindowWidth(kWindow), -1) << "32-bit wrap-around";
}

TEST_F(WindowCalls, SettersWriteRestoredRectanglesFromTheCurrentOne)
{
    std::vector<platform::WindowPlacement> written;
    fake::Desktop().SetWindowPlacement = [&written](HWND, platform::WindowPlacement const* placement) {
        written.push_back(*placement);
        return BOOL{static_cast<int>(written.size() % 2)};  // yes, no, yes, ...
    };
    EXPECT_TRUE(SetWindowPosSize(kWindow, {5, 6, 7, 8}));
    EXPECT_EQ(fake::TakeCalls(), Calls{"SetWindowPlacement" + kOn +
                                       ", length=44, flags=0, show=0, min={0,0}, max={0,0}, normal={5,6,12,14})"});
    EXPECT_FALSE(SetWindowPosSize(kWindow, {-5, 6, 0, -8}));
    EXPECT_EQ(written.back().rcNormalPosition.bottom, -2);
    fake::TakeCalls();

    ScriptPlacement(1, {10, 20, 110, 70});
    struct Row {
        std::function<bool()> set;
        platform::Rect expected;
    };
    Row const table[] = {
        {[] { return SetWindowPosX(kWindow, 300); }, {300, 20, 400, 70}},
        {[] { return SetWindowPosY(kWindow, -40); }, {10, -40, 110, 10}},
        {[] { return SetWindowWidth(kWindow, 0); }, {10, 20, 10, 70}},
        {[] { return SetWindowHeight(kWindow, 5); }, {10, 20, 110, 25}},
    };
    for (Row const& row : table) {
        written.clear();
        EXPECT_TRUE(row.set());
        ASSERT_EQ(written.size(), 1u);
        platform::Rect const& got = written[0].rcNormalPosition;
        EXPECT_EQ((std::vector<int>{got.left, got.top, got.right, got.bottom}),
                  (std::vector<int>{row.expected.left, row.expected.top, row.expected.right, row.expected.bottom}));
        EXPECT_EQ(written[0].length, 44u);
        EXPECT_EQ(fake::TakeCalls().size(), 2u) << "one placement read, one write";
    }

    // A maximized window's setters start from its work area.
    ScriptPlacement(3, {10, 20, 110, 70});
    fake::Desktop().MonitorFromRect = [](platform::Rect const*, DWORD) { return reinterpret_cast<platform::HMONITOR>(1); };
    fake::Desktop().GetMonitorInfoA = [](platform::HMONITOR, platform::MonitorInfo* info) {
        info->rcWork = {0, 0, 1024, 738};
        return BOOL{1};
    };
    written.clear();
    SetWindowWidth(kWindow, 500);
    ASSERT_EQ(written.size(), 1u);
    EXPECT_EQ(written[0].rcNormalPosition.right, 500);
    EXPECT_EQ(written[0].rcNormalPosition.bottom, 738);
}
