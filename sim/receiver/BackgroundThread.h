#pragma once

#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

namespace arcsim {

/// A thread of the simulator's own. It takes none of the process's signals but those that its own instructions cause:
/// the others are for the threads of the program, which may be waiting for just that. Throws std::system_error when
/// there can be no further thread.
template <typename Body>
std::thread backgroundThread(Body body)
{
    sigset_t blocked;
    sigset_t before;
    sigfillset(&blocked);
    for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
        sigdelset(&blocked, own);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);  // a new thread has the mask of the one that starts it
    struct Restore
    {
        const sigset_t& mask;
        ~Restore() { pthread_sigmask(SIG_SETMASK, &mask, nullptr); }
    } const restore{before};
    try {
        return std::thread(std::move(body));
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), "cannot start a thread");
    }
}

}  // namespace arcsim
