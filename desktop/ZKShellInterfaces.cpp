#include "ZKShellInterfaces.h"

#include "../platform/Shell.h"
#include "detail/ShellState.h"

namespace platform = zk64::platform;

namespace {

// Process-wide, unsynchronised (see the header).
ITaskbarList* taskbarInterface = nullptr;
ICustomDestinationList* customJumpListInterface = nullptr;
IUserNotification* userNotificationInterface = nullptr;
bool comInitAttempted = false;  // CoInitialize has been called once
bool comInitOwned = false;      // and that call is ours to undo

struct ShellClass {
    platform::Guid classId;
    platform::Guid interfaceId;
};

constexpr ShellClass kTaskbarList = {
    {0x56FDF344, 0xFD6D, 0x11D0, {0x95, 0x8A, 0x00, 0x60, 0x97, 0xC9, 0xA0, 0x90}},  // CLSID_TaskbarList
    {0x56FDF342, 0xFD6D, 0x11D0, {0x95, 0x8A, 0x00, 0x60, 0x97, 0xC9, 0xA0, 0x90}},  // IID_ITaskbarList
};
constexpr ShellClass kDestinationList = {
    {0x77F10CF0, 0x3DB5, 0x4966, {0xB5, 0x20, 0xB7, 0xC5, 0x4F, 0xD3, 0x5E, 0xD6}},  // CLSID_DestinationList
    {0x6332DEBF, 0x87B5, 0x4670, {0x90, 0xC0, 0x5E, 0x57, 0xB4, 0x08, 0xA4, 0x9E}},  // IID_ICustomDestinationList
};
constexpr ShellClass kUserNotification = {
    {0x0010890E, 0x8789, 0x413C, {0xAD, 0xBC, 0x48, 0xF5, 0xB5, 0x11, 0xB3, 0xAF}},  // CLSID_UserNotification
    {0xBA9711BA, 0x5893, 0x4787, {0xA7, 0xE1, 0x41, 0x27, 0x71, 0x51, 0x55, 0x0B}},  // IID_IUserNotification
};

// The first request of the process initialises the component system on its
// thread. S_FALSE means the thread had it already: that count is undone at
// once and the thread's owner keeps it. Any failure is left to the
// creation that follows.
void InitialiseOnce()
{
    if (comInitAttempted) return;
    comInitAttempted = true;
    platform::HRESULT const result = platform::CoInitialize(nullptr);
    if (result == platform::kSFalse)
        platform::CoUninitialize();
    else if (result == platform::kSOk)
        comInitOwned = true;
}

template <class Interface>
Interface* GetShellObject(Interface*& cached, ShellClass const& shellClass)
{
    if (cached != nullptr) return cached;
    InitialiseOnce();
    void* object = nullptr;
    platform::CoCreateInstance(shellClass.classId, nullptr, platform::kClsctxAll, shellClass.interfaceId, &object);
    cached = static_cast<Interface*>(object);
    return cached;
}

template <class Interface>
void ReleaseShellObject(Interface*& cached)
{
    if (cached == nullptr) return;
    platform::ReleaseComObject(cached);
    cached = nullptr;
    bool const noneLeft =
        taskbarInterface == nullptr && customJumpListInterface == nullptr && userNotificationInterface == nullptr;
    if (noneLeft && comInitOwned) platform::CoUninitialize();
}

}  // namespace

void zk64::detail::ResetShellInterfaces()
{
    taskbarInterface = nullptr;
    customJumpListInterface = nullptr;
    userNotificationInterface = nullptr;
    comInitAttempted = false;
    comInitOwned = false;
}

ITaskbarList* GetTaskbarInterface() { return GetShellObject(taskbarInterface, kTaskbarList); }
ICustomDestinationList* GetCustomJumpListInterface()
{
    return GetShellObject(customJumpListInterface, kDestinationList);
}
IUserNotification* GetUserNotificationInterface()
{
    return GetShellObject(userNotificationInterface, kUserNotification);
}

void ReleaseTaskbarInterface() { ReleaseShellObject(taskbarInterface); }
void ReleaseCustomJumpListInterface() { ReleaseShellObject(customJumpListInterface); }
void ReleaseUserNotificationInterface() { ReleaseShellObject(userNotificationInterface); }
