#pragma once

#include <new>
#include <utility>

// The executable's own operator new: a test decides how many allocations of a thread succeed.
namespace memory {

/// From now on `count` allocations of the calling thread succeed, and all after them fail.
void leave(int count);
/// All succeed again.
void leaveAll();

/// Runs `action` with no memory at all, then with memory for one allocation, for two, and so on until it succeeds;
/// after each bad_alloc `afterFailure`. Answers how often it failed.
template <typename Action, typename Check>
int failEveryAllocation(Action action, Check afterFailure)
{
    for (int count = 0;; ++count) {
        leave(count);
        try {
            action();
            leaveAll();
            return count;
        } catch (const std::bad_alloc&) {
            leaveAll();
        }
        afterFailure();
    }
}

}  // namespace memory
