#include "../ThreadSlot.h"

#include <pthread.h>

#include <mutex>

namespace zk64::platform {
namespace {

constinit thread_local void* tValue = nullptr;
ThreadSlotRetire gRetire = nullptr;
pthread_key_t gKey;
std::once_flag gKeyOnce;

void RetireValue(void* value) { gRetire(value); }

}  // namespace

void* GetThreadSlot() { return tValue; }

void SetThreadSlot(void* value, ThreadSlotRetire retire)
{
    std::call_once(gKeyOnce, [retire] {
        gRetire = retire;
        pthread_key_create(&gKey, RetireValue);
    });
    tValue = value;
    pthread_setspecific(gKey, value);
}

}  // namespace zk64::platform
