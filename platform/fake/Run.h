#pragma once

#include "Fake.h"

// The fake operations' shared step: a scripted operation's answer, or
// `failure` when the test left it unset or armed a fault for this call.

namespace zk64::platform::fake {

template <class Result, class Script, class... Args>
Result Run(Script const& script, Result failure, Args... args)
{
    if (FaultHere()) return failure;
    return script ? script(args...) : failure;
}

}  // namespace zk64::platform::fake
