#pragma once

#include <csignal>
#include <initializer_list>

namespace thread {

/// While this object lives, threads started by the calling thread block all signals of the process: a thread inherits
/// the mask of its starter. So an application can block a signal in its own threads and wait for it, and none of its
/// handlers runs on a thread of the library. Signals raised by a thread's own instructions are not blocked. Destruction
/// restores the calling thread's mask.
class SignalsBlocked
{
public:
    SignalsBlocked()
    {
        sigset_t signals;
        ::sigfillset(&signals);
        for (const int synchronous : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGSYS, SIGTRAP})
            ::sigdelset(&signals, synchronous);
        ::pthread_sigmask(SIG_BLOCK, &signals, &m_before);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

private:
    sigset_t m_before{};
};

}  // namespace thread
