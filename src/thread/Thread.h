#pragma once

#include "SignalsBlocked.h"

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <pthread.h>
#include <thread>
#include <utility>

namespace thread {

/// A std::thread whose name the system shows (ps -L, top -H, debuggers).
///
/// It takes no signal of the process, see SignalsBlocked. Otherwise it behaves as std::thread: there is no automatic
/// join, and destroying or overwriting an object that still holds a joinable thread ends the process.
///
/// The name is "<name> : <native handle>", cut to 14 characters: field tools look for those, so both the cut and the
/// handle's digits are kept. A name that the system refuses is ignored.
class Thread : public std::thread
{
public:
    /// Holds no thread.
    Thread() { formatName("Not a thread", 0); }

    /// Starts a thread that runs f(args...) and names it.
    template <typename Callable, typename... Args>
    Thread(const char* name, Callable&& f, Args&&... args)
        : std::thread(started(std::forward<Callable>(f), std::forward<Args>(args)...))
    {
        formatName(name, native_handle());
        applyName();
    }

    /// Takes over the other object's thread. The new name is made of the other's name and the handle held here before.
    Thread& operator=(Thread&& other) noexcept
    {
        formatName(other.threadName, native_handle());
        std::thread::operator=(std::move(other));
        applyName();
        return *this;
    }

    virtual ~Thread() = default;

private:
    template <typename Callable, typename... Args>
    static std::thread started(Callable&& f, Args&&... args)
    {
        const SignalsBlocked inherited;
        return std::thread(std::forward<Callable>(f), std::forward<Args>(args)...);
    }

    static constexpr std::size_t kKept = 14;  // one less than the system takes: published

    void formatName(const char* name, std::thread::native_handle_type handle)
    {
        char whole[64] = {};  // room for 14 characters of a name and any handle
        std::snprintf(whole, sizeof whole, "%.14s : %lu", name, static_cast<unsigned long>(handle));
        std::memcpy(threadName, whole, kKept);  // the bytes behind stay zero
    }

    void applyName()
    {
        if (joinable())  // without a thread the handle is null, and the system call would dereference it
            pthread_setname_np(native_handle(), threadName);
    }

    char threadName[16] = {};
};

}  // namespace thread
