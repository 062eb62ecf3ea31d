#include "kelarcctl/monitor/Signals.h"

#include <cerrno>
#include <csignal>
#include <initializer_list>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace kelarcctl {

namespace {

sigset_t setOf(std::initializer_list<int> numbers)
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : numbers)
        sigaddset(&set, number);
    return set;
}

}  // namespace

Signals::Signals()
{
    const sigset_t blocked = setOf({SIGWINCH, SIGTSTP});
    ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    const sigset_t read = setOf({SIGWINCH});
    m_descriptor = ::signalfd(-1, &read, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "cannot take signals");
}

Signals::~Signals()
{
    ::close(m_descriptor);
}

void Signals::allowStop() const
{
    const sigset_t stop = setOf({SIGTSTP});
    ::pthread_sigmask(SIG_UNBLOCK, &stop, nullptr);
}

bool Signals::takeResize() const
{
    bool isResized = false;
    signalfd_siginfo each{};
    while (::read(m_descriptor, &each, sizeof each) == sizeof each)
        isResized = true;
    return isResized;
}

}  // namespace kelarcctl
