#pragma once

#include <coroutine>
#include <exception>

/// A coroutine that nobody waits for; it begins at once. An exception that leaves it ends the process.
struct Job
{
    struct promise_type
    {
        Job get_return_object() { return {}; }
        std::suspend_never initial_suspend() { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() { std::terminate(); }
    };
};
