// The shell objects' lifetime through the fake backend: the component
// system's initialisation, the creations and the releases.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "FakeDesktop.h"

namespace {

struct Kind {
    void* (*get)();
    void (*release)();
    char const* classId;
    char const* interfaceId;
    void* object;  // what the fake creates
};

std::array<Kind, 3> const kKinds = {{
    {[]() -> void* { return GetTaskbarInterface(); }, ReleaseTaskbarInterface,
     "{56FDF344-FD6D-11D0-958A-006097C9A090}", "{56FDF342-FD6D-11D0-958A-006097C9A090}",
     reinterpret_cast<void*>(0x1100)},
    {[]() -> void* { return GetCustomJumpListInterface(); }, ReleaseCustomJumpListInterface,
     "{77F10CF0-3DB5-4966-B520-B7C54FD35ED6}", "{6332DEBF-87B5-4670-90C0-5E57B408A49E}",
     reinterpret_cast<void*>(0x2200)},
    {[]() -> void* { return GetUserNotificationInterface(); }, ReleaseUserNotificationInterface,
     "{0010890E-8789-413C-ADBC-48F5B511B3AF}", "{BA9711BA-5893-4787-A7E1-41277151550B}",
     reinterpret_cast<void*>(0x3300)},
}};
Kind const& kTaskbar = kKinds[0];
Kind const& kJumpList = kKinds[1];
Kind const& kNotification = kKinds[2];

std::string Created(Kind const& kind)
{
    std::string call = "CoCreateInstance(class=";
    return call.append(kind.classId).append(", outer=null, context=23, interface=").append(kind.interfaceId) +
           ", object=out)";
}
std::string Released(Kind const& kind) { return "ReleaseComObject(" + fake::Pointer(kind.object) + ")"; }

class ShellInterfaces : public FakeDesktopTest {
protected:
    // CoInitialize answers `initResult`; creations succeed while
    // `creationWorks`.
    void Script(platform::HRESULT initResult)
    {
        zk64::detail::ResetShellInterfaces();
        fake::Shell().CoInitialize = [=](void*) { return initResult; };
        fake::Shell().CoCreateInstance = [this](platform::Guid const& classId, platform::Guid const&, void** object) {
            for (Kind const& kind : kKinds)
                if (creationWorks && fake::GuidText(classId) == kind.classId) *object = kind.object;
            return creationWorks ? platform::kSOk : platform::kRegdbEClassNotReg;
        };
    }
    bool creationWorks = true;
};

TEST_F(ShellInterfaces, GetsCreateOnceAndTheLastReleaseInAnyOrderUninitialises)
{
    std::array<int, 3> order = {0, 1, 2};
    do {
        SCOPED_TRACE(testing::Message() << order[0] << order[1] << order[2]);
        Script(platform::kSOk);
        for (int pass = 0; pass < 2; ++pass)
            for (Kind const& kind : kKinds) EXPECT_EQ(kind.get(), kind.object);
        Calls expected = {"CoInitialize(null)", Created(kTaskbar), Created(kJumpList), Created(kNotification)};
        for (int index : order) {
            kKinds[index].release();
            expected.push_back(Released(kKinds[index]));
        }
        expected.push_back("CoUninitialize()");
        EXPECT_EQ(fake::TakeCalls(), expected);
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST_F(ShellInterfaces, AnInitialisationNotOursIsNeverUndoneByARelease)
{
    // S_FALSE: the thread had the component system already; its count is
    // given back at once. A failure still lets the creation run.
    for (platform::HRESULT initResult : {platform::kSFalse, static_cast<platform::HRESULT>(0x80010106u), platform::HRESULT{2}}) {
        SCOPED_TRACE(initResult);
        Script(initResult);
        for (Kind const& kind : kKinds) EXPECT_EQ(kind.get(), kind.object);
        for (Kind const& kind : kKinds) kind.release();
        Calls expected{"CoInitialize(null)"};
        if (initResult == platform::kSFalse) expected.push_back("CoUninitialize()");
        for (Kind const& kind : kKinds) expected.push_back(Created(kind));
        for (Kind const& kind : kKinds) expected.push_back(Released(kind));
        EXPECT_EQ(fake::TakeCalls(), expected);
    }
}

TEST_F(ShellInterfaces, FailedCreationsAndRepeatedReleases)
{
    Script(platform::kSOk);
    creationWorks = false;
    EXPECT_EQ(kNotification.get(), nullptr);
    EXPECT_EQ(kNotification.get(), nullptr);
    kNotification.release();
    EXPECT_EQ(fake::TakeCalls(), (Calls{"CoInitialize(null)", Created(kNotification), Created(kNotification)}))
        << "tried again without a new initialisation; nothing held, nothing released";
    creationWorks = true;
    EXPECT_EQ(kNotification.get(), kNotification.object);
    kTaskbar.get();
    kNotification.release();
    kTaskbar.release();
    kTaskbar.release();
    kJumpList.release();
    EXPECT_EQ(kJumpList.get(), kJumpList.object);
    kJumpList.release();
    EXPECT_EQ(fake::TakeCalls(), (Calls{Created(kNotification), Created(kTaskbar), Released(kNotification),
                                        Released(kTaskbar), "CoUninitialize()", Created(kJumpList),
                                        Released(kJumpList), "CoUninitialize()"}))
        << "each time the last object goes, the initialisation is undone again";
}

}  // namespace
