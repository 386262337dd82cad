#pragma once

// What the fake-backend desktop tests share.

#include <gtest/gtest.h>

#include <zk64/zk64.h>

#include "desktop/detail/ShellState.h"
#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;
namespace platform = zk64::platform;
using Calls = fake::Calls;

// A test with a fresh fake and shell objects as at load.
class FakeDesktopTest : public ::testing::Test {
protected:
    void SetUp() override { Clear(); }
    void TearDown() override { Clear(); }

private:
    static void Clear()
    {
        fake::Reset();
        zk64::detail::ResetShellInterfaces();
    }
};
