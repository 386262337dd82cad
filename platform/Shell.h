#pragma once

// Component-object operations of the platform layer: initialising the
// component system on the calling thread, creating an object by class and
// interface identifier, and dropping a reference. See System.h for what the
// backends promise. Linux has no component system: CoInitialize answers
// E_NOTIMPL, CoCreateInstance REGDB_E_CLASSNOTREG with a null object, and
// the other two do nothing.

#include <cstdint>

#include "PlatformTypes.h"

namespace zk64::platform {


// GUID, field for field (16 bytes).
struct Guid {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
static_assert(sizeof(Guid) == 16);

constexpr HRESULT kSOk = 0;
constexpr HRESULT kSFalse = 1;  // already initialised on this thread
constexpr HRESULT kENotImpl = static_cast<HRESULT>(0x80004001u);
constexpr HRESULT kRegdbEClassNotReg = static_cast<HRESULT>(0x80040154u);
// CLSCTX_ALL: in-process server and handler, local and remote server.
constexpr DWORD kClsctxAll = 23;

HRESULT CoInitialize(void* reserved);
void CoUninitialize();
// On failure *object is null.
HRESULT CoCreateInstance(Guid const& classId, void* outer, DWORD context, Guid const& interfaceId, void** object);
// IUnknown::Release of `object`; returns the references left.
ULONG ReleaseComObject(void* object);

}  // namespace zk64::platform
