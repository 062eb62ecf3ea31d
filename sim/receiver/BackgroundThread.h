#pragma once

#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

namespace arcsim {

/// A thread of the simulator. It blocks all signals except those that its own instructions cause: the others belong to
/// the program's threads, which may be waiting for them. Throws std::system_error when no further thread can be
/// started.
template <typename Body>
std::thread backgroundThread(Body body)
{
    sigset_t blocked;
    sigset_t before;
    sigfillset(&blocked);
    for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT})
        sigdelset(&blocked, own);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);  // a new thread inherits the mask of its creator
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
