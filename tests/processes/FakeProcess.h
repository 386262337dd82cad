#pragma once

// What the fake-backend process tests share: the names they use and the
// one process handle the fake hands out.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include <zk64/zk64.h>

#include "platform/fake/Fake.h"

namespace fake = zk64::platform::fake;
namespace platform = zk64::platform;
using platform::BOOL;
using platform::DWORD;
using platform::HANDLE;
using platform::ULONGLONG;
using Calls = fake::Calls;

inline HANDLE const kHandle = reinterpret_cast<HANDLE>(0x44);
inline ProcessHandle const kProcess{kHandle};

// The recorded call that opens process `pid` with the system rights `access`.
inline std::string OpenCall(DWORD access, unsigned pid)
{
    return "OpenProcess(access=" + fake::Hex(access) + ", inherit=0, pid=" + std::to_string(pid) + ")";
}

// Scripts the executable path of every process.
inline void ScriptExePath(std::string const& path)
{
    fake::Processes().K32GetModuleFileNameExA = [path](HANDLE, HINSTANCE__*, char* buffer, DWORD) {
        std::memcpy(buffer, path.c_str(), path.size() + 1);
        return static_cast<DWORD>(path.size());
    };
}

// A test with a fresh fake: no script, no recorded call.
class FakeTest : public ::testing::Test {
protected:
    void SetUp() override { fake::Reset(); }
    void TearDown() override { fake::Reset(); }
};
