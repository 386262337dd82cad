#pragma once

// ZKThreadPool: plain functions without arguments run on a fixed number of
// worker threads, all started in the constructor. One queue, one lock, one
// notification per job: AddNewJob wakes one idle worker.
//
//   * Each worker prints "Thread number: N started.\n" (N from 0) through
//     __DOUT__ as it starts, so the lines reach standard output and the
//     debugger in no fixed order.
//   * Jobs start in queue order and run outside the lock, concurrently; the
//     order of completion is not defined. They give nothing back and cannot
//     be cancelled. An exception escaping a job ends the process.
//   * The destructor stores the stop request, prints "Joining threads" and a
//     line end through __DOUT__, and joins the workers, which first drain the
//     queue: every job waiting when the destructor began still runs, and so
//     does a job that a running job adds during the drain. Other threads must
//     not call AddNewJob once the destructor has begun.
//   * A pool of size 0 accepts jobs and never runs them; its destructor drops
//     them.
//   * A job that destroys its own pool ends the process (a worker would join
//     itself).
//   * A null job is accepted; the worker that takes it ends the process when
//     it calls it.
//
// If a worker cannot be started, the constructor stops and joins the workers
// it started and passes the std::system_error on.

#include <deque>
#include <functional>
#include <queue>
#include <vector>

#include "../foundation/ZKExport.h"
#include "../foundation/ZKFlags.h"
#include "ZKAtomic.h"
#include "ZKMutex.h"
#include "ZKThread.h"

class ZK_API ZKThreadPool {
protected:
    unsigned long long flagsData;  // free for the caller; the pool never reads it
    ZKMutex mutex;                 // guards jobs and stopping
    ZKConditionVariable condition; // wakes idle workers
    __ZKAtomic<bool> stopping;     // set by the destructor
    std::queue<std::function<void()>, std::deque<std::function<void()>>> jobs;
    std::vector<ZKThread> threads; // the workers, by number; never reallocated

public:
    ZK_FLAGS_MEMBERS

    // Eight workers.
    ZKThreadPool();
    explicit ZKThreadPool(unsigned int threadCount);
    ZKThreadPool(ZKThreadPool const&) = delete;
    ZKThreadPool& operator=(ZKThreadPool const&) = delete;
    virtual ~ZKThreadPool();

    void AddNewJob(void (*job)(void));
};
