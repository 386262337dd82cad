#pragma once

// Bounded waits for thread tests. Tests synchronise through these, never
// through sleeps: a wait that is expected to succeed gives up after kBound
// and fails the test instead of hanging.

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

inline constexpr std::chrono::seconds kBound{10};

// A counter that threads raise and others wait on.
class Signal {
public:
    void Add(int count = 1)
    {
        {
            std::lock_guard<std::mutex> guard(lock);
            value += count;
        }
        changed.notify_all();
    }
    void Open() { Add(); }
    int Get() const
    {
        std::lock_guard<std::mutex> guard(lock);
        return value;
    }
    // True once the counter reached `target`; false after `bound`.
    template <class Duration = std::chrono::seconds>
    bool WaitFor(int target, Duration bound = kBound) const
    {
        std::unique_lock<std::mutex> guard(lock);
        return changed.wait_for(guard, bound, [&] { return value >= target; });
    }
    bool Wait() const { return WaitFor(1); }

private:
    mutable std::mutex lock;
    mutable std::condition_variable changed;
    int value = 0;
};

// Polls `condition` (cheap and lock-free for the caller) until it holds or
// kBound passes.
template <class Condition>
bool Eventually(Condition condition)
{
    auto const deadline = std::chrono::steady_clock::now() + kBound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::yield();
    }
    return true;
}
