#pragma once

#include <csignal>
#include <initializer_list>

namespace thread {

/// Lets a thread that is started while it lives take no signal of the process: a thread inherits what is blocked where
/// it is started. So a signal that an application blocks everywhere else and waits for reaches it, and no handler of
/// the application's runs on a thread of ours. What a thread's own instructions raise is not blocked. The signals that
/// the calling thread had blocked before are those that it has blocked afterwards.
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
