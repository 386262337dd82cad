#pragma once

#include <chrono>
#include <thread>

// Polls `condition` until it holds or ten seconds pass, so that a wait
// expected to succeed fails the test instead of hanging it.
template <class Condition>
bool Eventually(Condition condition)
{
    for (auto const deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10); !condition();
         std::this_thread::yield())
        if (std::chrono::steady_clock::now() > deadline) return false;
    return true;
}
