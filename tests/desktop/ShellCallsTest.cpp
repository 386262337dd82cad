// The shell objects' lifetime: the component system's initialisation, the
// creations and the releases, through the fake backend.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "FakeDesktop.h"

namespace {

// The three objects, the calls that create them, and the object the fake
// hands out for each.
struct Kind {
    void* (*get)();
    void (*release)();
    char const* classId;
    char const* interfaceId;
    std::uintptr_t object;
};

std::array<Kind, 3> const kKinds = {{
    {[]() -> void* { return GetTaskbarInterface(); }, ReleaseTaskbarInterface,
     "{56FDF344-FD6D-11D0-958A-006097C9A090}", "{56FDF342-FD6D-11D0-958A-006097C9A090}",
     0x1100},
    {[]() -> void* { return GetCustomJumpListInterface(); }, ReleaseCustomJumpListInterface,
     "{77F10CF0-3DB5-4966-B520-B7C54FD35ED6}", "{6332DEBF-87B5-4670-90C0-5E57B408A49E}",
     0x2200},
    {[]() -> void* { return GetUserNotificationInterface(); }, ReleaseUserNotificationInterface,
     "{0010890E-8789-413C-ADBC-48F5B511B3AF}", "{BA9711BA-5893-4787-A7E1-41277151550B}",
     0x3300},
}};

std::string Created(Kind const& kind)
{
    return std::string("CoCreateInstance(class=") + kind.classId + ", outer=null, context=23, interface=" +
           kind.interfaceId + ", object=out)";
}
void* Object(Kind const& kind) { return reinterpret_cast<void*>(kind.object); }
std::string Released(Kind const& kind) { return "ReleaseComObject(" + fake::Pointer(Object(kind)) + ")"; }

class ShellInterfaces : public FakeDesktopTest {
protected:
    // CoInitialize answers `initResult`; a creation succeeds while
    // `creationWorks`, handing out the kind's object.
    void Script(platform::HRESULT initResult)
    {
        fake::Shell().CoInitialize = [=](void*) { return initResult; };
        fake::Shell().CoCreateInstance = [this](platform::Guid const& classId, platform::Guid const&, void** object) {
            if (!creationWorks) return platform::kRegdbEClassNotReg;
            for (Kind const& kind : kKinds)
                if (fake::GuidText(classId) == kind.classId) *object = Object(kind);
            return platform::kSOk;
        };
    }
    bool creationWorks = true;
};

TEST_F(ShellInterfaces, EachGetCreatesOnceAndSharesItsObject)
{
    Script(platform::kSOk);
    for (Kind const& kind : kKinds) {
        SCOPED_TRACE(kind.classId);
        EXPECT_EQ(kind.get(), Object(kind));
        EXPECT_EQ(kind.get(), Object(kind));
        Calls expected{Created(kind)};
        if (&kind == &kKinds.front()) expected.insert(expected.begin(), "CoInitialize(null)");
        EXPECT_EQ(fake::TakeCalls(), expected) << "one creation; the first Get of all initialises";
    }
    for (Kind const& kind : kKinds) kind.release();
    EXPECT_EQ(fake::TakeCalls(),
              (Calls{Released(kKinds[0]), Released(kKinds[1]), Released(kKinds[2]), "CoUninitialize()"}));
}

TEST_F(ShellInterfaces, TheLastReleaseInAnyOrderUninitialisesOnce)
{
    std::array<int, 3> order = {0, 1, 2};
    do {
        SCOPED_TRACE(testing::Message() << order[0] << order[1] << order[2]);
        zk64::detail::ResetShellInterfaces();
        Script(platform::kSOk);
        for (Kind const& kind : kKinds) kind.get();
        fake::TakeCalls();
        Calls expected;
        for (int index : order) {
            kKinds[index].release();
            expected.push_back(Released(kKinds[index]));
        }
        expected.push_back("CoUninitialize()");
        EXPECT_EQ(fake::TakeCalls(), expected);
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(ShellInterfaces, ReleasingAgainUninitialisesAgainWithoutANewInitialisation)
{
    Script(platform::kSOk);
    Kind const& taskbar = kKinds[0];
    Kind const& jumpList = kKinds[1];
    taskbar.get();
    taskbar.release();
    fake::TakeCalls();
    taskbar.release();
    jumpList.release();
    EXPECT_EQ(fake::TakeCalls(), Calls{}) << "nothing held: a Release returns at once";
    EXPECT_EQ(jumpList.get(), Object(jumpList));
    taskbar.get();
    jumpList.release();
    taskbar.release();
    EXPECT_EQ(fake::TakeCalls(), (Calls{Created(jumpList), Created(taskbar), Released(jumpList), Released(taskbar),
                                        "CoUninitialize()"}));
}

TEST_F(ShellInterfaces, AnInitialisationNotOursIsNeverUndoneByARelease)
{
    // S_FALSE: the thread had the component system already; its count is
    // given back at once. Any other failure still lets the creation run.
    for (platform::HRESULT initResult : {platform::kSFalse, static_cast<platform::HRESULT>(0x80010106u), 2}) {
        SCOPED_TRACE(initResult);
        zk64::detail::ResetShellInterfaces();
        Script(initResult);
        for (Kind const& kind : kKinds) EXPECT_EQ(kind.get(), Object(kind));
        for (Kind const& kind : kKinds) kind.release();
        Calls expected{"CoInitialize(null)"};
        if (initResult == platform::kSFalse) expected.push_back("CoUninitialize()");
        for (Kind const& kind : kKinds) expected.push_back(Created(kind));
        for (Kind const& kind : kKinds) expected.push_back(Released(kind));
        EXPECT_EQ(fake::TakeCalls(), expected);
    }
}

TEST_F(ShellInterfaces, AFailedCreationIsTriedAgainWithoutInitialising)
{
    Script(platform::kSOk);
    creationWorks = false;
    Kind const& notification = kKinds[2];
    EXPECT_EQ(notification.get(), nullptr);
    EXPECT_EQ(notification.get(), nullptr);
    notification.release();
    EXPECT_EQ(fake::TakeCalls(), (Calls{"CoInitialize(null)", Created(notification), Created(notification)}));
    creationWorks = true;
    EXPECT_EQ(notification.get(), Object(notification));
    notification.release();
    EXPECT_EQ(fake::TakeCalls(), (Calls{Created(notification), Released(notification), "CoUninitialize()"}));
}

TEST_F(ShellInterfaces, UnscriptedPlatformGivesNullAndNoUninitialisation)
{
    for (Kind const& kind : kKinds) {
        EXPECT_EQ(kind.get(), nullptr);
        kind.release();
    }
    EXPECT_EQ(fake::TakeCalls(), (Calls{"CoInitialize(null)", Created(kKinds[0]), Created(kKinds[1]), Created(kKinds[2])}));
}

}  // namespace
