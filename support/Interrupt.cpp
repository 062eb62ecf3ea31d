#include "support/Interrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace support {
namespace {

// A signal handler may use only these: lock-free atomics and a pipe.
std::atomic<bool> g_requested{false};
std::atomic<bool> g_isAskedFor{false};  ///< by a signal other than SIGHUP
std::atomic<void (*)()> g_beforeLeaving{nullptr};
int g_pipe[2] = {-1, -1};
constexpr int kInterrupted = 130;  // the exit code that shells use
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<void (*)()>::is_always_lock_free);

extern "C" void onSignal(int number)
{
    // A hang-up comes along with other signals that mean the same: from a terminal that closes, then from the shell
    // that ends because of it, or before or after a service manager's SIGTERM.
    if (number != SIGHUP && g_isAskedFor.exchange(true)) {
        if (void (*const action)() = g_beforeLeaving)
            action();
        _exit(kInterrupted);
    }
    if (g_requested.exchange(true))
        return;
    const int error = errno;
    [[maybe_unused]] const ssize_t written = ::write(g_pipe[1], "!", 1);
    errno = error;
}

constexpr int kEnding[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

sigset_t signalsToStop()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : kEnding)
        sigaddset(&signals, signal);
    return signals;
}

/// As nohup sets it.
bool isIgnored(int signal)
{
    struct sigaction present = {};
    return ::sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

}  // namespace

Interrupt::Interrupt()
{
    if (::pipe2(g_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    const sigset_t signals = signalsToStop();
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;  // output is not cut; poll() is ended by the pipe
    sigemptyset(&action.sa_mask);
    for (const int signal : kEnding)
        if (signal != SIGHUP || !isIgnored(signal))
            ::sigaction(signal, &action, nullptr);
}

void Interrupt::allow()
{
    const sigset_t signals = signalsToStop();
    ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

bool Interrupt::isRequested() const
{
    return g_requested;
}

int Interrupt::descriptor() const
{
    return g_pipe[0];
}

void Interrupt::beforeLeaving(void (*action)())
{
    g_beforeLeaving = action;
}

}  // namespace support
