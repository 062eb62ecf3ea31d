#pragma once

#include <csignal>
#include <thread>
#include <utility>

namespace arcsim {

/// A thread of the simulator's own. It takes none of the process's signals: those are for the threads of the program,
/// which may be waiting for just that.
template <typename Body>
std::thread backgroundThread(Body body)
{
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);  // a new thread has the mask of the one that starts it
    struct Restore
    {
        const sigset_t& mask;
        ~Restore() { pthread_sigmask(SIG_SETMASK, &mask, nullptr); }
    } const restore{before};
    return std::thread(std::move(body));
}

}  // namespace arcsim
