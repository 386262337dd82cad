#include "../ThreadSlot.h"

#include <windows.h>

#include <atomic>
#include <mutex>

namespace zk64::platform {
namespace {

ThreadSlotRetire gRetire = nullptr;
std::atomic<DWORD> gTlsIndex{TLS_OUT_OF_INDEXES};
DWORD gFlsIndex = FLS_OUT_OF_INDEXES;
std::once_flag gIndexesOnce;

void WINAPI RetireValue(void* value)
{
    if (value != nullptr) gRetire(value);
}

}  // namespace

void* GetThreadSlot()
{
    DWORD const index = gTlsIndex.load(std::memory_order_acquire);
    if (index == TLS_OUT_OF_INDEXES) return nullptr;
    // TlsGetValue clears the last error on success; a string made between a
    // failing call and the caller's look at its error must not lose it.
    DWORD const lastError = GetLastError();
    void* const value = TlsGetValue(index);
    SetLastError(lastError);
    return value;
}

void SetThreadSlot(void* value, ThreadSlotRetire retire)
{
    std::call_once(gIndexesOnce, [retire] {
        gRetire = retire;
        gFlsIndex = FlsAlloc(RetireValue);
        gTlsIndex.store(TlsAlloc(), std::memory_order_release);
    });
    DWORD const lastError = GetLastError();
    TlsSetValue(gTlsIndex.load(std::memory_order_relaxed), value);
    FlsSetValue(gFlsIndex, value);
    SetLastError(lastError);
}

void ReleaseThreadSlots();

// Called when the DLL is unloaded while the process goes on: the slots'
// callback lives in the DLL, so the slots go first (retiring every thread's
// value).
void ReleaseThreadSlots()
{
    if (gFlsIndex != FLS_OUT_OF_INDEXES) FlsFree(gFlsIndex);
    DWORD const index = gTlsIndex.exchange(TLS_OUT_OF_INDEXES);
    if (index != TLS_OUT_OF_INDEXES) TlsFree(index);
    gFlsIndex = FLS_OUT_OF_INDEXES;
}

}  // namespace zk64::platform
