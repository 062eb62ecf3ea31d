#include "kelarcctl/Session.h"

#include "kelarcctl/ExitCode.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace kelarcctl {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds kLongestClose{3000};

/// Readable within the limit? Ends early, too, for the second descriptor, unless it is -1.
bool isReadable(int descriptor, int interrupt, Session::Clock::time_point until)
{
    pollfd watched[] = {{descriptor, POLLIN, 0}, {interrupt, POLLIN, 0}};
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(until - Session::Clock::now()).count();
        const int count = ::poll(watched, 2, static_cast<int>(std::clamp<long long>(left, 0, 86'400'000)));
        if (count < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "cannot wait");
        if (count > 0 || left <= 0)
            return count > 0 && (watched[0].revents & POLLIN) != 0;
    }
}

}  // namespace

Bell::Bell() : m_descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "cannot make an event descriptor");
}

Bell::~Bell()
{
    ::close(m_descriptor);
}

void Bell::wake()
{
    ::eventfd_write(m_descriptor, 1);
}

void Bell::quiet()
{
    eventfd_t count = 0;
    ::eventfd_read(m_descriptor, &count);
}

Session::Session(kelarc::KelArc& modem, const support::Interrupt& interrupt, Log& log, milliseconds timeout)
    : m_modem(modem), m_interrupt(interrupt), m_log(log), m_timeout(timeout), m_deadline(Clock::now() + timeout)
{
}

void Session::open()
{
    const auto [code] = ask<int>("opening the modem", [&](auto&& callback) { m_modem.open(std::move(callback)); });
    require(code, "opening");
}

bool Session::close()
{
    if (!m_modem.isOpen())
        return m_modem.getRunningTaskId() == 0 && m_modem.getPendingTasks() == 0;
    const auto bell = std::make_shared<Bell>();
    m_modem.close([bell](int) { bell->wake(); });
    return isReadable(bell->descriptor(), -1, Clock::now() + kLongestClose);
}

void Session::require(int code, const std::string& what)
{
    if (code != 0)
        throw Failure(kExitRefused, "the modem refused " + what + ": " + m_log.textOf(code));
}

bool Session::wait(const Bell& bell, Clock::time_point until, const std::string& what)
{
    if (isReadable(bell.descriptor(), m_interrupt.descriptor(), until))
        return true;
    if (m_interrupt.isRequested())
        throw Failure(kExitInterrupted, "interrupted while " + what);
    return false;
}

void Session::await(const Bell& bell, const std::string& what)
{
    if (!wait(bell, m_deadline, what))
        throw Failure(kExitDeadline, "no answer within " + std::to_string(m_timeout.count()) + " ms while " + what +
                                         "; running: " + m_modem.getRunningTaskName());
}

}  // namespace kelarcctl
