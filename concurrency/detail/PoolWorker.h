#pragma once

// The body of every ZKThreadPool worker.

#include <deque>
#include <functional>
#include <queue>

#include "../ZKAtomic.h"
#include "../ZKMutex.h"

namespace zk64::detail {

using JobQueue = std::queue<std::function<void()>, std::deque<std::function<void()>>>;

// Returns at once if a pointer is null. Otherwise prints its start line, then
// takes jobs from the front of the queue, each outside the lock, until
// `stopping` is set and the queue is empty. Waits on `condition` only while
// the queue is empty and `stopping` is clear. `keepRunning` is the ZKThread
// stop function; the worker never calls it.
void PoolWorker(std::function<bool()> keepRunning, __ZKAtomic<bool>* stopping, ZKMutex* mutex,
                ZKConditionVariable* condition, JobQueue* jobs, unsigned int number);

}  // namespace zk64::detail
