#include "ZKThreadPool.h"

#include <sstream>
#include <utility>

#include "../diagnostics/ZKDebug.h"
#include "detail/PoolWorker.h"

namespace zk64::detail {

void PoolWorker(std::function<bool()> /*keepRunning*/, __ZKAtomic<bool>* stopping, ZKMutex* mutex,
                ZKConditionVariable* condition, JobQueue* jobs, unsigned int number)
{
    if (stopping == nullptr || mutex == nullptr || condition == nullptr || jobs == nullptr) return;
    __DOUT__("Thread number: %d started.\n", static_cast<int>(number));
    for (;;) {
        std::function<void()> job;
        {
            __zkLockGuard guard(*mutex);
            while (!stopping->Load() && jobs->empty()) condition->Wait(*mutex);
            if (stopping->Load() && jobs->empty()) return;
            job = std::move(jobs->front());
            jobs->pop();
        }
        job();
    }
}

}  // namespace zk64::detail

namespace {

// Tells every worker to end once the queue is empty.
void SignalStop(ZKMutex& mutex, ZKConditionVariable& condition, __ZKAtomic<bool>& stopping)
{
    __zkLockGuard guard(mutex);
    stopping.Store(true);
    condition.NotifyAll();
}

}  // namespace

ZKThreadPool::ZKThreadPool() : ZKThreadPool(8) {}

ZKThreadPool::ZKThreadPool(unsigned int threadCount) : flagsData(0), stopping(false)
{
    // Room for every worker up front: a running ZKThread must never move.
    threads.reserve(threadCount);
    try {
        for (unsigned int number = 0; number < threadCount; ++number) {
            threads.emplace_back(std::function<void(std::function<bool()>)>(
                std::bind(&zk64::detail::PoolWorker, std::placeholders::_1, &stopping, &mutex, &condition, &jobs,
                          number)));
        }
    } catch (...) {
        // The workers wait for the stop request, not for their stop function:
        // without this their ZKThread destructors would wait for ever.
        SignalStop(mutex, condition, stopping);
        for (ZKThread& worker : threads) worker.JoinThread();
        throw;
    }
}

ZKThreadPool::~ZKThreadPool()
{
    SignalStop(mutex, condition, stopping);
    std::stringstream line;
    line << "Joining threads" << std::endl;
    __DOUT__(line);
    for (ZKThread& worker : threads) worker.JoinThread();
}

void ZKThreadPool::AddNewJob(void (*job)(void))
{
    __zkLockGuard guard(mutex);
    jobs.emplace(job);  // a function pointer fits inside std::function: no allocation
    condition.NotifyOne();
}
